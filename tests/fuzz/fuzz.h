// SPDX-License-Identifier: MIT
#ifndef FUZZ_H
#define FUZZ_H

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/** What a fuzz target offers: a run of one input. It ends the process where a promise does not hold. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace Fuzz {

inline void require(bool holds, const char* promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "fuzz: broken: %s\n", promise);
    std::abort();
}

/** For targets that use plugins, or paths beside the program. */
inline void startApplication()
{
    static int count = 1;
    static char name[] = "fuzz";
    static char* words[] = {name, nullptr};
    static const auto* const application = new QCoreApplication(count, words);
    Q_UNUSED(application)
}

/** Takes an input apart; behind its end everything is zero. */
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : m_bytes(reinterpret_cast<const char*>(data), static_cast<int>(size))
    {
    }

    bool atEnd() const { return m_at >= m_bytes.size(); }
    int byte() { return atEnd() ? 0 : static_cast<unsigned char>(m_bytes.at(m_at++)); }
    int below(int limit) { return byte() % limit; }

    QByteArray bytes(int length)
    {
        const QByteArray taken = m_bytes.mid(m_at, length);
        m_at += taken.size();
        return taken;
    }

    QByteArray rest() { return bytes(m_bytes.size() - m_at); }

    /** Some bytes, whose number comes first. */
    QByteArray someBytes() { return bytes(byte()); }

    /** Some letters: of UTF-8 or, for lone halves of surrogate pairs too, single units. */
    QString text() { return (byte() & 1) != 0 ? units(someBytes()) : QString::fromUtf8(someBytes()); }
    QString restAsText() { return (byte() & 1) != 0 ? units(rest()) : QString::fromUtf8(rest()); }

    std::int64_t number()
    {
        std::uint64_t value = 0;
        for (int i = byte() % 9; i > 0; --i)
            value = value << 8 | static_cast<unsigned>(byte());
        return static_cast<std::int64_t>((byte() & 1) != 0 ? ~value : value);
    }

private:
    static QString units(const QByteArray& bytes)
    {
        QString text;
        for (int i = 0; i + 1 < bytes.size(); i += 2)
            text += QChar(static_cast<uchar>(bytes.at(i)), static_cast<uchar>(bytes.at(i + 1)));
        return text;
    }

    QByteArray m_bytes;
    int m_at = 0;
};

} // namespace Fuzz

#endif
