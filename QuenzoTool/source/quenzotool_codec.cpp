// SPDX-License-Identifier: MIT
#include "codec.h"
#include "quenzotool.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace {

// The last characters keep their place. Both functions agree on six: the Base64 form is never of odd length,
// and a text too short for decoding to choose otherwise has nothing in front of its tail.
constexpr int tailLength = 6;

// Base64 has groups of three bytes in four characters. The tail reaches into the last group but one: that
// has its first pair swapped, those before it have both.
constexpr int groupBytes = 3;
constexpr int groupLetters = 4;

// So many groups are taken before looking whether all was well.
constexpr int groupsAtOnce = 64;

constexpr std::string_view alphabet("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");

constexpr uchar letterOf(std::size_t sixBits)
{
    return static_cast<uchar>(alphabet[sixBits]);
}

constexpr std::array<int, 128> makeValues()
{
    std::array<int, 128> values{};
    for (int& value : values)
        value = -1;
    for (std::size_t i = 0; i < alphabet.size(); ++i)
        values[letterOf(i)] = static_cast<int>(i);
    return values;
}

constexpr std::array<int, 128> values = makeValues();

int scrambledLength(int bytes)
{
    return (bytes + groupBytes - 1) / groupBytes * groupLetters;
}

template <typename Letter> struct Pair {
    Letter first;
    Letter second;
};

// Both letters of each twelve bits, swapped.
template <typename Letter> constexpr std::array<Pair<Letter>, 4096> makePairs()
{
    std::array<Pair<Letter>, 4096> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        pairs[i].first = static_cast<Letter>(letterOf(i & 63));
        pairs[i].second = static_cast<Letter>(letterOf(i >> 6));
    }
    return pairs;
}

template <typename Letter> constexpr std::array<Pair<Letter>, 4096> pairs = makePairs<Letter>();

// Both at once.
template <typename Letter> inline void putPair(unsigned bits, Letter* out)
{
    std::memcpy(out, &pairs<Letter>[bits], sizeof(Pair<Letter>));
}

template <typename Letter> inline void putPlainPair(unsigned bits, Letter* out)
{
    out[0] = static_cast<Letter>(letterOf(bits >> 6));
    out[1] = static_cast<Letter>(letterOf(bits & 63));
}

// The bytes of a group, and whatever they have beyond.
template <typename Unit> inline unsigned bitsOf(const Unit* in, unsigned& seen)
{
    seen |= unsigned(in[0]) | unsigned(in[1]) | unsigned(in[2]);
    return unsigned(in[0]) << 16 | unsigned(in[1]) << 8 | unsigned(in[2]);
}

// The last group, padded where it is not full.
template <typename Unit, typename Letter> unsigned encodeLastGroup(const Unit* in, int bytes, Letter* out)
{
    const std::array<Unit, groupBytes> full{in[0], bytes > 1 ? in[1] : Unit(0), bytes > 2 ? in[2] : Unit(0)};
    unsigned seen = 0;
    const unsigned bits = bitsOf(full.data(), seen);
    putPlainPair(bits >> 12 & 4095, out);
    putPlainPair(bits & 4095, out + 2);
    std::fill(out + bytes + 1, out + groupLetters, static_cast<Letter>('='));
    return seen;
}

// Encodes four bytes or more. What is ored from all bytes tells whether they were bytes; it may come early
// when they were not below the limit.
template <typename Unit, typename Letter>
unsigned encodeBytes(const Unit* in, int bytes, Letter* out, unsigned limit)
{
    const int groups = (bytes + groupBytes - 1) / groupBytes;
    unsigned seen = 0;
    std::ptrdiff_t done = 0;
    while (done < groups - 2) {
        const std::ptrdiff_t next = std::min<std::ptrdiff_t>(groups - 2, done + groupsAtOnce);
        for (; done < next; ++done) {
            const unsigned bits = bitsOf(in + done * groupBytes, seen);
            putPair(bits >> 12 & 4095, out + done * groupLetters);
            putPair(bits & 4095, out + done * groupLetters + 2);
        }
        if (seen >= limit)
            return seen;
    }
    const unsigned bits = bitsOf(in + done * groupBytes, seen);
    putPair(bits >> 12 & 4095, out + done * groupLetters);
    putPlainPair(bits & 4095, out + done * groupLetters + 2);
    ++done;
    return seen
        | encodeLastGroup(in + done * groupBytes, bytes - static_cast<int>(done) * groupBytes,
                          out + done * groupLetters);
}

