// SPDX-License-Identifier: MIT
#include "plaincodec.h"

#include <quenzotool.h>

#include <QRandomGenerator>
#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

namespace {

QString randomText(QRandomGenerator& random, int length)
{
    static const QString alphabet = QStringLiteral("aZ09 '\"%\\\n\u00e4\u4e2d\u6587\ufeff\U0001F600=+/-");
    QString text;
    while (text.size() < length) {
        const QChar letter = alphabet.at(random.bounded(alphabet.size()));
        if (letter.isHighSurrogate())
            text += QStringLiteral("\U0001F600");
        else if (!letter.isLowSurrogate())
            text += letter;
    }
    return text;
}

} // namespace

using PlainCodec::plainlyDecoded;
using PlainCodec::plainlyEncoded;
using PlainCodec::plainlySwapped;

class tst_Codec : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void knownTextsEncode_data();
    void knownTextsEncode();
    void knownTextsDecode_data();
    void knownTextsDecode();
    void everyLengthEncodesAndComesBack_data();
    void everyLengthEncodesAndComesBack();
    void everyLengthWithOneFlawDecodesAsThePlainFormDoes_data();
    void everyLengthWithOneFlawDecodesAsThePlainFormDoes();
    void everyCharacterInEveryPlaceDecodesAsThePlainFormDoes();
    void everyPaddingDecodesAsThePlainFormDoes();
    void textsUnderFourBytesEncodeToAnEmptyTextThatIsNotNull_data();
    void textsUnderFourBytesEncodeToAnEmptyTextThatIsNotNull();
    void decodedTextIsNeverNull();
    void byteOrderMarksSurvive();
    void aZeroByteEndsADecodedText();
    void malformedTextDecodesAsThePlainFormDoes_data();
    void malformedTextDecodesAsThePlainFormDoes();
    void randomTextsComeBack();
    void randomInputDecodesAsThePlainFormDoes();
    void aTextOfSixteenMebibytesComesBack();
    void severalThreadsMayEncodeAtOnce();
};

void tst_Codec::knownTextsEncode_data()
{
    QTest::addColumn<QString>("plain");
    QTest::addColumn<QString>("scrambled");
    QTest::newRow("hello") << QStringLiteral("hello world") << QStringLiteral("GasVGbg82d9ybGQ=");
    QTest::newRow("first two swapped") << QStringLiteral("abcd") << QStringLiteral("WYJjZA==");
    QTest::newRow("five bytes") << QStringLiteral("abcde") << QStringLiteral("WYJjZGU=");
    QTest::newRow("six bytes") << QStringLiteral("abcdef") << QStringLiteral("WYJjZGVm");
    QTest::newRow("chinese") << QStringLiteral("\u4e2d\u6587\u5b57\u7b26")
                             << QStringLiteral("L5tip5Haa52X56ym");
}

void tst_Codec::knownTextsEncode()
{
    QFETCH(const QString, plain);
    QFETCH(const QString, scrambled);
    QCOMPARE(QuenzoTool::ckEncode(plain), scrambled);
    QCOMPARE(QuenzoTool::ckDecode(scrambled), plain);
}

void tst_Codec::knownTextsDecode_data()
{
    QTest::addColumn<QString>("scrambled");
    QTest::addColumn<QString>("plain");
    QTest::newRow("under six characters") << QStringLiteral("YWI=") << QStringLiteral("ab");
    QTest::newRow("six characters") << QStringLiteral("YWJjZA") << QStringLiteral("abcd");
    QTest::newRow("one character") << QStringLiteral("Y") << QString();
    QTest::newRow("nothing") << QString() << QString();
    // Seven: one character in front of the tail is paired with the tail's first, which then stands twice.
    QTest::newRow("odd front") << QStringLiteral("aYGVsbG")
                               << QString::fromUtf8(QByteArray::fromBase64("YaYGVsbG"));
    QTest::newRow("skipped characters") << QStringLiteral("YW*JjZ") << QStringLiteral("abc");
}

void tst_Codec::knownTextsDecode()
{
    QFETCH(const QString, scrambled);
    QFETCH(const QString, plain);
    QCOMPARE(QuenzoTool::ckDecode(scrambled), plain);
}

void tst_Codec::everyLengthEncodesAndComesBack_data()
{
    QTest::addColumn<QString>("letters");
    QTest::newRow("ascii") << QStringLiteral("x~!aZ09 \x7f");
    QTest::newRow("chinese") << QStringLiteral("\u4e2d\u6587").repeated(5);
    QTest::newRow("latin") << QStringLiteral("a\u00e4\u00ff\u0100");
    QTest::newRow("emoji") << QStringLiteral("\U0001F600");
    QTest::newRow("wide at the end") << QStringLiteral("0123456789abcdefghijklmnopqrstuvwxyz").repeated(20)
            + QStringLiteral("\u4e2d");
}

