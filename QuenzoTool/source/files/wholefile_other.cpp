// SPDX-License-Identifier: MIT
// Qt's portable means, which also bring each file's data to the disk.
#include "files/wholefile.h"

#include <QFileInfo>
#include <QSaveFile>

QString writeWholeFile(const QString& path, const QByteArray& content)
{
    const QFileInfo present(path);
    if (present.exists() && !present.isFile())
        return QStringLiteral("What is there is no regular file");
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    const bool written = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    return written && file.flush() && file.commit() ? QString() : file.errorString();
}
