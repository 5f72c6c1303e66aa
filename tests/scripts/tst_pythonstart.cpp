// SPDX-License-Identifier: MIT
#include "startroot.h"

#include <QtTest>

#include <csignal>

namespace {

const QByteArray countStarts = "import __builtin__ as b\nb.starts = getattr(b, 'starts', 0) + 1\n";

} // namespace

class tst_PythonStart : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void secondStartDoesNothing();
    void translationDoesNotChangeTheStart();
    void startWithoutItsModuleIsTrue_data();
    void startWithoutItsModuleIsTrue();
    void folderWithAQuotationMarkIsTrue_data();
    void folderWithAQuotationMarkIsTrue();
    void folderWithBackslashesIsFound();
    void folderBeyondAsciiIsFound();
    void startModuleThatExitsDoesNotEndTheProcess_data();
    void startModuleThatExitsDoesNotEndTheProcess();
    void startModuleMayStartAgain_data();
    void startModuleMayStartAgain();
    void lockIsFreeAfterTheStart();
    void startFromTwoThreadsHappensOnce();
    void interpreterOfTheHostIsTakenAsItIs();
    void hostsSignalHandlersStay();
    void interruptEndsAHostWithoutHandler();
    void extensionModulesLoadInAHostThatLoadsTheLibrary_data();
    void extensionModulesLoadInAHostThatLoadsTheLibrary();
    void localeIsNamedWhenItIsTheCause();
};

void tst_PythonStart::secondStartDoesNothing()
{
    StartRoot root;
    root.writeStartModule(countStarts);
    QCOMPARE(root.run(QStringLiteral("twice")), QByteArray("true\ntrue\n1\n1\n/../tool/mac/Python\n5\n"));
    QCOMPARE(root.error(), QByteArray());
}

void tst_PythonStart::translationDoesNotChangeTheStart()
{
    StartRoot root;
    root.writeStartModule(countStarts);
    QByteArray sheet = "<TS version='2.1' language='zh_CN'><context><name>PythonForQt</name>";
    for (const QByteArray statement :
         {"os.environ['PYTHON_QUENZO_ENV'] = '%1'", "sys.path.append(str('%1').decode('utf8'))",
          "import init_python_env"}) {
        sheet +=
            "<message><source>" + statement + "</source><translation>print 'HOSTILE'</translation></message>";
    }
    root.write(QStringLiteral("texts.ts"), sheet + "</context></TS>");
    const QString texts = root.path() + QStringLiteral("/texts");
    QCOMPARE(QProcess::execute(QStringLiteral(LRELEASE),
                               {QStringLiteral("-silent"), texts + QStringLiteral(".ts"),
                                QStringLiteral("-qm"), texts + QStringLiteral(".qm")}),
             0);
    // The translation is in force, as its second line shows, yet what is run is what stands in the source.
    QCOMPARE(root.run(QStringLiteral("translated")),
             QByteArray("true\nprint 'HOSTILE'\ntrue\ntrue\n1\n1\n/../tool/mac/Python\n5\n"));
    QCOMPARE(root.error().count("is not used: it is code"), 3);
}

void tst_PythonStart::startWithoutItsModuleIsTrue_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("printed");
    const QByteArray absent = "ImportError: No module named init_python_env";
    const QString module = QStringLiteral("tool/mac/Python/init_python_env.py");
    QTest::newRow("no folder") << QStringLiteral("other") << QByteArray() << absent;
    QTest::newRow("no module") << QStringLiteral("tool/mac/Python/other.py") << QByteArray() << absent;
    QTest::newRow("syntax error") << module << QByteArray("def f(:\n") << QByteArray("SyntaxError: ");
    QTest::newRow("raises") << module << QByteArray("raise ValueError('why')\n")
                            << QByteArray("ValueError: why");
}

void tst_PythonStart::startWithoutItsModuleIsTrue()
{
    QFETCH(const QString, file);
    QFETCH(const QByteArray, content);
    QFETCH(const QByteArray, printed);
    StartRoot root;
    root.write(file, content);
    QCOMPARE(root.run(QStringLiteral("call")), QByteArray("true\n5\n"));
    QVERIFY2(root.error().contains(printed), root.error().constData());
}

void tst_PythonStart::folderWithAQuotationMarkIsTrue_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("one") << QStringLiteral("it's");
    QTest::newRow("code") << QStringLiteral("x';print 'HOSTILE';#");
    QTest::newRow("code in the call") << QStringLiteral("x'));os.write(1,'HOSTILE');#");
    QTest::newRow("code in both") << QStringLiteral("x'+str(os.write(1,'HOSTILE'))+'");
}

void tst_PythonStart::folderWithAQuotationMarkIsTrue()
{
    QFETCH(const QString, name);
    StartRoot root(name);
    root.writeStartModule(countStarts);
    // Neither the start-up's folder nor a script's is found there, and the process goes on.
    QCOMPARE(root.run(QStringLiteral("call")), QByteArray("true\n-1\n"));
    QCOMPARE(root.error().count("SyntaxError: "), 2 + 1);
}

void tst_PythonStart::folderWithBackslashesIsFound()
{
    StartRoot root(QStringLiteral("a\\n\\x41\\"));
    root.writeStartModule(countStarts);
    QCOMPARE(root.run(QStringLiteral("twice")), QByteArray("true\ntrue\n1\n1\n/../tool/mac/Python\n5\n"));
    QCOMPARE(root.error(), QByteArray());
}

void tst_PythonStart::folderBeyondAsciiIsFound()
{
    StartRoot root(QStringLiteral("é 中文"));
    root.writeStartModule(countStarts);
    QCOMPARE(root.run(QStringLiteral("twice")), QByteArray("true\ntrue\n1\n1\n/../tool/mac/Python\n5\n"));
    QCOMPARE(root.error(), QByteArray());
}

