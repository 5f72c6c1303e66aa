// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include <pythontoolthread.h>

#include "messagelog.h"
#include "runroot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include <atomic>
#include <memory>
#include <vector>

namespace {

// The scripts record what they were called with, and answer what the file "answer" holds.
const QByteArray recorder = R"(# -*- coding: utf-8 -*-
import json, os
here = os.path.dirname(os.path.abspath(__file__))
def record(name, all):
    with open(os.path.join(here, 'calls.json'), 'a') as calls:
        calls.write(json.dumps([os.path.basename(__file__).split('.')[0], name, list(all),
                                [type(each).__name__ for each in all]]) + '\n')
    with open(os.path.join(here, 'answer')) as answer:
        return eval(answer.read())
)";

QByteArray scriptWith(const QList<QByteArray>& functions)
{
    QByteArray text = recorder;
    for (const QByteArray& function : functions)
        text += "def " + function + "(*all): return record('" + function + "', all)\n";
    return text;
}

void setAnswer(const QByteArray& expression)
{
    RunRoot::write(QStringLiteral("Script/answer"), expression);
}

// One call as "script.function(arguments): types", taken from the record.
QStringList takeCalls()
{
    QFile file(RunRoot::path() + QStringLiteral("/Script/calls.json"));
    QStringList calls;
    if (!file.open(QIODevice::ReadOnly))
        return calls;
    while (!file.atEnd()) {
        const QJsonArray call = QJsonDocument::fromJson(file.readLine()).array();
        const auto words = [&call](int at) {
            QStringList texts;
            for (const QVariant& value : call.at(at).toArray().toVariantList())
                texts.append(value.toString());
            return texts.join(QLatin1Char(','));
        };
        calls.append(QStringLiteral("%1.%2(%3): %4")
                         .arg(call.at(0).toString(), call.at(1).toString(), words(2), words(3)));
    }
    file.close();
    file.remove();
    return calls;
}

// What a directly connected slot saw of an emission.
struct Emission {
    int type = -1;
    QVariantMap* map = nullptr;
    QVariantMap values;
    bool success = false;
    bool busy = false;
    QThread* thread = nullptr;
};

/** Runs tasks and records their emissions on the worker. Opens the protected steps to the test. */
class Worker : public PythonToolThread {
public:
    Worker()
    {
        connect(
            this, &PythonToolThread::onTaskFinsih, this,
            [this](int type, QVariantMap* map, bool success) {
                emissions.push_back({type, map, map != nullptr ? *map : QVariantMap(), success, bExecTask(),
                                     QThread::currentThread()});
            },
            Qt::DirectConnection);
    }

    // Records the task, runs it to its end and returns the call that the script saw.
    QString perform(int operation, const QVariantMap& params)
    {
        emissions.clear();
        takeCalls();
        if (!StartOperate(static_cast<PYTHON_TOOL_OPERATE>(operation), params) || !bExecTask())
            return QStringLiteral("refused");
        if (!startAndWait() || bExecTask())
            return QStringLiteral("still busy");
        return takeCalls().join(QLatin1Char(';'));
    }

    // The end of run() is told once more: what QThread::wait() synchronises with, the thread sanitizer cannot
    // see.
    bool startAndWait()
    {
        start();
        return hasEnded();
    }
    bool hasEnded() { return wait(60000) && m_ended.exchange(false); }

    using PythonToolThread::importSDK;
    using PythonToolThread::unzip;
    using PythonToolThread::zip;
    using PythonToolThread::zipFunction;

    std::vector<Emission> emissions;

protected:
    void run() override
    {
        PythonToolThread::run();
        m_ended.store(true);
    }

private:
    std::atomic<bool> m_ended{false};
};

QVariantMap params(const QList<QPair<const char*, QVariant>>& pairs)
{
    QVariantMap map;
    for (const auto& pair : pairs)
        map.insert(QLatin1String(pair.first), pair.second);
    return map;
}

