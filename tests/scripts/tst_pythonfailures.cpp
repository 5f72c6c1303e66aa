// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include "messagelog.h"
#include "runroot.h"

#include <QtTest>

#include <memory>

namespace {

const QString notFound = QStringLiteral("Error:Not Found The File of srcipt");
const QString noFunction = QStringLiteral("Error:Function was not found!");

} // namespace

class tst_PythonFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void failedImport_data();
    void failedImport();
    void failedImportKeepsTheResultBefore();
    void missingFunctionKeepsTheResultBefore();
    void missingFunctionStillUnloads();
    void raisingFunction_data();
    void raisingFunction();
    void raisingFunctionDropsTheResultBefore();
    void raisingFunctionDoesNotChangeTheNextCall();
    void exceptionWhoseTextRaisesIsNamedByType();
    void pendingExceptionOfTheCallerIsDropped();
    void exceptionIsClearedUnderTheCallersLock();
    void emptyScriptPathFails();

    void messagesCarryTheirContext();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_PythonFailures::initTestCase()
{
    RunRoot::clear();
    RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
    m_log = std::make_unique<MessageLog>();
    QVERIFY(PythonForQt::initPythonEnv());
}

void tst_PythonFailures::cleanup()
{
    QCOMPARE(m_log->takeWarnings(), QStringList());
    const PyThreadStateLock lock;
    QVERIFY2(PyErr_Occurred() == nullptr, "an exception is left pending");
}

void tst_PythonFailures::failedImport_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("cause");
    QTest::newRow("syntax error") << QByteArray("def f(:\n") << QStringLiteral("SyntaxError: ");
    QTest::newRow("indentation") << QByteArray("def f():\nreturn 1\n")
                                 << QStringLiteral("IndentationError: ");
    QTest::newRow("raises") << QByteArray("raise ValueError('why')\n") << QStringLiteral("ValueError: why");
    QTest::newRow("imports what is missing") << QByteArray("import no_such_module\n")
                                             << QStringLiteral("ImportError: No module named no_such_module");
    QTest::newRow("SystemExit") << QByteArray("raise SystemExit(3)\n") << QStringLiteral("SystemExit: 3");
    QTest::newRow("sys.exit") << QByteArray("import sys\nsys.exit()\n") << QStringLiteral("SystemExit");
    QTest::newRow("KeyboardInterrupt")
        << QByteArray("raise KeyboardInterrupt\n") << QStringLiteral("KeyboardInterrupt");
    QTest::newRow("null byte") << QByteArray("x = 1\0\n", 7) << QString();
    QTest::newRow("no encoding declared")
        << QByteArray("x = '\xC3\xA9'\n") << QStringLiteral("SyntaxError: ");
    QTest::newRow("too deep") << QByteArray("def f(): f()\nf()\n") << QStringLiteral("RuntimeError: ");
    QTest::newRow("cannot encode, of the script's own doing")
        << QByteArray("u'\\xe9'.encode('ascii')\n") << QStringLiteral("UnicodeEncodeError: ");
}

void tst_PythonFailures::failedImport()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QString, cause);
    const QString script = writeScript(body + "def f(): return 1\n");
    OpenBridge bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QVERIFY(bridge.pResult == nullptr);
    QCOMPARE(bridge.getResultAsInt(), -1);
    const QStringList messages = m_log->takeDebugTexts();
    QVERIFY2(messages.size() >= 2, qPrintable(messages.join(QLatin1Char('|'))));
    QCOMPARE(messages.at(0), QStringLiteral("scriptName: ") + moduleOf(script));
    QCOMPARE(messages.at(1), notFound);
    if (!cause.isEmpty())
        QVERIFY2(messages.value(2).startsWith(cause), qPrintable(messages.value(2)));
    QVERIFY2(!messages.value(2).contains(QStringLiteral("locale")), qPrintable(messages.value(2)));

    // The next call has another answer.
    RunRoot::write(QStringLiteral("Script/") + QFileInfo(script).fileName(), "def f(): return 7\n");
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 7);
    while (countInPath(scriptFolder()) > 0)
        pythonValue(QStringLiteral("__import__('sys').path.remove('%1')").arg(scriptFolder()));
}

