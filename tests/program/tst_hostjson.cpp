// SPDX-License-Identifier: MIT
#include "jsonschema.h"
#include "quenzoprocess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const auto& words = QuenzoProcess::words;

QJsonObject objectOf(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

// What --json prints, held against the schema that callers read.
class tst_HostJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void outcomesAreOfTheSchema_data();
    void outcomesAreOfTheSchema();
    void everyCommandHasADefinition();
    void everyCommandWasHeldAgainstTheSchema();
    void schemaForbidsOtherShapes_data();
    void schemaForbidsOtherShapes();
    void wrongWordsAreAnObject_data();
    void wrongWordsAreAnObject();
    void printsOfScriptsAreNoResults();
    void printsOfScriptsHarmNothingWithoutAnErrorStream();
    void progressComesAsLinesOfJson();

private:
    QString path(const char* name) const { return m_folder.filePath(QLatin1String(name)); }
    void write(const char* name, const QByteArray& content) const;

    QTemporaryDir m_folder;
    JsonSchema m_schema{QStringLiteral("output.schema.json")};
    QMap<QString, QSet<int>> m_seen;
};

void tst_HostJson::write(const char* name, const QByteArray& content) const
{
    QVERIFY(QDir().mkpath(QFileInfo(path(name)).path()));
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

void tst_HostJson::initTestCase()
{
    for (const char* folder : {"source", "moved", "put", "removed", "packed"})
        write(qPrintable(QStringLiteral("%1/file").arg(QLatin1String(folder))), "content");
    write("script.py",
          "def say():\n    print 'said'\n    return 'param'\n"
          "def fail():\n    print 'said'\n    raise ValueError('why')\n");
    QVERIFY(QFile::copy(QStringLiteral(SOURCE_DIR "/host/sample/skyharbour.apk"), path("game.apk")));
    // A stand-in that signs by copying.
    write("bin/apksigner",
          "#!/bin/sh\nfor last; do :; done\n[ \"$1\" = sign ] && exec cp \"$last\" \"$9\"\n"
          "echo 'Signer #1 certificate SHA-256 digest: 00ff'\n");
    QVERIFY(QFile::setPermissions(path("bin/apksigner"), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        database.setDatabaseName(path("records.db"));
        QVERIFY(database.open());
        QVERIFY(
            QSqlQuery(database).exec(QStringLiteral("CREATE TABLE channel(id INTEGER, name TEXT, x REAL)")));
    }
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
}

void tst_HostJson::outcomesAreOfTheSchema_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("code");
    const auto row = [](const char* line, int code = 0) {
        QTest::newRow(line) << QString::fromLatin1(line).replace(QLatin1Char('@'),
                                                                 QStringLiteral(SOURCE_DIR "/host/sample"))
                            << code;
    };
    row("help");
    row("version");
    row("copy --help");
    row("init job");
    row("init source", 1);
    row("build job/job.json --check");
    row("build job/job.json");
    row("build job/job.json --jobs 0", 2);
    row("build job/job.json --collect", 1);
    row("build script.py", 1);
    row("builds job/job.json");
    row("builds job/output/records.db --build 1");
    row("builds job/job.json --build 2", 1);
    row("builds job/job.json --build x", 2);
    row("builds script.py", 1);
    row("builds records.db", 1);
    row("import @/packages/harbourpay.zip sdk");
    row("import @/packages/damaged.zip sdk2", 1);
    row("import @/packages/another-sdk.zip sdk2 --sdk-id 7", 1);
    row("key show", 1);
    row("key new");
    row("key show");
    row("key show --secret");
    row("encrypt game.apk --exclude *.json");
    row("key check game.apk");
    row("decrypt game.apk");
    row("key check game.apk");
    row("key frobnicate", 2);
    row("check game.apk");
    row("check script.py", 1);
    row("sign game.apk", 2);
    row("sign game.apk --keystore script.py --pass-file script.py");
    row("sign script.py --keystore script.py --pass-file script.py", 1);
    row("encrypt game.apk");
    row("encrypt absent.apk", 1);
    row("decrypt game.apk");
    row("decrypt script.py", 1);
    row("pack packed packed.zip");
    row("pack packed script.py/x.zip", 1);
    row("pack packed onto.zip --onto packed.zip");
    row("import @/packages/harbourpay.zip sdk --dry-run");
    row("unpack packed.zip unpacked");
    row("unpack script.py unpacked2", 1);
    row("run script.py say");
    row("run script.py fail", 1);
    row("run --any script.py say");
    row("run --any script.py fail", 1);
    row("export 101 exported");
    row("export 999999 exported", 1);
    row("copy source target --dry-run");
    row("copy source target");
    row("copy absent target", 1);
    row("copy source source", 1);
    row("cut moved target2");
    row("cut absent target2", 1);
    row("output put put/out");
    row("output absent target3", 1);
    row("remove removed --dry-run");
    row("remove removed --yes");
    row("remove absent --yes", 1);
    row("remove source", 2);
    row("db --file new.db create game name:text", 1);
    row("db --file new.db create game name:text --init");
    row("db --file new.db tables");
    row("db --file new.db schema");
    row("db --file new.db insert game --encode name name=ab", 1);
    row("db --file records.db insert channel id=1 name=one");
    row("db --file records.db update channel name=two --where id=1");
    row("db --file records.db select channel");
    row("db --file records.db delete channel --all");
    row("db --file records.db select absent", 1);
    row("db --file absent.db select channel", 1);
    row("db --file records.db frobnicate channel", 2);
    row("encode abcdef");
    row("encode", 2);
    row("decode GasVGbg82d9ybGQ=");
    row("decode a b", 2);
    row("icons --icon @/icons/icon.png --marks @/icons/marks --out icons --platform ios "
        "@/icons/channels.json --sheet sheet.png");
    row("icons --icon @/icons/icon.png --marks @/icons/marks --out icons --platform ios --dry-run "
        "@/icons/channels.json");
    row("icons --icon absent.png --marks absent --out icons --platform ios @/icons/channels.json", 1);
    row("icons channels.json", 2);
    row("package-name @/skyharbour.apk");
    row("package-name script.py", 1);
    row("install absent.apk --yes", 1);
    row("install game.apk", 2);
    row("uninstall absent.apk --yes", 1);
    row("uninstall game.apk --timeout x", 2);
}

void tst_HostJson::outcomesAreOfTheSchema()
{
    QFETCH(const QString, line);
    QFETCH(const int, code);
    QStringList arguments = words(line.toUtf8().constData());
    arguments.insert(1, QStringLiteral("--json"));
    QuenzoProcess process(arguments, m_folder.path());
    process.setVariable("XDG_DATA_HOME", path("data"));
    process.setVariable("PATH", path("bin") + QLatin1Char(':') + qEnvironmentVariable("PATH"));
    const Ended ended = process.end();
    QVERIFY2(ended.code == code, ended.error.constData());
    QCOMPARE(ended.output.count('\n'), 1);
    QCOMPARE(m_schema.verdictOn(ended.output), QByteArray("valid"));
    const QJsonObject json = ended.json();
    QCOMPARE(json.value(QStringLiteral("ok")).toBool(), code == 0);
    QCOMPARE(ended.failure().value(QStringLiteral("code")) == QLatin1String("usage"), code == 2);
    m_seen[json.value(QStringLiteral("command")).toString()].insert(code == 0 ? 0 : 1);
}

void tst_HostJson::everyCommandHasADefinition()
{
    const QString help =
        QuenzoProcess(words("help --json")).end().result().value(QStringLiteral("text")).toString();
    QRegularExpressionMatchIterator lines =
        QRegularExpression(QStringLiteral("^  ([a-z][a-z-]+) "), QRegularExpression::MultilineOption)
            .globalMatch(help);
    const QJsonObject definitions = m_schema.object().value(QStringLiteral("$defs")).toObject();
    int count = 0;
    for (; lines.hasNext(); ++count) {
        const QString command = lines.next().captured(1);
        QVERIFY2(definitions.contains(command), qPrintable(command));
    }
    QVERIFY(count >= 17);
}

// Those that need a device to succeed are held against the schema where there are scripted ones, in
// tst_devicecommands.
void tst_HostJson::everyCommandWasHeldAgainstTheSchema()
{
    const QJsonArray commands = m_schema.object()
                                    .value(QStringLiteral("properties"))
                                    .toObject()
                                    .value(QStringLiteral("command"))
                                    .toObject()
                                    .value(QStringLiteral("enum"))
                                    .toArray();
    const QStringList elsewhere = words("devices install uninstall");
    const QStringList neverFail = words("help version");
    for (const QJsonValue& command : commands) {
        const QString name = command.toString();
        if (name.isEmpty() || elsewhere.contains(name))
            continue;
        QVERIFY2(m_seen.value(name).contains(0), qPrintable(name));
        QVERIFY2(m_seen.value(name).contains(1) || neverFail.contains(name), qPrintable(name));
    }
}

void tst_HostJson::schemaForbidsOtherShapes_data()
{
    QTest::addColumn<QByteArray>("json");
    const auto row = [](const char* name, const char* json) { QTest::newRow(name) << QByteArray(json); };
    row("no version", R"({"command":"version","ok":true,"result":{"version":"1.0.0"}})");
    row("other version", R"({"quenzo":2,"command":"version","ok":true,"result":{"version":"1.0.0"}})");
    row("unknown command", R"({"quenzo":1,"command":"frobnicate","ok":true,"result":{}})");
    row("no result", R"({"quenzo":1,"command":"run","ok":true})");
    row("incomplete result", R"({"quenzo":1,"command":"copy","ok":true,"result":{"files":1}})");
    row("unknown key", R"({"quenzo":1,"command":"run","ok":true,"result":{"other":1}})");
    row("no error", R"({"quenzo":1,"command":"run","ok":false})");
    row("unknown code",
        R"({"quenzo":1,"command":"run","ok":false,"error":{"code":"other","message":"m","cause":null,"hint":null}})");
    row("no message",
        R"({"quenzo":1,"command":"run","ok":false,"error":{"code":"failed","message":"","cause":null,"hint":null}})");
}

void tst_HostJson::schemaForbidsOtherShapes()
{
    QFETCH(const QByteArray, json);
    QVERIFY(!objectOf(json).isEmpty());
    QVERIFY(m_schema.verdictOn(json) != "valid");
}

void tst_HostJson::wrongWordsAreAnObject_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("hint");
    const auto row = [](const char* line, const char* command, const char* message, const char* hint) {
        QTest::newRow(line) << QString::fromLatin1(line) << QString::fromLatin1(command)
                            << QString::fromLatin1(message) << QString::fromLatin1(hint);
    };
    row("--json", "", "no command given", "see quenzo --help");
    row("--json cpoy", "", "unknown command 'cpoy'; did you mean 'copy'?", "see quenzo --help");
    row("--json --frob copy", "", "unknown command '--frob'", "see quenzo --help");
    row("cpoy --json", "", "unknown command 'cpoy'; did you mean 'copy'?", "see quenzo --help");
    row("copy --json", "copy", "copy: missing: SRC, DEST", "see quenzo copy --help");
    row("copy a b --json --frob", "copy", "copy: unknown option '--frob'", "see quenzo copy --help");
    row("copy a b --json -qv", "copy", "--quiet and --verbose exclude each other", "see quenzo copy --help");
    row("copy a b --json --progress x", "copy", "--progress: 'x' is none of terminal, json",
        "see quenzo copy --help");
}

