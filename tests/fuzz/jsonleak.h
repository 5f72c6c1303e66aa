// SPDX-License-Identifier: MIT
#ifndef JSONLEAK_H
#define JSONLEAK_H

#include "jsonplace.h"

#include <QByteArray>

// There in programs that look for leaks alone.
extern "C" {
__attribute__((weak)) void __lsan_disable();
__attribute__((weak)) void __lsan_enable();
}

/**
 * Takes what is lost while it lives for no leak of ours, if the text holds a key twice: Qt's parser loses the
 * list or the object that it drops then. Its functions have no names by which that could be told apart.
 */
class JsonLeak {
public:
    explicit JsonLeak(const QByteArray& text)
        : m_isExpected(__lsan_disable != nullptr && mayHoldAKeyTwice(text))
    {
        if (m_isExpected)
            __lsan_disable();
    }
    ~JsonLeak()
    {
        if (m_isExpected)
            __lsan_enable();
    }
    JsonLeak(const JsonLeak&) = delete;
    JsonLeak& operator=(const JsonLeak&) = delete;

private:
    // The parser compares some keys up to their first null character.
    static bool mayHoldAKeyTwice(const QByteArray& text)
    {
        return text.contains('\0') || text.contains("\\u0000") || !JsonPlace::repeatedKeys(text).isEmpty();
    }

    const bool m_isExpected;
};

#endif
