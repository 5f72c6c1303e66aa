// SPDX-License-Identifier: MIT
// Any picture that is written is read as Qt's own writing of it is, pixel by pixel, and loses nothing that
// PNG can keep.
#include "fuzz.h"
#include "icons/pngencoder.h"

#include <QImage>

using Fuzz::require;

namespace {

QImage pictureOf(Fuzz::Input& input)
{
    const auto format = static_cast<QImage::Format>(1 + input.below(QImage::NImageFormats - 1));
    QImage picture(1 + input.below(70), 1 + input.below(70), format);
    for (int colour = input.below(8); colour > 0 && picture.depth() <= 8; --colour)
        picture.setColorCount(colour), picture.setColor(colour - 1, static_cast<QRgb>(input.number()));
    if (input.below(4) == 0)
        picture.setDotsPerMeterX(input.byte() * 100);
    if (input.below(4) == 0)
        picture.setText(QStringLiteral("Title"), input.text());
    const QByteArray pattern = input.rest();
    const int bytes = (picture.width() * picture.depth() + 7) / 8;
    int next = 0;
    for (int y = 0; y < picture.height(); ++y) {
        uchar* const line = picture.scanLine(y);
        for (int x = 0; x < bytes; ++x)
            line[x] = pattern.isEmpty() ? uchar(0) : static_cast<uchar>(pattern.at(next++ % pattern.size()));
    }
    return picture;
}

bool isKept(QImage::Format format)
{
    return format == QImage::Format_RGB32 || format == QImage::Format_RGB888
        || format == QImage::Format_ARGB32 || format == QImage::Format_RGBA8888
        || format == QImage::Format_Grayscale8;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::startApplication();
    Fuzz::Input input(data, size);
    const QImage picture = pictureOf(input);
    const QImage written = QImage::fromData(PngEncoder::encode(picture), "PNG");
    const QImage byQt = QImage::fromData(PngEncoder::encodeByQt(picture), "PNG");
    require(written.isNull() == byQt.isNull(), "what Qt can write is written");
    require(written == byQt && written.format() == byQt.format(), "the picture is the one that Qt writes");
    require(written.textKeys() == byQt.textKeys(), "with its texts");
    require(written.dotsPerMeterX() == byQt.dotsPerMeterX(), "and its resolution");
    if (isKept(picture.format()))
        require(written.convertToFormat(QImage::Format_ARGB32)
                    == picture.convertToFormat(QImage::Format_ARGB32),
                "no pixel is lost");
    return 0;
}