void tst_PythonFailures::failedImportKeepsTheResultBefore()
{
    PythonForQt bridge;
    bridge.callScript(writeScript("def f(): return 11\n"), QStringLiteral("f"), {}, true);
    bridge.callScript(RunRoot::path() + QStringLiteral("/Script/stale/absent.py"), QStringLiteral("f"), {},
                      true);
    QCOMPARE(bridge.getResultAsInt(), 11);
    QCOMPARE(bridge.getResultAsInt(), -1);
}

void tst_PythonFailures::missingFunctionKeepsTheResultBefore()
{
    const QString script = writeScript("def f(): return 12\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, false);
    m_log->take();
    bridge.callScript(script, QStringLiteral("absent"), {}, false);
    const QStringList messages = m_log->takeDebugTexts();
    QCOMPARE(messages.value(0), noFunction);
    QCOMPARE(messages.value(1), QStringLiteral("AttributeError: 'module' object has no attribute 'absent'"));
    QCOMPARE(bridge.getResultAsInt(), 12);
    QCOMPARE(bridge.getResultAsInt(), -1);
}

void tst_PythonFailures::missingFunctionStillUnloads()
{
    const QString script = writeScript("x = 1\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("absent"), {}, true);
    QVERIFY(!isLoaded(moduleOf(script)));
    bridge.callScript(script, QString(), {}, false);
    QVERIFY(isLoaded(moduleOf(script)));
    QCOMPARE(bridge.getResultAsInt(), -1);
}

void tst_PythonFailures::raisingFunction_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("message");
    QTest::newRow("error") << QByteArray("raise ValueError('why')") << QStringLiteral("ValueError: why");
    QTest::newRow("text beyond ASCII")
        << QByteArray("raise ValueError(u'\\xe9')") << QStringLiteral("ValueError: é");
    QTest::newRow("no text") << QByteArray("raise KeyError") << QStringLiteral("KeyError");
    QTest::newRow("SystemExit") << QByteArray("raise SystemExit(3)") << QStringLiteral("SystemExit: 3");
    QTest::newRow("sys.exit") << QByteArray("import sys; sys.exit('bye')")
                              << QStringLiteral("SystemExit: bye");
    QTest::newRow("exit()") << QByteArray("exit(4)") << QStringLiteral("SystemExit: 4");
    QTest::newRow("KeyboardInterrupt")
        << QByteArray("raise KeyboardInterrupt") << QStringLiteral("KeyboardInterrupt");
    QTest::newRow("GeneratorExit") << QByteArray("raise GeneratorExit") << QStringLiteral("GeneratorExit");
    QTest::newRow("class of the script's own") << QByteArray("raise Own('x')") << QStringLiteral("Own: x");
    QTest::newRow("old-style class") << QByteArray("raise Old('x')") << QStringLiteral("Old: x");
    QTest::newRow("a text, which cannot be raised")
        << QByteArray("raise 'text'")
        << QStringLiteral(
               "TypeError: exceptions must be old-style classes or derived from BaseException, not str");
    QTest::newRow("constructor raises") << QByteArray("raise Hostile, 1") << QStringLiteral("SystemExit: 5");
}

void tst_PythonFailures::raisingFunction()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QString, message);
    const QString script =
        writeScript("class Own(Exception): pass\n"
                    "class Old:\n    def __init__(self, t): self.t = t\n"
                    "    def __str__(self): return self.t\n"
                    "class Hostile(Exception):\n    def __init__(self, t): raise SystemExit(5)\n"
                    "def f(): "
                    + body + "\n");
    OpenBridge bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QVERIFY(bridge.pResult == nullptr);
    QCOMPARE(m_log->takeDebugTexts(), QStringList{message});
    QCOMPARE(bridge.getResultAsInt(), -1);
    QCOMPARE(bridge.getResultAsString(), QString());
    QCOMPARE(bridge.getResultAsStrList(), QStringList());
    QCOMPARE(bridge.getResultAsStrDict(), (QMap<QString, QString>()));
    QVERIFY(!isLoaded(moduleOf(script)));
    QCOMPARE(countInPath(scriptFolder()), 0);
}

