// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include "messagelog.h"
#include "runroot.h"
#include "taskworker.h"

#include <QtTest>

#include <memory>
#include <vector>

class tst_PythonTasks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void scriptCalls_data();
    void scriptCalls();
    void missingKeyEndsSilently_data();
    void missingKeyEndsSilently();

    void packAndUnpackNeverEmit_data();
    void packAndUnpackNeverEmit();

    void encryptionReportsAsAnImport_data();
    void encryptionReportsAsAnImport();
    void encryptMayBeCalledDirectly();

    void importAnswers_data();
    void importAnswers();

    void scriptMatchesItsParam_data();
    void scriptMatchesItsParam();
    void scriptWithoutKeysReportsFalse();
    void scriptModuleStaysLoaded();

    void exportHandsItsMapOnFailureOnly_data();
    void exportHandsItsMapOnFailureOnly();

    void modulesAreReadAnewByEachTask();
    void absentScriptsFail();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_PythonTasks::initTestCase()
{
    qRegisterMetaType<QVariantMap*>("QVariantMap*");
    RunRoot::clear();
    RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
    m_log = std::make_unique<MessageLog>();
    QVERIFY(PythonForQt::initPythonEnv());
}

void tst_PythonTasks::init()
{
    writeRecordingScripts();
}

void tst_PythonTasks::cleanup()
{
    QCOMPARE(m_log->takeWarnings(), QStringList());
}

void tst_PythonTasks::scriptCalls_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QVariantMap>("given");
    QTest::addColumn<QString>("call");
    const auto row = [](const char* name, int operation, const QVariantMap& given, const char* call) {
        QTest::newRow(name) << operation << given
                            << QString::fromUtf8(call).replace(QLatin1Char('@'),
                                                               RunRoot::path() + QStringLiteral("/bin"));
    };
    const QPair<const char*, QVariant> src{"src", text("a b/é")};
    const QPair<const char*, QVariant> dest{"dest", text("d'\"\\\n")};
    row("pack", 0, params({src, dest, {"apkfile", text("x.apk")}}),
        "pytoolForQt.zip(a b/é,d'\"\\\n,x.apk): str,str,str");
    row("pack, no APK", 0, params({src, dest, {"apkfile", text("")}}),
        "pytoolForQt.zip(a b/é,d'\"\\\n,): str,str,str");
    row("pack, odd values", 0, params({{"src", 5}, {"dest", 1.5}, {"apkfile", QVariant()}}),
        "pytoolForQt.zip(5,1.5,): str,str,str");
    row("unpack", 1, params({src, dest, {"apkfile", text("ignored")}}),
        "pytoolForQt.unZip(a b/é,d'\"\\\n,NULL): str,str,str");
    row("encrypt", 2, params({{"apkfile", text("x.apk")}}), "encrypt.encryptApk(@,x.apk): str,str");
    row("encrypt, odd value", 2, params({{"apkfile", QStringList{QStringLiteral("one")}}}),
        "encrypt.encryptApk(@,one): str,str");
    row("import", 3, params({src, dest}), "pytoolForQt.importSDK(a b/é,d'\"\\\n): str,str");
    row("import, -1", 3, params({src, dest, {"idSDK", -1}}),
        "pytoolForQt.importSDK(a b/é,d'\"\\\n): str,str");
    row("import, text -1", 3, params({src, dest, {"idSDK", text("-1")}}),
        "pytoolForQt.importSDK(a b/é,d'\"\\\n): str,str");
    row("import, 0", 3, params({src, dest, {"idSDK", 0}}),
        "pytoolForQt.importSDK(a b/é,d'\"\\\n,0): str,str,int");
    row("import, 7", 3, params({src, dest, {"idSDK", 7}}),
        "pytoolForQt.importSDK(a b/é,d'\"\\\n,7): str,str,int");
    row("import, -2", 3, params({src, dest, {"idSDK", -2}}),
        "pytoolForQt.importSDK(a b/é,d'\"\\\n,-2): str,str,int");
    row("import, text 12", 3, params({src, dest, {"idSDK", text("12")}}),
        "pytoolForQt.importSDK(a b/é,d'\"\\\n,12): str,str,int");
    row("import, no number", 3, params({src, dest, {"idSDK", text("x")}}),
        "pytoolForQt.importSDK(a b/é,d'\"\\\n,0): str,str,int");
    const QPair<const char*, QVariant> toolPath{"toolPath",
                                                QString(RunRoot::path() + QStringLiteral("/Script/tool.py"))};
    const QPair<const char*, QVariant> main{"main", text("run")};
    row("script", 4, params({toolPath, main, {"list", QVariantList{1, text("two"), 3}}}),
        "tool.run(1,two,3): int,str,int");
    row("script, no list", 4, params({toolPath, main}), "tool.run(): ");
    row("script, list of texts", 4, params({toolPath, main, {"list", QStringList{QStringLiteral("a")}}}),
        "tool.run(a): str");
    row("script, list of another type", 4, params({toolPath, main, {"list", 5}}), "tool.run(): ");
    row("export", 5, params({{"idChannel", 9}, dest}), "start.export_develop_info(9,d'\"\\\n): int,str");
    row("export, text 9", 5, params({{"idChannel", text("9")}, dest}),
        "start.export_develop_info(9,d'\"\\\n): int,str");
    row("export, no keys", 5, {}, "start.export_develop_info(0,): int,str");
}

