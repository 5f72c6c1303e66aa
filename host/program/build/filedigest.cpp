// SPDX-License-Identifier: MIT
#include "build/filedigest.h"

#include <QCryptographicHash>
#include <QFile>

#ifdef __x86_64__
#include <QtEndian>

#include <array>
#include <cpuid.h>
#include <cstring>
#include <immintrin.h>
#endif

namespace {

constexpr int blockSize = 1 << 18;

// As much as there is, up to a whole block: what is left over at the end alone is shorter.
qint64 fill(QFile& file, QByteArray& block)
{
    qint64 done = 0;
    for (qint64 got = 1; got > 0 && done < block.size();) {
        got = file.read(block.data() + done, block.size() - done);
        if (got < 0)
            return got;
        done += got;
    }
    return done;
}

template <typename Hash> QByteArray digestBy(Hash& hash, QFile& file, QString& fault)
{
    QByteArray block(blockSize, Qt::Uninitialized);
    qint64 length = block.size();
    while (length == block.size()) {
        length = fill(file, block);
        if (length >= 0)
            hash.addData(block.constData(), static_cast<int>(length));
    }
    if (length >= 0)
        return hash.result().toHex();
    fault = file.errorString();
    return {};
}

#ifdef __x86_64__

constexpr int unitSize = 64; // what one turn of the function takes

// The fractions of the cube roots of the first 64 primes.
alignas(16) constexpr std::array<quint32, 64> roundConstants{
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

/** SHA-256 by the processor; addData() takes a length that is no multiple of 64 once, at the end. */
class ProcessorHash {
public:
    static bool isThere()
    {
        constexpr unsigned sha = 1U << 29;
        unsigned a = 0;
        unsigned b = 0;
        unsigned c = 0;
        unsigned d = 0;
        return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & sha) != 0
            && __builtin_cpu_supports("sse4.1") != 0;
    }

    void addData(const char* bytes, int length)
    {
        m_length += static_cast<quint64>(length);
        const int whole = length - length % unitSize;
        turn(bytes, bytes + whole);
        m_rest.append(bytes + whole, length - whole);
    }

    QByteArray result()
    {
        m_rest += '\x80';
        const int numberAt = m_rest.size() > unitSize - 8 ? 2 * unitSize - 8 : unitSize - 8;
        m_rest = m_rest.leftJustified(numberAt + 8, '\0');
        qToBigEndian(m_length * 8, m_rest.data() + numberAt);
        turn(m_rest.constData(), m_rest.constData() + m_rest.size());
        // Lanes count from the lowest one: F, E, B, A and H, G, D, C.
        constexpr std::array<std::size_t, 8> order{3, 2, 7, 6, 1, 0, 5, 4};
        QByteArray digest(static_cast<int>(4 * order.size()), '\0');
        for (std::size_t i = 0; i < order.size(); ++i)
            qToBigEndian(m_state.at(order.at(i)), digest.data() + 4 * i);
        return digest;
    }

private:
    __attribute__((target("sha,sse4.1"))) void turn(const char* from, const char* end)
    {
        const __m128i bigEndian = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
        auto* const state = reinterpret_cast<__m128i*>(m_state.data());
        const auto* const constants = reinterpret_cast<const __m128i*>(roundConstants.data());
        __m128i abef = _mm_load_si128(state);
        __m128i cdgh = _mm_load_si128(state + 1);
        for (; from != end; from += unitSize) {
            const auto* const unit = reinterpret_cast<const __m128i*>(from);
            const __m128i abefBefore = abef;
            const __m128i cdghBefore = cdgh;
            __m128i words[4]; // NOLINT(modernize-avoid-c-arrays): the compiler keeps these in registers
            for (int i = 0; i < 16; ++i) {
                __m128i& word = words[i % 4];
                const __m128i& last = words[(i + 3) % 4];
                if (i < 4)
                    word = _mm_shuffle_epi8(_mm_loadu_si128(unit + i), bigEndian);
                else
                    word = _mm_sha256msg2_epu32(_mm_add_epi32(_mm_sha256msg1_epu32(word, words[(i + 1) % 4]),
                                                              _mm_alignr_epi8(last, words[(i + 2) % 4], 4)),
                                                last);
                const __m128i sum = _mm_add_epi32(word, _mm_load_si128(constants + i));
                cdgh = _mm_sha256rnds2_epu32(cdgh, abef, sum);
                abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(sum, 0x0e));
            }
            abef = _mm_add_epi32(abef, abefBefore);
            cdgh = _mm_add_epi32(cdgh, cdghBefore);
        }
        _mm_store_si128(state, abef);
        _mm_store_si128(state + 1, cdgh);
    }

    // F, E, B, A, H, G, D, C: the fractions of the square roots of the first eight primes.
    alignas(16) std::array<quint32, 8> m_state{0x9b05688c, 0x510e527f, 0xbb67ae85, 0x6a09e667,
                                               0x5be0cd19, 0x1f83d9ab, 0xa54ff53a, 0x3c6ef372};
    QByteArray m_rest;
    quint64 m_length = 0;
};

#endif

} // namespace

QByteArray digestOfFile(const QString& path, QString& fault)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        fault = file.errorString();
        return {};
    }
#ifdef __x86_64__
    ProcessorHash fast;
    if (ProcessorHash::isThere())
        return digestBy(fast, file, fault);
#endif
    QCryptographicHash plain(QCryptographicHash::Sha256);
    return digestBy(plain, file, fault);
}