void tst_HostJson::wrongWordsAreAnObject()
{
    QFETCH(const QString, line);
    QFETCH(const QString, command);
    QFETCH(const QString, message);
    QFETCH(const QString, hint);
    const Ended ended = QuenzoProcess(words(line.toUtf8().constData())).end();
    QCOMPARE(ended.code, 2);
    QCOMPARE(m_schema.verdictOn(ended.output), QByteArray("valid"));
    QCOMPARE(ended.json().value(QStringLiteral("command")).toString(), command);
    QCOMPARE(ended.failure().value(QStringLiteral("code")).toString(), QStringLiteral("usage"));
    QCOMPARE(ended.failure().value(QStringLiteral("message")).toString(), message);
    QCOMPARE(ended.failure().value(QStringLiteral("hint")).toString(), hint);
}

void tst_HostJson::printsOfScriptsAreNoResults()
{
    const Ended plain = QuenzoProcess(words("run script.py say"), m_folder.path()).end();
    QCOMPARE(plain.output, QByteArray("say succeeded\n"));
    QCOMPARE(plain.error, QByteArray("said\n"));
    const Ended json = QuenzoProcess(words("run script.py say --json"), m_folder.path()).end();
    QCOMPARE(m_schema.verdictOn(json.output), QByteArray("valid"));
    QCOMPARE(json.error, QByteArray("said\n"));
}

