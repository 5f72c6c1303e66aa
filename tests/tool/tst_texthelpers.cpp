// SPDX-License-Identifier: MIT
#include <quenzotool.h>

#include "messagelog.h"
#include "plaintexts.h"

#include <QRandomGenerator>
#include <QTextCodec>
#include <QtTest>

#include <limits>
#include <memory>

namespace {

QString randomText(QRandomGenerator& random, const QString& letters, int longest)
{
    QString text;
    const int size = random.bounded(longest + 1);
    for (int i = 0; i < size; ++i)
        text += letters.at(random.bounded(letters.size()));
    return text;
}

// Whole pairs and lone halves of pairs, wide and narrow letters.
QString mixedLetters()
{
    const ushort units[]{'a', 'b', 0xE9, 0x4E2D, 0x3000, 0xD83D, 0xDE00, 0xD83D, 0xDE00, 0xFEFF};
    return QString::fromUtf16(units, 10);
}

class LocalEncoding {
public:
    explicit LocalEncoding(const QByteArray& name)
    {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(name));
    }
    ~LocalEncoding() { QTextCodec::setCodecForLocale(m_before); }
    LocalEncoding(const LocalEncoding&) = delete;
    LocalEncoding& operator=(const LocalEncoding&) = delete;

private:
    QTextCodec* m_before = QTextCodec::codecForLocale();
};

} // namespace

using Params = QMap<QString, QString>;

class tst_TextHelpers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_log = std::make_unique<MessageLog>(); }
    void cleanup() { QCOMPARE(m_log->takeWarnings(), QStringList()); }

    void cutText_data();
    void cutText();
    void ideographCountsTwoInADoubleByteEncoding();
    void cutEqualsTheLetterByLetterForm_data();
    void cutEqualsTheLetterByLetterForm();

    void escapedBlanks_data();
    void escapedBlanks();
    void escapingTwiceChangesNothing();
    void escapeEqualsTheLetterByLetterForm();

    void urlParams_data();
    void urlParams();
    void urlParamsReplaceTheMap();
    void splitEqualsTheLetterByLetterForm();

    void longTextsComplete_data();
    void longTextsComplete();
    void longQueriesComplete_data();
    void longQueriesComplete();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_TextHelpers::cutText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QString& text, int count, const QString& suffix,
                        const QString& expected) {
        QTest::newRow(name) << text << count << suffix << expected;
    };
    const QString alphabet = QStringLiteral("abcdefghijkl");
    const QString dots = QStringLiteral("...");
    row("one byte under the budget", alphabet, 10, dots, QStringLiteral("abcdef..."));
    row("equal to the budget", alphabet, 12, dots, alphabet);
    row("below the budget", alphabet, 13, dots, alphabet);
    row("one over", alphabet, 11, dots, QStringLiteral("abcdefg..."));
    row("suffix fills the budget", alphabet, 3, dots, alphabet);
    row("suffix above the budget", alphabet, 2, dots, alphabet);
    row("room of one", alphabet, 4, dots, dots);
    row("room of two", alphabet, 5, dots, QStringLiteral("a..."));
    row("no suffix", alphabet, 5, QString(), QStringLiteral("abcd"));
    row("budget of one, no suffix", alphabet, 1, QString(), QString());
    row("budget of zero", alphabet, 0, QString(), alphabet);
    row("negative budget", alphabet, -5, QString(), alphabet);
    row("least budget", alphabet, std::numeric_limits<int>::min(), dots, alphabet);
    row("least budget, no suffix", alphabet, std::numeric_limits<int>::min(), QString(), alphabet);
    row("negative budget, empty text", QString(), -5, dots, QString());
    row("empty text", QString(), 0, dots, QString());
    // Three bytes a letter: 6 is neither room - 1 nor room of the first, and both of the second.
    row("wide letters hit room", QStringLiteral("中中中中"), 9, dots, QStringLiteral("中中..."));
    row("wide letters hit room - 1", QStringLiteral("中中中中"), 10, dots, QStringLiteral("中中..."));
    row("wide letters step over both", QStringLiteral("中中中中"), 11, dots, QString());
    row("pairs are never halved", QStringLiteral("\U0001F600\U0001F600\U0001F600"), 8, dots,
        QStringLiteral("\U0001F600..."));
    row("wide suffix", alphabet, 10, QStringLiteral("中"), QStringLiteral("abcdef中"));
}

void tst_TextHelpers::cutText()
{
    QFETCH(const QString, text);
    QFETCH(const int, count);
    QFETCH(const QString, suffix);
    QFETCH(const QString, expected);
    QCOMPARE(QuenzoTool::getStrInMaxCount(text, count, suffix), expected);
}

