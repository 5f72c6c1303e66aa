// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

namespace {

// Every letter beyond ASCII of our texts is as wide as two, but for the ellipsis.
int columnsOf(const QString& text)
{
    const auto isWide = [](QChar letter) { return letter.unicode() > 0x2fff; };
    return text.size() + static_cast<int>(std::count_if(text.cbegin(), text.cend(), isWide));
}

Ended quenzo(const char* line)
{
    return QuenzoProcess(QuenzoProcess::words(line)).end();
}

} // namespace

// What the program makes of its words before a command has a say.
class tst_HostCommandLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void helpIsGivenInEveryForm_data();
    void helpIsGivenInEveryForm();
    void helpFitsTheTerminal();
    void versionIsGivenInEveryForm_data();
    void versionIsGivenInEveryForm();
    void wrongWordsAreNamed_data();
    void wrongWordsAreNamed();
    void allThatIsMissingIsNamedTogether_data();
    void allThatIsMissingIsNamedTogether();
    void wordsBehindDashesAreNoOptions();
    void commonOptionsMayStandFirst_data();
    void commonOptionsMayStandFirst();
    void quietRunsSayNothing();
    void resultsAreGivenToTheQuietToo();
    void verboseRunsTellTheirSteps();
    void verboseRunsTellFoldersAndScripts();
    void dashStandsForTheInput_data();
    void dashStandsForTheInput();
    void inputThatIsNoTextIsRefused();
    void conventionsNameTestsThatExist();
};

void tst_HostCommandLine::helpIsGivenInEveryForm_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("beginning");
    const QByteArray overview = "Usage: quenzo COMMAND [options] [arguments]\n\nCommands:\n  ";
    for (const char* line : {"help", "--help", "-h", "-- help"})
        QTest::newRow(line) << QString::fromLatin1(line) << overview;
    for (const char* line :
         {"help copy", "copy --help", "copy -h", "copy a b --help", "-- copy --help", "help -- copy"})
        QTest::newRow(line) << QString::fromLatin1(line)
                            << QByteArray("Usage: quenzo copy [options] SRC DEST\n");
}

void tst_HostCommandLine::helpIsGivenInEveryForm()
{
    QFETCH(QString, line);
    QFETCH(QByteArray, beginning);
    const Ended ended = quenzo(qPrintable(line));
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output.left(beginning.size()), beginning);
    QCOMPARE(ended.code, 0);
}

void tst_HostCommandLine::helpFitsTheTerminal()
{
    QStringList names{QString()};
    const QString overview = QString::fromUtf8(quenzo("help").output);
    auto commands = QRegularExpression(QStringLiteral("^  ([a-z-]+)  "), QRegularExpression::MultilineOption)
                        .globalMatch(overview);
    while (commands.hasNext())
        names += commands.next().captured(1);
    QVERIFY(names.contains(QStringLiteral("icons")) && names.contains(QStringLiteral("version")));
    names.removeAll(QStringLiteral("version"));
    for (const char* locale : {"C.UTF-8", "zh_CN.UTF-8"}) {
        for (const QString& name : qAsConst(names)) {
            QuenzoProcess process({QStringLiteral("help"), name});
            if (name.isEmpty() || name == QLatin1String("help"))
                process.setArguments({QStringLiteral("help")});
            process.setVariable("LC_ALL", QString::fromLatin1(locale));
            const QString text = QString::fromUtf8(process.end().output);
            QVERIFY(text.size() > 100);
            for (const QString& line : text.split(QLatin1Char('\n')))
                QVERIFY2(columnsOf(line) < 80, qPrintable(line));
        }
    }
}

void tst_HostCommandLine::versionIsGivenInEveryForm_data()
{
    QTest::addColumn<QString>("line");
    for (const char* line : {"version", "--version", "-V"})
        QTest::newRow(line) << QString::fromLatin1(line);
}