QVariant text(const char* latin)
{
    return QString::fromUtf8(latin);
}

} // namespace

class tst_PythonToolThread : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void operationsHaveTheirNumbers();
    void metaObjectHasOneSignalOnly();
    void freshObjectIsIdle();
    void startWithoutATaskDoesNothing();
    void secondTaskIsRefusedAndTheFirstStays();
    void recordingNeverStartsTheThread();

    void scriptCalls_data();
    void scriptCalls();
    void missingKeyEndsSilently_data();
    void missingKeyEndsSilently();
    void unknownOperationDoesNothing_data();
    void unknownOperationDoesNothing();

    void packAndUnpackNeverEmit_data();
    void packAndUnpackNeverEmit();

    void encryptionReportsAsAnImport_data();
    void encryptionReportsAsAnImport();
    void encryptMayBeCalledDirectly();

    void importAnswers_data();
    void importAnswers();
    void importWithoutRequiredKeyIsIdleWhenItReports_data();
    void importWithoutRequiredKeyIsIdleWhenItReports();
    void taskRecordedInThatReportStaysRecorded();

    void scriptMatchesItsParam_data();
    void scriptMatchesItsParam();
    void scriptWithoutKeysReportsFalse();
    void scriptModuleStaysLoaded();

    void exportHandsItsMapOnFailureOnly_data();
    void exportHandsItsMapOnFailureOnly();

    void flagIsSetInReportsAndClearAfterwards();
    void mapIsTheObjectsOwnAndStays();
    void callersMapIsNeverWritten();
    void resultKeysAreGoneWithTheNextTask();
    void modulesAreReadAnewByEachTask();
    void absentScriptsFail();
    void outcomeReachesAnotherThreadQueued();
    void severalThreadsRunSideBySide();
    void destroyedAfterItsTask();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_PythonToolThread::initTestCase()
{
    qRegisterMetaType<QVariantMap*>("QVariantMap*");
    RunRoot::clear();
    RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
    m_log = std::make_unique<MessageLog>();
    QVERIFY(PythonForQt::initPythonEnv());
}

void tst_PythonToolThread::init()
{
    RunRoot::write(QStringLiteral("Script/pytoolForQt.py"), scriptWith({"zip", "unZip", "importSDK"}));
    RunRoot::write(QStringLiteral("Script/encrypt.py"), scriptWith({"encryptApk"}));
    RunRoot::write(QStringLiteral("Script/start.py"), scriptWith({"export_develop_info"}));
    RunRoot::write(QStringLiteral("Script/tool.py"), scriptWith({"run"}));
    setAnswer("0");
    takeCalls();
}

void tst_PythonToolThread::cleanup()
{
    QCOMPARE(m_log->takeWarnings(), QStringList());
}

void tst_PythonToolThread::operationsHaveTheirNumbers()
{
    QCOMPARE(int(PYTHON_TOOL_ZIP), 0);
    QCOMPARE(int(PYTHON_TOOL_UNZIP), 1);
    QCOMPARE(int(PYTHON_TOOL_ENCRYPT), 2);
    QCOMPARE(int(PYTHON_TOOL_IMPORT_SDK), 3);
    QCOMPARE(int(PYTHON_TOOL_RUN_SCRIPT), 4);
    QCOMPARE(int(PYTHON_TOOL_EXPORT_DEVELOP_INFO), 5);
    QCOMPARE(sizeof(PYTHON_TOOL_OPERATE), sizeof(int));
}

void tst_PythonToolThread::metaObjectHasOneSignalOnly()
{
    const QMetaObject& meta = PythonToolThread::staticMetaObject;
    QCOMPARE(meta.className(), "PythonToolThread");
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.enumeratorCount(), meta.enumeratorOffset());
    const QMetaMethod signal = meta.method(meta.methodOffset());
    QCOMPARE(signal.methodType(), QMetaMethod::Signal);
    QCOMPARE(signal.methodSignature(), QByteArray("onTaskFinsih(int,QVariantMap*,bool)"));
    QCOMPARE(signal.parameterNames(), (QList<QByteArray>{"type", "dictParam", "bSuccess"}));
    QCOMPARE(signal.typeName(), "void");
}