void tst_TextHelpers::ideographCountsTwoInADoubleByteEncoding()
{
    const LocalEncoding encoding("GBK");
    QCOMPARE(QuenzoTool::showLength(QStringLiteral("a中文")), 5);
    QCOMPARE(QuenzoTool::getStrInMaxCount(QStringLiteral("中中中中"), 7, QStringLiteral("...")),
             QStringLiteral("中中..."));
}

void tst_TextHelpers::cutEqualsTheLetterByLetterForm_data()
{
    QTest::addColumn<QByteArray>("encoding");
    for (const char* encoding : {"UTF-8", "GB18030", "GBK", "Shift_JIS", "ISO-8859-1"})
        QTest::newRow(encoding) << QByteArray(encoding);
}

void tst_TextHelpers::cutEqualsTheLetterByLetterForm()
{
    QFETCH(const QByteArray, encoding);
    const LocalEncoding local(encoding);
    QRandomGenerator random(2);
    for (int round = 0; round < 20000; ++round) {
        const QString text = randomText(random, mixedLetters(), 24);
        const QString suffix = randomText(random, mixedLetters(), 4);
        const int count = random.bounded(-1, 80);
        const QString cut = QuenzoTool::getStrInMaxCount(text, count, suffix);
        const QString expected = PlainTexts::cut(text, count, suffix);
        if (cut != expected) {
            const QByteArray what =
                QStringLiteral("round %1: \"%2\", %3, \"%4\": \"%5\" instead of \"%6\"")
                    .arg(QString::number(round), text, QString::number(count), suffix, cut, expected)
                    .toUtf8();
            QFAIL(what.constData());
        }
    }
}

void tst_TextHelpers::escapedBlanks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QString& text, const QString& expected) {
        QTest::newRow(name) << text << expected;
    };
    row("empty", QString(), QString());
    row("seven letters", QStringLiteral("abc def"), QStringLiteral("abc def"));
    row("nine letters, the last a blank", QStringLiteral("12345678 "), QStringLiteral("12345678 "));
    row("ten letters, the last a blank", QStringLiteral("123456789 "), QStringLiteral("123456789\\ "));
    row("blanks at 4, 10 and 12", QStringLiteral("0123 56789 a b"), QStringLiteral("0123 56789\\ a\\ b"));
    row("escaped already", QStringLiteral("0123456789\\ a"), QStringLiteral("0123456789\\ a"));
    row("backslash at the ninth letter", QStringLiteral("01234567\\ a"), QStringLiteral("01234567\\ a"));
    row("two blanks", QStringLiteral("0123456789  a"), QStringLiteral("0123456789\\ \\ a"));
    row("blank behind two backslashes", QStringLiteral("0123456789\\\\ a"),
        QStringLiteral("0123456789\\\\ a"));
    row("tab, line feed, no-break and ideographic space", QStringLiteral("0123456789\t\n\u00A0\u3000"),
        QStringLiteral("0123456789\\\t\\\n\\\u00A0\\\u3000"));
    row("ends in a blank", QStringLiteral("0123456789 "), QStringLiteral("0123456789\\ "));
}

void tst_TextHelpers::escapedBlanks()
{
    QFETCH(const QString, text);
    QFETCH(const QString, expected);
    QCOMPARE(QuenzoTool::blankReplace(text), expected);
}

void tst_TextHelpers::escapingTwiceChangesNothing()
{
    const QString once = QuenzoTool::blankReplace(QStringLiteral("0123 56789 a b"));
    QCOMPARE(once.size(), 16);
    QCOMPARE(QuenzoTool::blankReplace(once), once);
}

void tst_TextHelpers::escapeEqualsTheLetterByLetterForm()
{
    QRandomGenerator random(3);
    const QString letters = mixedLetters() + QStringLiteral("  \\\\\t\u00A0");
    for (int round = 0; round < 20000; ++round) {
        const QString text = randomText(random, letters, 40);
        QCOMPARE(QuenzoTool::blankReplace(text), PlainTexts::escaped(text));
    }
}

