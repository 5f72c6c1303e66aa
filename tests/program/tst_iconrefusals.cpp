// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "iconscene.h"

#include <QDir>
#include <QFile>
#include <QUuid>
#include <QtTest>

#include <csignal>

#include <unistd.h>

using namespace IconPictures;

namespace {

bool linkHard(const QString& from, const QString& to)
{
    return link(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

// The jobs that the command icons refuses before it touches anything.
class tst_IconRefusals : public QObject, private IconScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { prepare(); }

    void whatItReadsIsNeverCleared_data();
    void whatItReadsIsNeverCleared();
    void foreignFolderIsNotCleared_data();
    void foreignFolderIsNotCleared();
    void foreignFolderIsRefusedByCode();
    void interruptedRunCanBeRepeated();
    void sheetWithoutAFolderIsNamedFirst();
    void placeWithoutACornerIsWarnedOf();
    void goneCurrentFolderIsNamed();
    void whatItReadsIsNeverOverwritten_data();
    void whatItReadsIsNeverOverwritten();
    void sheetNeverReplacesWhatIsRead_data();
    void sheetNeverReplacesWhatIsRead();
    void sheetNeverReplacesAnIcon_data();
    void sheetNeverReplacesAnIcon();
    void pipesAreNotRead_data();
    void pipesAreNotRead();
    void missingInputIsNamed_data();
    void missingInputIsNamed();
    void badUsageExitsWithTwo_data();
    void badUsageExitsWithTwo();
};

void tst_IconRefusals::whatItReadsIsNeverCleared_data()
{
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("marks");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QByteArray>("held");
    const QString icon = QStringLiteral("game.png");
    const QString marks = QStringLiteral("marks");
    const QString list = QStringLiteral("channels.json");
    QTest::newRow("icon") << QStringLiteral("out/deep/game.png") << marks << list << QByteArray("the icon");
    QTest::newRow("marks") << icon << QStringLiteral("out/marks") << list << QByteArray("the marks");
    QTest::newRow("root of the marks") << icon << QStringLiteral("out") << list << QByteArray("the marks");
    QTest::newRow("list") << icon << marks << QStringLiteral("out/channels.json")
                          << QByteArray("the channel list");
    QTest::newRow("icon by a link") << QStringLiteral("link/deep/game.png") << marks << list
                                    << QByteArray("the icon");
}

void tst_IconRefusals::whatItReadsIsNeverCleared()
{
    QFETCH(const QString, icon);
    QFETCH(const QString, marks);
    QFETCH(const QString, list);
    QFETCH(const QByteArray, held);
    QVERIFY(QDir().mkpath(out(QStringLiteral("deep"))));
    QVERIFY(QDir().mkpath(out(QStringLiteral("marks"))));
    QVERIFY(QFile::copy(path(QStringLiteral("game.png")), out(QStringLiteral("deep/game.png"))));
    QVERIFY(QFile::link(path(QStringLiteral("out")), path(QStringLiteral("link"))));
    for (const char* name : {"channels.json", "out/channels.json"})
        write(path(QString::fromUtf8(name)), R"([{"folder": "a"}])");
    const QStringList before = filesBelow(root());
    const QStringList arguments{
        QStringLiteral("icons"), QStringLiteral("--icon"), icon, QStringLiteral("--marks"), marks, list};
    const Ended ended = quenzo(arguments + words("--out out --platform ios"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("is deleted first, and it holds " + held), ended.error.constData());
    QCOMPARE(filesBelow(root()), before);

    const Ended kept = quenzo(arguments + words("--out out --platform ios --keep"));
    QCOMPARE(kept.error, QByteArray());
    QCOMPARE(kept.code, 0);
    QCOMPARE(filesBelow(root()).size(), before.size() + 16);
}

void tst_IconRefusals::foreignFolderIsNotCleared_data()
{
    QTest::addColumn<QString>("entry");
    QTest::newRow("file") << QStringLiteral("notes.txt");
    QTest::newRow("hidden file") << QStringLiteral(".notes");
    QTest::newRow("file in a folder") << QStringLiteral("deep/notes.txt");
}

void tst_IconRefusals::foreignFolderIsNotCleared()
{
    QFETCH(const QString, entry);
    const QByteArray list = R"([{"folder": "a"}])";
    write(out(entry), "precious");
    const Ended refused = icons(list);
    QCOMPARE(refused.code, 1);
    QVERIFY2(refused.error.contains("is not empty, and no earlier run has made it: --clear deletes"),
             refused.error.constData());
    QCOMPARE(contentOf(out(entry)), QByteArray("precious"));

    // Files that a run has left untouched make the folder nobody's to clear.
    QCOMPARE(icons(list, words("--keep")).code, 0);
    QCOMPARE(icons(list).code, 1);
    QCOMPARE(contentOf(out(entry)), QByteArray("precious"));

    QCOMPARE(icons(list, words("--clear")).error, QByteArray());
    QVERIFY(!QFileInfo::exists(out(entry)));
}

void tst_IconRefusals::foreignFolderIsRefusedByCode()
{
    write(out(QStringLiteral("file")), "precious");
    const Ended refused = icons(R"([{"folder": "a"}])", words("--json"));
    QCOMPARE(refused.failure().value(QStringLiteral("code")).toString(), QStringLiteral("refused"));
}

void tst_IconRefusals::interruptedRunCanBeRepeated()
{
    QByteArray list = "[";
    for (int i = 0; i < 3000; ++i)
        list += R"({"folder": "c)" + QByteArray::number(i) + R"("},)";
    list.chop(1);
    write(path(QStringLiteral("channels.json")), list + "]");
    QuenzoProcess process(arguments(), root());
    process.start();
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(out(QStringLiteral("c0/icon512x512.png"))), 60000);
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QCOMPARE(process.end().code, -SIGINT);
    QVERIFY(!QFileInfo::exists(out(QStringLiteral("c2999/icon512x512.png"))));
    const Ended again = icons(R"([{"folder": "a"}])");
    QCOMPARE(again.error, QByteArray());
    QCOMPARE(again.code, 0);
}

void tst_IconRefusals::sheetWithoutAFolderIsNamedFirst()
{
    const Ended ended = icons(R"([{"folder": "a"}])", words("--sheet nodir/s.png"));
    QCOMPARE(ended.error,
             QByteArray("quenzo: the sheet 'nodir/s.png' cannot be written: there is no folder 'nodir'\n"));
    QCOMPARE(ended.code, 1);
    QVERIFY(!QFileInfo::exists(out()));
    QCOMPARE(icons(R"([{"folder": "a"}])", words("--sheet out/s.png")).code, 0);
}

void tst_IconRefusals::placeWithoutACornerIsWarnedOf()
{
    const Ended ended = icons(R"([{"folder": "b", "mark": "red", "x": 5, "y": -3},
                                  {"folder": "c", "mark": "red", "corner": "default", "x": 5}])");
    QCOMPARE(ended.code, 0);
    QCOMPARE(ended.error,
             QByteArray("quenzo: channel 'b': \"x\" and \"y\" do not count without a \"corner\"; "
                        "the options of the default one place the mark\n"));
}

void tst_IconRefusals::goneCurrentFolderIsNamed()
{
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    QVERIFY(QDir().mkdir(path(QStringLiteral("gone"))));
    // One that no earlier run can have left.
    const QString output = QUuid::createUuid().toString(QUuid::WithoutBraces);
    QStringList absolute;
    for (const QString& word : arguments({}, output))
        absolute.append(
            QStringList{QStringLiteral("game.png"), QStringLiteral("marks"), QStringLiteral("channels.json")}
                    .contains(word)
                ? path(word)
                : word);
    QuenzoProcess process(absolute, path(QStringLiteral("gone")));
    const QByteArray gone = QFile::encodeName(path(QStringLiteral("gone")));
    process.before = [&gone] {
        if (rmdir(gone.constData()) != 0)
            _exit(127);
    };
    const Ended ended = process.end();
    QCOMPARE(ended.code, 1);
    const QByteArray wanted = '\'' + output.toUtf8() + "' cannot be found: the current folder is gone";
    QVERIFY2(ended.error.contains(wanted), ended.error.constData());
    QVERIFY(!QFileInfo::exists(QLatin1Char('/') + output));
}

void tst_IconRefusals::whatItReadsIsNeverOverwritten_data()
{
    QTest::addColumn<QString>("read");
    QTest::addColumn<bool>("hard");
    QTest::addColumn<QByteArray>("error");
    const auto rows = [](const char* title, const char* read, const char* error) {
        for (const bool hard : {false, true})
            QTest::addRow("%s by a %s link", title, hard ? "hard" : "symbolic")
                << QString::fromUtf8(read) << hard << QByteArray(error);
    };
    rows("icon", "game.png", "the icon 'game.png' is one of the files");
    rows("list", "channels.json", "the channel list 'channels.json' is one of the files");
    rows("mark", "marks/red/icon/right-bottom.png",
         "the mark picture 'marks/red/icon/right-bottom.png' is one of the files");
    rows("unused mark", "marks/red/icon/left-top.png",
         "the mark picture 'marks/red/icon/left-top.png' is one of the files");
}

void tst_IconRefusals::whatItReadsIsNeverOverwritten()
{
    QFETCH(const QString, read);
    QFETCH(const bool, hard);
    QFETCH(const QByteArray, error);
    const QByteArray list = R"([{"folder": "a", "mark": "red"}])";
    write(path(QStringLiteral("channels.json")), list);
    QVERIFY(QDir().mkpath(out(QStringLiteral("a"))));
    const QString icon = out(QStringLiteral("a/icon36x36.png"));
    QVERIFY(hard ? linkHard(path(read), icon) : QFile::link(path(read), icon));
    const QByteArray before = contentOf(path(read));
    const Ended ended = icons(list, words("--keep"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains(error), ended.error.constData());
    QCOMPARE(contentOf(path(read)), before);
    QCOMPARE(filesBelow(out()), words("a/icon36x36.png"));
}

void tst_IconRefusals::sheetNeverReplacesWhatIsRead_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QByteArray>("what");
    const auto row = [](const char* title, const char* sheet, const char* what) {
        QTest::newRow(title) << QString::fromUtf8(sheet) << QByteArray(what);
    };
    row("icon", "marks/../game.png", "the icon 'game.png'");
    row("list", "channels.json", "the channel list 'channels.json'");
    row("mark", "marks/red/icon/right-bottom.png", "the mark picture");
    row("unused mark", "marks/red/icon/left-top.png", "the mark picture");
    row("mark by a link", "link.png", "the mark picture");
    row("mark by a hard link", "hard.png", "the mark picture");
}

void tst_IconRefusals::sheetNeverReplacesWhatIsRead()
{
    QFETCH(const QString, sheet);
    QFETCH(const QByteArray, what);
    const QString used = path(QStringLiteral("marks/red/icon/right-bottom.png"));
    QVERIFY(QFile::link(used, path(QStringLiteral("link.png"))));
    QVERIFY(linkHard(used, path(QStringLiteral("hard.png"))));
    const QByteArray list = R"([{"folder": "a", "mark": "red"}])";
    write(path(QStringLiteral("channels.json")), list);
    const QByteArray before = contentOf(path(sheet));
    const Ended ended = icons(list, {QStringLiteral("--sheet"), sheet});
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("the sheet would replace " + what), ended.error.constData());
    QCOMPARE(contentOf(path(sheet)), before);
    QVERIFY(!QFileInfo::exists(out()));
}

