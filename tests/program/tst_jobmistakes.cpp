// SPDX-License-Identifier: MIT
#include "jobscene.h"
#include "jsonschema.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QtTest>

// What is wrong with a job, by the reader's words and by the schema that editors know.
class tst_JobMistakes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mistakeIsNamedWithItsPlace_data();
    void mistakeIsNamedWithItsPlace();
    void schemaAgreesWithTheReader_data() { mistakeIsNamedWithItsPlace_data(); }
    void schemaAgreesWithTheReader();
    void soundJobIsTakenByBoth_data();
    void soundJobIsTakenByBoth();
    void allMistakesComeAtOnce();
    void mistakeOfTheDefaultsIsNamedOnce();
    void whatIsNoFileIsNamed_data();
    void whatIsNoFileIsNamed();
    void hostileTextsEndInASentence_data();
    void hostileTextsEndInASentence();

private:
    QByteArray verdictOn(const QByteArray& job)
    {
        return m_schema.verdictOn(QJsonDocument::fromJson(job).toJson(QJsonDocument::Compact));
    }

    JobScene m_scene;
    JsonSchema m_schema{QStringLiteral("job.schema.json")};
};

// Which of them a schema can tell: what depends on files, on other values or on bytes it cannot.
enum Told { ByBoth, ByReader };
Q_DECLARE_METATYPE(Told)