void tst_PythonToolThread::freshObjectIsIdle()
{
    QObject parent;
    auto* const worker = new PythonToolThread(&parent);
    QCOMPARE(worker->parent(), &parent);
    QVERIFY(!worker->bExecTask());
    QVERIFY(!worker->isRunning());
}

void tst_PythonToolThread::startWithoutATaskDoesNothing()
{
    Worker worker;
    QVERIFY(worker.startAndWait());
    QCOMPARE(worker.emissions.size(), std::size_t(0));
    QCOMPARE(takeCalls(), QStringList());
    QVERIFY(!worker.bExecTask());
}

void tst_PythonToolThread::secondTaskIsRefusedAndTheFirstStays()
{
    Worker worker;
    QVERIFY(worker.StartOperate(PYTHON_TOOL_ENCRYPT, params({{"apkfile", text("first.apk")}})));
    QVERIFY(worker.bExecTask());
    QVERIFY(!worker.StartOperate(PYTHON_TOOL_UNZIP, params({{"src", text("s")}, {"dest", text("d")}})));
    QVERIFY(worker.startAndWait());
    QCOMPARE(
        takeCalls(),
        QStringList{QStringLiteral("encrypt.encryptApk(%1/bin,first.apk): str,str").arg(RunRoot::path())});
    QCOMPARE(worker.emissions.size(), std::size_t(1));
    QCOMPARE(worker.emissions.front().values, params({{"apkfile", text("first.apk")}, {"result", 0}}));
}

void tst_PythonToolThread::recordingNeverStartsTheThread()
{
    Worker worker;
    QVERIFY(worker.StartOperate(PYTHON_TOOL_ENCRYPT, params({{"apkfile", text("a")}})));
    QVERIFY(!worker.isRunning());
    QVERIFY(!worker.isFinished());
    QCOMPARE(takeCalls(), QStringList());
}

void tst_PythonToolThread::scriptCalls_data()
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