void tst_HostJson::printsOfScriptsHarmNothingWithoutAnErrorStream()
{
    QuenzoProcess process({QStringLiteral("-c"), QStringLiteral("exec \"$0\" run script.py say 2>&-"),
                           QStringLiteral(QUENZO_PROGRAM)},
                          m_folder.path());
    process.setProgram(QStringLiteral("/bin/sh"));
    const Ended ended = process.end();
    QCOMPARE(ended.code, 0);
    QCOMPARE(ended.output, QByteArray("say succeeded\n"));
}

void tst_HostJson::progressComesAsLinesOfJson()
{
    write("wait.py", "import time\ndef wait():\n    time.sleep(0.5)\n    return 'param'\n");
    const Ended ended =
        QuenzoProcess(words("run wait.py wait --json --progress=json"), m_folder.path()).end();
    QCOMPARE(m_schema.verdictOn(ended.output), QByteArray("valid"));
    const QList<QByteArray> lines = ended.error.trimmed().split('\n');
    QVERIFY2(!lines.first().isEmpty(), ended.error.constData());
    for (const QByteArray& line : lines) {
        const QJsonObject progress = objectOf(line).value(QStringLiteral("progress")).toObject();
        QCOMPARE(progress.keys(), words("doing done total unit"));
        QCOMPARE(progress.value(QStringLiteral("doing")).toString(), QStringLiteral("running"));
    }
}

QTEST_GUILESS_MAIN(tst_HostJson)
#include "tst_hostjson.moc"
