// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"
#include "terminal.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

// Packing after the model of an archive, planned imports, and the commands about keys.
class tst_ArchiveCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void likeGivesTheSampleBackByteByByte();
    void ontoPutsTheFolderOverTheBase();
    void packingRefusals_data();
    void packingRefusals();
    void archivesGoThroughPipes_data();
    void archivesGoThroughPipes();
    void packageComesThroughAPipe();
    void onlyFilesCanBeCheckedAndEncrypted();
    void failuresGiveNoArchive_data();
    void failuresGiveNoArchive();
    void terminalsGetAndGiveNoArchive_data();
    void terminalsGetAndGiveNoArchive();
    void interruptedPipeLeavesNothingBehind();
    void dryRunOfAnImportNamesEveryFile();
    void dryRunFailsLikeTheImport_data();
    void dryRunFailsLikeTheImport();
    void excludedAssetsStayAndComeBack();
    void emptyPatternIsRefused();
    void keyIsMadeShownAndNeverOverwritten();
    void checkNamesTheKeyAnApkNeeds();
    void wordsOfKeyAreChecked_data();
    void wordsOfKeyAreChecked();

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    void write(const char* name, const QByteArray& content) const;
    QByteArray read(const QByteArray& name) const;
    Ended run(const QByteArray& line, const QByteArray& input = {}) const;
    QStringList filesOnTheWay() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_ArchiveCommands::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QFile::copy(QStringLiteral(SAMPLE "/skyharbour.apk"), path("base.apk")));
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("tmp")));
    for (const char* name : {"harbourpay.zip", "another-sdk.zip", "damaged.zip"})
        QVERIFY(QFile::copy(QStringLiteral(SAMPLE "/packages/") + QLatin1String(name), path(name)));
}

void tst_ArchiveCommands::write(const char* name, const QByteArray& content) const
{
    const QString file = path(name);
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QFile target(file);
    QVERIFY(target.open(QIODevice::WriteOnly) && target.write(content) == content.size());
}

QByteArray tst_ArchiveCommands::read(const QByteArray& name) const
{
    QFile file(path(name.constData()));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

// Under a person who has no key yet.
Ended tst_ArchiveCommands::run(const QByteArray& line, const QByteArray& input) const
{
    QuenzoProcess process(QuenzoProcess::words(line.constData()), m_folder->path());
    process.setVariable("XDG_DATA_HOME", path("data"));
    process.setVariable("QUENZO_KEY", QString());
    process.setVariable("TMPDIR", path("tmp"));
    return process.end(input);
}

QStringList tst_ArchiveCommands::filesOnTheWay() const
{
    return QDir(path("tmp")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
}

void tst_ArchiveCommands::likeGivesTheSampleBackByteByByte()
{
    QCOMPARE(run("unpack base.apk game").code, 0);
    const Ended ended = run("pack game out.apk --like base.apk");
    QCOMPARE(ended.error, QByteArray());
    QVERIFY2(ended.output.startsWith("packed game into out.apk, "), ended.output.constData());
    QVERIFY2(ended.output.endsWith(" kB\n"), ended.output.constData());
    QCOMPARE(read("out.apk"), read("base.apk"));
}

void tst_ArchiveCommands::ontoPutsTheFolderOverTheBase()
{
    write("over/assets/channel.json", "{}");
    QCOMPARE(run("unpack base.apk game").code, 0);
    QCOMPARE(run("pack over out.apk --onto base.apk").code, 0);
    QCOMPARE(run("unpack out.apk back").code, 0);
    QCOMPARE(read("back/assets/channel.json"), QByteArray("{}"));
    QCOMPARE(read("back/AndroidManifest.xml"), read("game/AndroidManifest.xml"));
    QCOMPARE(run("check out.apk").code, 0);
}

void tst_ArchiveCommands::packingRefusals_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* line, int code, const char* text) {
        QTest::newRow(line) << QByteArray(line) << code << QByteArray(text);
    };
    row("pack over out.apk --like base.apk --onto base.apk", 2, "--like and --onto exclude each other");
    row("pack over out.apk --like absent.apk", 1, "'absent.apk' does not exist");
    row("pack over out.apk --onto absent.apk", 1, "'absent.apk' does not exist");
    row("pack over out.apk --like over/text", 1, "this is not a zip archive");
    row("pack over out.apk --onto=", 1, "the base is empty");
}

void tst_ArchiveCommands::packingRefusals()
{
    QFETCH(const QByteArray, line);
    QFETCH(const int, code);
    QFETCH(const QByteArray, text);
    write("over/text", "no archive");
    const Ended ended = run(line);
    QCOMPARE(ended.code, code);
    QVERIFY2(ended.error.contains(text), ended.error.constData());
    QVERIFY(!QFileInfo::exists(path("out.apk")));
}

void tst_ArchiveCommands::archivesGoThroughPipes_data()
{
    QTest::addColumn<QByteArray>("options");
    for (const char* options : {"", " --like base.apk", " --onto base.apk", " -q"})
        QTest::newRow(options) << QByteArray(options);
}