void tst_IconRefusals::sheetNeverReplacesAnIcon_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<bool>("there");
    for (const bool there : {false, true}) {
        const char* title = there ? "file that is there" : "file to come";
        QTest::addRow("%s", title) << QStringLiteral("out/a/icon36x36.png") << there;
        QTest::addRow("%s, there and back", title) << QStringLiteral("out/../out/a/icon36x36.png") << there;
        QTest::addRow("%s, linked folder", title) << QStringLiteral("linked/out/a/icon36x36.png") << there;
        QTest::addRow("%s, link", title) << QStringLiteral("link.png") << there;
    }
    QTest::newRow("hard link") << QStringLiteral("hard.png") << true;
}

void tst_IconRefusals::sheetNeverReplacesAnIcon()
{
    QFETCH(const QString, sheet);
    QFETCH(const bool, there);
    const QString icon = out(QStringLiteral("a/icon36x36.png"));
    if (there) {
        write(icon, "old");
        QVERIFY(linkHard(icon, path(QStringLiteral("hard.png"))));
    }
    QVERIFY(QFile::link(root(), path(QStringLiteral("linked"))));
    QVERIFY(QFile::link(icon, path(QStringLiteral("link.png"))));
    const Ended ended = icons(R"([{"folder": "a"}])", {QStringLiteral("--sheet"), sheet});
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/a/icon36x36.png', one of the files to be written"),
             ended.error.constData());
    QCOMPARE(QFileInfo::exists(icon), there);

    const Ended beside = icons(R"([{"folder": "a"}])", words("--clear --sheet out/a/sheet.png"));
    QCOMPARE(beside.error, QByteArray());
    QCOMPARE(beside.code, 0);
}

