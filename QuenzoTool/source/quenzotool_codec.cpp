// SPDX-License-Identifier: MIT
#include "quenzotool.h"

namespace {

// The last characters keep their place. Both functions agree on six: the Base64 form is never of odd length,
// and a text too short for decoding to choose otherwise has nothing in front of its tail.
constexpr int tailLength = 6;

// "ab" becomes "ba" in each of the pairs: a plain loop over whole pairs, which compilers turn into vector
// shuffles.
void swapPairs(char* bytes, int length)
{
    for (int i = 0; i + 1 < length; i += 2) {
        const char first = bytes[i];
        bytes[i] = bytes[i + 1];
        bytes[i + 1] = first;
    }
}

// A text up to the first zero byte, never null. Qt's decoder takes a byte order mark off, which is a
// character of the text here.
QString textOf(const QByteArray& bytes)
{
    const int length = static_cast<int>(qstrnlen(bytes.constData(), static_cast<uint>(bytes.size())));
    const QString text = QString::fromUtf8(bytes.constData(), length);
    return bytes.startsWith("\xEF\xBB\xBF") ? QChar(QChar::ByteOrderMark) + text : text;
}

} // namespace

QString QuenzoTool::ckEncode(QString text)
{
    QByteArray bytes = text.toUtf8().toBase64();
    if (bytes.size() < tailLength)
        return QLatin1String("");
    swapPairs(bytes.data(), bytes.size() - tailLength);
    return QString::fromLatin1(bytes);
}

QString QuenzoTool::ckDecode(QString text)
{
    QByteArray bytes = text.toUtf8();
    const int front = bytes.size() - tailLength;
    if (front > 0) {
        swapPairs(bytes.data(), front);
        // The odd character out is paired with the first one of the tail, which then stands there twice.
        if (front % 2 != 0)
            bytes.insert(front - 1, bytes.at(front));
    }
    return textOf(QByteArray::fromBase64(bytes));
}