void tst_PythonTasks::scriptCalls()
{
    QFETCH(const int, operation);
    QFETCH(const QVariantMap, given);
    QFETCH(const QString, call);
    Worker worker;
    QCOMPARE(worker.perform(operation, given), call);
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_PythonTasks::missingKeyEndsSilently_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QVariantMap>("given");
    QTest::newRow("pack, nothing") << 0 << QVariantMap();
    QTest::newRow("pack, no src") << 0 << params({{"dest", text("d")}, {"apkfile", text("a")}});
    QTest::newRow("pack, no dest") << 0 << params({{"src", text("s")}, {"apkfile", text("a")}});
    QTest::newRow("pack, no apkfile") << 0 << params({{"src", text("s")}, {"dest", text("d")}});
    QTest::newRow("pack, other case")
        << 0 << params({{"Src", text("s")}, {"dest", text("d")}, {"apkfile", text("a")}});
    QTest::newRow("unpack, no src") << 1 << params({{"dest", text("d")}});
    QTest::newRow("unpack, no dest") << 1 << params({{"src", text("s")}});
    QTest::newRow("encrypt, nothing") << 2 << params({{"src", text("s")}});
}

void tst_PythonTasks::missingKeyEndsSilently()
{
    QFETCH(const int, operation);
    QFETCH(const QVariantMap, given);
    Worker worker;
    QCOMPARE(worker.perform(operation, given), QString());
    QCOMPARE(worker.emissions.size(), std::size_t(0));
    QCOMPARE(m_log->take().size(), 0);
    QCOMPARE(RunRoot::log(), QByteArray());
}

void tst_PythonTasks::packAndUnpackNeverEmit_data()
{
    QTest::addColumn<QByteArray>("answer");
    for (const char* answer : {"0", "1", "-1", "None", "'text'", "1 / 0", "exit(3)"})
        QTest::newRow(answer) << QByteArray(answer);
}

void tst_PythonTasks::packAndUnpackNeverEmit()
{
    QFETCH(const QByteArray, answer);
    setAnswer(answer);
    const QVariantMap given = params({{"src", text("s")}, {"dest", text("d")}, {"apkfile", text("a")}});
    Worker worker;
    QCOMPARE(worker.perform(0, given), QStringLiteral("pytoolForQt.zip(s,d,a): str,str,str"));
    QCOMPARE(worker.perform(1, given), QStringLiteral("pytoolForQt.unZip(s,d,NULL): str,str,str"));
    worker.zip(QStringLiteral("1"), QStringLiteral("2"), QString());
    worker.unzip(QStringLiteral("1"), QStringLiteral("2"));
    worker.zipFunction("zip", QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"));
    QCOMPARE(takeCalls(),
             (QStringList{QStringLiteral("pytoolForQt.zip(1,2,): str,str,str"),
                          QStringLiteral("pytoolForQt.unZip(1,2,NULL): str,str,str"),
                          QStringLiteral("pytoolForQt.zip(1,2,3): str,str,str")}));
    QCOMPARE(worker.emissions.size(), std::size_t(0));
}

void tst_PythonTasks::encryptionReportsAsAnImport_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("result");
    QTest::newRow("0") << QByteArray("0") << 0;
    QTest::newRow("1") << QByteArray("1") << 1;
    QTest::newRow("-1") << QByteArray("-1") << -1;
    QTest::newRow("None") << QByteArray("None") << -1;
    QTest::newRow("text") << QByteArray("'0'") << -1;
    QTest::newRow("raises") << QByteArray("1 / 0") << -1;
    QTest::newRow("exits") << QByteArray("exit(0)") << -1;
}

