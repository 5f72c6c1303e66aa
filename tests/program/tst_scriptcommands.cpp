// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"

#include <QTemporaryDir>
#include <QtTest>

// The program's script commands, and what it says of their failures.
class tst_ScriptCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void failuresAreToldUnderEveryRule_data();
    void failuresAreToldUnderEveryRule();
    void workingFolderBringsNoCode_data();
    void workingFolderBringsNoCode();
    void folderAsInputIsAFailure();
    void anyAnswerIsPrinted_data();
    void anyAnswerIsPrinted();
    void anyAnswerThatThereIsNotIsAFailure_data();
    void anyAnswerThatThereIsNotIsAFailure();
    void assetsComeBackWithTheirKeyOnly();
    void emptyNameOfAKeyIsRefused_data();
    void emptyNameOfAKeyIsRefused();

private:
    QString path(const char* name) const { return m_folder.filePath(QLatin1String(name)); }
    void write(const char* name, const QByteArray& content) const;
    QByteArray read(const char* name) const;
    void writeKey(const char* name, char digit) const;
    Ended run(const QStringList& words) const;
    Ended run(const char* line) const { return run(QuenzoProcess::words(line)); }

    QTemporaryDir m_folder;
};

void tst_ScriptCommands::initTestCase()
{
    write("script.py",
          "def good(): return 'param'\n"
          "def bad():\n    raise ValueError('why')\n"
          "def other(): return 'another'\n");
    write("broken.py", "raise KeyError('in the body')\n");
    write("no-archive.zip", "no archive");
    write("QtProject/qtlogging.ini", "[Rules]\n*=false\nquenzo.*=false\n");
    QVERIFY(QDir().mkpath(path("folder")));
    write("folder/file", "content");
}

void tst_ScriptCommands::write(const char* name, const QByteArray& content) const
{
    const QString file = path(name);
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QFile target(file);
    QVERIFY(target.open(QIODevice::WriteOnly) && target.write(content) == content.size());
}

void tst_ScriptCommands::failuresAreToldUnderEveryRule_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    const auto row = [this](const char* name, const char* command, const char* told) {
        const auto add = [&](const char* rules, const char* variable, const QString& value) {
            QTest::addRow("%s, %s", name, rules)
                << QString::fromLatin1(command)
                << QString::fromLatin1(told).replace(QLatin1Char('@'), m_folder.path())
                << QString::fromLatin1(variable) << value;
        };
        add("no rules", "QUENZO_NO_RULES", {});
        add("no debug messages", "QT_LOGGING_RULES", QStringLiteral("*.debug=false"));
        add("no messages", "QT_LOGGING_RULES", QStringLiteral("*=false;quenzo.*=false"));
        add("rules of the person", "XDG_CONFIG_HOME", m_folder.path());
        add("rules in a file", "QT_LOGGING_CONF", path("QtProject/qtlogging.ini"));
    };
    row("raises", "run script.py bad",
        "bad did not answer \"param\"\nbad of the script 'script.py' failed: ValueError: why "
        "(@/script.py:3)");
    row("other answer", "run script.py other",
        "other did not answer \"param\" (--any takes whatever a function answers)");
    row("no function", "run script.py absent",
        "absent did not answer \"param\"\nthe script 'script.py' has no absent: AttributeError: 'module' "
        "object has "
        "no attribute 'absent'");
    row("no module", "run broken.py f",
        "f did not answer \"param\"\nthe script 'broken.py' could not be imported: KeyError: 'in the body' "
        "(@/broken.py:1)");
    row("pack", "pack folder script.py/archive.zip", "packing failed\na file is in the way: @/script.py");
    row("unpack", "unpack no-archive.zip unpacked", "unpacking failed\nthis is not a zip archive");
}

