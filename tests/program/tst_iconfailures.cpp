// SPDX-License-Identifier: MIT
#include "iconpictures.h"
#include "iconscene.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

#include <csignal>
#include <grp.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace IconPictures;

namespace {

// The rights of files then bind the program even when root runs the tests.
void dropPrivilege()
{
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
}

} // namespace

// What the command icons says of a run in which something went wrong.
class tst_IconFailures : public QObject, private IconScene {
    Q_OBJECT

private Q_SLOTS:
    void init() { prepare(); }

    void missingMarkMayBeIgnored_data();
    void missingMarkMayBeIgnored();
    void markOutsideTheIconIsWarnedOf_data();
    void markOutsideTheIconIsWarnedOf();
    void markThatIsCutOffIsWarnedOf_data();
    void markThatIsCutOffIsWarnedOf();
    void refusedThreadsEndTheRun_data();
    void refusedThreadsEndTheRun();
    void folderGivenTwiceIsWarnedOf();
    void fileInTheWayOfAFolderIsReported();
    void folderInTheWayOfAFileIsReported();
    void fileThatCannotBeFilledIsReported();
    void fileLeftEmptyIsReported();
    void pipeInTheWayOfAFileIsReported();
    void whatCannotBeClearedIsWarnedOf();
    void sheetThatCannotBeWrittenFails();
    void sheetWithoutFontsIsWarnedOf();
    void sheetWithoutANamesLettersIsWarnedOf();
    void sheetShowsNamesInAnyScript_data();
    void sheetShowsNamesInAnyScript();
};

void tst_IconFailures::missingMarkMayBeIgnored_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<QByteArray>("reason");
    const auto row = [](const char* title, const char* entry, const char* reason) {
        QTest::newRow(title) << QByteArray(entry) << QByteArray(reason);
    };
    row("no such mark", R"("mark": "blue")", "marks/blue/icon/right-bottom.png is missing");
    row("small letters are no None", R"("mark": "none")", "marks/none/icon/right-bottom.png is missing");
    row("no such corner's picture", R"("mark": "half", "corner": "left-top")",
        "marks/half/icon/left-top.png is missing");
    row("no picture", R"("mark": "half", "corner": "right-top")",
        "marks/half/icon/right-top.png cannot be read (Unsupported image format)");
}

void tst_IconFailures::missingMarkMayBeIgnored()
{
    QFETCH(const QByteArray, entry);
    QFETCH(const QByteArray, reason);
    write(path(QStringLiteral("marks/half/icon/right-top.png")), "no picture");
    const QByteArray list = R"([{"folder": "a", "name": "The shop", )" + entry + R"(}, {"folder": "b"}])";
    const QByteArray told = "quenzo: channel 'The shop': the mark picture " + reason + '\n';
    const Ended refused = icons(list);
    QCOMPARE(refused.error, told);
    QCOMPARE(refused.code, 1);
    QVERIFY2(!QFileInfo::exists(out()), "icons were made");

    const Ended ignored = icons(list, words("--ignore-missing"));
    QCOMPARE(ignored.error, told);
    QCOMPARE(ignored.code, 0);
    QCOMPARE(produced(QStringLiteral("a")), master());
    QCOMPARE(filesBelow(out()).size(), 14);
}

void tst_IconFailures::markOutsideTheIconIsWarnedOf_data()
{
    QTest::addColumn<QByteArray>("place");
    QTest::newRow("below") << QByteArray(R"("x": 0, "y": -100)");
    QTest::newRow("above") << QByteArray(R"("x": 0, "y": 352)");
    QTest::newRow("left of it") << QByteArray(R"("x": -20, "y": 0)");
}

void tst_IconFailures::markOutsideTheIconIsWarnedOf()
{
    QFETCH(const QByteArray, place);
    const Ended ended =
        icons(R"([{"folder": "a", "name": "The shop", "mark": "red", "corner": 0, )" + place + "}]");
    QCOMPARE(ended.code, 0);
    QCOMPARE(ended.error.count('\n'), 1);
    QVERIFY2(ended.error.startsWith("quenzo: channel 'The shop': the mark lies outside the icon"),
             ended.error.constData());
    QCOMPARE(produced(QStringLiteral("a")), master());
}