void tst_HostCommandLine::versionIsGivenInEveryForm()
{
    QFETCH(QString, line);
    const Ended ended = quenzo(qPrintable(line));
    const QRegularExpression form(QStringLiteral("^quenzo \\d+\\.\\d+\\.\\d+\n$"));
    QVERIFY2(form.match(QString::fromUtf8(ended.output)).hasMatch(), ended.output.constData());
    QCOMPARE(ended.code, 0);
}

void tst_HostCommandLine::wrongWordsAreNamed_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("error");
    const auto row = [](const char* line, const char* error) {
        QTest::newRow(line) << QString::fromLatin1(line) << QByteArray("quenzo: ") + error + '\n';
    };
    row("", "no command given (see quenzo --help)");
    row("cpoy a b", "unknown command 'cpoy'; did you mean 'copy'? (see quenzo --help)");
    row("instal x", "unknown command 'instal'; did you mean 'install'? (see quenzo --help)");
    row("COPY a b", "unknown command 'COPY'; did you mean 'copy'? (see quenzo --help)");
    row("hlep", "unknown command 'hlep'; did you mean 'help'? (see quenzo --help)");
    row("help frobnicate", "unknown command 'frobnicate' (see quenzo --help)");
    row("xyz", "unknown command 'xyz' (see quenzo --help)");
    row("copy", "copy: missing: SRC, DEST (see quenzo copy --help)");
    row("copy a", "copy: missing: DEST (see quenzo copy --help)");
    row("copy a b c", "copy: 'c' is one word too many (see quenzo copy --help)");
    row("copy a b --jsno", "copy: unknown option '--jsno'; did you mean '--json'? (see quenzo copy --help)");
    row("output a b --laeve x",
        "output: unknown option '--laeve'; did you mean '--leave'? (see quenzo output --help)");
    row("x", "unknown command 'x' (see quenzo --help)");
    row("zzz", "unknown command 'zzz' (see quenzo --help)");
    row("icons --ot", "icons: unknown option '--ot'; did you mean '--out'? (see quenzo icons --help)");
    row("copy a b -x", "copy: unknown option '-x' (see quenzo copy --help)");
    row("icons list --sheet", "icons: missing value after '--sheet' (see quenzo icons --help)");
    row("help pack extra", "help: 'extra' is one word too many (see quenzo --help)");
    row("version extra", "version: 'extra' is one word too many (see quenzo --help)");
    row("copy a b --frobnicate", "copy: unknown option '--frobnicate' (see quenzo copy --help)");
    row("copy a b --progress jsno",
        "--progress: 'jsno' is none of terminal, json; did you mean 'json'? (see quenzo copy --help)");
    row("key shwo", "key: 'shwo' is none of show, new, check; did you mean 'show'? (see quenzo key --help)");
    row("db tabels",
        "db: 'tabels' is none of insert, update, delete, select, tables, schema, create; did you "
        "mean 'tables'? (see quenzo db --help)");
    row("db drop t --file x",
        "db: 'drop' is none of insert, update, delete, select, tables, schema, create (see quenzo db "
        "--help)");
}

void tst_HostCommandLine::allThatIsMissingIsNamedTogether_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("missing");
    const auto row = [](const char* line, const char* missing) {
        QTest::newRow(line) << QString::fromLatin1(line) << QByteArray(missing);
    };
    row("icons", "CHANNELS.json, --icon FILE, --marks DIR, --out DIR, --platform NAME");
    row("icons --layout android-adaptive --out x",
        "CHANNELS.json, --icon FILE, --marks DIR, --background FILE");
    row("icons list --icon i --marks m --out o --layout plain", "--platform NAME");
    row("sign", "APK, --keystore FILE, --pass-file FILE or --pass-env NAME");
    row("sign --pass-env X", "APK, --keystore FILE");
    row("key check", "APK");
    row("key", "WHAT");
    row("db", "OPERATION, --file DB");
    row("db tables", "--file DB");
    row("db schema", "--file DB");
    row("db select", "TABLE, --file DB");
    row("db insert --file x", "TABLE");
    row("db create", "TABLE, COLUMN:TYPE, --file DB");
    row("db create t --file x", "COLUMN:TYPE");
    row("db update", "TABLE, --file DB, --where COLUMN=VALUE");
    row("db delete --file x", "TABLE, --where COLUMN=VALUE or --all");
    row("db delete t --all", "--file DB");
}