// What is ored from all groups: of three bytes each, and negative when a letter is none of the alphabet.
struct Decoded {
    int bytes = 0;
    int zeroes = 0; // the upper bit of a byte is set when that was zero
    unsigned letters = 0;

    bool isRight() const { return bytes >= 0 && letters < 0x80 && (zeroes & 0x808080) == 0; }
    bool isAscii() const { return (bytes & 0x808080) == 0; }
};

// Places of a group's letters.
struct Order {
    int first;
    int second;
    int third;
    int fourth;
};

constexpr Order swapped{1, 0, 3, 2};
constexpr Order halfSwapped{1, 0, 2, 3};
constexpr Order plain{0, 1, 2, 3};

inline int bitsOf(const ushort* in, const Order& order)
{
    return values[in[order.first] & 127] * (1 << 18) | values[in[order.second] & 127] * (1 << 12)
        | values[in[order.third] & 127] * (1 << 6) | values[in[order.fourth] & 127];
}

template <typename Unit>
inline void decodeGroup(const ushort* in, Unit* out, const Order& order, Decoded& all)
{
    const int bits = bitsOf(in, order);
    all.bytes |= bits;
    all.zeroes |= (bits - 0x010101) & ~bits;
    all.letters |= unsigned(in[0] | in[1] | in[2] | in[3]);
    out[0] = static_cast<Unit>(bits >> 16 & 255);
    out[1] = static_cast<Unit>(bits >> 8 & 255);
    out[2] = static_cast<Unit>(bits & 255);
}

int paddingOf(const ushort* letters, int length)
{
    if (letters[length - 1] != '=')
        return 0;
    return letters[length - 2] == '=' ? 2 : 1;
}

// The last group, whose padding stands for no bytes.
template <typename Unit> void decodeLastGroup(const ushort* in, int padding, Unit* out, Decoded& all)
{
    std::array<ushort, groupLetters> full{in[0], in[1], in[2], in[3]};
    std::fill(full.end() - padding, full.end(), ushort('A'));
    // The bytes that are not there are none of zero.
    const int behind = (1 << 8 * padding) - 1;
    const int bits = bitsOf(full.data(), plain);
    const int filled = (bits & ~behind) | (0x010101 & behind);
    all.bytes |= bits < 0 ? bits : filled;
    all.zeroes |= (filled - 0x010101) & ~filled;
    all.letters |= unsigned(full[0] | full[1] | full[2] | full[3]);
    for (int i = 0; i < groupBytes - padding; ++i)
        out[i] = static_cast<Unit>(bits >> (16 - 8 * i) & 255);
}

// Decodes what ckEncode() makes of a text, two groups at least; whatever is otherwise is a problem.
template <typename Unit> Decoded decodeLetters(const ushort* in, int length, int padding, Unit* out)
{
    const int groups = length / groupLetters;
    Decoded all;
    std::ptrdiff_t done = 0;
    while (done < groups - 2) {
        const std::ptrdiff_t next = std::min<std::ptrdiff_t>(groups - 2, done + groupsAtOnce);
        for (; done < next; ++done)
            decodeGroup(in + done * groupLetters, out + done * groupBytes, swapped, all);
        if (!all.isRight() || (sizeof(Unit) > 1 && !all.isAscii()))
            return all;
    }
    decodeGroup(in + done * groupLetters, out + done * groupBytes, halfSwapped, all);
    ++done;
    decodeLastGroup(in + done * groupLetters, padding, out + done * groupBytes, all);
    return all;
}

