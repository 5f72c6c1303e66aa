// SPDX-License-Identifier: MIT
#include "platform.h"

#include <QCoreApplication>
#include <QFile>

QString executablePath()
{
    return QCoreApplication::applicationFilePath();
}

// An open file can be neither removed nor moved here: existing is all there is to tell.
bool isLinked(const QFile& openFile)
{
    return openFile.exists();
}

FileIdentity identityOf(const QFile& openFile)
{
    return identityAt(QFile::encodeName(openFile.fileName()));
}

FileIdentity identityAt(const QByteArray& path)
{
    return {QFile::exists(QFile::decodeName(path)) ? 1U : 0U, 0};
}
