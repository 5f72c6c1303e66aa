// SPDX-License-Identifier: MIT
#include "platform.h"

#include <QCoreApplication>
#include <QFile>

QString executablePath()
{
    return QCoreApplication::applicationFilePath();
}

FileIdentity identityOf(const QFile& openFile)
{
    return identityAt(QFile::encodeName(openFile.fileName()));
}

// An open file can be neither removed nor moved here: existing is all there is to tell.
FileIdentity identityAt(const QByteArray& path)
{
    return {QFile::exists(QFile::decodeName(path)) ? 1U : 0U, 0};
}