void tst_PythonToolThread::scriptCalls()
{
    QFETCH(const int, operation);
    QFETCH(const QVariantMap, given);
    QFETCH(const QString, call);
    Worker worker;
    QCOMPARE(worker.perform(operation, given), call);
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_PythonToolThread::missingKeyEndsSilently_data()
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

void tst_PythonToolThread::missingKeyEndsSilently()
{
    QFETCH(const int, operation);
    QFETCH(const QVariantMap, given);
    Worker worker;
    QCOMPARE(worker.perform(operation, given), QString());
    QCOMPARE(worker.emissions.size(), std::size_t(0));
    QCOMPARE(m_log->take().size(), 0);
    QCOMPARE(RunRoot::log(), QByteArray());
}

void tst_PythonToolThread::unknownOperationDoesNothing_data()
{
    QTest::addColumn<int>("operation");
    for (const int operation : {-1, 6, 100, std::numeric_limits<int>::min()})
        QTest::newRow(QByteArray::number(operation).constData()) << operation;
}

void tst_PythonToolThread::unknownOperationDoesNothing()
{
    QFETCH(const int, operation);
    Worker worker;
    const QVariantMap given = params({{"src", text("s")}, {"dest", text("d")}, {"apkfile", text("a")}});
    QCOMPARE(worker.perform(operation, given), QString());
    QCOMPARE(worker.emissions.size(), std::size_t(0));
    QVERIFY(!worker.bExecTask());
    QCOMPARE(m_log->take().size(), 0);
}

void tst_PythonToolThread::packAndUnpackNeverEmit_data()
{
    QTest::addColumn<QByteArray>("answer");
    for (const char* answer : {"0", "1", "-1", "None", "'text'", "1 / 0", "exit(3)"})
        QTest::newRow(answer) << QByteArray(answer);
}

void tst_PythonToolThread::packAndUnpackNeverEmit()
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

void tst_PythonToolThread::encryptionReportsAsAnImport_data()
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

void tst_PythonToolThread::encryptionReportsAsAnImport()
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

void tst_PythonToolThread::encryptMayBeCalledDirectly()
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

void tst_PythonToolThread::importAnswers_data()
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

void tst_PythonToolThread::importAnswers()
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

void tst_PythonToolThread::importWithoutRequiredKeyIsIdleWhenItReports_data()
{
    QTest::addColumn<QVariantMap>("given");
    QTest::newRow("nothing") << QVariantMap();
    QTest::newRow("no dest") << params({{"src", text("s")}, {"idSDK", 1}});
    QTest::newRow("no src") << params({{"dest", text("d")}});
}

void tst_PythonToolThread::importWithoutRequiredKeyIsIdleWhenItReports()
{
    QFETCH(const QVariantMap, given);
    Worker worker;
    QCOMPARE(worker.perform(3, given), QString());
    QCOMPARE(worker.emissions.size(), std::size_t(1));
    const Emission& emission = worker.emissions.front();
    QCOMPARE(emission.type, 3);
    QVERIFY(emission.map == nullptr);
    QVERIFY(!emission.success);
    QVERIFY(!emission.busy);
}

void tst_PythonToolThread::taskRecordedInThatReportStaysRecorded()
{
    Worker worker;
    bool accepted = false;
    connect(
        &worker, &PythonToolThread::onTaskFinsih, &worker,
        [&](int, QVariantMap* map, bool) {
            if (map == nullptr)
                accepted = worker.StartOperate(PYTHON_TOOL_ENCRYPT, params({{"apkfile", text("next")}}));
        },
        Qt::DirectConnection);
    QVERIFY(worker.StartOperate(PYTHON_TOOL_IMPORT_SDK, {}));
    QVERIFY(worker.startAndWait());
    QVERIFY(worker.bExecTask());
    QVERIFY(accepted);
    QVERIFY(!worker.StartOperate(PYTHON_TOOL_ZIP, {}));
    QVERIFY(worker.startAndWait());
    QVERIFY(!worker.bExecTask());
    QCOMPARE(takeCalls().size(), 1);
}

void tst_PythonToolThread::scriptMatchesItsParam_data()
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

void tst_PythonToolThread::scriptMatchesItsParam()
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

void tst_PythonToolThread::scriptWithoutKeysReportsFalse()
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

void tst_PythonToolThread::scriptModuleStaysLoaded()
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

void tst_PythonToolThread::exportHandsItsMapOnFailureOnly_data()
{
    encryptionReportsAsAnImport_data();
}

void tst_PythonToolThread::exportHandsItsMapOnFailureOnly()
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

void tst_PythonToolThread::flagIsSetInReportsAndClearAfterwards()
{
    Worker worker;
    worker.perform(2, params({{"apkfile", text("a")}}));
    QVERIFY(worker.emissions.front().busy);
    QCOMPARE(worker.emissions.front().thread, static_cast<QThread*>(&worker));
    QVERIFY(!worker.bExecTask());
}

void tst_PythonToolThread::mapIsTheObjectsOwnAndStays()
{
    Worker worker;
    worker.perform(2, params({{"apkfile", text("a")}}));
    QVariantMap* const map = worker.emissions.front().map;
    QCOMPARE(*map, params({{"apkfile", text("a")}, {"result", 0}}));
    setAnswer("5");
    worker.perform(3, params({{"src", text("s")}, {"dest", text("d")}}));
    QCOMPARE(worker.emissions.front().map, map);
    QCOMPARE(map->value(QStringLiteral("error_code")).toInt(), 5);
    QVERIFY(!map->contains(QStringLiteral("apkfile")));
}

void tst_PythonToolThread::callersMapIsNeverWritten()
{
    const QVariantMap given = params({{"apkfile", text("a")}});
    const QVariantMap before = given;
    Worker worker;
    worker.perform(2, given);
    QCOMPARE(given, before);
    QCOMPARE(worker.emissions.front().values.size(), 2);
}

void tst_PythonToolThread::resultKeysAreGoneWithTheNextTask()
{
    const QVariantMap given = params({{"src", text("s")}, {"dest", text("d")}});
    Worker worker;
    setAnswer("104");
    worker.perform(3, given);
    QVERIFY(worker.emissions.front().values.contains(QStringLiteral("error_str")));
    setAnswer("1");
    worker.perform(3, given);
    QCOMPARE(worker.emissions.front().values, given);
}

void tst_PythonToolThread::modulesAreReadAnewByEachTask()
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

void tst_PythonToolThread::absentScriptsFail()
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

void tst_PythonToolThread::outcomeReachesAnotherThreadQueued()
{
    PythonToolThread worker;
    QSignalSpy spy(&worker, &PythonToolThread::onTaskFinsih);
    int type = -1;
    QThread* thread = nullptr;
    QVariantMap values;
    QObject receiver;
    connect(&worker, &PythonToolThread::onTaskFinsih, &receiver, [&](int told, QVariantMap* map, bool) {
        type = told;
        thread = QThread::currentThread();
        values = *map;
    });
    QVERIFY(worker.StartOperate(PYTHON_TOOL_ENCRYPT, params({{"apkfile", text("a")}})));
    worker.start();
    QVERIFY(worker.wait());
    QVERIFY(!worker.bExecTask());
    QCOMPARE(type, -1);
    QTRY_COMPARE(type, 3);
    QCOMPARE(thread, QThread::currentThread());
    QCOMPARE(values.value(QStringLiteral("result")).toInt(), 0);
    QCOMPARE(spy.count(), 1);
}

void tst_PythonToolThread::severalThreadsRunSideBySide()
{
    RunRoot::write(QStringLiteral("Script/encrypt.py"),
                   "import time\ndef encryptApk(path, apk):\n    time.sleep(0.001)\n    return int(apk)\n");
    std::vector<std::unique_ptr<Worker>> workers(4);
    for (auto& worker : workers)
        worker = std::make_unique<Worker>();
    for (int round = 0; round < 50; ++round) {
        for (std::size_t i = 0; i < workers.size(); ++i) {
            const QString apk = QString::number(round * 10 + int(i));
            QVERIFY(workers[i]->StartOperate(PYTHON_TOOL_ENCRYPT, {{QStringLiteral("apkfile"), apk}}));
            workers[i]->start();
        }
        for (const auto& worker : workers)
            QVERIFY(worker->hasEnded());
    }
    for (std::size_t i = 0; i < workers.size(); ++i) {
        QCOMPARE(workers[i]->emissions.size(), std::size_t(50));
        for (std::size_t round = 0; round < 50; ++round) {
            const int result = workers[i]->emissions[round].values.value(QStringLiteral("result")).toInt();
            QCOMPARE(result, int(round * 10 + i));
        }
    }
}

void tst_PythonToolThread::destroyedAfterItsTask()
{
    auto* const worker = new PythonToolThread;
    QPointer<PythonToolThread> guard = worker;
    connect(worker, &QThread::finished, worker, &QObject::deleteLater);
    QVERIFY(worker->StartOperate(PYTHON_TOOL_ENCRYPT, params({{"apkfile", text("a")}})));
    worker->start();
    QTRY_VERIFY(guard.isNull());
    QCOMPARE(takeCalls().size(), 1);
}

QTEST_GUILESS_MAIN(tst_PythonToolThread)
#include "tst_pythontoolthread.moc"