namespace {

const auto with = &JobScene::with;
const auto channel = &JobScene::channel;

void row(const char* name, Told told, const QByteArray& job, const QStringList& faults)
{
    QTest::newRow(name) << told << job << faults;
}

void row(const char* name, Told told, const QByteArray& job, const char* fault)
{
    row(name, told, job, QStringList(QString::fromUtf8(fault)));
}

QByteArray manyTexts(int count)
{
    QByteArray texts;
    for (int i = 0; i < count; ++i)
        texts += (i > 0 ? ",\"" : "\"") + QByteArray::number(i) + '"';
    return texts;
}

void outermostRows()
{
    row("nothing", ByBoth, "{}",
        QStringList{QStringLiteral("/game: is missing"), QStringLiteral("/base: is missing"),
                    QStringLiteral("/channels: is missing")});
    row("unknown key like a known one", ByBoth, with(R"("chanels": [])"),
        R"(/chanels: is an unknown key; did you mean 'channels'?)");
    row("unknown key like none", ByBoth, with(R"("frobnicate": 1)"),
        "/frobnicate: is an unknown key; the keys here are $schema, game, base, icons, sdks, defaults, "
        "channels, encryption, signing, work, output, leave");
    row("key with a slash", ByBoth, with(R"("wo/r~k": "w")"),
        R"(/wo~1r~0k: is an unknown key; did you mean 'work'?)");
    row("comment", ByBoth, with(R"("//": 5)"), "/~1~1: is a comment, and not a text or an array of texts");
    row("comment of numbers", ByBoth, with(R"("//": ["a", 5])"),
        "/~1~1: is a comment, and not a text or an array of texts");
    row("$schema", ByBoth, with(R"("$schema": 1)"), "/$schema: is a number, not a text");
    row("$schema inside", ByBoth, channel(R"({"folder": "a", "$schema": "s"})"),
        "/channels/0/$schema: is an unknown key; the keys here are folder, name, number, package, mark, "
        "corner, x, y, sdks, files, settings, encrypt");
    row("key given twice", ByReader, with(R"("work": "w1", "wor\u006b": "w2")"), "/work: is given twice");
    row("key given twice, deep", ByReader,
        channel(R"({"folder": "a", "settings": {"b": [1, {"c": 1, "c": 2}]}})"),
        "/channels/0/settings/b/1/c: is given twice");
    row("empty game", ByBoth, R"({"game": "", "base": "game.apk", "channels": [{"folder": "a"}]})",
        "/game: is empty");
    row("game with a line break", ByBoth,
        R"({"game": "a\nb", "base": "game.apk", "channels": [{"folder": "a"}]})",
        "/game: holds a control character");
    row("game with half a letter", ByReader,
        R"({"game": "\ud800", "base": "game.apk", "channels": [{"folder": "a"}]})",
        "/game: holds half of a surrogate pair");
    row("game that is a number", ByBoth, R"({"game": 5, "base": "game.apk", "channels": [{"folder": "a"}]})",
        "/game: is a number, not a text");
    row("leave", ByBoth, with(R"("leave": ["parts", "a/b", "parts", 5])"),
        QStringList{QStringLiteral("/leave/1: holds a slash, a backslash or a control character"),
                    QStringLiteral("/leave/2: is \"parts\", which stands here already"),
                    QStringLiteral("/leave/3: is a number, not a text")});
    row("leave of a package", ByReader, with(R"("leave": ["A.apk"])"),
        "/leave/0: is a channel's package, which belongs to the output");
    row("leave that is a text", ByBoth, with(R"("leave": "parts")"), "/leave: is a text, not an array");
}

void fileRows()
{
    row("base that is missing", ByReader, R"({"game": "G", "base": "absent", "channels": [{"folder": "a"}]})",
        "/base: names @/absent, which does not exist");
    row("base that is no archive", ByReader,
        R"({"game": "G", "base": "pw.txt", "channels": [{"folder": "a"}]})",
        "/base: names @/pw.txt, which is no APK");
    row("base that is a pipe", ByReader, R"({"game": "G", "base": "pipe", "channels": [{"folder": "a"}]})",
        "/base: names @/pipe, which is not a regular file");
    row("base with a colon", ByReader, R"({"game": "G", "base": ":/x", "channels": [{"folder": "a"}]})",
        "/base: names @/:/x, which does not exist");
    row("icon that is no picture", ByReader, with(R"("icons": {"master": "pw.txt"})"),
        "/icons/master: names @/pw.txt, which is no picture: Unsupported image format");
    row("icons without a master", ByBoth, with(R"("icons": {})"), "/icons/master: is missing");
    row("icons that are a text", ByBoth, with(R"("icons": "icon.png")"), "/icons: is a text, not an object");
    row("marks that are a file", ByReader, with(R"("icons": {"master": "icon.png", "marks": "pw.txt"})"),
        "/icons/marks: names @/pw.txt, which is not a folder");
    row("no platform", ByBoth, with(R"("icons": {"master": "icon.png", "platforms": []})"),
        "/icons/platforms: is empty; the platforms are android, ios");
    row("unknown platform", ByBoth,
        with(R"("icons": {"master": "icon.png", "platforms": ["android", "windows"]})"),
        R"(/icons/platforms/1: is "windows", and the platforms are android, ios)");
    row("platform twice", ByBoth, with(R"("icons": {"master": "icon.png", "platforms": ["ios", "ios"]})"),
        R"(/icons/platforms/1: is "ios", which stands here already)");
    row("SDK without a package", ByBoth, with(R"("sdks": {"pay": {"id": 7}})"),
        "/sdks/pay/package: is missing");
    row("SDK that is missing", ByReader, with(R"("sdks": {"pay": {"package": "absent.zip"}})"),
        "/sdks/pay/package: names @/absent.zip, which does not exist");
    row("SDK that is a folder", ByReader, with(R"("sdks": {"pay": {"package": "files"}})"),
        "/sdks/pay/package: names @/files, which is not a regular file");
    row("SDK with half a number", ByBoth, with(R"("sdks": {"pay": {"package": "pay.zip", "id": 7.5}})"),
        "/sdks/pay/id: is not a whole number from 0 to 2147483647");
    row("SDK with a negative number", ByBoth, with(R"("sdks": {"pay": {"package": "pay.zip", "id": -1}})"),
        "/sdks/pay/id: is not a whole number from 0 to 2147483647");
    row("SDK with a huge number", ByBoth,
        with(R"("sdks": {"pay": {"package": "pay.zip", "id": 2147483648}})"),
        "/sdks/pay/id: is not a whole number from 0 to 2147483647");
    row("SDK with a name of no folder", ByBoth, with(R"("sdks": {"a/b": {"package": "pay.zip"}})"),
        "/sdks/a~1b: holds a slash, a backslash or a control character");
    row("SDKs alike", ByReader,
        with(R"("sdks": {"PAY": {"package": "pay.zip"}, "pay": {"package": "pay.zip"}})"),
        R"(/sdks/pay: differs from "PAY" in nothing but the case or form of letters)");
    row("key that is missing", ByReader, with(R"("encryption": {"key": "absent"})"),
        "/encryption/key: names @/absent, which does not exist");
    row("patterns", ByBoth, with(R"("encryption": {"exclude": ["", null]})"),
        QStringList{QStringLiteral("/encryption/exclude/0: is empty"),
                    QStringLiteral("/encryption/exclude/1: is null, not a text")});
}

void signingRows()
{
    row("signing with nothing", ByBoth, with(R"("signing": {})"),
        QStringList{QStringLiteral("/signing/keystore: is missing"),
                    QStringLiteral("/signing/password: is missing")});
    row("password in the job", ByBoth, with(R"("signing": {"keystore": "store", "password": "secret"})"),
        "/signing/password: is a text, not an object");
    row("password from nowhere", ByBoth, with(R"("signing": {"keystore": "store", "password": {}})"),
        R"(/signing/password/file: is missing, and "environment" as well)");
    row("password from two places", ByBoth,
        with(R"("signing": {"keystore": "store", "password": {"file": "pw.txt", "environment": "HOME"}})"),
        R"(/signing/password/environment: stands beside "file": one of them is wanted)");
    row("password of a variable that is not set", ByReader,
        with(R"("signing": {"keystore": "store", "password": {"environment": "QUENZO_NO_SUCH"}})"),
        "/signing/password/environment: names QUENZO_NO_SUCH, which the environment does not have");
    row("password of no variable", ByBoth,
        with(R"("signing": {"keystore": "store", "password": {"environment": "A=B"}})"),
        "/signing/password/environment: is no name of an environment variable");
    row("keystore that is missing", ByReader,
        with(R"("signing": {"keystore": "absent", "password": {"file": "pw.txt"}})"),
        "/signing/keystore: names @/absent, which does not exist");
}

void channelRows()
{
    row("no channel", ByBoth, channel(""), "/channels: is empty; a job has at least one channel");
    row("channel that is a text", ByBoth, channel(R"("a")"), "/channels/0: is a text, not an object");
    row("no folder", ByBoth, channel(R"({"name": "A"})"), "/channels/0/folder: is missing");
    row("empty folder", ByBoth, channel(R"({"folder": ""})"), "/channels/0/folder: is missing or empty");
    row("folder above", ByBoth, channel(R"({"folder": ".."})"),
        R"(/channels/0/folder: is "..", which is no name of a folder)");
    row("folder elsewhere", ByBoth, channel(R"({"folder": "a/../../b"})"),
        "/channels/0/folder: holds a slash, a backslash or a control character");
    row("long folder", ByBoth, channel(R"({"folder": ")" + QByteArray(256, 'a') + R"("})"),
        "/channels/0/folder: is longer than 255 bytes");
    row("long folder of wide letters", ByReader,
        channel(R"({"folder": ")" + QByteArray("\xE4\xBA\x91").repeated(86) + R"("})"),
        "/channels/0/folder: is longer than 255 bytes");
    row("folder of the run", ByBoth, channel(R"({"folder": "sdks"})"),
        R"(/channels/0/folder: is "sdks", a name that the run needs itself)");
    row("folder of the run in capitals", ByReader, channel(R"({"folder": "Records.DB"})"),
        R"(/channels/0/folder: is "Records.DB", a name that the run needs itself)");
    row("folder with a sheet's name", ByBoth, channel(R"({"folder": "sheet-ios.png"})"),
        R"(/channels/0/folder: is "sheet-ios.png", a name that the run needs itself)");
    row("folder with a further sheet's name", ByBoth, channel(R"({"folder": "sheet-android-12.png"})"),
        R"(/channels/0/folder: is "sheet-android-12.png", a name that the run needs itself)");
    row("hidden folder", ByBoth, channel(R"({"folder": ".a"})"),
        R"(/channels/0/folder: is ".a", a name that the run needs itself)");
    row("folders alike", ByReader,
        channel(R"({"folder": "Harbour"}, {"folder": "b"}, {"folder": "hARBOUR"})"),
        R"(/channels/2/folder: is "hARBOUR", and /channels/0/folder has the same but for the case or form of its letters)");
    row("folders alike in another form", ByReader,
        channel("{\"folder\": \"caf\xC3\xA9\"}, {\"folder\": \"CAFE\xCC\x81\"}"),
        "/channels/1/folder: is \"CAFE\xCC\x81\", and /channels/0/folder has the same but for the case or "
        "form of its letters");
    row("name that is a list", ByBoth, channel(R"({"folder": "a", "name": []})"),
        "/channels/0/name: is an array, not a text");
    row("number that is none", ByBoth, channel(R"({"folder": "a", "number": "12a"})"),
        "/channels/0/number: is not the number of a developer record");
    row("number with a fraction", ByBoth, channel(R"({"folder": "a", "number": 1.5})"),
        "/channels/0/number: is not a whole number from 0 to 2147483647");
    for (const char* name : {"game", "com..game", "com.7game", "com.g-ame", "com.game."})
        row(name, ByBoth, channel(R"({"folder": "a", "package": ")" + QByteArray(name) + R"("})"),
            QStringList(
                QStringLiteral("/channels/0/package: is \"%1\", which is no name of an Android package")
                    .arg(QLatin1String(name))));
    row("mark that is missing", ByReader, channel(R"({"folder": "a", "mark": "blue"})"),
        "/channels/0/mark: cannot be used: the mark picture @/marks/blue/icon/right-bottom.png is missing");
    row("mark without the corner's picture", ByReader,
        channel(R"({"folder": "a", "mark": "red", "corner": "left-bottom"})"),
        "/channels/0/mark: cannot be used: the mark picture @/marks/red/icon/left-bottom.png is missing");
    row("mark elsewhere", ByBoth, channel(R"({"folder": "a", "mark": "../marks/red"})"),
        "/channels/0/mark: holds a slash, a backslash or a control character");
    row("mark without marks", ByReader,
        R"({"game": "G", "base": "game.apk", "channels": [{"folder": "a", "mark": "red"}]})",
        R"(/channels/0/mark: is "red", and the job has no "marks" in its "icons")");
    row("corner", ByBoth, channel(R"({"folder": "a", "corner": "middle"})"),
        "/channels/0/corner: is none of left-top, left-bottom, right-top, right-bottom, default, nor a "
        "number "
        "from 0 to 4");
    row("x beyond all pixels", ByBoth, channel(R"({"folder": "a", "x": 1e10})"),
        "/channels/0/x: is not a whole number from -2147483648 to 2147483647");
    row("y that is a text", ByBoth, channel(R"({"folder": "a", "y": "5"})"),
        "/channels/0/y: is a text, not a number");
    row("SDK mistyped", ByReader, channel(R"({"folder": "a", "sdks": ["pya"]})"),
        R"(/channels/0/sdks/0: is "pya", no SDK of this job; did you mean 'pay'?)");
    row("SDK like none", ByReader, channel(R"({"folder": "a", "sdks": ["pay", "frobnicate"]})"),
        R"(/channels/0/sdks/1: is "frobnicate", no SDK of this job)");
    row("SDK twice", ByBoth, channel(R"({"folder": "a", "sdks": ["pay", "pay"]})"),
        R"(/channels/0/sdks/1: is "pay", which stands here already)");
    row("SDKs that are a text", ByBoth, channel(R"({"folder": "a", "sdks": "pay"})"),
        "/channels/0/sdks: is a text, not an array");
    row("files that are missing", ByReader, channel(R"({"folder": "a", "files": "absent"})"),
        "/channels/0/files: names @/absent, which does not exist");
    row("settings that are a list", ByBoth, channel(R"({"folder": "a", "settings": []})"),
        "/channels/0/settings: is an array, not an object");
    row("encrypt that is a text", ByBoth, channel(R"({"folder": "a", "encrypt": "yes"})"),
        "/channels/0/encrypt: is a text, not true or false");
    row("folder among the defaults", ByBoth, with(R"("defaults": {"folder": "a"})"),
        "/defaults/folder: is an unknown key; the keys here are mark, corner, x, y, sdks, files, settings, "
        "encrypt");
}

void placeRows()
{
    row("work and output in one", ByReader, with(R"("work": "here", "output": "./here/")"),
        "/output: is the work folder, too: @/here");
    row("output in work", ByReader, with(R"("work": "here", "output": "here/out")"),
        "/output: lies in the work folder @/here");
    row("work in output", ByReader, with(R"("work": "there/in/work", "output": "there")"),
        "/work: lies in the output folder @/there");
    row("work above the job", ByReader, with(R"("work": ".", "output": "/somewhere/else")"),
        QStringList{QStringLiteral("/work: is @, which holds the job itself"),
                    QStringLiteral("/work: is @, which holds what /base names")});
    row("output that holds files", ByReader,
        with(R"("output": "files", "defaults": {"files": "files/assets"})"),
        "/output: is @/files, which holds what /defaults/files names");
    row("output in files", ByReader, with(R"("output": "files/new", "defaults": {"files": "files"})"),
        "/output: is @/files/new, which lies in the folder that /defaults/files names");
    row("work by a link", ByReader, with(R"("work": "link/sub", "output": "files")"),
        "/work: lies in the output folder @/files");
    row("work that is a file", ByReader, with(R"("work": "key")"),
        "/work: names @/key, which is not a folder");
    row("work below a file", ByReader, with(R"("work": "key/below")"),
        "/work: names @/key/below, and @/key is not a folder");
    row("work with a path beyond all paths", ByBoth,
        with(R"("work": ")" + QByteArray("a/").repeated(500000) + "\""), "/work: is longer than 4095 bytes");
    row("base with a path beyond all paths", ByReader,
        R"({"game": "G", "base": ")" + QByteArray("\xC3\xA9/").repeated(1400)
            + R"(", "channels": [{"folder": "a"}]})",
        "/base: is longer than 4095 bytes");
    row("work without a name", ByBoth, with(R"("work": "")"), "/work: is empty");
}

} // namespace

