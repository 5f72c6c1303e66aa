// SPDX-License-Identifier: MIT
#include "pngencoder.h"

#include <QBuffer>
#include <QImage>
#include <QtEndian>

#ifdef QUENZO_HAVE_LIBDEFLATE
#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>
#endif

QByteArray PngEncoder::encodeByQt(const QImage& image)
{
    QByteArray content;
    QBuffer buffer(&content);
    return image.save(&buffer, "PNG") ? content : QByteArray();
}

#ifndef QUENZO_HAVE_LIBDEFLATE

QByteArray PngEncoder::encode(const QImage& image)
{
    return encodeByQt(image);
}

#else

namespace {

using Byte = unsigned char;
constexpr int signatureSize = 8;
constexpr int headerSize = 25; // the chunk IHDR
constexpr int chunkFrame = 12; // length, type and checksum around a chunk's data
constexpr qint64 largestPicture = 1 << 28; // beyond it the rows are better deflated one by one

// One row and the one above, each behind a zero pixel, so that the first pixel has neighbours too.
struct Rows {
    const Byte* current;
    const Byte* above;
    int pixel; // bytes
    int length;
};

// Gives the row's filtered form and how far it is from zero, which tells how well it will deflate.
template <typename Predictor> unsigned filterRow(const Rows& rows, Byte* filtered, Predictor predict)
{
    unsigned distance = 0;
    for (int i = 0; i < rows.length; ++i) {
        const Byte* const left = rows.current + i - rows.pixel;
        const Byte* const above = rows.above + i;
        const auto rest = static_cast<Byte>(rows.current[i] - predict(*left, *above, above[-rows.pixel]));
        filtered[i] = rest;
        distance += rest < 128 ? rest : 256U - rest;
    }
    return distance;
}

short paeth(short left, short above, short corner)
{
    const auto towardAbove = static_cast<short>(above - corner);
    const auto towardLeft = static_cast<short>(left - corner);
    const auto byLeft = static_cast<short>(std::abs(towardAbove));
    const auto byAbove = static_cast<short>(std::abs(towardLeft));
    const auto byCorner = static_cast<short>(std::abs(static_cast<short>(towardAbove + towardLeft)));
    const short other = byAbove <= byCorner ? above : corner;
    return byLeft <= byAbove && byLeft <= byCorner ? left : other;
}

// The picture's rows, each in the best of its five filtered forms behind that form's number.
std::vector<Byte> filteredRows(const QImage& picture, int pixel)
{
    const auto margin = static_cast<std::size_t>(pixel);
    const std::size_t length = static_cast<std::size_t>(picture.width()) * margin;
    std::vector<Byte> current(margin + length);
    std::vector<Byte> above(margin + length);
    std::array<std::vector<Byte>, 5> forms;
    for (std::vector<Byte>& form : forms)
        form.resize(length);
    std::vector<Byte> filtered;
    filtered.reserve((length + 1) * static_cast<std::size_t>(picture.height()));
    for (int y = 0; y < picture.height(); ++y) {
        std::swap(current, above);
        std::memcpy(current.data() + margin, picture.constScanLine(y), length);
        const Rows rows{current.data() + margin, above.data() + margin, pixel, static_cast<int>(length)};
        const std::array<unsigned, 5> distances{
            filterRow(rows, forms[0].data(), [](short, short, short) { return short(0); }),
            filterRow(rows, forms[1].data(), [](short left, short, short) { return left; }),
            filterRow(rows, forms[2].data(), [](short, short up, short) { return up; }),
            filterRow(rows, forms[3].data(),
                      [](short left, short up, short) { return short((left + up) / 2); }),
            filterRow(rows, forms[4].data(), paeth),
        };
        const auto best = static_cast<std::size_t>(std::min_element(distances.cbegin(), distances.cend())
                                                   - distances.cbegin());
        filtered.push_back(static_cast<Byte>(best));
        filtered.insert(filtered.end(), forms[best].cbegin(), forms[best].cend());
    }
    return filtered;
}

// Empty when there is no room for it.
QByteArray deflated(const std::vector<Byte>& content)
{
    constexpr int level = 6;
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), libdeflate_free_compressor);
    if (compressor == nullptr)
        return {};
    const std::size_t room = libdeflate_zlib_compress_bound(compressor.get(), content.size());
    QByteArray stream(static_cast<int>(room), Qt::Uninitialized);
    const std::size_t size =
        libdeflate_zlib_compress(compressor.get(), content.data(), content.size(), stream.data(), room);
    stream.truncate(static_cast<int>(size));
    return stream;
}

QByteArray chunk(const char* type, const QByteArray& data)
{
    QByteArray framed(4, Qt::Uninitialized);
    qToBigEndian(static_cast<quint32>(data.size()), framed.data());
    framed.reserve(data.size() + chunkFrame);
    framed.append(type, 4).append(data);
    const quint32 checksum =
        libdeflate_crc32(0, framed.constData() + 4, static_cast<std::size_t>(framed.size() - 4));
    framed.resize(framed.size() + 4);
    qToBigEndian(checksum, framed.data() + framed.size() - 4);
    return framed;
}

// The form of the rows in the file; Invalid for the formats that are left to Qt.
QImage::Format rowFormat(QImage::Format format)
{
    switch (format) {
    case QImage::Format_RGB32:
    case QImage::Format_RGB888:
        return QImage::Format_RGB888;
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
    case QImage::Format_RGBA8888:
        return QImage::Format_RGBA8888;
    case QImage::Format_Grayscale8:
        return format;
    default:
        return QImage::Format_Invalid;
    }
}

// Where the picture's data begins in a PNG file.
int dataStart(const QByteArray& file)
{
    int at = signatureSize + headerSize;
    while (at + chunkFrame < file.size() && std::memcmp(file.constData() + at + 4, "IDAT", 4) != 0)
        at += chunkFrame + static_cast<int>(qFromBigEndian<quint32>(file.constData() + at));
    return at;
}

} // namespace

QByteArray PngEncoder::encode(const QImage& image)
{
    const QImage::Format format = rowFormat(image.format());
    if (format == QImage::Format_Invalid || image.sizeInBytes() > largestPicture)
        return encodeByQt(image);
    // Qt removes premultiplication on the way to ARGB32, which rounds in a way of its own.
    const bool premultiplied = image.format() == QImage::Format_ARGB32_Premultiplied;
    const QImage picture =
        (premultiplied ? image.convertToFormat(QImage::Format_ARGB32) : image).convertToFormat(format);
    // Qt itself writes everything beside the size and the pixels: one pixel of the picture carries the rest.
    const QByteArray sample = encodeByQt(image.copy(0, 0, 1, 1));
    const QByteArray stream =
        picture.isNull() ? QByteArray() : deflated(filteredRows(picture, picture.depth() / 8));
    if (sample.isEmpty() || stream.isEmpty())
        return encodeByQt(image);

    QByteArray header = sample.mid(signatureSize + 8, headerSize - chunkFrame);
    qToBigEndian(picture.width(), header.data());
    qToBigEndian(picture.height(), header.data() + 4);
    const int others = signatureSize + headerSize;
    return sample.left(signatureSize) + chunk("IHDR", header) + sample.mid(others, dataStart(sample) - others)
        + chunk("IDAT", stream) + chunk("IEND", {});
}

#endif