void tst_TextHelpers::urlParams_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<Params>("expected");
    const auto row = [](const QString& url, const Params& expected) {
        QTest::newRow(qPrintable(url)) << url << expected;
    };
    const auto text = [](const char* latin) { return QString::fromLatin1(latin); };
    row(text("a.php?x=1&y=2&x=3"), {{text("x"), text("3")}, {text("y"), text("2")}});
    row(text("a.php?flag&x=1"), {{text("flag&x"), text("1")}, {text("x"), text("1")}});
    row(text("a.php?x=1&flag"), {{text("x"), text("1")}});
    row(text("a.php"), {});
    row(text(""), {});
    row(text("a.php?"), {});
    row(text("a.php?flag"), {});
    row(text("a.php?flag&other"), {});
    row(text("x=1&y=2"), {});
    row(text("?x="), {{text("x"), text("")}});
    row(text("?=1"), {{text(""), text("1")}});
    row(text("?="), {{text(""), text("")}});
    row(text("?x=1&"), {{text("x"), text("1")}});
    row(text("?&x=1"), {{text("&x"), text("1")}, {text("x"), text("1")}});
    row(text("?x=1=2&y==3"), {{text("x"), text("1=2")}, {text("y"), text("=3")}});
    row(text("?x=1?y=2"), {{text("x"), text("1?y=2")}});
    row(text("?x=a%20b+c#part&y=1"), {{text("x"), text("a%20b+c#part")}, {text("y"), text("1")}});
    row(text("? x = 1 "), {{text(" x "), text(" 1 ")}});
    row(text("?f&g&x=1&y=2"),
        {{text("f&g&x"), text("1&y=2")},
         {text("g&x"), text("1&y=2")},
         {text("x"), text("1")},
         {text("y"), text("2")}});
}

void tst_TextHelpers::urlParams()
{
    QFETCH(const QString, url);
    QFETCH(const Params, expected);
    Params params;
    QuenzoTool::getUrlParam(url, params);
    QCOMPARE(params, expected);
}

void tst_TextHelpers::urlParamsReplaceTheMap()
{
    Params params{{QStringLiteral("before"), QStringLiteral("1")}};
    QuenzoTool::getUrlParam(QStringLiteral("a.php"), params);
    QCOMPARE(params, Params());
    params.insert(QStringLiteral("before"), QStringLiteral("1"));
    QuenzoTool::getUrlParam(QStringLiteral("a.php?x=1"), params);
    QCOMPARE(params.keys(), QStringList{QStringLiteral("x")});
}

void tst_TextHelpers::splitEqualsTheLetterByLetterForm()
{
    QRandomGenerator random(4);
    for (int round = 0; round < 50000; ++round) {
        const QString url = randomText(random, QStringLiteral("ab=&=&?#é"), 30);
        Params params;
        QuenzoTool::getUrlParam(url, params);
        const Params expected = PlainTexts::params(url);
        if (params != expected)
            QFAIL(qPrintable(url));
    }
}

// Quadratic forms take minutes to hours on these.
void tst_TextHelpers::longTextsComplete_data()
{
    QTest::addColumn<QString>("piece");
    QTest::newRow("letters") << QStringLiteral("a");
    QTest::newRow("blanks") << QStringLiteral(" ");
    QTest::newRow("wide letters") << QStringLiteral("中");
    QTest::newRow("pairs") << QStringLiteral("\U0001F600");
    QTest::newRow("lone halves") << QString(QChar(0xD83D));
    QTest::newRow("escaped blanks") << QStringLiteral("\\ ");
}

void tst_TextHelpers::longTextsComplete()
{
    QFETCH(const QString, piece);
    constexpr int size = 1000000;
    const QString text = piece.repeated(size / piece.size());

    const QString escaped = QuenzoTool::blankReplace(text);
    const bool grows = piece == QLatin1String(" ");
    QCOMPARE(escaped.size(), grows ? 2 * size - 9 : size);

    const int bytes = QuenzoTool::showLength(text);
    for (const int count : {bytes - 1, bytes / 2, 10}) {
        const QString cut = QuenzoTool::getStrInMaxCount(text, count, QStringLiteral(">"));
        if (!cut.isEmpty()) {
            QVERIFY(cut.endsWith(QLatin1Char('>')));
            QVERIFY(QuenzoTool::showLength(cut) <= count);
            QVERIFY(text.startsWith(cut.leftRef(cut.size() - 1)));
        }
    }
}

void tst_TextHelpers::longQueriesComplete_data()
{
    QTest::addColumn<QString>("piece");
    QTest::addColumn<int>("entries");
    QTest::newRow("one pair again and again") << QStringLiteral("x=1&") << 1;
    QTest::newRow("empty pairs") << QStringLiteral("=&") << 1;
    QTest::newRow("flags only") << QStringLiteral("&") << 0;
    QTest::newRow("equals signs") << QStringLiteral("=") << 1;
    QTest::newRow("glued pieces, whose values run to the end") << QStringLiteral("&&=") << 3;
    QTest::newRow("no query") << QStringLiteral("?") << 0;
}

void tst_TextHelpers::longQueriesComplete()
{
    QFETCH(const QString, piece);
    QFETCH(const int, entries);
    constexpr int size = 1000000;
    Params params;
    QuenzoTool::getUrlParam(QLatin1Char('?') + piece.repeated(size / piece.size()), params);
    QCOMPARE(params.size(), entries);
}

QTEST_GUILESS_MAIN(tst_TextHelpers)
#include "tst_texthelpers.moc"
