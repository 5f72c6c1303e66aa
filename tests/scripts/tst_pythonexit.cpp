// SPDX-License-Identifier: MIT
#include "startroot.h"

#include <QElapsedTimer>
#include <QtTest>

namespace {

// Less than the patience with calls that touch what is destroyed, and plenty for a process that does not
// wait.
constexpr qint64 promptly = 8000;

const QByteArray noteWork = "import ctypes, time\nctypes.CDLL(None).noteWork()\n";

} // namespace

// Script calls that are at work, or begin, while their process leaves main.
class tst_PythonExit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void processEndsCleanlyWhileCallsFail();
    void exitHandlerMayWaitForACallingThread();
    void exitHandlerMayCall();
    void slotOfTheDatabaseMayCallWhileTheProcessEnds();
    void scriptAtWorkDoesNotDelayTheEnd_data();
    void scriptAtWorkDoesNotDelayTheEnd();
    void heldCallGivesTheInterpreterFree();
    void processMayEndWithTheLockHeld();
};

void tst_PythonExit::processEndsCleanlyWhileCallsFail()
{
    constexpr int rounds = 10;
    for (int round = 0; round < rounds; ++round) {
        StartRoot root;
        root.writeStartModule("");
        const QByteArray output = root.run(QStringLiteral("leave"));
        QVERIFY2(
            output.isEmpty(),
            qPrintable(QStringLiteral("round %1: %2").arg(round).arg(QString::fromUtf8(output.left(40)))));
        QVERIFY2(root.error().contains("QuenzoTool/source/pythonforqt"), root.error().left(400).constData());
    }
}

void tst_PythonExit::exitHandlerMayWaitForACallingThread()
{
    StartRoot root;
    root.writeStartModule("");
    QCOMPARE(root.run(QStringLiteral("join")), QByteArray("joined\n"));
}

void tst_PythonExit::exitHandlerMayCall()
{
    StartRoot root;
    root.writeStartModule("");
    QCOMPARE(root.run(QStringLiteral("exit handler")), QByteArray("true\n5\n"));
}

void tst_PythonExit::slotOfTheDatabaseMayCallWhileTheProcessEnds()
{
    StartRoot root;
    root.writeStartModule("");
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(root.run(QStringLiteral("slot")), QByteArray("true\n5\n"));
    QVERIFY2(timer.elapsed() < 9000, "the process waited in vain for the slot");
}

void tst_PythonExit::scriptAtWorkDoesNotDelayTheEnd_data()
{
    QTest::addColumn<QByteArray>("startModule");
    QTest::addColumn<QByteArray>("script");
    const QByteArray sleep = noteWork + "time.sleep(60)\n";
    QTest::newRow("function") << QByteArray()
                              << "def work():\n    " + QByteArray(sleep.trimmed()).replace('\n', "\n    ")
            + '\n';
    QTest::newRow("import") << QByteArray() << sleep;
    QTest::newRow("start-up module") << sleep << QByteArray();
}

void tst_PythonExit::scriptAtWorkDoesNotDelayTheEnd()
{
    QFETCH(const QByteArray, startModule);
    QFETCH(const QByteArray, script);
    StartRoot root;
    root.writeStartModule(startModule);
    root.write(QStringLiteral("Script/task.py"), script);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(root.run(QStringLiteral("work")), QByteArray("ended with 3\n"));
    QVERIFY2(timer.elapsed() < promptly, "the process waited for the script");
}

void tst_PythonExit::heldCallGivesTheInterpreterFree()
{
    StartRoot root;
    root.writeStartModule("");
    root.write(QStringLiteral("Script/task.py"),
               noteWork + "def work():\n    while True: ctypes.PyDLL(None).callAgain()\n");
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(root.run(QStringLiteral("call back")), QByteArray("5\n"));
    QVERIFY2(timer.elapsed() < promptly, "the exit handler waited for the interpreter");
}

void tst_PythonExit::processMayEndWithTheLockHeld()
{
    StartRoot root;
    root.writeStartModule("");
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(root.run(QStringLiteral("held lock")), QByteArray());
    QVERIFY2(timer.elapsed() < promptly, "the process waited for calls that wait for it");
}

QTEST_GUILESS_MAIN(tst_PythonExit)
#include "tst_pythonexit.moc"
