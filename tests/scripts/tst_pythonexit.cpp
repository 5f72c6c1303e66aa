// SPDX-License-Identifier: MIT
#include "startroot.h"

#include <QElapsedTimer>
#include <QtTest>

// Script calls that are at work, or begin, while their process leaves main.
class tst_PythonExit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void processEndsCleanlyWhileCallsFail();
    void exitHandlerMayWaitForACallingThread();
    void exitHandlerMayCall();
    void slotOfTheDatabaseMayCallWhileTheProcessEnds();
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

QTEST_GUILESS_MAIN(tst_PythonExit)
#include "tst_pythonexit.moc"
