// SPDX-License-Identifier: MIT
#include "icons/picturefault.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QImageReader>

namespace {

struct Picture {
    Q_DECLARE_TR_FUNCTIONS(PictureFault)
};

} // namespace

QString PictureFault::ofIcon(const QString& path)
{
    const QFileInfo file(path);
    if (file.exists() && !file.isFile())
        return Picture::tr("it is not a regular file");
    QImageReader icon(path);
    return icon.read().isNull() ? icon.errorString() : QString();
}

QString PictureFault::ofMark(const QString& path)
{
    if (!QFileInfo(path).isFile())
        return Picture::tr("the mark picture %1 is missing").arg(path);
    QImageReader reader(path);
    return reader.read().isNull()
        ? Picture::tr("the mark picture %1 cannot be read (%2)").arg(path, reader.errorString())
        : QString();
}
