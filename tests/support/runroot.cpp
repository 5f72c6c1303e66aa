// SPDX-License-Identifier: MIT
#include "runroot.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

QString RunRoot::path()
{
    return QFileInfo(QCoreApplication::applicationDirPath()).path();
}

void RunRoot::clear()
{
    for (const char* folder : {"/Script", "/tool", "/log"})
        QDir(path() + QLatin1String(folder)).removeRecursively();
    QDir().mkpath(path() + QStringLiteral("/Script"));
    QDir().mkpath(path() + QStringLiteral("/tool/mac"));
}

QString RunRoot::write(const QString& relativePath, const QByteArray& content)
{
    const QString filePath = path() + QLatin1Char('/') + relativePath;
    QDir().mkpath(QFileInfo(filePath).path());
    QFile file(filePath);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qUtf8Printable(filePath));
    // The interpreter compares whole seconds only, and takes the old code for a script written twice in one.
    QFile::remove(filePath + QLatin1Char('c'));
    return filePath;
}

QString RunRoot::writeProgram(const QString& relativePath, const QByteArray& content)
{
    const QString filePath = write(relativePath, content);
    QFile::setPermissions(filePath, QFile::permissions(filePath) | QFileDevice::ExeOwner);
    return filePath;
}

QByteArray RunRoot::log()
{
    QFile file(path() + QStringLiteral("/log/quenzotool.log"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