void tst_PythonTasks::encryptionReportsAsAnImport()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const int, result);
    setAnswer(answer);
    Worker worker;
    worker.perform(2, params({{"apkfile", text("a")}, {"other", 5}, {"result", text("before")}}));
    QCOMPARE(worker.emissions.size(), std::size_t(1));
    const Emission& emission = worker.emissions.front();
    QCOMPARE(emission.type, 3);
    QVERIFY(emission.map != nullptr);
    QCOMPARE(emission.values, params({{"apkfile", text("a")}, {"other", 5}, {"result", result}}));
    QCOMPARE(emission.values.value(QStringLiteral("result")).type(), QVariant::Int);
    QCOMPARE(emission.success, result == 0);
    QVERIFY(emission.busy);
}

void tst_PythonTasks::encryptMayBeCalledDirectly()
{
    Worker worker;
    QVERIFY(worker.encrypt(QStringLiteral("direct.apk")));
    QCOMPARE(
        takeCalls(),
        QStringList{QStringLiteral("encrypt.encryptApk(%1/bin,direct.apk): str,str").arg(RunRoot::path())});
    setAnswer("-1");
    QVERIFY(!worker.encrypt(QStringLiteral("direct.apk")));
    QCOMPARE(worker.emissions.size(), std::size_t(0));
    QVERIFY(!worker.bExecTask());
}

void tst_PythonTasks::importAnswers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* answer, int code, const char* error) {
        QTest::newRow(answer) << QByteArray(answer) << code << QString::fromLatin1(error);
    };
    row("1", 1, "");
    row("True", 1, "");
    row("100", 100, "The imported file is not this SDK");
    row("101", 101, "Import file was damaged!");
    row("102", 102, "Import file is wrong(config.xml was not found!)");
    row("103", 103, "Import file is wrong(Failed to parse config.xml!)");
    row("104", 104, "Failed to unzip!");
    row("99", 99, "");
    row("105", 105, "");
    row("0", 0, "");
    row("-1", -1, "");
    row("2", 2, "");
    row("None", -1, "");
    row("'1'", -1, "");
    row("1 / 0", -1, "");
    row("exit(1)", -1, "");
}

void tst_PythonTasks::importAnswers()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const int, code);
    QFETCH(const QString, error);
    setAnswer(answer);
    const QVariantMap given = params({{"src", text("s")}, {"dest", text("d")}, {"mine", 1}});
    QVariantMap expected = given;
    if (code != 1) {
        expected.insert(QStringLiteral("error_code"), code);
        expected.insert(QStringLiteral("error_str"), error);
    }
    Worker worker;
    worker.perform(3, given);
    QCOMPARE(worker.emissions.size(), std::size_t(1));
    const Emission& emission = worker.emissions.front();
    QCOMPARE(emission.type, 3);
    QCOMPARE(emission.success, code == 1);
    QVERIFY(emission.map != nullptr);
    QCOMPARE(emission.values, expected);
    QVERIFY(emission.busy);
    if (code != 1) {
        QCOMPARE(emission.values.value(QStringLiteral("error_code")).type(), QVariant::Int);
        QCOMPARE(emission.values.value(QStringLiteral("error_str")).type(), QVariant::String);
    }
}

void tst_PythonTasks::scriptMatchesItsParam_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("matched");
    const auto row = [](const char* answer, bool matched) {
        QTest::newRow(answer) << QByteArray(answer) << matched;
    };
    row("'param'", true);
    row("u'param'", true);
    row("'Param'", false);
    row("'param '", false);
    row("' param'", false);
    row("'params'", false);
    row("''", false);
    row("None", false);
    row("True", false);
    row("['param']", false);
    row("1 / 0", false);
    row("exit('param')", false);
}