void tst_PythonFailures::raisingFunctionDropsTheResultBefore()
{
    const QString script = writeScript("def f(): return 13\ndef fail(): raise ValueError\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    bridge.callScript(script, QStringLiteral("fail"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), -1);
}

void tst_PythonFailures::raisingFunctionDoesNotChangeTheNextCall()
{
    const QString script = writeScript("import sys\ndef fail(): raise ValueError\n"
                                       "def error(): return repr(sys.exc_info())\n");
    PythonForQt bridge;
    for (const bool unload : {true, false}) {
        bridge.callScript(script, QStringLiteral("fail"), {}, unload);
        bridge.callScript(script, QStringLiteral("error"), {}, unload);
        QCOMPARE(bridge.getResultAsString(), QStringLiteral("(None, None, None)"));
    }
}

void tst_PythonFailures::exceptionWhoseTextRaisesIsNamedByType()
{
    const QString script = writeScript("class Mute(Exception):\n    def __str__(self): raise SystemExit(6)\n"
                                       "class Number(Exception):\n    def __str__(self): return 7\n"
                                       "def mute(): raise Mute()\ndef number(): raise Number()\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("mute"), {}, true);
    bridge.callScript(script, QStringLiteral("number"), {}, true);
    QCOMPARE(m_log->takeDebugTexts(), (QStringList{QStringLiteral("Mute"), QStringLiteral("Number")}));
}

void tst_PythonFailures::pendingExceptionOfTheCallerIsDropped()
{
    const QString script = writeScript("def f(): return 14\n");
    const PyThreadStateLock lock;
    PyErr_SetString(PyExc_SystemExit, "of the caller");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QVERIFY(PyErr_Occurred() == nullptr);
    PyErr_SetString(PyExc_SystemExit, "of the caller");
    QCOMPARE(bridge.getResultAsInt(), 14);
    QVERIFY(PyErr_Occurred() == nullptr);
}

void tst_PythonFailures::exceptionIsClearedUnderTheCallersLock()
{
    const QString script = writeScript("def fail(): raise SystemExit(1)\ndef text(): return 'x'\n");
    const PyThreadStateLock lock;
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("fail"), {}, true);
    QVERIFY(PyErr_Occurred() == nullptr);
    bridge.callScript(script, QStringLiteral("absent"), {}, true);
    QVERIFY(PyErr_Occurred() == nullptr);
    bridge.callScript(RunRoot::path() + QStringLiteral("/Script/locked/absent.py"), QStringLiteral("f"), {},
                      true);
    QVERIFY(PyErr_Occurred() == nullptr);
    bridge.callScript(script, QStringLiteral("text"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), -1);
    QVERIFY(PyErr_Occurred() == nullptr);
}

void tst_PythonFailures::emptyScriptPathFails()
{
    PythonForQt bridge;
    bridge.callScript(QString(), QStringLiteral("f"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), -1);
    const QStringList messages = m_log->takeDebugTexts();
    QCOMPARE(messages.value(1), notFound);
}

void tst_PythonFailures::messagesCarryTheirContext()
{
    PythonForQt bridge;
    bridge.callScript(RunRoot::path() + QStringLiteral("/Script/context/absent.py"), QStringLiteral("f"), {},
                      true);
    bridge.callScript(writeScript("x = 1\n"), QStringLiteral("absent"), {}, true);
    const QVector<LoggedMessage> messages = m_log->take();
    QCOMPARE(messages.size(), 5);
    for (const LoggedMessage& message : messages) {
        QCOMPARE(message.type, QtDebugMsg);
        QCOMPARE(message.file, QStringLiteral("QuenzoTool/source/pythonforqt"));
        QVERIFY2(message.function.contains(QStringLiteral("PythonForQt::callScript(")),
                 qPrintable(message.function));
        QVERIFY(message.line > 0);
    }
    QCOMPARE(messages.at(0).text, QStringLiteral("scriptName: absent"));
    QCOMPARE(messages.at(1).text, notFound);
    QCOMPARE(messages.at(2).text, QStringLiteral("ImportError: No module named absent"));
    QCOMPARE(messages.at(3).text, noFunction);
}

QTEST_GUILESS_MAIN(tst_PythonFailures)
#include "tst_pythonfailures.moc"