void tst_HostCommandLine::allThatIsMissingIsNamedTogether()
{
    QFETCH(const QString, line);
    QFETCH(const QByteArray, missing);
    const Ended ended = quenzo(qPrintable(line));
    const QByteArray command = line.section(QLatin1Char(' '), 0, 0).toLatin1();
    QCOMPARE(ended.error,
             "quenzo: " + command + ": missing: " + missing + " (see quenzo " + command + " --help)\n");
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(ended.code, 2);
}

void tst_HostCommandLine::wrongWordsAreNamed()
{
    QFETCH(QString, line);
    QFETCH(QByteArray, error);
    const Ended ended = quenzo(qPrintable(line));
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(ended.error, error);
    QCOMPARE(ended.code, 2);
}

void tst_HostCommandLine::wordsBehindDashesAreNoOptions()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("--help/inner")));
    const Ended ended = QuenzoProcess(QuenzoProcess::words("copy -- --help -V"), folder.path()).end();
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.code, 0);
    QVERIFY(QDir(folder.filePath(QStringLiteral("-V/inner"))).exists());
    QCOMPARE(quenzo("encode -- --help").output, quenzo("-- encode -- --help").output);
}

void tst_HostCommandLine::commonOptionsMayStandFirst_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("behind");
    const auto row = [](const char* first, const char* behind) {
        QTest::newRow(first) << QString::fromLatin1(first) << QString::fromLatin1(behind);
    };
    row("--json encode abcdef", "encode --json abcdef");
    row("-v --json encode abcdef", "encode -v --json abcdef");
    row("-q encode abcdef", "encode -q abcdef");
    row("--progress=json -q -- encode abcdef", "encode --progress=json -q abcdef");
    row("--progress json --json encode abcdef", "encode --progress json --json abcdef");
    row("--progress x encode abcdef", "encode --progress x abcdef");
    row("-qv copy a b", "copy -qv a b");
    row("--json help copy", "help copy --json");
    row("-q help copy", "help copy");
    row("--json --help", "--help --json");
    row("--json -V", "-V --json");
    row("-q", "");
    row("-v icons --platform ios", "icons -v --platform ios");
    row("-f encode abcdef", "-f");
    row("--jso encode abcdef", "--jso");
}

void tst_HostCommandLine::commonOptionsMayStandFirst()
{
    QFETCH(const QString, first);
    QFETCH(const QString, behind);
    const Ended ended = quenzo(qPrintable(first));
    const Ended wanted = quenzo(qPrintable(behind));
    QCOMPARE(ended.error, wanted.error);
    QCOMPARE(ended.output, wanted.output);
    QCOMPARE(ended.code, wanted.code);
}

void tst_HostCommandLine::quietRunsSayNothing()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("source/inner")));
    const Ended ended = QuenzoProcess(QuenzoProcess::words("copy -q source target"), folder.path()).end();
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output, QByteArray());
    QCOMPARE(ended.code, 0);
    const Ended failed = QuenzoProcess(QuenzoProcess::words("copy -q absent target"), folder.path()).end();
    QVERIFY2(failed.error.startsWith("quenzo: there is no folder "), failed.error.constData());
    QCOMPARE(failed.code, 1);
}

void tst_HostCommandLine::resultsAreGivenToTheQuietToo()
{
    const Ended ended = quenzo("encode -q ab");
    QCOMPARE(ended.error, QByteArray()); // a warning is none
    QCOMPARE(ended.output, QByteArray("\n"));
    QCOMPARE(quenzo("encode -q abcd").output, QByteArray("WYJjZA==\n"));
}