void tst_ScriptCommands::failuresAreToldUnderEveryRule()
{
    QFETCH(const QString, command);
    QFETCH(const QString, told);
    QFETCH(const QString, variable);
    QFETCH(const QString, value);
    QuenzoProcess process(QuenzoProcess::words(command.toUtf8().constData()), m_folder.path());
    process.setVariable(variable.toUtf8().constData(), value);
    const Ended ended = process.end();
    const QString pattern = QRegularExpression::escape(QStringLiteral("quenzo: %1\n").arg(told))
                                .replace(QStringLiteral("\\*"), QStringLiteral(".+"));
    const QRegularExpression expected(QRegularExpression::anchoredPattern(pattern));
    QVERIFY2(expected.match(QString::fromUtf8(ended.error)).hasMatch(), ended.error.constData());
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.output, QByteArray());
}

void tst_ScriptCommands::workingFolderBringsNoCode_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no python on the path") << QStringLiteral("/nonexistent");
    QTest::newRow("another python on the path") << path("project/bin");
}

void tst_ScriptCommands::workingFolderBringsNoCode()
{
    QFETCH(const QString, path);
    for (const char* file : {"project/lib/python2.7/os.py", "project/lib/python2.7/site.py",
                             "project/sitecustomize.py", "project/site-packages/usercustomize.py"})
        write(file, "print 'HOSTILE'\n");
    write("project/bin/python", "#!/bin/sh\n");
    QVERIFY(QFile::setPermissions(this->path("project/bin/python"),
                                  QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    write("project/code/file", "");
    QuenzoProcess process({QStringLiteral("run"), this->path("script.py"), QStringLiteral("good")},
                          this->path("project/code"));
    process.setVariable("PATH", path);
    process.setVariable("PYTHONHOME", this->path("project"));
    process.setVariable("PYTHONPATH", this->path("project"));
    const Ended ended = process.end();
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output, QByteArray("good succeeded\n"));
    QCOMPARE(ended.code, 0);
}

void tst_ScriptCommands::anyAnswerIsPrinted_data()
{
    QTest::addColumn<QByteArray>("returned");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QJsonValue>("value");
    const auto row = [](const char* returned, const char* output, const QJsonValue& value) {
        QTest::newRow(returned) << QByteArray(returned) << QByteArray(output) + '\n' << value;
    };
    row("'text'", "text", QStringLiteral("text"));
    row("u'\\xe9'", "\xc3\xa9", QString(QChar(0xe9)));
    row("7", "7", 7);
    row("2 ** 40", "1099511627776", QJsonValue(qint64(1) << 40));
    row("[2 ** 62]", "[4611686018427387904]", QJsonArray{QStringLiteral("4611686018427387904")});
    row("1.5", "1.5", 1.5);
    row("None", "null", QJsonValue());
    row("True", "true", true);
    row("[1, 'a', (2,)]", R"([1, "a", [2]])", QJsonArray{1, QStringLiteral("a"), QJsonArray{2}});
    row("{'b': 1, 'a': []}", R"({"a": [], "b": 1})",
        QJsonObject{{QStringLiteral("a"), QJsonArray()}, {QStringLiteral("b"), 1}});
}

void tst_ScriptCommands::anyAnswerIsPrinted()
{
    QFETCH(const QByteArray, returned);
    QFETCH(const QByteArray, output);
    QFETCH(const QJsonValue, value);
    QFile::remove(path("answer.pyc")); // of the same second, and thus taken for this one's
    write("answer.py", "def f():\n    return " + returned + "\n");
    const Ended ended = run("run --any answer.py f");
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.output, output);
    QCOMPARE(ended.code, 0);
    QCOMPARE(run("run --any answer.py f --json").result().value(QStringLiteral("value")), value);
}

void tst_ScriptCommands::anyAnswerThatThereIsNotIsAFailure_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("cause");
    QTest::newRow("raises") << QByteArray("raise ValueError('why')")
                            << QStringLiteral("ValueError: why (%1/answer.py:2)");
    QTest::newRow("object") << QByteArray("return object()")
                            << QStringLiteral("what f returned is no text, number, list or map: ");
    QTest::newRow("no number") << QByteArray("return float('nan')")
                               << QStringLiteral("what f returned is no text, number, list or map: ");
    QTest::newRow("no UTF-8") << QByteArray("return '\\xff'")
                              << QStringLiteral("what f returned is no text, number, list or map: ");
    QTest::newRow("ends the interpreter")
        << QByteArray("raise SystemExit(3)") << QStringLiteral("SystemExit: 3 (%1/answer.py:2)");
}

