// SPDX-License-Identifier: MIT
#include "build/reportpicture.h"

#include "build/smallicon.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QPainter>

namespace {

QImage read(const QString& path)
{
    constexpr int largestSide = 16384; // sheets of very many channels are that large
    // What is no file, like a pipe, would be waited for.
    if (!QFileInfo(path).isFile())
        return {};
    QImageReader reader(path, "png");
    reader.setAutoDetectImageFormat(false);
    if (!reader.canRead())
        return {};
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > largestSide || size.height() > largestSide)
        return {};
    QImage image = reader.read();
    image.setDevicePixelRatio(1);
    return image;
}

// The pixels alone, without the texts and profiles that a file may carry.
QByteArray encoded(const QImage& image)
{
    QImage bare(image.size(), image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    bare.fill(Qt::transparent);
    QPainter(&bare).drawImage(0, 0, image);
    QByteArray content;
    QBuffer buffer(&content);
    return buffer.open(QIODevice::WriteOnly) && bare.save(&buffer, "PNG") ? content : QByteArray();
}

ReportPicture fitting(const QImage& image, const QSize& bounds)
{
    if (image.isNull())
        return {};
    const bool fits = image.width() <= bounds.width() && image.height() <= bounds.height();
    const QImage small = fits ? image : image.scaled(bounds, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    const QByteArray content = encoded(small);
    if (content.isEmpty())
        return {};
    return {"data:image/png;base64," + content.toBase64(), small.size()};
}

} // namespace

ReportPicture ReportPicture::icon(const QString& path)
{
    constexpr int side = 96; // sharp at 48 units of a dense screen
    constexpr int smallSide = 64; // for what hardly compresses
    constexpr int mostBytes = 16384;
    const QImage image = read(smallIconOf(path));
    const ReportPicture picture = fitting(image, {side, side});
    return picture.uri.size() <= mostBytes ? picture : fitting(image, {smallSide, smallSide});
}

ReportPicture ReportPicture::sheet(const QString& path)
{
    return fitting(read(path), {960, 1600});
}
