// SPDX-License-Identifier: MIT
#include "fileidentity.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int mostLinks = 40; // as many as the system follows

QString placeOf(const QString& path, int links)
{
    const QFileInfo file(path);
    if (file.exists())
        return file.canonicalFilePath();
    if (file.isSymLink() && links > 0)
        return placeOf(file.symLinkTarget(), links - 1);
    // The path as given: what is above a folder behind a link is not what its text says.
    const QString folder = file.path();
    return folder == path ? path : placeOf(folder, links) + QLatin1Char('/') + file.fileName();
}

} // namespace

FileIdentity identityOf(const QString& path)
{
    struct stat found { };
    if (stat(QFile::encodeName(path).constData(), &found) != 0)
        return {};
    return FileIdentity(found);
}

QString placeOf(const QString& path)
{
    return QDir::cleanPath(placeOf(path, mostLinks));
}
