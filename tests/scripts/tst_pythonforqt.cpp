// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include "messagelog.h"
#include "runroot.h"

#include <QtTest>

#include <memory>

namespace {

const QString notFound = QStringLiteral("Error:Not Found The File of srcipt");

} // namespace

class tst_PythonForQt : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void objectIsAPlainQObject();
    void destroyedWithItsParentTheInterpreterGoesOn();
    void resultNotReadOutlivesTheObject();

    void functionGetsItsArgumentsInOrder();
    void noArgumentsMeansNone();
    void noArgumentsForRequiredParametersRaises();
    void moduleKeptRunsItsBodyOnce();
    void moduleUnloadedRunsItsBodyTwice();
    void keptModuleKeepsItsState();
    void unloadAppliesToTheCallItIsGivenTo();
    void moduleThatReplacesItselfIsUnloaded();
    void moduleThatRemovesItselfIsNoProblem();
    void loadedModuleOfThatNameIsTakenAsItIs();
    void earlierFolderOnThePathWins();
    void fileItselfIsNotLookedFor();

    void pathIsAsBeforeAfterSuccess_data();
    void pathIsAsBeforeAfterSuccess();
    void pathHoldsTheFolderOnceMoreAfterFailedImport();
    void pathIsAsBeforeAfterMissingFunction();
    void folderIsCleanedBeforeItIsAppended();
    void relativePathIsMadeAbsolute();
    void folderInThePathBeforehandKeepsItsCount();

    void oddFolders_data();
    void oddFolders();
    void folderWithAQuotationMarkIsNotFound_data();
    void folderWithAQuotationMarkIsNotFound();
    void folderWithALineFeedIsNotFound();
    void oddModuleNames_data();
    void oddModuleNames();

    void defaultEncodingIsUtf8InEveryCall();
    void unfinishedPrintLineIsEnded();
    void outputThatRefusesTheLineEndIsNoProblem();
    void moreFoldersThanStatementsAreKept();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_PythonForQt::initTestCase()
{
    RunRoot::clear();
    RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
    m_log = std::make_unique<MessageLog>();
    QVERIFY(PythonForQt::initPythonEnv());
}

void tst_PythonForQt::cleanup()
{
    QCOMPARE(m_log->takeWarnings(), QStringList());
    const PyThreadStateLock lock;
    QVERIFY2(PyErr_Occurred() == nullptr, "an exception is left pending");
}

void tst_PythonForQt::objectIsAPlainQObject()
{
    QObject parent;
    auto* const bridge = new PythonForQt(&parent);
    QCOMPARE(bridge->parent(), &parent);
    QCOMPARE(parent.children(), QObjectList{bridge});
    const QMetaObject* const meta = bridge->metaObject();
    QCOMPARE(meta->className(), "PythonForQt");
    QCOMPARE(meta->methodCount(), QObject::staticMetaObject.methodCount());
    QCOMPARE(meta->propertyCount(), QObject::staticMetaObject.propertyCount());
    QVERIFY(static_cast<QObject*>(bridge)->qt_metacast("PythonForQt") == bridge);
    QCOMPARE(PythonForQt::tr("text"), QStringLiteral("text"));

    const OpenBridge fresh;
    QVERIFY(fresh.bEnvReady);
    QVERIFY(fresh.pResult == nullptr);
}

void tst_PythonForQt::destroyedWithItsParentTheInterpreterGoesOn()
{
    auto parent = std::make_unique<QObject>();
    QPointer<PythonForQt> bridge = new PythonForQt(parent.get());
    parent.reset();
    QVERIFY(bridge.isNull());
    QCOMPARE(pythonValue(QStringLiteral("1 + 1")), QStringLiteral("2"));
}

