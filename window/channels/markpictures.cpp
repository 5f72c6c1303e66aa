// SPDX-License-Identifier: MIT
#include "window/channels/markpictures.h"

#include "icons/iconset.h"
#include "icons/picturefault.h"

#include <QCoreApplication>
#include <QDir>
#include <QImageReader>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(MarkPictures)
};

constexpr int mostPixels = 1024; // a side

QImage loaded(const QString& path)
{
    QImage picture = QFileInfo(path).isFile() ? QImageReader(path).read() : QImage();
    picture.setDevicePixelRatio(1); // which Qt reads out of a name like icon@2x.png
    return picture;
}

} // namespace

MarkPictures MarkPictures::read(const QString& master, const QString& marks, const QString& mark)
{
    MarkPictures read;
    if (master.isEmpty())
        read.fault = Texts::tr("The job names no icon, so that there is nothing to mark. Name one under "
                               "\"icons\" in the job file.");
    else
        read.icon = loaded(master);
    read.iconSize = read.icon.size();
    if (!master.isEmpty() && read.icon.isNull())
        read.fault = Texts::tr("The icon %1 cannot be shown: %2").arg(master, PictureFault::ofIcon(master));
    if (qMax(read.iconSize.width(), read.iconSize.height()) > mostPixels)
        read.icon = read.icon.scaled(mostPixels, mostPixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    for (int corner = 0; corner <= IconSet::RightBottom && !mark.isEmpty(); ++corner)
        read.marks.at(size_t(corner)) =
            loaded(marks + QLatin1Char('/') + mark + QLatin1Char('/') + IconSet::cornerFile(corner));
    if (!marks.isEmpty()) {
        for (const QString& name : QDir(marks).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
            if (QFileInfo(marks + QLatin1Char('/') + name + QLatin1String("/icon")).isDir())
                read.names.append(name);
        }
    }
    return read;
}