void tst_HostCommandLine::verboseRunsTellTheirSteps()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("source/inner")));
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("target")));
    const QString steps = QStringLiteral("quenzo: from '%1/source' to '%1/target'\n"
                                         "quenzo: in the folder '%1/source'\n"
                                         "quenzo: in the folder '%1/source/inner'\n")
                              .arg(QDir(folder.path()).canonicalPath());
    const auto told = [&folder](const char* line) {
        return QString::fromUtf8(QuenzoProcess(QuenzoProcess::words(line), folder.path()).end().error);
    };
    QCOMPARE(told("copy -v source target"), steps);
    QCOMPARE(told("copy -q source target"), QString());
    QCOMPARE(told("cut -v source target"),
             steps
                 + QStringLiteral("quenzo: removed the folder '%1/source/inner'\n")
                       .arg(QDir(folder.path()).canonicalPath()));
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("source/inner")));
    const QString output = told("output -v source target");
    QVERIFY2(output.startsWith(steps), qPrintable(output));
}

void tst_HostCommandLine::verboseRunsTellFoldersAndScripts()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("tree/one/two")));
    const auto run = [&folder](const char* line) {
        return QuenzoProcess(QuenzoProcess::words(line), folder.path()).end();
    };
    QCOMPARE(run("pack -v tree a.zip").error,
             QByteArray("quenzo: packing: calling the script with dest 'a.zip', src 'tree'\n"));
    QCOMPARE(run("pack -v tree b.zip --like a.zip").error,
             QByteArray("quenzo: packing: calling zipLike of pytoolForQt.py\n"));
    const QString real = QDir(folder.path()).canonicalPath();
    QCOMPARE(QString::fromUtf8(run("remove -v tree --yes").error),
             QStringLiteral("quenzo: removed the folder '%1/tree/one/two'\n"
                            "quenzo: removed the folder '%1/tree/one'\n"
                            "quenzo: removed the folder '%1/tree'\n")
                 .arg(real));
}

void tst_HostCommandLine::dashStandsForTheInput_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("output");
    QTest::newRow("encode") << QStringLiteral("encode -") << QByteArray("hello world\n")
                            << QByteArray("GasVGbg82d9ybGQ=\n");
    QTest::newRow("decode") << QStringLiteral("decode -") << QByteArray("GasVGbg82d9ybGQ=\n")
                            << QByteArray("hello world\n");
    QTest::newRow("one line break is taken off")
        << QStringLiteral("encode -") << QByteArray("abc\n\n") << QByteArray("WYJjCg==\n");
}

void tst_HostCommandLine::dashStandsForTheInput()
{
    QFETCH(const QString, line);
    QFETCH(const QByteArray, input);
    QFETCH(const QByteArray, output);
    const Ended ended = QuenzoProcess(QuenzoProcess::words(qPrintable(line))).end(input);
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output, output);
}

void tst_HostCommandLine::inputThatIsNoTextIsRefused()
{
    const Ended ended = QuenzoProcess(QuenzoProcess::words("encode - --json")).end("a\xff");
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.failure().value(QStringLiteral("code")).toString(), QStringLiteral("bad-input"));
}

void tst_HostCommandLine::conventionsNameTestsThatExist()
{
    QFile page(QStringLiteral(SOURCE_DIR "/docs/conventions.md"));
    QVERIFY(page.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = page.readAll().split('\n');
    const QRegularExpression form(QStringLiteral("\\| `(\\w+)\\.(\\w+)` \\|$"));
    int rows = 0;
    for (const QByteArray& line : lines) {
        if (!line.startsWith('|') || line.startsWith("| what") || line.startsWith("| ---"))
            continue;
        const QRegularExpressionMatch test = form.match(QString::fromUtf8(line));
        QVERIFY2(test.hasMatch(), line.constData());
        QFile source(QStringLiteral(SOURCE_DIR "/tests/program/tst_%1.cpp").arg(test.captured(1)));
        QVERIFY2(source.open(QIODevice::ReadOnly), line.constData());
        const QString definition = QStringLiteral("::%1()\n").arg(test.captured(2));
        QVERIFY2(QString::fromUtf8(source.readAll()).contains(definition), line.constData());
        ++rows;
    }
    QVERIFY(rows > 20);
}

QTEST_GUILESS_MAIN(tst_HostCommandLine)
#include "tst_hostcommandline.moc"