void tst_ScriptCommands::anyAnswerThatThereIsNotIsAFailure()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QString, cause);
    QFile::remove(path("answer.pyc")); // of the same second, and thus taken for this one's
    write("answer.py", "def f():\n    " + body + "\n");
    const Ended ended = run("run --any answer.py f --json");
    QCOMPARE(ended.code, 1);
    QCOMPARE(ended.failure().value(QStringLiteral("message")).toString(), QStringLiteral("f gave no answer"));
    const QString told = ended.failure().value(QStringLiteral("cause")).toString();
    const QString expected = cause.contains(QLatin1Char('%')) ? cause.arg(m_folder.path()) : cause;
    QVERIFY2(told.contains(expected), qPrintable(told));
}

void tst_ScriptCommands::folderAsInputIsAFailure()
{
    QuenzoProcess process({QStringLiteral("run"), path("script.py"), QStringLiteral("good")});
    process.setStandardInputFile(m_folder.path());
    const Ended ended = process.end();
    QCOMPARE(ended.error,
             QByteArray("quenzo: good did not answer \"param\" (where Python 2.7 is missing, "
                        "scripts/dependencies.sh python installs it)\n"
                        "the Python interpreter could not be started: the standard input is a folder\n"));
    QCOMPARE(ended.code, 1);
}

QByteArray tst_ScriptCommands::read(const char* name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void tst_ScriptCommands::writeKey(const char* name, char digit) const
{
    write(name, QByteArray(64, digit));
    QVERIFY(QFile::setPermissions(path(name), QFileDevice::ReadOwner | QFileDevice::WriteOwner));
}

// Under a person who has no key yet.
Ended tst_ScriptCommands::run(const QStringList& words) const
{
    QuenzoProcess process(words, m_folder.path());
    process.setVariable("XDG_DATA_HOME", path("data"));
    process.setVariable("QUENZO_KEY", QString());
    return process.end();
}

void tst_ScriptCommands::assetsComeBackWithTheirKeyOnly()
{
    write("game/assets/story", "once upon a time");
    writeKey("one.key", '1');
    writeKey("two.key", '2');
    QCOMPARE(run("pack game game.apk").code, 0);
    const Ended encrypted = run("encrypt --key one.key game.apk");
    QCOMPARE(encrypted.error, QByteArray());
    QCOMPARE(encrypted.output, QByteArray("encrypted game.apk\n"));
    const QByteArray package = read("game.apk");

    const Ended wrong = run("decrypt game.apk --key two.key");
    QCOMPARE(wrong.code, 1);
    QVERIFY2(wrong.error.startsWith("quenzo: decryption failed with answer 7\n"), wrong.error.constData());
    QVERIFY2(wrong.error.contains("was encrypted with the key"), wrong.error.constData());
    const Ended without = run("decrypt game.apk --json");
    QCOMPARE(without.code, 1);
    QCOMPARE(without.result().value(QStringLiteral("answer")), QJsonValue(5));
    QCOMPARE(read("game.apk"), package);

    const Ended decrypted = run("decrypt game.apk --key one.key");
    QCOMPARE(decrypted.error, QByteArray());
    QCOMPARE(decrypted.output, QByteArray("decrypted game.apk\n"));
    QCOMPARE(run("unpack game.apk back").code, 0);
    QCOMPARE(read("back/assets/story"), QByteArray("once upon a time"));
    QVERIFY(!QFileInfo::exists(path("data")));
}

void tst_ScriptCommands::emptyNameOfAKeyIsRefused_data()
{
    QTest::addColumn<QString>("command");
    for (const char* command : {"encrypt", "decrypt"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

void tst_ScriptCommands::emptyNameOfAKeyIsRefused()
{
    QFETCH(const QString, command);
    const Ended ended = run({command, QStringLiteral("--key="), path("script.py")});
    QCOMPARE(ended.code, 2);
    QCOMPARE(ended.error,
             "quenzo: --key takes the name of a file (see quenzo " + command.toLatin1() + " --help)\n");
}

QTEST_GUILESS_MAIN(tst_ScriptCommands)
#include "tst_scriptcommands.moc"
