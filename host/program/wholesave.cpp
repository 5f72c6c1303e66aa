// SPDX-License-Identifier: MIT
#include "wholesave.h"

#include <QSaveFile>

QString saveWhole(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    // Without a buffer, whose last bytes commit() does not miss when they find no room.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return file.errorString();
    // A write that finds room for a part does not tell why; what is left of it does.
    for (qint64 at = 0; at < content.size();) {
        const qint64 written = file.write(content.constData() + at, content.size() - at);
        if (written <= 0)
            return file.errorString();
        at += written;
    }
    return file.commit() ? QString() : file.errorString();
}