void tst_PythonForQt::resultNotReadOutlivesTheObject()
{
    const QString script =
        writeScript("class Thing(object):\n    gone = 0\n    def __del__(self): Thing.gone += 1\n"
                    "def make(): return Thing()\n"
                    "def gone(): return Thing.gone\n");
    PyObject* result = nullptr;
    {
        OpenBridge bridge;
        bridge.callScript(script, QStringLiteral("make"), {}, false);
        result = bridge.pResult;
    }
    PythonForQt other;
    other.callScript(script, QStringLiteral("gone"), {}, false);
    QCOMPARE(other.getResultAsInt(), 0);
    OpenBridge().releaseObj(&result);
    QVERIFY(result == nullptr);
    other.callScript(script, QStringLiteral("gone"), {}, false);
    QCOMPARE(other.getResultAsInt(), 1);
}

void tst_PythonForQt::functionGetsItsArgumentsInOrder()
{
    const QString script = writeScript("def join(*all): return repr(all)\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("join"), {1, QStringLiteral("two"), -3}, true);
    QCOMPARE(bridge.getResultAsString(), QStringLiteral("(1, 'two', -3)"));
}

void tst_PythonForQt::noArgumentsMeansNone()
{
    const QString script = writeScript("def count(*all, **named): return 10 * len(all) + len(named)\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("count"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 0);
}

void tst_PythonForQt::noArgumentsForRequiredParametersRaises()
{
    OpenBridge bridge;
    bridge.callScript(writeScript("def need(a): return a\n"), QStringLiteral("need"), {}, true);
    QVERIFY(bridge.pResult == nullptr);
    QCOMPARE(bridge.getResultAsInt(), -1);
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_PythonForQt::moduleKeptRunsItsBodyOnce()
{
    const QString count = QStringLiteral("__import__('__builtin__').__dict__.get('bodies', 0)");
    const QString script = writeScript("import __builtin__ as b\nb.bodies = getattr(b, 'bodies', 0) + 1\n"
                                       "def bodies(): return b.bodies\n");
    const int before = pythonValue(count).toInt();
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("bodies"), {}, false);
    QCOMPARE(bridge.getResultAsInt(), before + 1);
    QVERIFY(isLoaded(moduleOf(script)));
    bridge.callScript(script, QStringLiteral("bodies"), {}, false);
    QCOMPARE(bridge.getResultAsInt(), before + 1);
}

void tst_PythonForQt::moduleUnloadedRunsItsBodyTwice()
{
    const QString script = writeScript("import __builtin__ as b\nb.runs = getattr(b, 'runs', 0) + 1\n"
                                       "def runs(): return b.runs\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("runs"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 1);
    QVERIFY(!isLoaded(moduleOf(script)));
    bridge.callScript(script, QStringLiteral("runs"), {}, false);
    QCOMPARE(bridge.getResultAsInt(), 2);
}

void tst_PythonForQt::keptModuleKeepsItsState()
{
    const QString script = writeScript("state = [0]\ndef step():\n    state[0] += 1\n    return state[0]\n");
    PythonForQt bridge;
    for (int i = 1; i <= 3; ++i) {
        bridge.callScript(script, QStringLiteral("step"), {}, false);
        QCOMPARE(bridge.getResultAsInt(), i);
    }
    RunRoot::write(QStringLiteral("Script/") + QFileInfo(script).fileName(), "def step(): return 99\n");
    bridge.callScript(script, QStringLiteral("step"), {}, false);
    QCOMPARE(bridge.getResultAsInt(), 4);
}

void tst_PythonForQt::unloadAppliesToTheCallItIsGivenTo()
{
    const QString script = writeScript("state = [0]\ndef step():\n    state[0] += 1\n    return state[0]\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("step"), {}, false);
    QCOMPARE(bridge.getResultAsInt(), 1);
    bridge.callScript(script, QStringLiteral("step"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 2);
    bridge.callScript(script, QStringLiteral("step"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 1);
}

void tst_PythonForQt::moduleThatReplacesItselfIsUnloaded()
{
    const QString script = writeScript("import sys\nclass Stand(object):\n    def answer(self): return 5\n"
                                       "sys.modules[__name__] = Stand()\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("answer"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 5);
    QVERIFY(!isLoaded(moduleOf(script)));
}

void tst_PythonForQt::moduleThatRemovesItselfIsNoProblem()
{
    const QString script =
        writeScript("import sys\ndef leave():\n    del sys.modules[__name__]\n    return 6\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("leave"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 6);
    QCOMPARE(countInPath(scriptFolder()), 0);
}

void tst_PythonForQt::loadedModuleOfThatNameIsTakenAsItIs()
{
    const QString first = writeScript("def where(): return 1\n", QStringLiteral("Script/first"));
    const QString second = RunRoot::write(QStringLiteral("Script/second/") + QFileInfo(first).fileName(),
                                          "def where(): return 2\n");
    PythonForQt bridge;
    bridge.callScript(first, QStringLiteral("where"), {}, false);
    QCOMPARE(bridge.getResultAsInt(), 1);
    bridge.callScript(second, QStringLiteral("where"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 1);
    bridge.callScript(second, QStringLiteral("where"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 2);
}

void tst_PythonForQt::earlierFolderOnThePathWins()
{
    // The standard library stands before every script folder.
    RunRoot::write(QStringLiteral("Script/keyword.py"), "def iskeyword(text): return 'ours'\n");
    PythonForQt bridge;
    bridge.callScript(scriptFolder() + QStringLiteral("/keyword.py"), QStringLiteral("iskeyword"),
                      {QStringLiteral("def")}, false);
    QCOMPARE(bridge.getResultAsInt(), 1);
}

void tst_PythonForQt::fileItselfIsNotLookedFor()
{
    const QString script = writeScript("def answer(): return 8\n");
    PythonForQt bridge;
    for (const char* suffix : {"", ".txt", ".pyc"}) {
        bridge.callScript(scriptFolder() + QLatin1Char('/') + moduleOf(script) + QLatin1String(suffix),
                          QStringLiteral("answer"), {}, true);
        QCOMPARE(bridge.getResultAsInt(), 8);
    }
}

void tst_PythonForQt::pathIsAsBeforeAfterSuccess_data()
{
    QTest::addColumn<bool>("unload");
    QTest::newRow("kept") << false;
    QTest::newRow("unloaded") << true;
}

void tst_PythonForQt::pathIsAsBeforeAfterSuccess()
{
    QFETCH(const bool, unload);
    const QString script =
        writeScript("import sys\ndef here(): return sys.path[-1]\ndef fail(): raise ValueError\n");
    const QString before = pythonValue(QStringLiteral("__import__('sys').path"));
    PythonForQt bridge;
    for (int i = 0; i < 5; ++i) {
        bridge.callScript(script, QStringLiteral("here"), {}, unload);
        QCOMPARE(bridge.getResultAsString(), scriptFolder());
        bridge.callScript(script, QStringLiteral("fail"), {}, unload);
    }
    QCOMPARE(pythonValue(QStringLiteral("__import__('sys').path")), before);
}

void tst_PythonForQt::pathHoldsTheFolderOnceMoreAfterFailedImport()
{
    const QString folder = RunRoot::path() + QStringLiteral("/Script/failing");
    // The interpreter never looks again into a folder that was not there when it first looked.
    QVERIFY(QDir().mkpath(folder));
    PythonForQt bridge;
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(countInPath(folder), i);
        bridge.callScript(folder + QStringLiteral("/absent.py"), QStringLiteral("f"), {}, true);
    }
    QCOMPARE(countInPath(folder), 3);
    const QString script = writeScript("def f(): return 1\n", QStringLiteral("Script/failing"));
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 1);
    QCOMPARE(countInPath(folder), 3);
}

void tst_PythonForQt::pathIsAsBeforeAfterMissingFunction()
{
    PythonForQt bridge;
    bridge.callScript(writeScript("x = 1\n"), QStringLiteral("absent"), {}, true);
    QCOMPARE(countInPath(scriptFolder()), 0);
}

void tst_PythonForQt::folderIsCleanedBeforeItIsAppended()
{
    const QString script = writeScript("import sys\ndef here(): return sys.path[-1]\n");
    PythonForQt bridge;
    bridge.callScript(RunRoot::path() + QStringLiteral("/bin/../Script//./") + QFileInfo(script).fileName(),
                      QStringLiteral("here"), {}, true);
    QCOMPARE(bridge.getResultAsString(), scriptFolder());
}

void tst_PythonForQt::relativePathIsMadeAbsolute()
{
    const QString script = writeScript("import sys\ndef here(): return sys.path[-1]\n");
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(RunRoot::path()));
    PythonForQt bridge;
    bridge.callScript(QStringLiteral("Script/") + QFileInfo(script).fileName(), QStringLiteral("here"), {},
                      true);
    QDir::setCurrent(before);
    QCOMPARE(bridge.getResultAsString(), scriptFolder());
}

void tst_PythonForQt::folderInThePathBeforehandKeepsItsCount()
{
    const QString folder = RunRoot::path() + QStringLiteral("/Script/known");
    const QString script =
        writeScript("import sys\ndef count(folder): return sys.path.count(unicode(folder))\n",
                    QStringLiteral("Script/known"));
    QCOMPARE(pythonValue(QStringLiteral("__import__('sys').path.insert(0, '%1')").arg(folder)),
             QStringLiteral("None"));
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("count"), {folder}, true);
    QCOMPARE(bridge.getResultAsInt(), 2);
    QCOMPARE(countInPath(folder), 1);
    QCOMPARE(pythonValue(QStringLiteral("__import__('sys').path.remove('%1')").arg(folder)),
             QStringLiteral("None"));
}

void tst_PythonForQt::oddFolders_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << QStringLiteral(" two  words ");
    QTest::newRow("beyond ASCII") << QStringLiteral("é 中文 \U0001F600");
    QTest::newRow("double quotation mark") << QStringLiteral("a\"b");
    QTest::newRow("backslash") << QStringLiteral("a\\b");
    QTest::newRow("like an escape sequence") << QStringLiteral("a\\n\\x41\\t");
    QTest::newRow("backslash at the end") << QStringLiteral("a\\");
    QTest::newRow("dots and signs") << QStringLiteral("a.b,c;d#e%1$f");
}

void tst_PythonForQt::oddFolders()
{
    QFETCH(const QString, name);
    const QString script = writeScript("def f(): return __file__\n", QStringLiteral("Script/") + name);
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QVERIFY(bridge.getResultAsString().startsWith(QFileInfo(script).absolutePath()));
    QCOMPARE(countInPath(QFileInfo(script).absolutePath()), 0);
}

void tst_PythonForQt::folderWithAQuotationMarkIsNotFound_data()
{
    QTest::addColumn<QString>("name");
    const QString code = QStringLiteral("__import__('__builtin__').ran=1");
    const auto row = [](const char* name, const QString& folder) { QTest::newRow(name) << folder; };
    row("one", QStringLiteral("it's"));
    row("at the end", QStringLiteral("its'"));
    row("several", QString(3, QLatin1Char('\'')));
    row("behind a backslash", QStringLiteral("it\\'s"));
    row("closing the call", QStringLiteral("x').decode('utf8'));%1;str(str('").arg(code));
    row("closing the call, with a comment", QStringLiteral("x'));%1#").arg(code));
    row("behind a backslash, closing the call", QStringLiteral("x\\'));%1#").arg(code));
    row("an expression", QStringLiteral("x'+str(setattr(__import__('__builtin__'),'ran',1))+'"));
    row("behind a line feed", QStringLiteral("x\n'));%1#").arg(code));
    row("behind a continued line", QStringLiteral("x\\\n'));%1#").arg(code));
}

void tst_PythonForQt::folderWithAQuotationMarkIsNotFound()
{
    QFETCH(const QString, name);
    const QString script = writeScript("def f(): return 1\n", QStringLiteral("Script/") + name);
    const QString before = pythonValue(QStringLiteral("__import__('sys').path"));
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), -1);
    QCOMPARE(m_log->takeDebugTexts().value(1), notFound);
    QCOMPARE(pythonValue(QStringLiteral("__import__('sys').path")), before);
    QCOMPARE(pythonValue(QStringLiteral("hasattr(__import__('__builtin__'), 'ran')")),
             QStringLiteral("False"));
}

void tst_PythonForQt::folderWithALineFeedIsNotFound()
{
    const QString script = writeScript("def f(): return 1\n", QStringLiteral("Script/a\nb"));
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), -1);
    QCOMPARE(m_log->takeDebugTexts().value(1), notFound);
}

void tst_PythonForQt::oddModuleNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blank") << QStringLiteral("two words");
    QTest::newRow("beyond ASCII") << QStringLiteral("é中");
    QTest::newRow("quotation mark") << QStringLiteral("it's");
    QTest::newRow("digit first") << QStringLiteral("1st");
    QTest::newRow("keyword") << QStringLiteral("import");
    QTest::newRow("line feed") << QStringLiteral("a\nb");
}