void tst_IconFailures::markThatIsCutOffIsWarnedOf_data()
{
    QTest::addColumn<QByteArray>("place");
    QTest::addColumn<QByteArray>("told");
    QTest::newRow("right") << QByteArray(R"("x": 81, "y": 0)") << QByteArray("(81, 0)");
    QTest::newRow("left") << QByteArray(R"("x": -1, "y": 0)") << QByteArray("(-1, 0)");
    QTest::newRow("above") << QByteArray(R"("x": 0, "y": 1)") << QByteArray("(0, -1)");
    QTest::newRow("below") << QByteArray(R"("x": 0, "y": -81)") << QByteArray("(0, 81)");
    QTest::newRow("just within") << QByteArray(R"("x": 80, "y": -80)") << QByteArray();
}

void tst_IconFailures::markThatIsCutOffIsWarnedOf()
{
    QFETCH(const QByteArray, place);
    QFETCH(const QByteArray, told);
    const Ended ended = icons(R"([{"folder": "a", "mark": "red", "corner": 0, )" + place + "}]");
    QCOMPARE(ended.code, 0);
    QCOMPARE(ended.error,
             told.isEmpty() ? QByteArray()
                            : "quenzo: channel 'a': the mark is cut off: it has 20x20 pixels at " + told
                     + ", and the icon has 100x100\n");
}

void tst_IconFailures::refusedThreadsEndTheRun_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("limit");
    for (const char* layout : {"plain", "android-res", "ios-appiconset"}) {
        const QStringList options{QStringLiteral("--layout"), QLatin1String(layout)};
        const QStringList platform = words(qstrcmp(layout, "plain") == 0 ? "--platform android" : "");
        for (int limit = 1; limit <= 6; ++limit)
            QTest::addRow("%s, limit of %d", layout, limit) << platform + options << limit;
    }
}

void tst_IconFailures::refusedThreadsEndTheRun()
{
    QFETCH(const QStringList, options);
    QFETCH(const int, limit);
    QVERIFY(QFile::setPermissions(root(), QFile::Permissions(0x7777)));
    QVERIFY(photograph(800, 800).save(path(QStringLiteral("game.png")), nullptr, 100));
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    QuenzoProcess process(arguments(options), root());
    process.before = [limit] {
        // A user that nobody else is: the limit counts all of a user's processes.
        constexpr uid_t alone = 54321;
        if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(alone) != 0 || setuid(alone) != 0))
            _exit(127);
        const rlimit threads{static_cast<rlim_t>(limit), static_cast<rlim_t>(limit)};
        if (setrlimit(RLIMIT_NPROC, &threads) != 0)
            _exit(127);
    };
    const Ended ended = process.end();
    if (ended.code == 0) {
        QCOMPARE(filesBelow(out()).size(), options.contains(QStringLiteral("ios-appiconset")) ? 14 : 7);
        return;
    }
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("no thread could be started")
                 || ended.error.contains("the system gives no threads"),
             ended.error.constData());
    QVERIFY2(!QFileInfo::exists(out()), "something was made");
}

void tst_IconFailures::folderGivenTwiceIsWarnedOf()
{
    const Ended ended = icons(R"([{"folder": "a"}, {"folder": "a", "mark": "red"}])");
    QCOMPARE(ended.code, 0);
    QVERIFY2(ended.error.contains("the folder 'a' is given twice"), ended.error.constData());
    QVERIFY2(ended.output.startsWith("7 of 7 files in "), ended.output.constData());
    QCOMPARE(produced(QStringLiteral("a")), marked(master(), markPicture(3), 68, -68));
}