void tst_Codec::everyLengthEncodesAndComesBack()
{
    QFETCH(const QString, letters);
    constexpr int longest = 4096;
    // What a character does to the last letters; those before are the same in every longer text.
    constexpr int reach = 30;
    const QString all = letters.repeated(longest / letters.size() + 1);
    const QByteArray front = plainlySwapped(all.toUtf8().toBase64(), 6, false);
    for (int length = 0; length <= longest; ++length) {
        const QString text = all.left(length);
        const QByteArray bytes = text.toUtf8();
        const QByteArray base64 = bytes.toBase64();
        const int shared = qMax(0, base64.size() - reach);
        const QByteArray last = PlainCodec::untilZero(plainlySwapped(base64.mid(shared), 6, false));
        const QString scrambled = QuenzoTool::ckEncode(text);
        QCOMPARE(scrambled, QString::fromLatin1(front.left(shared) + last));
        QCOMPARE(QuenzoTool::ckDecode(scrambled), bytes.size() < 4 ? QString() : QString::fromUtf8(bytes));
    }
}

void tst_Codec::everyLengthWithOneFlawDecodesAsThePlainFormDoes_data()
{
    QTest::addColumn<QString>("flaw");
    QTest::newRow("padding") << QStringLiteral("=");
    QTest::newRow("blank") << QStringLiteral(" ");
    QTest::newRow("no letter of the alphabet") << QStringLiteral("*");
    QTest::newRow("null character") << QString(QChar(QChar::Null));
    QTest::newRow("not ascii") << QStringLiteral("\u00c1");
    QTest::newRow("like a letter but for its upper byte") << QString(QChar(0x4e41));
    QTest::newRow("half a surrogate pair") << QString(QChar(0xd800));
    QTest::newRow("two letters") << QStringLiteral("AA");
    QTest::newRow("nothing") << QString();
}

void tst_Codec::everyLengthWithOneFlawDecodesAsThePlainFormDoes()
{
    QFETCH(const QString, flaw);
    QRandomGenerator random(20260101);
    const QString plain = QStringLiteral("0123456789abcdefghijklmnopqrstuvwxyz~ ").repeated(120);
    for (int length = 4; length <= 4096; ++length) {
        const QString scrambled = QuenzoTool::ckEncode(plain.left(length));
        const QVector<int> places{0,
                                  1,
                                  scrambled.size() - 1,
                                  scrambled.size() - 2,
                                  scrambled.size() - 3,
                                  scrambled.size() - 7,
                                  random.bounded(scrambled.size())};
        // Long texts take turns.
        for (int i = 0; i < places.size(); ++i) {
            const int place = places.at(i);
            if (place < 0 || (length > 200 && i != length % places.size()))
                continue;
            QString flawed = scrambled;
            flawed.replace(place, 1, flaw);
            QCOMPARE(QuenzoTool::ckDecode(flawed), QString::fromUtf8(plainlyDecoded(flawed)));
        }
    }
}

void tst_Codec::everyCharacterInEveryPlaceDecodesAsThePlainFormDoes()
{
    QVector<QChar> characters;
    for (int i = 0; i < 0x180; ++i)
        characters.append(QChar(i));
    // Each is a letter of the alphabet but for its upper byte.
    for (int upper = 1; upper < 0x100; ++upper)
        characters.append(QChar(upper << 8 | 'Q'));
    // ASCII, and UTF-8 beyond it.
    for (const QString& plain :
         {QStringLiteral("hello, world"), QStringLiteral("\u4e2d\u6587\u5b57\u7b26")}) {
        const QString scrambled = QuenzoTool::ckEncode(plain);
        for (int place = 0; place < scrambled.size(); ++place) {
            for (const QChar character : qAsConst(characters)) {
                QString text = scrambled;
                text[place] = character;
                QCOMPARE(QuenzoTool::ckDecode(text), PlainCodec::textOf(plainlyDecoded(text)));
            }
        }
    }
}

void tst_Codec::everyPaddingDecodesAsThePlainFormDoes()
{
    // Bits behind the last byte, and padding that is longer or shorter than its group.
    for (const char* tail :
         {"AAAA", "AAA=", "AA==", "A===", "====", "AAB=", "AB==", "//==", "//8=", "=A==", "A=A="}) {
        for (const char* front : {"", "aGVsbG8g", "4Lit5paHaGVsbG8g", "AAAAAAAA"}) {
            const QString text = QLatin1String(front) + QLatin1String(tail);
            QCOMPARE(QuenzoTool::ckDecode(text), QString::fromUtf8(plainlyDecoded(text)));
        }
    }
}