// "ab" becomes "ba" in each of the pairs.
void swapPairs(char* bytes, int length)
{
    for (int i = 0; i + 1 < length; i += 2)
        std::swap(bytes[i], bytes[i + 1]);
}

// A text up to the first zero byte, never null. Qt's decoder takes a byte order mark off, which is a
// character of the text here.
QString textOf(const QByteArray& bytes)
{
    const int length = static_cast<int>(qstrnlen(bytes.constData(), static_cast<uint>(bytes.size())));
    const QString text = QString::fromUtf8(bytes.constData(), length);
    return bytes.startsWith("\xEF\xBB\xBF") ? QChar(QChar::ByteOrderMark) + text : text;
}

// Any text at all.
QString decodeStepByStep(const QString& text)
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

// How long the scrambled text of so many bytes is, with room made for it.
std::size_t reserve(std::string& bytes, int size)
{
    const auto length = static_cast<std::size_t>(size <= groupBytes ? 0 : scrambledLength(size));
    if (bytes.size() < length)
        bytes.resize(length);
    return length;
}

constexpr unsigned asciiEnd = 0x80;
constexpr unsigned bytesEnd = 0x100;

QString encodeWide(const QByteArray& bytes)
{
    if (bytes.size() <= groupBytes)
        return QLatin1String("");
    QString scrambled(scrambledLength(bytes.size()), Qt::Uninitialized);
    encodeBytes(reinterpret_cast<const uchar*>(bytes.constData()), bytes.size(),
                reinterpret_cast<ushort*>(scrambled.data()), bytesEnd);
    return scrambled;
}

} // namespace

QString QuenzoTool::ckEncode(QString text)
{
    if (text.size() <= groupBytes)
        return encodeWide(text.toUtf8());
    QString scrambled(scrambledLength(text.size()), Qt::Uninitialized);
    const unsigned seen =
        encodeBytes(text.utf16(), text.size(), reinterpret_cast<ushort*>(scrambled.data()), asciiEnd);
    return seen < asciiEnd ? scrambled : encodeWide(text.toUtf8());
}

std::size_t Codec::encode(const QString& text, std::string& bytes)
{
    const std::size_t length = reserve(bytes, text.size());
    if (length > 0 && encodeBytes(text.utf16(), text.size(), bytes.data(), asciiEnd) < asciiEnd)
        return length;
    const QByteArray wide = text.toUtf8();
    return encode({wide.constData(), static_cast<std::size_t>(wide.size())}, bytes);
}

std::size_t Codec::encode(std::string_view utf8, std::string& bytes)
{
    const int size = static_cast<int>(utf8.size());
    const std::size_t length = reserve(bytes, size);
    if (length > 0)
        encodeBytes(reinterpret_cast<const uchar*>(utf8.data()), size, bytes.data(), bytesEnd);
    return length;
}

QString QuenzoTool::ckDecode(QString text)
{
    const int length = text.size();
    if (length < 2 * groupLetters || length % groupLetters != 0)
        return decodeStepByStep(text);
    const ushort* const letters = text.utf16();
    const int padding = paddingOf(letters, length);
    const int size = length / groupLetters * groupBytes - padding;
    QString decoded(size, Qt::Uninitialized);
    const Decoded ascii = decodeLetters(letters, length, padding, reinterpret_cast<ushort*>(decoded.data()));
    if (ascii.isRight() && ascii.isAscii())
        return decoded;
    QByteArray bytes(size, Qt::Uninitialized);
    const Decoded wide = decodeLetters(letters, length, padding, reinterpret_cast<uchar*>(bytes.data()));
    return wide.isRight() ? textOf(bytes) : decodeStepByStep(text);
}
