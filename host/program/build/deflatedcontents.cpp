// SPDX-License-Identifier: MIT
#include "build/deflatedcontents.h"

#include <zlib.h>

namespace {

QByteArray deflated(const QByteArray& content)
{
    z_stream stream{};
    if (deflateInit2(&stream, DeflatedContents::level, Z_DEFLATED, -MAX_WBITS, MAX_MEM_LEVEL - 1,
                     Z_DEFAULT_STRATEGY)
        != Z_OK)
        return {};
    QByteArray packed(static_cast<int>(deflateBound(&stream, static_cast<uLong>(content.size()))),
                      Qt::Uninitialized);
    // zlib's interface knows no constants; it does not write there.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.constData()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    const int result = deflate(&stream, Z_FINISH);
    packed.truncate(result == Z_STREAM_END ? static_cast<int>(stream.total_out) : 0);
    deflateEnd(&stream);
    packed.squeeze();
    return packed;
}

} // namespace

QByteArray DeflatedContents::of(const QByteArray& content)
{
    if (const QByteArray* const known = m_deflated.object(content))
        return *known;
    QByteArray packed = deflated(content);
    m_deflated.insert(content, new QByteArray(packed), content.size() + packed.size());
    return packed;
}