void tst_IconRefusals::pipesAreNotRead_data()
{
    QTest::addColumn<QString>("pipe");
    QTest::newRow("icon") << QStringLiteral("game.png");
    QTest::newRow("list") << QStringLiteral("channels.json");
    QTest::newRow("mark") << QStringLiteral("marks/red/icon/right-bottom.png");
}

void tst_IconRefusals::pipesAreNotRead()
{
    QFETCH(const QString, pipe);
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a", "mark": "red"}])");
    QVERIFY(QFile::remove(path(pipe)));
    makePipe(path(QStringLiteral("pipe")));
    QVERIFY(QFile::link(path(QStringLiteral("pipe")), path(pipe)));
    const Ended ended =
        quenzo(words("icons --icon game.png --marks marks --out out --platform android channels.json"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains(pipe.toUtf8()), ended.error.constData());
    QVERIFY2(ended.error.endsWith(" is not a regular file\n"), ended.error.constData());
    QVERIFY(!QFileInfo::exists(out()));
}

void tst_IconRefusals::missingInputIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("icon") << words("--icon absent.png --marks marks --out out channels.json")
                          << QByteArray("the icon 'absent.png' cannot be read");
    QTest::newRow("icon that is none") << words("--icon channels.json --marks marks --out out channels.json")
                                       << QByteArray("the icon 'channels.json' cannot be read");
    QTest::newRow("marks") << words("--icon game.png --marks absent --out out channels.json")
                           << QByteArray("the marks' folder 'absent' does not exist");
    QTest::newRow("list") << words("--icon game.png --marks marks --out out absent.json")
                          << QByteArray("absent.json cannot be read");
    QTest::newRow("output folder") << words("--icon game.png --marks marks --out game.png channels.json")
                                   << QByteArray("game.png' is not a folder");
}

