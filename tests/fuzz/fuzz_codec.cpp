// SPDX-License-Identifier: MIT
// Every text that has four bytes and no zero byte comes back, and no input at all upsets the decoder.
#include <quenzotool.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString text = QString::fromUtf8(bytes);
    const bool comesBack = text.toUtf8().size() >= 4 && !text.contains(QChar(QChar::Null));
    if (comesBack && QuenzoTool::ckDecode(QuenzoTool::ckEncode(text)) != text)
        std::abort();
    if (QuenzoTool::ckDecode(text).isNull() || QuenzoTool::ckDecode(QString::fromLatin1(bytes)).isNull())
        std::abort();
    return 0;
}
