// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include "messagelog.h"
#include "runroot.h"
#include "taskworker.h"

#include <QtTest>

#include <memory>
#include <vector>

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

    void unknownOperationDoesNothing_data();
    void unknownOperationDoesNothing();

    void importWithoutRequiredKeyIsIdleWhenItReports_data();
    void importWithoutRequiredKeyIsIdleWhenItReports();
    void taskRecordedInThatReportStaysRecorded();

    void flagIsSetInReportsAndClearAfterwards();
    void mapIsTheObjectsOwnAndStays();
    void callersMapIsNeverWritten();
    void resultKeysAreGoneWithTheNextTask();
    void ownMapIsEmptiedFirst();
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
    writeRecordingScripts();
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

void tst_PythonToolThread::ownMapIsEmptiedFirst()
{
    Worker worker;
    worker.perform(2, params({{"apkfile", text("a")}}));
    QVariantMap* const own = worker.emissions.front().map;
    QCOMPARE(own->size(), 2);
    QVERIFY(worker.StartOperate(PYTHON_TOOL_ENCRYPT, *own));
    QCOMPARE(*own, QVariantMap());
    QVERIFY(worker.startAndWait());
    QCOMPARE(takeCalls(), QStringList());
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