void tst_IconFailures::fileInTheWayOfAFolderIsReported()
{
    write(out(QStringLiteral("b")), "in the way");
    const Ended ended =
        icons(R"([{"folder": "a"}, {"folder": "b"}, {"folder": "c"}])", words("--keep --sheet sheet.png"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/b/ could not be made: File exists\n"), ended.error.constData());
    QVERIFY2(ended.error.contains("not written: 7 of 21 files\n"), ended.error.constData());
    QVERIFY2(ended.output.startsWith("14 of 21 files in "), ended.output.constData());
    QCOMPARE(produced(QStringLiteral("c")), master());
    QVERIFY(QFileInfo(out(QStringLiteral("b"))).isFile());
    // The sheet is drawn all the same, with a red cross in the middle tile.
    const QImage sheet(path(QStringLiteral("sheet.png")));
    QCOMPARE(sheet.pixelColor(20 + 164 + 72, 44 + 72), QColor(Qt::red));
    QCOMPARE(sheet.pixelColor(20 + 72, 44 + 72),
             QImage(out(QStringLiteral("a/icon144x144.png"))).pixelColor(72, 72));
}

void tst_IconFailures::folderInTheWayOfAFileIsReported()
{
    QVERIFY(QDir().mkpath(out(QStringLiteral("a/icon72x72.png"))));
    const Ended ended = icons(R"([{"folder": "a"}])", words("--keep"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/a/icon72x72.png was not written: What is there is no regular file\n"),
             ended.error.constData());
    QVERIFY2(ended.error.contains("/out/a: icon72x72.png\n"), ended.error.constData());
    QVERIFY2(ended.error.contains("not written: 1 of 7 files\n"), ended.error.constData());
}

void tst_IconFailures::fileThatCannotBeFilledIsReported()
{
    // Every write to this device fails, as on a full disk.
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        QSKIP("there is no device that is always full");
    QVERIFY(QDir().mkpath(out(QStringLiteral("a"))));
    QVERIFY(QFile::link(QStringLiteral("/dev/full"), out(QStringLiteral("a/icon48x48.png"))));
    const Ended ended = icons(R"([{"folder": "a"}])", words("--keep"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/a: icon48x48.png\n"), ended.error.constData());
    QVERIFY(QFileInfo::exists(QStringLiteral("/dev/full")));
}

void tst_IconFailures::fileLeftEmptyIsReported()
{
    write(out(QStringLiteral("a/icon512x512.png")), "old");
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    // The file can be written, but neither to its end nor be taken away.
    QVERIFY(QFile::setPermissions(out(QStringLiteral("a")), QFile::ReadOwner | QFile::ExeOwner));
    QuenzoProcess process(arguments(words("--keep")), root());
    process.before = [] {
        dropPrivilege();
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{10000, RLIM_INFINITY};
        if (setrlimit(RLIMIT_FSIZE, &small) != 0)
            _exit(127);
    };
    const Ended ended = process.end();
    QVERIFY(QFile::setPermissions(out(QStringLiteral("a")),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(ended.code, 1);
    QCOMPARE(filesBelow(out()), words("a/icon512x512.png"));
    QCOMPARE(QFileInfo(out(QStringLiteral("a/icon512x512.png"))).size(), qint64(0));
    QVERIFY2(ended.output.startsWith("0 of 7 files in "), ended.output.constData());
    QVERIFY2(ended.error.contains(", icon512x512.png\n"), ended.error.constData());
}

void tst_IconFailures::pipeInTheWayOfAFileIsReported()
{
    QVERIFY(QDir().mkpath(out(QStringLiteral("a"))));
    makePipe(out(QStringLiteral("a/icon144x144.png")));
    const Ended ended = icons(R"([{"folder": "a"}])", words("--keep --sheet sheet.png"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/out/a: icon144x144.png\n"), ended.error.constData());
    QCOMPARE(QImage(path(QStringLiteral("sheet.png"))).pixelColor(20 + 72, 44 + 72), QColor(Qt::red));
}

void tst_IconFailures::whatCannotBeClearedIsWarnedOf()
{
    write(out(QStringLiteral("old/notes.txt")), "old");
    write(out(QStringLiteral("a/notes.txt")), "old");
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    for (const char* name : {"a/icon36x36.png", "a/icon48x48.png", "a/icon72x72.png", "a/icon96x96.png",
                             "a/icon144x144.png", "a/icon192x192.png", "a/icon512x512.png"})
        write(out(QString::fromUtf8(name)), "old");
    for (const char* name : {"old", "a"})
        QVERIFY(QFile::setPermissions(out(QString::fromUtf8(name)), QFile::ReadOwner | QFile::ExeOwner));
    QuenzoProcess process(arguments(words("--json --clear")), root());
    process.before = dropPrivilege;
    const Ended ended = process.end();
    for (const char* name : {"old", "a"})
        QVERIFY(QFile::setPermissions(out(QString::fromUtf8(name)),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(ended.code, 0);
    const QString outRoot = QDir(root()).canonicalPath() + QStringLiteral("/out/");
    const QString warning = QStringLiteral("not deleted: ") + outRoot + QStringLiteral("a/notes.txt, ")
        + outRoot + QStringLiteral("old");
    QCOMPARE(ended.error, QByteArray("quenzo: " + warning.toUtf8() + '\n'));
    QCOMPARE(ended.json().value(QStringLiteral("warnings")).toArray(), QJsonArray({warning}));
}

void tst_IconFailures::sheetThatCannotBeWrittenFails()
{
    const Ended ended = icons(R"([{"folder": "a"}])", words("--sheet marks"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("the sheet 'marks' cannot be written: "), ended.error.constData());
    QCOMPARE(filesBelow(out()).size(), 7);
}

void tst_IconFailures::sheetWithoutFontsIsWarnedOf()
{
    write(path(QStringLiteral("fonts.conf")), "<?xml version=\"1.0\"?>\n<fontconfig></fontconfig>\n");
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a"}])");
    QuenzoProcess process(arguments(words("--platform ios --sheet s.png")), root());
    process.setVariable("FONTCONFIG_FILE", path(QStringLiteral("fonts.conf")));
    const Ended ended = process.end();
    QCOMPARE(ended.code, 0);
    QVERIFY2(ended.error.contains("quenzo: no font was found; "), ended.error.constData());
    QVERIFY(!QImage(path(QStringLiteral("s.png"))).isNull());
}

void tst_IconFailures::sheetWithoutANamesLettersIsWarnedOf()
{
    write(path(QStringLiteral("fonts.conf")),
          "<?xml version=\"1.0\"?>\n<fontconfig><dir>" DEJAVU_FONTS "</dir></fontconfig>\n");
    write(path(QStringLiteral("channels.json")), R"([{"folder": "a", "name": "Official \u6e20\u9053 \u6e20"},
                                                     {"folder": "b", "name": "\u041c\u0430\u0433\u0430\u0437\u0438\u043d"}])");
    QuenzoProcess process(arguments(words("--sheet s.png")), root());
    process.setVariable("FONTCONFIG_FILE", path(QStringLiteral("fonts.conf")));
    const Ended ended = process.end();
    QCOMPARE(ended.code, 0);
    QCOMPARE(QString::fromUtf8(ended.error),
             QString::fromUtf8(
                 "quenzo: channel 'Official \u6e20\u9053 \u6e20': no installed font has \u6e20\u9053; "
                 "the sheet shows boxes there\n"));
}

void tst_IconFailures::sheetShowsNamesInAnyScript_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Chinese") << QString::fromUtf8("\u5b98\u65b9\u6e20\u9053");
    QTest::newRow("Japanese") << QString::fromUtf8("\u30b2\u30fc\u30e0\u306e\u5e97");
    QTest::newRow("Korean") << QString::fromUtf8("\uac8c\uc784 \uc0c1\uc810");
    QTest::newRow("Russian") << QString::fromUtf8("\u041c\u0430\u0433\u0430\u0437\u0438\u043d");
    QTest::newRow("Greek") << QString::fromUtf8("\u039c\u03b1\u03b3\u03b1\u03b6\u03af");
    QTest::newRow("Arabic") << QString::fromUtf8("\u0645\u062a\u062c\u0631");
    QTest::newRow("Hebrew") << QString::fromUtf8("\u05d7\u05e0\u05d5\u05ea");
    QTest::newRow("joined") << QString::fromUtf8("a\u200db\u00a0c\ufe0e");
}

void tst_IconFailures::sheetShowsNamesInAnyScript()
{
    QFETCH(const QString, name);
    const Ended ended =
        icons(R"([{"folder": "a", "name": ")" + name.toUtf8() + R"("}])", words("--sheet s.png"));
    QCOMPARE(ended.error, QByteArray());
    const QImage sheet(path(QStringLiteral("s.png")));
    const QRect caption(10, 44 + 146, 164, 34);
    QImage blank(caption.size(), sheet.format());
    blank.fill(Qt::white);
    QVERIFY2(sheet.copy(caption) != blank, "no caption");
}

QTEST_GUILESS_MAIN(tst_IconFailures)
#include "tst_iconfailures.moc"