void tst_ArchiveCommands::archivesGoThroughPipes()
{
    QFETCH(const QByteArray, options);
    const Ended unpacked = run("unpack - game", read("base.apk"));
    QCOMPARE(unpacked.error, QByteArray());
    QCOMPARE(unpacked.output, QByteArray("unpacked the standard input into game\n"));
    QCOMPARE(run("unpack base.apk again").code, 0);

    const Ended piped = run("pack game -" + options);
    QCOMPARE(piped.code, 0);
    const bool quiet = options.endsWith("-q");
    QVERIFY2(quiet ? piped.error.isEmpty() : piped.error.startsWith("packed game into the standard output, "),
             piped.error.constData());
    QCOMPARE(run("pack again out.apk" + options).code, 0);
    QVERIFY(piped.output == read("out.apk"));
    QCOMPARE(filesOnTheWay(), QStringList());

    const QJsonObject result = run("unpack - third --json", piped.output).result();
    QCOMPARE(result.value(QStringLiteral("folder")).toString(), QStringLiteral("third"));
}

void tst_ArchiveCommands::packageComesThroughAPipe()
{
    const QByteArray package = read("harbourpay.zip");
    const Ended planned = run("import - sdk --dry-run", package);
    QVERIFY2(planned.output.endsWith("would import files: 3\n"), planned.error.constData());
    const Ended imported = run("import - sdk", package);
    QCOMPARE(imported.error, QByteArray());
    QCOMPARE(imported.output, QByteArray("imported the standard input into sdk\n"));
    QCOMPARE(read("sdk/config.xml").isEmpty(), false);
    QCOMPARE(run("import - other", "no archive").code, 1);
    QCOMPARE(filesOnTheWay(), QStringList());
}

void tst_ArchiveCommands::onlyFilesCanBeCheckedAndEncrypted()
{
    for (const char* command : {"check", "encrypt", "decrypt"}) {
        const Ended ended = run(QByteArray(command) + " -", read("base.apk"));
        QCOMPARE(
            ended.error,
            QByteArray("quenzo: '-' does not exist (- stands for no file here; one of this name is ./-)\n"));
        QCOMPARE(ended.code, 1);
    }
}

void tst_ArchiveCommands::failuresGiveNoArchive_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* line, int code, const char* text) {
        QTest::newRow(line) << QByteArray(line) << code << QByteArray(text);
    };
    row("pack over - --json", 2, "the standard output is either for --json or for the archive");
    row("pack absent -", 1, "'absent' does not exist");
    row("pack over - --like over/text", 1, "this is not a zip archive");
    row("unpack - target", 1, "unpacking failed");
}

void tst_ArchiveCommands::failuresGiveNoArchive()
{
    QFETCH(const QByteArray, line);
    QFETCH(const int, code);
    QFETCH(const QByteArray, text);
    write("over/text", "no archive");
    const Ended ended = run(line, "no archive");
    QCOMPARE(ended.code, code);
    QVERIFY2(ended.error.contains(text) || ended.json().contains(QStringLiteral("error")),
             ended.error.constData());
    QVERIFY(code == 2 || ended.output.isEmpty());
    QVERIFY(!QFileInfo::exists(path("target")));
    QCOMPARE(filesOnTheWay(), QStringList());
}

void tst_ArchiveCommands::terminalsGetAndGiveNoArchive_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("pack") << QByteArray("pack game -") << QByteArray("an archive is nothing for a terminal");
    QTest::newRow("unpack") << QByteArray("unpack - game") << QByteArray("no archive can be typed");
}

void tst_ArchiveCommands::terminalsGetAndGiveNoArchive()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QByteArray, text);
    Terminal terminal;
    QuenzoProcess process(QuenzoProcess::words(line.constData()), m_folder->path());
    process.setStandardInputFile(terminal.path());
    process.setStandardOutputFile(terminal.path());
    const Ended ended = process.end();
    QCOMPARE(ended.code, 2);
    QVERIFY2(ended.error.contains(text), ended.error.constData());
    QCOMPARE(terminal.shown(), QByteArray());
}

void tst_ArchiveCommands::interruptedPipeLeavesNothingBehind()
{
    QuenzoProcess process(QuenzoProcess::words("unpack - game"), m_folder->path());
    process.setVariable("TMPDIR", path("tmp"));
    process.start();
    process.write("PK");
    QTRY_VERIFY_WITH_TIMEOUT(!filesOnTheWay().isEmpty(), 30000);
    kill(static_cast<pid_t>(process.processId()), SIGINT);
    // The other side's end is still open: only the signal can have ended it.
    QVERIFY(process.waitForFinished(30000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(filesOnTheWay(), QStringList());
}

void tst_ArchiveCommands::dryRunOfAnImportNamesEveryFile()
{
    write("sdk/config.xml", "mine");
    const Ended ended = run("import harbourpay.zip sdk --dry-run");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output,
             QByteArray("would import 'assets/harbourpay.json' to 'sdk/assets/harbourpay.json'\n"
                        "would import 'config.xml' to 'sdk/config.xml', which is replaced\n"
                        "would import 'res/values/harbourpay_strings.xml' to "
                        "'sdk/res/values/harbourpay_strings.xml'\n"
                        "would import files: 3\n"));
    const QJsonObject json = run("import harbourpay.zip sdk --dry-run --json").json();
    QVERIFY2(QJsonDocument(json).toJson().contains("\"replaces\": true"), "no entry is replaced");
    QCOMPARE(read("sdk/config.xml"), QByteArray("mine"));
    QCOMPARE(QDir(path("sdk")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size(), 1);
}

void tst_ArchiveCommands::dryRunFailsLikeTheImport_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char* line : {"import another-sdk.zip sdk --sdk-id 7", "import damaged.zip sdk",
                             "import base.apk sdk", "import harbourpay.zip base.apk"})
        QTest::newRow(line) << QByteArray(line);
}

