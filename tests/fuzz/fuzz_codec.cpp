// SPDX-License-Identifier: MIT
// Every text that has four bytes and no zero byte comes back, any input at all is decoded as the plain form
// does, and what is stored is what the public function returns.
#include "codec.h"
#include "plaincodec.h"

#include <quenzotool.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

bool decodesPlainly(const QString& text)
{
    const QString decoded = QuenzoTool::ckDecode(text);
    return !decoded.isNull() && decoded == PlainCodec::textOf(PlainCodec::plainlyDecoded(text));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString text = QString::fromUtf8(bytes);
    const bool comesBack = text.toUtf8().size() >= 4 && !text.contains(QChar(QChar::Null));
    if (comesBack && QuenzoTool::ckDecode(QuenzoTool::ckEncode(text)) != text)
        std::abort();
    if (QuenzoTool::ckEncode(text) != PlainCodec::plainlyEncoded(text))
        std::abort();
    std::string stored;
    stored.resize(Codec::encode(text, stored));
    if (stored != QuenzoTool::ckEncode(text).toStdString())
        std::abort();
    if (!decodesPlainly(text) || !decodesPlainly(QString::fromLatin1(bytes)))
        std::abort();
    return 0;
}