void tst_IconRefusals::missingInputIsNamed()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, error);
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    const Ended ended = quenzo(words("icons --platform android --sheet sheet.png") + arguments);
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.error.count("quenzo: "), 1);
    QVERIFY2(ended.error.contains(error), ended.error.constData());
    QVERIFY(!QFileInfo::exists(out()));
    QVERIFY(!master().isNull());
}

void tst_IconRefusals::badUsageExitsWithTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no list") << words("--icon game.png --marks marks --out out --platform ios");
    QTest::newRow("two lists") << words(
        "--icon game.png --marks marks --out out --platform ios a.json b.json");
    QTest::newRow("no icon") << words("--marks marks --out out --platform ios channels.json");
    QTest::newRow("no marks") << words("--icon game.png --out out --platform ios channels.json");
    QTest::newRow("no output folder") << words("--icon game.png --marks marks --platform ios channels.json");
    QTest::newRow("no platform") << words("--icon game.png --marks marks --out out channels.json");
    const QStringList whole = words("--icon game.png --marks marks --out out --platform ios channels.json");
    QTest::newRow("unknown platform") << whole + words("--platform windows");
    QTest::newRow("number of a platform") << whole + words("--platform 0");
    QTest::newRow("unknown corner") << whole + words("--default-corner top");
    QTest::newRow("default of default") << whole + words("--default-corner default");
    QTest::newRow("corner too large") << whole + words("--default-corner 4");
    QTest::newRow("x a word") << whole + words("--default-x left");
    QTest::newRow("broken y") << whole + words("--default-y 1.5");
    QTest::newRow("clear and keep") << whole + words("--clear --keep");
    QTest::newRow("unknown option") << whole + words("--clean");
}

void tst_IconRefusals::badUsageExitsWithTwo()
{
    QFETCH(const QStringList, arguments);
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    write(out(QStringLiteral("kept")), "kept");
    const Ended ended = quenzo(words("icons") + arguments);
    QCOMPARE(ended.code, 2);
    QVERIFY(!ended.error.isEmpty());
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(filesBelow(out()), words("kept"));
}

QTEST_GUILESS_MAIN(tst_IconRefusals)
#include "tst_iconrefusals.moc"