void tst_ArchiveCommands::dryRunFailsLikeTheImport()
{
    QFETCH(const QByteArray, line);
    const Ended planned = run(line + " --dry-run");
    const Ended done = run(line);
    QCOMPARE(planned.code, 1);
    QCOMPARE(planned.error, done.error);
    QCOMPARE(done.code, 1);
}

void tst_ArchiveCommands::excludedAssetsStayAndComeBack()
{
    QCOMPARE(run("unpack base.apk game").code, 0);
    const QByteArray plain = "assets/text/story_en.txt";
    const QByteArray other = "assets/levels/harbour.json";
    const Ended ended = run("encrypt base.apk --exclude " + plain + " --exclude *.nobody");
    QCOMPARE(ended.code, 0);
    QVERIFY2(ended.error.contains("no asset is called like '*.nobody'"), ended.error.constData());
    QCOMPARE(run("unpack base.apk encrypted").code, 0);
    QCOMPARE(read("encrypted/" + plain), read("game/" + plain));
    QVERIFY(read("encrypted/" + other).startsWith("QZASSET1"));
    QCOMPARE(run("decrypt base.apk").code, 0);
    QCOMPARE(run("unpack base.apk back").code, 0);
    QCOMPARE(read("back/" + other), read("game/" + other));
    QCOMPARE(read("back/" + plain), read("game/" + plain));
}

void tst_ArchiveCommands::emptyPatternIsRefused()
{
    const Ended ended = run("encrypt base.apk --exclude=");
    QVERIFY2(
        ended.error.startsWith("quenzo: --exclude takes a pattern of names (see quenzo encrypt --help)\n"),
        ended.error.constData());
    QCOMPARE(ended.code, 2);
}

void tst_ArchiveCommands::keyIsMadeShownAndNeverOverwritten()
{
    const Ended none = run("key show");
    QVERIFY2(none.error.contains("there is no key: "), none.error.constData());
    QCOMPARE(none.code, 1);
    QCOMPARE(run("key new").code, 0);
    const QByteArray key = read("data/quenzo/encrypt.key");
    const Ended shown = run("key show");
    QCOMPARE(shown.code, 0);
    QVERIFY2(shown.output.contains("data/quenzo/encrypt.key\nfingerprint  "), shown.output.constData());
    QVERIFY2(!shown.output.contains(key.trimmed()), shown.output.constData());
    QVERIFY(run("key show --secret").output.contains(key.trimmed()));
    QCOMPARE(run("key new").code, 1);
    QCOMPARE(read("data/quenzo/encrypt.key"), key);
    QCOMPARE(run("key new --key team.key").code, 0);
    QVERIFY(read("team.key") != key);
}

void tst_ArchiveCommands::checkNamesTheKeyAnApkNeeds()
{
    QCOMPARE(run("key check base.apk").output, QByteArray("base.apk is not encrypted\n"));
    QCOMPARE(run("key new --key team.key").code, 0);
    QCOMPARE(run("encrypt base.apk --key team.key").code, 0);
    const Ended right = run("key check base.apk --key team.key");
    QVERIFY2(right.output.startsWith("base.apk was encrypted with the key "), right.output.constData());
    QCOMPARE(right.code, 0);
    const Ended none = run("key check base.apk");
    QVERIFY2(none.error.contains("there is no key"), none.error.constData());
    QCOMPARE(none.code, 1);
    QCOMPARE(run("key new").code, 0);
    const Ended wrong = run("key check base.apk");
    QVERIFY2(wrong.error.contains("is the key "), wrong.error.constData());
    QCOMPARE(wrong.code, 1);
}

void tst_ArchiveCommands::wordsOfKeyAreChecked_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* line, const char* text) {
        QTest::newRow(line) << QByteArray(line) << QByteArray(text);
    };
    row("key show base.apk", "key show: 'base.apk' is one word too many");
    row("key show --key=", "--key takes the name of a file");
}

void tst_ArchiveCommands::wordsOfKeyAreChecked()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QByteArray, text);
    const Ended ended = run(line);
    QCOMPARE(ended.error, "quenzo: " + text + " (see quenzo key --help)\n");
    QCOMPARE(ended.code, 2);
}

QTEST_GUILESS_MAIN(tst_ArchiveCommands)
#include "tst_archivecommands.moc"