void tst_JobMistakes::mistakeIsNamedWithItsPlace_data()
{
    QTest::addColumn<Told>("told");
    QTest::addColumn<QByteArray>("job");
    QTest::addColumn<QStringList>("faults");
    outermostRows();
    fileRows();
    signingRows();
    channelRows();
    placeRows();
    QFile::link(m_scene.path(QStringLiteral("files")), m_scene.path(QStringLiteral("link")));
}

void tst_JobMistakes::mistakeIsNamedWithItsPlace()
{
    QFETCH(QByteArray, job);
    QFETCH(QStringList, faults);
    m_scene.read(job);
    QCOMPARE(m_scene.faults(), faults);
}

void tst_JobMistakes::schemaAgreesWithTheReader()
{
    QFETCH(Told, told);
    QFETCH(QByteArray, job);
    if (job.contains("\\ud8")) // no text for the validator
        return;
    const QByteArray verdict = verdictOn(job);
    QVERIFY2(verdict == "valid" || verdict.startsWith('$'), verdict.constData());
    QVERIFY2((verdict == "valid") == (told == ByReader), verdict.constData());
}

void tst_JobMistakes::soundJobIsTakenByBoth_data()
{
    QTest::addColumn<QByteArray>("job");
    const auto sound = [](const char* name, const QByteArray& job) { QTest::newRow(name) << job; };
    sound("least", R"({"game": "G", "base": "game.apk", "channels": [{"folder": "a"}]})");
    sound("schema and comments", with(R"("$schema": "s", "//": ["a", ""], "defaults": {"//": ""})"));
    sound("all of a channel", channel(R"({"//": "c", "folder": "a", "name": "A", "number": "101",
        "mark": "red", "corner": "left-top", "x": -5, "y": 7, "sdks": ["pay"], "files": "files",
        "settings": {"//": "c", "deep": [null, {"": 1}]}, "encrypt": true})"));
    sound("null",
          channel(R"({"folder": "a", "name": null, "mark": null, "x": null, "y": null, "files": null})"));
    sound("number", channel(R"({"folder": "a", "number": 0}, {"folder": "b", "number": 2147483647})"));
    sound("package", channel(R"({"folder": "a", "package": "com.Game_2.store"})"));
    sound("dots in names", channel(R"({"folder": "a..", "mark": "None"}, {"folder": "a.b"})"));
    for (const char* corner : {"\"default\"", "0", "4", "\"0\"", "\"3\"", "\"right-bottom\""})
        sound(corner, channel(R"({"folder": "a", "corner": )" + QByteArray(corner) + "}"));
    sound("whole numbers with a point", channel(R"({"folder": "a", "x": 5.0})"));
    sound("platforms", with(R"("icons": {"master": "icon.png", "platforms": ["ios", "android"]})"));
    sound("SDK", with(R"("sdks": {"//": "c", "pay": {"//": "c", "package": "pay.zip", "id": 2147483647}})"));
    sound("encryption", with(R"("encryption": {"//": "c", "key": "key", "exclude": ["*.json", "a/*"]})"));
    sound("signing",
          with(R"("signing": {"keystore": "store", "alias": "a b", "password": {"file": "pw.txt"}})"));
    sound("password of the environment",
          with(R"("signing": {"keystore": "store", "password": {"environment": "LC_ALL"}})"));
    sound("folders", with(R"("work": "w/w", "output": "w/o", "leave": ["parts", "a b"])"));
    sound("absolute paths", with(R"("work": "/nowhere/w", "output": "/nowhere/o")"));
}

void tst_JobMistakes::soundJobIsTakenByBoth()
{
    QFETCH(QByteArray, job);
    m_scene.read(job);
    QCOMPARE(m_scene.faults(), QStringList());
    QCOMPARE(verdictOn(job), QByteArray("valid"));
}

void tst_JobMistakes::allMistakesComeAtOnce()
{
    m_scene.read(R"({"gaem": "G", "base": "absent", "work": 5, "sdks": {"pay": {}},
                     "channels": [{"folder": ""}, 5, {"folder": "b", "sdks": ["pay", "pai"]}]})");
    const QStringList expected{
        QStringLiteral("/gaem: is an unknown key; did you mean 'game'?"),
        QStringLiteral("/game: is missing"),
        QStringLiteral("/base: names @/absent, which does not exist"),
        QStringLiteral("/sdks/pay/package: is missing"),
        QStringLiteral("/channels/0/folder: is missing or empty"),
        QStringLiteral("/channels/1: is a number, not an object"),
        QStringLiteral("/channels/2/sdks/1: is \"pai\", no SDK of this job; did you mean 'pay'?"),
        QStringLiteral("/work: is a number, not a text"),
    };
    QCOMPARE(m_scene.faults(), expected);
}

void tst_JobMistakes::mistakeOfTheDefaultsIsNamedOnce()
{
    m_scene.read(R"({"game": "G", "base": "game.apk", "defaults": {"sdks": ["none"], "files": "absent"},
                     "channels": [{"folder": "a"}, {"folder": "b"}]})");
    const QStringList expected{QStringLiteral("/defaults/sdks/0: is \"none\", no SDK of this job"),
                               QStringLiteral("/defaults/files: names @/absent, which does not exist")};
    QCOMPARE(m_scene.faults(), expected);
}

void tst_JobMistakes::whatIsNoFileIsNamed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::newRow("missing") << QStringLiteral("absent.json") << QStringLiteral("does not exist");
    QTest::newRow("folder") << QStringLiteral("files") << QStringLiteral("is not a regular file");
    QTest::newRow("pipe") << QStringLiteral("pipe") << QStringLiteral("is not a regular file");
    QTest::newRow("device") << QStringLiteral("/dev/zero") << QStringLiteral("is not a regular file");
}

void tst_JobMistakes::whatIsNoFileIsNamed()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QVector<JobFault> faults;
    const Job job = JobFile::read(QDir(m_scene.root()).absoluteFilePath(name), faults);
    QCOMPARE(faults.size(), 1);
    QCOMPARE(faults.first().place, QString());
    QCOMPARE(faults.first().text, text);
    QVERIFY(job.channels.isEmpty());
}

void tst_JobMistakes::hostileTextsEndInASentence_data()
{
    QTest::addColumn<QByteArray>("job");
    QTest::addColumn<QString>("fault");
    const auto hostile = [](const char* name, const QByteArray& job, const char* fault) {
        QTest::newRow(name) << job << QString::fromUtf8(fault);
    };
    hostile("empty", "", ": is not JSON: illegal value at line 1, column 1");
    hostile("third line", "{\n \"game\": \"G\",\n  oops\n}", ": is not JSON: ");
    hostile("array", "[1, 2]", ": is an array, not an object");
    hostile("no UTF-8", "{\"game\": \"\xFF\"}", ": is not JSON: ");
    hostile("deep", QByteArray(100000, '['), ": is not JSON: ");
    hostile("deep in the settings",
            channel(R"({"folder": "a", "settings": {"s": )" + QByteArray(2000, '[') + QByteArray(2000, ']')
                    + "}}"),
            ": is not JSON: ");
    hostile("endless text", QByteArray("{\"game\": \"") + QByteArray(1000000, 'a'), ": is not JSON: ");
    hostile("endless key", with('"' + QByteArray(1000000, 'k') + "\": 1"), ": is an unknown key");
    hostile("many SDKs that are none", channel(R"({"folder": "a", "sdks": [)" + manyTexts(50000) + "]}"),
            "is \"0\", no SDK");
    hostile("endless number", with("\"work\": " + QByteArray(100000, '9')), ": is not JSON: illegal number");
    hostile("larger than any", QByteArray(64 * 1024 * 1024 + 1, ' '),
            ": is larger than a job can be, 67108864 bytes");
}

void tst_JobMistakes::hostileTextsEndInASentence()
{
    QFETCH(QByteArray, job);
    QFETCH(QString, fault);
    m_scene.read(job);
    QVERIFY(!m_scene.faults().isEmpty());
    QVERIFY2(m_scene.faults().first().contains(fault), qPrintable(m_scene.faults().first().left(200)));
}

QTEST_GUILESS_MAIN(tst_JobMistakes)
#include "tst_jobmistakes.moc"