void tst_Codec::textsUnderFourBytesEncodeToAnEmptyTextThatIsNotNull_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("null") << QString();
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("one") << QStringLiteral("a");
    QTest::newRow("two") << QStringLiteral("ab");
    QTest::newRow("three") << QStringLiteral("abc");
    QTest::newRow("one wide character") << QStringLiteral("\u4e2d");
}

void tst_Codec::textsUnderFourBytesEncodeToAnEmptyTextThatIsNotNull()
{
    QFETCH(const QString, text);
    const QString scrambled = QuenzoTool::ckEncode(text);
    QVERIFY(scrambled.isEmpty());
    QVERIFY(!scrambled.isNull());
}

void tst_Codec::decodedTextIsNeverNull()
{
    for (const QString& text : {QString(), QStringLiteral("="), QStringLiteral("****************")}) {
        const QString plain = QuenzoTool::ckDecode(text);
        QVERIFY(plain.isEmpty());
        QVERIFY(!plain.isNull());
    }
}

void tst_Codec::byteOrderMarksSurvive()
{
    for (const QString& text : {QStringLiteral("\ufeffabc"), QStringLiteral("\ufeff\ufeff"),
                                QStringLiteral("\ufeff\ufeff\ufeffx"), QStringLiteral("ab\ufeff")})
        QCOMPARE(QuenzoTool::ckDecode(QuenzoTool::ckEncode(text)), text);
}

void tst_Codec::aZeroByteEndsADecodedText()
{
    const QString text = QStringLiteral("before") + QChar(QChar::Null) + QStringLiteral("after");
    QCOMPARE(QuenzoTool::ckDecode(QuenzoTool::ckEncode(text)), QStringLiteral("before"));
}

void tst_Codec::malformedTextDecodesAsThePlainFormDoes_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain words") << QStringLiteral("this was never encoded");
    QTest::newRow("odd length") << QStringLiteral("GasVGbg82d9ybGQ");
    QTest::newRow("odd, short") << QStringLiteral("GasVGbg");
    QTest::newRow("not ascii") << QStringLiteral("\u4e2d\u6587\u4e2d\u6587\u4e2d\u6587");
    QTest::newRow("one wide") << QStringLiteral("\u4e2d");
    QTest::newRow("two wide") << QStringLiteral("\u4e2d\u6587");
    QTest::newRow("lone surrogate") << QStringLiteral("abcdefgh") + QChar(0xD800);
    QTest::newRow("padding only") << QStringLiteral("====================");
    QTest::newRow("blanks and breaks") << QStringLiteral("Gas VGb\ng82d\t9ybGQ=");
    QTest::newRow("zero inside") << QStringLiteral("GasVGb") + QChar(QChar::Null)
            + QStringLiteral("82d9ybGQ=");
    QTest::newRow("not UTF-8 inside") << QStringLiteral("//79/Pv6+fj39vX08/Lx8A==");
}

void tst_Codec::malformedTextDecodesAsThePlainFormDoes()
{
    QFETCH(const QString, text);
    QCOMPARE(QuenzoTool::ckDecode(text), QString::fromUtf8(plainlyDecoded(text)));
}

void tst_Codec::randomTextsComeBack()
{
    QRandomGenerator random(20150528);
    for (int i = 0; i < 20000; ++i) {
        const QString text = randomText(random, random.bounded(300));
        const QString scrambled = QuenzoTool::ckEncode(text);
        QCOMPARE(scrambled, plainlyEncoded(text));
        if (text.toUtf8().size() >= 4)
            QCOMPARE(QuenzoTool::ckDecode(scrambled), text);
    }
}

void tst_Codec::randomInputDecodesAsThePlainFormDoes()
{
    QRandomGenerator random(2028);
    for (int i = 0; i < 20000; ++i) {
        const QString text = randomText(random, random.bounded(64));
        QCOMPARE(QuenzoTool::ckDecode(text), PlainCodec::textOf(plainlyDecoded(text)));
    }
}

void tst_Codec::aTextOfSixteenMebibytesComesBack()
{
    const QString text = QStringLiteral("0123456789abcde\u4e2d").repeated(1024 * 1024);
    QVERIFY(QuenzoTool::ckDecode(QuenzoTool::ckEncode(text)) == text);
}

void tst_Codec::severalThreadsMayEncodeAtOnce()
{
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&wrong, i] {
            const QString text = QStringLiteral("text of thread %1").arg(i);
            for (int k = 0; k < 5000; ++k)
                wrong += QuenzoTool::ckDecode(QuenzoTool::ckEncode(text)) == text ? 0 : 1;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_Codec)
#include "tst_codec.moc"