void tst_PythonStart::startModuleThatExitsDoesNotEndTheProcess_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("printed");
    QTest::newRow("SystemExit") << QByteArray("raise SystemExit(9)\n") << QByteArray("SystemExit: 9");
    QTest::newRow("sys.exit") << QByteArray("import sys\nsys.exit()\n") << QByteArray("SystemExit");
    QTest::newRow("KeyboardInterrupt")
        << QByteArray("raise KeyboardInterrupt\n") << QByteArray("KeyboardInterrupt");
    QTest::newRow("a hook that exits")
        << QByteArray("import sys\nsys.excepthook = lambda *all: sys.exit(3)\nraise ValueError\n")
        << QByteArray();
    QTest::newRow("no hook") << QByteArray("import sys\ndel sys.excepthook\nraise ValueError\n")
                             << QByteArray();
}

void tst_PythonStart::startModuleThatExitsDoesNotEndTheProcess()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QByteArray, printed);
    StartRoot root;
    root.writeStartModule(content);
    QCOMPARE(root.run(QStringLiteral("call")), QByteArray("true\n5\n"));
    QVERIFY2(root.error().contains(printed), root.error().constData());
}

void tst_PythonStart::startModuleMayStartAgain_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("with the lock") << QByteArray("import ctypes\nprint ctypes.PyDLL(None).startAgain()\n");
    QTest::newRow("without the lock") << QByteArray("import ctypes\nprint ctypes.CDLL(None).startAgain()\n");
    QTest::newRow("with the lock, on a thread")
        << QByteArray("import ctypes, thread\nturn = thread.allocate_lock()\nturn.acquire()\n"
                      "function = ctypes.CDLL(None).startAgainUnderTheLock\n"
                      "def again():\n    print function()\n    turn.release()\n"
                      "thread.start_new_thread(again, ())\nturn.acquire()\n");
}

void tst_PythonStart::startModuleMayStartAgain()
{
    QFETCH(const QByteArray, content);
    StartRoot root;
    root.writeStartModule(content + "import sys\nsys.stdout.flush()\n");
    QCOMPARE(root.run(QStringLiteral("call")), QByteArray("1\ntrue\n5\n"));
}

void tst_PythonStart::lockIsFreeAfterTheStart()
{
    StartRoot root;
    root.writeStartModule(countStarts);
    QCOMPARE(root.run(QStringLiteral("lock")), QByteArray("true\n2\n5\n"));
}

void tst_PythonStart::startFromTwoThreadsHappensOnce()
{
    StartRoot root;
    root.writeStartModule(countStarts + "import time\ntime.sleep(0.05)\nb.complete = True\n");
    for (int round = 0; round < 5; ++round)
        QCOMPARE(root.run(QStringLiteral("threads")), QByteArray("true\ntrue\n1\n"));
}

void tst_PythonStart::interpreterOfTheHostIsTakenAsItIs()
{
    StartRoot root;
    root.writeStartModule(countStarts);
    QCOMPARE(root.run(QStringLiteral("before")), QByteArray("true\nFalse\n5\n5\n5\n"));
}

void tst_PythonStart::hostsSignalHandlersStay()
{
    StartRoot root;
    root.writeStartModule(countStarts);
    QCOMPARE(root.run(QStringLiteral("handlers")), QByteArray("true\ntrue\ntrue\n1\n5\n"));
}

void tst_PythonStart::interruptEndsAHostWithoutHandler()
{
    StartRoot root;
    root.writeStartModule(countStarts);
    root.start(QStringLiteral("starthost"), {QStringLiteral("interrupt")});
    QProcess& host = root.process();
    QByteArray output;
    while (!output.contains("waiting\n") && host.waitForReadyRead(60000))
        output += host.readAllStandardOutput();
    QCOMPARE(output, QByteArray("true\nwaiting\n"));
    QCOMPARE(kill(pid_t(host.processId()), SIGINT), 0);
    QVERIFY(host.waitForFinished());
    QCOMPARE(host.exitStatus(), QProcess::CrashExit);
    QCOMPARE(host.exitCode(), SIGINT);
}

void tst_PythonStart::extensionModulesLoadInAHostThatLoadsTheLibrary_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("dlopen") << QStringLiteral("dlopen");
    QTest::newRow("QLibrary") << QStringLiteral("QLibrary");
}

void tst_PythonStart::extensionModulesLoadInAHostThatLoadsTheLibrary()
{
    QFETCH(const QString, how);
    StartRoot root;
    root.writeStartModule("import ssl, bz2, ctypes, sqlite3, sys\nprint 'loaded'\nsys.stdout.flush()\n");
    root.start(QStringLiteral("loadhost"), {QStringLiteral(TOOL_LIBRARY), how});
    QCOMPARE(root.output(), QByteArray("loaded\ntrue\n"));
    QCOMPARE(root.error(), QByteArray());
}

void tst_PythonStart::localeIsNamedWhenItIsTheCause()
{
    StartRoot root;
    root.writeStartModule(countStarts);
    root.write(QStringLiteral("é/answers.py"), "def five(): return 5\n");
    root.setVariable(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    QCOMPARE(root.run(QStringLiteral("ascii")), QByteArray("-1\n"));
    QVERIFY2(root.error().contains("UnicodeEncodeError"), root.error().constData());
    QVERIFY2(root.error().contains("a folder in sys.path needs a UTF-8 locale"), root.error().constData());
}

QTEST_GUILESS_MAIN(tst_PythonStart)
#include "tst_pythonstart.moc"
