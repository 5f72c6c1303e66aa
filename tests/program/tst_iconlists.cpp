// SPDX-License-Identifier: MIT
#include "iconscene.h"
#include "jsonschema.h"

#include <QJsonDocument>
#include <QtTest>

// The lists of channels that the command icons takes, and their schema.
class tst_IconLists : public QObject, private IconScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { prepare(); }

    void listMistakesAreNamedAndNothingIsTouched_data();
    void listMistakesAreNamedAndNothingIsTouched();
    void schemaForbidsTheSameMistakes_data() { listMistakesAreNamedAndNothingIsTouched_data(); }
    void schemaForbidsTheSameMistakes();
    void schemaAllowsWhatIsTaken_data();
    void schemaAllowsWhatIsTaken();
    void allMistakesAreNamedAtOnce();

private:
    QByteArray verdictOn(const QByteArray& list)
    {
        return m_schema.verdictOn(QJsonDocument::fromJson(list).toJson(QJsonDocument::Compact));
    }

    JsonSchema m_schema{QStringLiteral("channels.schema.json")};
};

void tst_IconLists::listMistakesAreNamedAndNothingIsTouched_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QByteArray>("error");
    const auto row = [](const char* title, const QByteArray& list, const char* error) {
        QTest::newRow(title) << list << QByteArray(error);
    };
    row("no JSON", "[\n  {\"folder\": }\n]",
        "channels.json is not JSON: object is missing after a comma at line 2, column 15\n");
    row("cut off", R"([{"folder": "a"})", "channels.json is not JSON");
    row("empty file", "", "channels.json is not JSON");
    row("object", R"({"folder": "a"})", "does not hold an array");
    row("no object", R"([{"folder": "a"}, "b"])", "channel 2: is not an object");
    row("unknown key", R"([{"folder": "a", "marks": "red"}])", "channel 1 (\"a\"): unknown key \"marks\"");
    row("no folder", R"([{"name": "A"}])", "channel 1: \"folder\" is missing or empty");
    row("empty folder", R"([{"folder": ""}])", "\"folder\" is missing or empty");
    row("folder a number", R"([{"folder": 7}])", "\"folder\" is not a text");
    row("folder with a slash", R"([{"folder": "a/b"}])", "\"folder\" holds a slash");
    row("absolute folder", R"([{"folder": "/a"}])", "\"folder\" holds a slash");
    row("folder with a backslash", R"([{"folder": "a\\b"}])", "\"folder\" holds a slash, a backslash");
    row("folder with a line break", R"([{"folder": "a\nb"}])", "control character");
    row("folder above", R"([{"folder": ".."}])", "is \"..\", which is no name of a folder");
    row("folder itself", R"([{"folder": "."}])", "is \".\", which is no name of a folder");
    row("folder and above", R"([{"folder": "../out"}])", "\"folder\" holds a slash");
    row("long folder", R"([{"folder": ")" + QByteArray(256, 'a') + R"("}])", "is longer than 255 bytes");
    row("folder with half a pair", R"([{"folder": "\ud800"}])", "\"folder\" holds half of a surrogate pair");
    row("mark with half a pair", R"([{"folder": "a", "mark": "b\udc00"}])", "\"mark\" holds half of a");
    row("mark above", R"([{"folder": "a", "mark": ".."}])", "\"mark\" is \"..\"");
    row("mark with a slash", R"([{"folder": "a", "mark": "red/icon"}])", "\"mark\" holds a slash");
    row("empty mark", R"([{"folder": "a", "mark": ""}])", "\"mark\" is missing or empty");
    row("mark a truth value", R"([{"folder": "a", "mark": false}])", "\"mark\" is not a text");
    row("name a list", R"([{"folder": "a", "name": ["A"]}])", "\"name\" is not a text");
    row("unknown corner", R"([{"folder": "a", "corner": "top-left"}])", "\"corner\" is none of left-top, ");
    row("mistyped corner", R"([{"folder": "a", "corner": "left-tpo"}])", "did you mean 'left-top'?");
    row("corner too large", R"([{"folder": "a", "corner": 5}])", "\"corner\" is none of");
    row("negative corner", R"([{"folder": "a", "corner": -1}])", "\"corner\" is none of");
    row("broken corner", R"([{"folder": "a", "corner": 1.5}])", "\"corner\" is none of");
    row("corner null", R"([{"folder": "a", "corner": null}])", "\"corner\" is none of");
    row("x a text", R"([{"folder": "a", "x": "7"}])", "\"x\" is not a whole number");
    row("broken y", R"([{"folder": "a", "y": -0.5}])", "\"y\" is not a whole number");
    row("y too large", R"([{"folder": "a", "y": 2147483648}])", "\"y\" is not a whole number");
}

void tst_IconLists::listMistakesAreNamedAndNothingIsTouched()
{
    QFETCH(const QByteArray, list);
    QFETCH(const QByteArray, error);
    write(out(QStringLiteral("kept")), "kept");
    const Ended ended = icons(list);
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains(error), ended.error.constData());
    QCOMPARE(ended.error.count("quenzo: "), 1);
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(filesBelow(out()), words("kept"));
}

void tst_IconLists::schemaForbidsTheSameMistakes()
{
    QFETCH(const QByteArray, list);
    // What no schema can tell: texts that are no JSON, and names that are no Unicode.
    if (QJsonDocument::fromJson(list).isNull() || list.contains("\\ud"))
        return;
    const QByteArray verdict = verdictOn(list);
    QVERIFY2(verdict.startsWith('$'), verdict.constData());
}

void tst_IconLists::schemaAllowsWhatIsTaken_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::newRow("empty") << QByteArray("[]");
    QTest::newRow("sample") << contentOf(QStringLiteral(SOURCE_DIR "/host/sample/icons/channels.json"));
    QTest::newRow("all keys") << QByteArray(
        R"([{"folder": "a", "name": "A", "mark": "red", "corner": "right-top", "x": 60, "y": -7}])");
    QTest::newRow("null") << QByteArray(R"([{"folder": "a", "name": null, "mark": null}])");
    QTest::newRow("dots in names") << QByteArray(R"([{"folder": "..a", "mark": "None"}, {"folder": "..."}])");
    for (const char* corner : {"\"default\"", "0", "4", "\"0\"", "\"4\""})
        QTest::newRow(corner) << QByteArray(R"([{"folder": "a", "corner": )") + corner + "}]";
}

void tst_IconLists::schemaAllowsWhatIsTaken()
{
    QFETCH(const QByteArray, list);
    QCOMPARE(verdictOn(list), QByteArray("valid"));
    const Ended ended = icons(list, words("--ignore-missing"));
    QCOMPARE(ended.code, 0);
}

void tst_IconLists::allMistakesAreNamedAtOnce()
{
    const Ended ended =
        icons(R"([{"folder": "..", "x": true}, {"folder": "a"}, {"mark": 3}])", words("--icon absent.png"));
    QCOMPARE(ended.code, 1);
    for (const char* part : {"'absent.png' cannot be read", "channel 1 (\"..\"): \"folder\"", "\"x\" is not",
                             "channel 3: \"folder\" is missing", "channel 3: \"mark\" is not a text"})
        QVERIFY2(ended.error.contains(part), part);
}

QTEST_GUILESS_MAIN(tst_IconLists)
#include "tst_iconlists.moc"
