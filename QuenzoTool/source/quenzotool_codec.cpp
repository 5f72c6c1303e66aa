// SPDX-License-Identifier: MIT
#include "codec.h"
#include "quenzotool.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace {

// The last characters keep their place. Both functions agree on six: the Base64 form is never of odd length,
// and a text too short for decoding to choose otherwise has nothing in front of its tail.
constexpr int tailLength = 6;

// Base64 has groups of three bytes in four characters. Those in front of the tail have both pairs swapped; it
// reaches into the last group but one.
constexpr int groupBytes = 3;
constexpr int groupLetters = 4;

// So many groups are taken before looking whether all was well.
constexpr int groupsAtOnce = 64;

constexpr std::string_view alphabet("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");

constexpr uchar letterOf(std::size_t sixBits)
{
    return static_cast<uchar>(alphabet[sixBits]);
}

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

// The bytes of a group, and whatever they have beyond.
template <typename Unit> inline unsigned bitsOf(const Unit* in, unsigned& seen)
{
    seen |= unsigned(in[0]) | unsigned(in[1]) | unsigned(in[2]);
    return unsigned(in[0]) << 16 | unsigned(in[1]) << 8 | unsigned(in[2]);
}

template <typename Letter> inline void putGroup(unsigned bits, Letter* out)
{
    putPair(bits >> 12 & 4095, out);
    putPair(bits & 4095, out + 2);
}

// Encodes four bytes or more. What is ored from all bytes tells whether they were bytes; it may come early
// when they were not below the limit.
template <typename Unit, typename Letter>
unsigned encodeBytes(const Unit* in, int bytes, Letter* out, unsigned limit)
{
    unsigned seen = 0;
    for (int left = bytes / groupBytes; left > 0; left -= groupsAtOnce) {
        for (int i = std::min(left, groupsAtOnce); i > 0; --i) {
            putGroup(bitsOf(in, seen), out);
            in += groupBytes;
            out += groupLetters;
        }
        if (seen >= limit)
            return seen;
    }
    const int rest = bytes % groupBytes;
    if (rest != 0) {
        const std::array<Unit, groupBytes> last{in[0], rest == 2 ? in[1] : Unit(0), 0};
        putGroup(bitsOf(last.data(), seen), out);
        out += groupLetters;
    }
    // The tail's pairs back.
    for (int i = 2; i <= tailLength; i += 2)
        std::swap(out[-i], out[1 - i]);
    if (rest != 0)
        out[-1] = '=';
    if (rest == 1)
        out[-2] = '=';
    return seen;
}

// The three bytes of a group as they are stored, all at once: each in a place as wide as the result's units,
// and in a fourth one whether a letter was none of the alphabet.
template <typename Unit> using Places = std::conditional_t<sizeof(Unit) == 1, quint32, quint64>;

constexpr int wrongPlace = 3;

template <typename Unit> constexpr Places<Unit> atPlace(int place, unsigned byte)
{
    constexpr int bits = 8 * sizeof(Unit);
    return Places<Unit>(byte) << bits * (Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? place : wrongPlace - place);
}

// What each letter gives to its group, as the first to the fourth letter there.
template <typename Unit> using Shares = std::array<std::array<Places<Unit>, 256>, groupLetters>;

template <typename Unit> constexpr Shares<Unit> makeShares()
{
    Shares<Unit> shares{};
    for (std::size_t letter = 0; letter < groupLetters; ++letter) {
        for (Places<Unit>& share : shares[letter])
            share = atPlace<Unit>(wrongPlace, 0x80);
        for (unsigned i = 0; i < alphabet.size(); ++i) {
            const unsigned bits = i << (18 - 6 * letter);
            shares[letter][letterOf(i)] = atPlace<Unit>(0, bits >> 16) | atPlace<Unit>(1, bits >> 8 & 255)
                | atPlace<Unit>(2, bits & 255);
        }
    }
    return shares;
}

template <typename Unit> constexpr Shares<Unit> shares = makeShares<Unit>();

template <typename Unit> constexpr Places<Unit> inBytes(unsigned byte)
{
    return atPlace<Unit>(0, byte) | atPlace<Unit>(1, byte) | atPlace<Unit>(2, byte);
}

// What is ored from all groups, and from their letters.
template <typename Unit> struct Seen {
    Places<Unit> places = 0;
    ushort letters = 0;

    // Bytes may be any; units of a text are to be ASCII without a zero.
    bool isRight() const
    {
        constexpr bool isText = sizeof(Unit) > 1;
        constexpr Places<Unit> wrong = atPlace<Unit>(wrongPlace, 0x80) | (isText ? inBytes<Unit>(0x80) : 0);
        return letters < 0x100 && (places & wrong) == 0;
    }
};

// Both pairs are swapped. A unit behind the group's three is written, too.
template <typename Unit> inline void decodeGroup(const ushort* in, Unit* out, Seen<Unit>& seen)
{
    const Places<Unit> group = shares<Unit>[0][uchar(in[1])] | shares<Unit>[1][uchar(in[0])]
        | shares<Unit>[2][uchar(in[3])] | shares<Unit>[3][uchar(in[2])];
    std::memcpy(out, &group, sizeof(group));
    // One less than zero has every bit.
    seen.places |= group | (group - inBytes<Unit>(sizeof(Unit) > 1 ? 1 : 0));
    seen.letters = static_cast<ushort>(seen.letters | in[0] | in[1] | in[2] | in[3]);
}

int paddingOf(const ushort* letters, int length)
{
    if (letters[length - 1] != '=')
        return 0;
    return letters[length - 2] == '=' ? 2 : 1;
}

// Decodes what ckEncode() makes, two groups at least; false for whatever is otherwise.
template <typename Unit> bool decodeLetters(const ushort* in, int length, int padding, Unit* out)
{
    Seen<Unit> seen;
    for (int left = length / groupLetters - 2; left > 0; left -= groupsAtOnce) {
        for (int i = std::min(left, groupsAtOnce); i > 0; --i) {
            decodeGroup(in, out, seen);
            in += groupLetters;
            out += groupBytes;
        }
        if (!seen.isRight())
            return false;
    }
    // The tail as if it had been swapped, and padded with a letter whose bytes are right in every text.
    std::array<ushort, 2 * groupLetters> last{in[0], in[1], in[3], in[2], in[5], in[4], in[7], in[6]};
    if (padding > 0)
        last[6] = 'Q';
    if (padding > 1)
        last[7] = 'Q';
    std::array<Unit, groupBytes + 1> lastBytes;
    decodeGroup(last.data(), out, seen);
    decodeGroup(last.data() + groupLetters, lastBytes.data(), seen);
    std::copy_n(lastBytes.begin(), groupBytes - padding, out + groupBytes);
    return seen.isRight();
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
    if (decodeLetters(letters, length, padding, reinterpret_cast<ushort*>(decoded.data())))
        return decoded;
    QByteArray bytes(size, Qt::Uninitialized);
    if (decodeLetters(letters, length, padding, reinterpret_cast<uchar*>(bytes.data())))
        return textOf(bytes);
    return decodeStepByStep(text);
}