void tst_PythonForQt::oddModuleNames()
{
    QFETCH(const QString, name);
    const QString path = QStringLiteral("Script/") + name + QStringLiteral(".py");
    const QString script = RunRoot::write(path, "def f(): return 1\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 1);
    RunRoot::write(path, "def f(): return 2\n");
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 2);
}

void tst_PythonForQt::defaultEncodingIsUtf8InEveryCall()
{
    const QString script =
        writeScript("import sys\ndef name():\n    name = sys.getdefaultencoding()\n"
                    "    reload(sys)\n    sys.setdefaultencoding('latin-1')\n    return name\n");
    PythonForQt bridge;
    for (int i = 0; i < 2; ++i) {
        bridge.callScript(script, QStringLiteral("name"), {}, true);
        QCOMPARE(bridge.getResultAsString(), QStringLiteral("utf8"));
    }
    bridge.callScript(writeScript("def f(): return 0\n"), QStringLiteral("f"), {}, true);
}

void tst_PythonForQt::unfinishedPrintLineIsEnded()
{
    const QString script =
        writeScript("import sys\n"
                    "class Paper(object):\n    text = ''\n"
                    "    def write(self, text): self.text += text\n"
                    "def start():\n    sys.stdout = Paper()\n    print 'one',\n    return sys.stdout\n"
                    "def text(paper): return paper.text\n");
    OpenBridge bridge;
    bridge.callScript(script, QStringLiteral("start"), {}, false);
    {
        const PyThreadStateLock lock;
        PyObject* const text = PyObject_GetAttrString(bridge.pResult, "text");
        QCOMPARE(PyString_AsString(text), "one\n");
        Py_DECREF(text);
    }
    bridge.releaseObj(&bridge.pResult);
}

void tst_PythonForQt::outputThatRefusesTheLineEndIsNoProblem()
{
    const QString script = writeScript("import sys\n"
                                       "class Refusal(object):\n    softspace = 1\n"
                                       "    def write(self, text): raise SystemExit(4)\n"
                                       "def refuse():\n    sys.stdout = Refusal()\n    return 15\n");
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("refuse"), {}, true);
    QCOMPARE(bridge.getResultAsInt(), 15);
    QCOMPARE(countInPath(scriptFolder()), 0);
}

void tst_PythonForQt::moreFoldersThanStatementsAreKept()
{
    PythonForQt bridge;
    for (int i = 0; i < 300; ++i) {
        const QString script = RunRoot::write(QStringLiteral("Script/many/%1/answer%1.py").arg(i),
                                              "def f(): return " + QByteArray::number(i) + "\n");
        bridge.callScript(script, QStringLiteral("f"), {}, true);
        QCOMPARE(bridge.getResultAsInt(), i);
        QCOMPARE(countInPath(QFileInfo(script).path()), 0);
    }
}

QTEST_GUILESS_MAIN(tst_PythonForQt)
#include "tst_pythonforqt.moc"
