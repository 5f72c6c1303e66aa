// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include "messagelog.h"
#include "runroot.h"

#include <QtTest>

#include <memory>

namespace {

const QString notFound = QStringLiteral("Error:Not Found The File of srcipt");
const QString noFunction = QStringLiteral("Error:Function was not found!");

// What a call has said: the messages that every host sees, and the causes, for hosts that want to know.
struct Said {
    QStringList messages;
    QStringList causes;
    QStringList warnings;
};

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
    void pendingExceptionFailsNoStatement();
    void pendingExceptionFailsNoReading();
    void exceptionIsClearedUnderTheCallersLock();
    void emptyScriptPathFails();

    void messagesCarryTheirContext();
    void causeIsSilentUnlessSwitchedOn();
    void causeNamesTheInnermostPlace();

private:
    Said takeSaid();

    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<CategoryOn> m_category;
};

void tst_PythonFailures::initTestCase()
{
    RunRoot::clear();
    RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
    m_log = std::make_unique<MessageLog>();
    m_category = std::make_unique<CategoryOn>("quenzo.scripts");
    QVERIFY(PythonForQt::initPythonEnv());
}

Said tst_PythonFailures::takeSaid()
{
    Said said;
    const QVector<LoggedMessage> taken = m_log->take();
    for (const LoggedMessage& message : taken) {
        const bool isCause = message.category == QLatin1String("quenzo.scripts");
        QStringList& others = message.type == QtDebugMsg ? said.messages : said.warnings;
        (isCause ? said.causes : others).append(message.text);
    }
    return said;
}

void tst_PythonFailures::cleanup()
{
    QCOMPARE(takeSaid().warnings, QStringList());
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
    const Said said = takeSaid();
    QCOMPARE(said.messages, (QStringList{QStringLiteral("scriptName: ") + moduleOf(script), notFound}));
    QCOMPARE(said.causes.size(), 1);
    const QString told = QStringLiteral("the script '%1' could not be imported: %2").arg(script, cause);
    QVERIFY2(said.causes.first().startsWith(told), qPrintable(said.causes.first()));
    QVERIFY2(!said.causes.first().contains(QStringLiteral("locale")), qPrintable(said.causes.first()));

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
    const Said said = takeSaid();
    QCOMPARE(said.messages, QStringList{noFunction});
    QCOMPARE(said.causes,
             QStringList{QStringLiteral("the script '%1' has no absent: AttributeError: 'module' object has "
                                        "no attribute 'absent'")
                             .arg(script)});
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
    const Said said = takeSaid();
    QCOMPARE(said.messages, QStringList());
    const QString told = QStringLiteral("f of the script '%1' failed: %2 (").arg(script, message);
    QVERIFY2(said.causes.size() == 1 && said.causes.first().startsWith(told),
             qPrintable(said.causes.join(QLatin1Char('|'))));
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
    const QString told = QStringLiteral("%1 of the script '%2' failed: %3 (%2:%4)");
    QCOMPARE(takeSaid().causes,
             (QStringList{
                 told.arg(QStringLiteral("mute"), script, QStringLiteral("Mute"), QStringLiteral("5")),
                 told.arg(QStringLiteral("number"), script, QStringLiteral("Number"), QStringLiteral("6"))}));
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

// Nor one that is compiled anew, which becomes of all of them after so many folders.
void tst_PythonFailures::pendingExceptionFailsNoStatement()
{
    const PyThreadStateLock lock;
    for (int i = 0; i < 200; ++i) {
        const QString script = writeScript("def f(): return 14\n", QStringLiteral("Script/pending%1").arg(i));
        // Each call puts the interpreter's own hook back.
        pythonValue(QStringLiteral("setattr(__import__('sys'), 'excepthook', lambda *all: "
                                   "setattr(__import__('__builtin__'), 'failed', all))"));
        PyErr_SetString(PyExc_ValueError, "of the caller");
        PythonForQt bridge;
        bridge.callScript(script, QStringLiteral("f"), {}, true);
        QCOMPARE(bridge.getResultAsInt(), 14);
    }
    QCOMPARE(pythonValue(QStringLiteral("getattr(__import__('__builtin__'), 'failed', None)")),
             QStringLiteral("None"));
}

// The conversion to a number may be code of the script.
void tst_PythonFailures::pendingExceptionFailsNoReading()
{
    const QString script = writeScript("class Number(object):\n"
                                       "    def __int__(self): return sum([6, 8])\n"
                                       "def f(): return Number()\n");
    const PyThreadStateLock lock;
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    PyErr_SetString(PyExc_ValueError, "of the caller");
    QCOMPARE(bridge.getResultAsInt(), 14);
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
    QCOMPARE(takeSaid().messages.value(1), notFound);
}

void tst_PythonFailures::messagesCarryTheirContext()
{
    PythonForQt bridge;
    bridge.callScript(RunRoot::path() + QStringLiteral("/Script/context/absent.py"), QStringLiteral("f"), {},
                      true);
    bridge.callScript(writeScript("x = 1\n"), QStringLiteral("absent"), {}, true);
    QVector<LoggedMessage> messages;
    for (const LoggedMessage& message : m_log->take()) {
        if (message.type == QtDebugMsg)
            messages.append(message);
    }
    QCOMPARE(messages.size(), 3);
    for (const LoggedMessage& message : qAsConst(messages)) {
        QCOMPARE(message.file, QStringLiteral("QuenzoTool/source/pythonforqt"));
        QVERIFY2(message.function.contains(QStringLiteral("PythonForQt::callScript(")),
                 qPrintable(message.function));
        QVERIFY(message.line > 0);
    }
    QCOMPARE(messages.at(0).text, QStringLiteral("scriptName: absent"));
    QCOMPARE(messages.at(1).text, notFound);
    QCOMPARE(messages.at(2).text, noFunction);
}

void tst_PythonFailures::causeIsSilentUnlessSwitchedOn()
{
    const QString script =
        writeScript("import __builtin__\n"
                    "class Told(Exception):\n"
                    "    def __str__(self):\n        __builtin__.told = 1\n        return ''\n"
                    "def fail(): raise Told()\n");
    PythonForQt bridge;
    m_category.reset();
    bridge.callScript(script, QStringLiteral("fail"), {}, true);
    bridge.callScript(script, QStringLiteral("absent"), {}, true);
    bridge.callScript(RunRoot::path() + QStringLiteral("/Script/silent/absent.py"), QStringLiteral("f"), {},
                      true);
    m_category = std::make_unique<CategoryOn>("quenzo.scripts");
    const Said said = takeSaid();
    QCOMPARE(said.causes, QStringList());
    QCOMPARE(said.messages, (QStringList{noFunction, QStringLiteral("scriptName: absent"), notFound}));
    // No code of the script runs for a text that nobody reads.
    QCOMPARE(pythonValue(QStringLiteral("hasattr(__import__('__builtin__'), 'told')")),
             QStringLiteral("False"));
}

void tst_PythonFailures::causeNamesTheInnermostPlace()
{
    const QString helper =
        RunRoot::write(QStringLiteral("Script/deep_helper.py"),
                       "def dive(depth):\n    if depth == 0:\n        raise ValueError('why')\n"
                       "    dive(depth - 1)\n");
    const QString script = writeScript("import deep_helper\ndef f():\n    deep_helper.dive(3)\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QCOMPARE(takeSaid().causes,
             QStringList{
                 QStringLiteral("f of the script '%1' failed: ValueError: why (%2:3)").arg(script, helper)});
}

QTEST_GUILESS_MAIN(tst_PythonFailures)
#include "tst_pythonfailures.moc"