void tst_PythonTasks::scriptMatchesItsParam()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const bool, matched);
    setAnswer(answer);
    Worker worker;
    worker.perform(4,
                   params({{"toolPath", QString(RunRoot::path() + QStringLiteral("/Script/tool.py"))},
                           {"main", text("run")},
                           {"list", QVariantList()}}));
    QCOMPARE(worker.emissions.size(), std::size_t(1));
    const Emission& emission = worker.emissions.front();
    QCOMPARE(emission.type, 4);
    QVERIFY(emission.map == nullptr);
    QCOMPARE(emission.success, matched);
    QVERIFY(emission.busy);
}

void tst_PythonTasks::scriptWithoutKeysReportsFalse()
{
    Worker worker;
    QCOMPARE(worker.perform(4, {}), QString());
    QCOMPARE(worker.emissions.size(), std::size_t(1));
    QCOMPARE(worker.emissions.front().type, 4);
    QVERIFY(!worker.emissions.front().success);
    QCOMPARE(worker.perform(4, params({{"toolPath", QVariantList()}, {"main", 5}, {"list", text("x")}})),
             QString());
    QCOMPARE(worker.emissions.size(), std::size_t(1));
}

void tst_PythonTasks::scriptModuleStaysLoaded()
{
    RunRoot::write(
        QStringLiteral("Script/keeper.py"),
        "state = []\ndef run():\n    state.append(1)\n    return 'param' if len(state) == 2 else ''\n");
    const QVariantMap given =
        params({{"toolPath", QString(RunRoot::path() + QStringLiteral("/Script/keeper.py"))},
                {"main", text("run")}});
    Worker worker;
    worker.perform(4, given);
    QVERIFY(!worker.emissions.front().success);
    worker.perform(4, given);
    QVERIFY(worker.emissions.front().success);
    QVERIFY(isLoaded(QStringLiteral("keeper")));
}

void tst_PythonTasks::exportHandsItsMapOnFailureOnly_data()
{
    encryptionReportsAsAnImport_data();
}

void tst_PythonTasks::exportHandsItsMapOnFailureOnly()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const int, result);
    setAnswer(answer);
    const QVariantMap given = params({{"idChannel", 4}, {"dest", text("d")}});
    Worker worker;
    worker.perform(5, given);
    QCOMPARE(worker.emissions.size(), std::size_t(1));
    const Emission& emission = worker.emissions.front();
    QCOMPARE(emission.type, 5);
    QCOMPARE(emission.success, result == 0);
    QVERIFY(emission.busy);
    QCOMPARE(emission.map == nullptr, result == 0);
    if (result != 0)
        QCOMPARE(emission.values, params({{"idChannel", 4}, {"dest", text("d")}, {"result", result}}));
}

void tst_PythonTasks::modulesAreReadAnewByEachTask()
{
    Worker worker;
    const QVariantMap given = params({{"apkfile", text("a")}});
    RunRoot::write(QStringLiteral("Script/encrypt.py"), "def encryptApk(path, apk): return 21\n");
    worker.perform(2, given);
    QCOMPARE(worker.emissions.front().values.value(QStringLiteral("result")).toInt(), 21);
    RunRoot::write(QStringLiteral("Script/encrypt.py"), "def encryptApk(path, apk): return 22\n");
    worker.perform(2, given);
    QCOMPARE(worker.emissions.front().values.value(QStringLiteral("result")).toInt(), 22);
}

void tst_PythonTasks::absentScriptsFail()
{
    for (const char* name : {"pytoolForQt.py", "encrypt.py", "start.py"})
        QVERIFY(QFile::remove(RunRoot::path() + QStringLiteral("/Script/") + QLatin1String(name)));
    for (const char* name : {"pytoolForQt.pyc", "encrypt.pyc", "start.pyc"})
        QFile::remove(RunRoot::path() + QStringLiteral("/Script/") + QLatin1String(name));
    const QVariantMap given = params({{"src", text("s")}, {"dest", text("d")}, {"apkfile", text("a")}});
    Worker worker;
    for (int operation = 0; operation <= 5; ++operation) {
        QCOMPARE(worker.perform(operation, given), QString());
        QCOMPARE(worker.emissions.size(), std::size_t(operation < 2 ? 0 : 1));
        if (operation >= 2)
            QVERIFY(!worker.emissions.front().success);
    }
    const QStringList messages = m_log->takeDebugTexts();
    QCOMPARE(messages.count(QStringLiteral("Error:Not Found The File of srcipt")), 6);
}

QTEST_GUILESS_MAIN(tst_PythonTasks)
#include "tst_pythontasks.moc"
