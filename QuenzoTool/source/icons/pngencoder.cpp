// SPDX-License-Identifier: MIT
#include "icons/pngencoder.h"

#include <QBuffer>
#include <QImage>
#include <QtEndian>

#ifdef QUENZO_HAVE_LIBDEFLATE
#include "icons/pngfilter.h"

#include <libdeflate.h>

#include <cstring>
#include <memory>
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

constexpr int signatureSize = 8;
constexpr int headerSize = 25; // the chunk IHDR
constexpr int chunkFrame = 12; // length, type and checksum around a chunk's data
constexpr qint64 largestPicture = 1 << 28; // beyond it the rows are better deflated one by one

// Empty when there is no room for it.
QByteArray deflated(const std::vector<unsigned char>& content)
{
    constexpr int level = 5; // the quickest that keeps photographic sets well below Qt's in size
    // Kept by the thread, for which making its tables anew would take a twentieth of the time.
    thread_local const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)>
        compressor(libdeflate_alloc_compressor(level), libdeflate_free_compressor);
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
        picture.isNull() ? QByteArray() : deflated(filteredPngRows(picture, picture.depth() / 8));
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
