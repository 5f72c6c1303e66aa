// SPDX-License-Identifier: MIT
#ifndef PLAINCODEC_H
#define PLAINCODEC_H

#include <QByteArray>
#include <QString>

/** The text codec once more, in the plainest form that can be written: what the library's one must equal. */
namespace PlainCodec {

inline QByteArray plainlySwapped(const QByteArray& bytes, int tail, bool pairsMayReachTheTail)
{
    QByteArray collected;
    collected.reserve(bytes.size() + 1);
    const char* const all = bytes.constData();
    const auto at = [all](int i) { return i < 0 ? '\0' : all[i]; };
    const int front = bytes.size() - tail;
    for (int i = 0; pairsMayReachTheTail ? i < front : i + 1 < front; i += 2) {
        collected.append(at(i + 1));
        collected.append(at(i));
    }
    for (int j = front; j < bytes.size(); ++j)
        collected.append(at(j));
    return collected;
}

inline QByteArray untilZero(const QByteArray& bytes)
{
    const int zero = bytes.indexOf('\0');
    return zero < 0 ? bytes : bytes.left(zero);
}

inline QString plainlyEncoded(const QString& text)
{
    return QString::fromLatin1(untilZero(plainlySwapped(text.toUtf8().toBase64(), 6, false)));
}

inline QByteArray plainlyDecoded(const QString& text)
{
    const int tail = text.size() / 2 != 0 ? 6 : 7;
    return untilZero(QByteArray::fromBase64(plainlySwapped(text.toUtf8(), tail, true)));
}

/** Bytes that are no UTF-8 have no form but Qt's own; a mark in front of them is a character. */
inline QString textOf(const QByteArray& bytes)
{
    const QString mark = bytes.startsWith("\xEF\xBB\xBF") ? QString(QChar(QChar::ByteOrderMark)) : QString();
    return mark + QString::fromUtf8(bytes);
}

} // namespace PlainCodec

#endif
