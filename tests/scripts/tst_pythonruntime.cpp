// SPDX-License-Identifier: MIT
#include "startroot.h"

#include <QtTest>

namespace {

const QByteArray hostile = "print 'HOSTILE'\nimport sys\nsys.stdout.flush()\n";

// A file that the interpreter would run, had it looked there.
struct Trap {
    const char* path;
    QByteArray content = hostile;
};

using Variables = QMap<QString, QString>;

} // namespace

Q_DECLARE_METATYPE(QVector<Trap>)
Q_DECLARE_METATYPE(Variables)

// Whose runtime and whose library the interpreter is started with, and when it is not started at all.
class tst_PythonRuntime : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nobodyElsesCodeRuns_data();
    void nobodyElsesCodeRuns();
    void placesAreThoseOfTheLinkedRuntime();
    void runtimeBringsItsOwnLibrary();
    void runtimeAloneTakesTheLibraryBuiltWith_data();
    void runtimeAloneTakesTheLibraryBuiltWith();
    void startWithoutAUsableLibraryIsFalse_data();
    void startWithoutAUsableLibraryIsFalse();
    void startWithoutAnyLibraryIsFalse();
    void startWithAFolderAsInputIsFalse();
    void startBesideAnotherVersionIsFalse();
};

void tst_PythonRuntime::nobodyElsesCodeRuns_data()
{
    QTest::addColumn<QVector<Trap>>("traps");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<Variables>("variables");
    const auto row = [](const char* name, const QVector<Trap>& traps, const QString& folder,
                        const Variables& variables) { QTest::newRow(name) << traps << folder << variables; };
    const QVector<Trap> library{{"trap/lib/python2.7/os.py"}, {"trap/lib/python2.7/site.py"}};
    const Variables noPython{{QStringLiteral("PATH"), QStringLiteral("/nonexistent")}};
    const QString trap = QStringLiteral("trap");
    row("library in the working folder", library, trap, noPython);
    row("library above the working folder", QVector<Trap>(library) << Trap{"trap/project/code/file", ""},
        QStringLiteral("trap/project/code"), noPython);
    row("build tree in the working folder",
        {{"trap/Modules/Setup", ""}, {"trap/Lib/os.py"}, {"trap/Lib/site.py"}, {"trap/pybuilddir.txt", "x"}},
        trap, noPython);
    row("library beside a python on the search path",
        QVector<Trap>(library) << Trap{"trap/bin/python", "#!/bin/sh\n"}, QString(),
        {{QStringLiteral("PATH"), QStringLiteral("@/trap/bin")}});
    row("PYTHONHOME", library, QString(), {{QStringLiteral("PYTHONHOME"), QStringLiteral("@/trap")}});
    row("PYTHONPATH", {{"trap/sitecustomize.py"}, {"trap/answers.py"}, {"trap/time.py"}}, QString(),
        {{QStringLiteral("PYTHONPATH"), QStringLiteral("@/trap")}});
    row("PYTHONPATH, relative", {{"trap/sitecustomize.py"}, {"trap/answers.py"}}, trap,
        {{QStringLiteral("PYTHONPATH"), QStringLiteral(".")}});
    const QVector<Trap> user{
        {"trap/lib/python2.7/site-packages/usercustomize.py"},
        {"trap/lib/python2.7/site-packages/answers.py"},
        {"trap/lib/python2.7/site-packages/any.pth", "import os; os.write(1, 'HOSTILE')\n"}};
    row("PYTHONUSERBASE", user, QString(), {{QStringLiteral("PYTHONUSERBASE"), QStringLiteral("@/trap")}});
    row("modules of the person",
        {{"trap/.local/lib/python2.7/site-packages/usercustomize.py"},
         {"trap/.local/lib/python2.7/site-packages/answers.py"}},
        QString(), {{QStringLiteral("HOME"), QStringLiteral("@/trap")}});
    row("modules in the working folder", {{"trap/sitecustomize.py"}, {"trap/answers.py"}, {"trap/time.py"}},
        trap, {});
    row("PYTHONSTARTUP and PYTHONINSPECT", {{"trap/startup.py"}}, QString(),
        {{QStringLiteral("PYTHONSTARTUP"), QStringLiteral("@/trap/startup.py")},
         {QStringLiteral("PYTHONINSPECT"), QStringLiteral("1")}});
    for (const char* name : {"PYTHONHASHSEED", "PYTHONVERBOSE", "PYTHONDEBUG", "PYTHONOPTIMIZE",
                             "PYTHONIOENCODING", "PYTHONWARNINGS", "PYTHONUNBUFFERED"})
        row(name, {}, QString(), {{QString::fromLatin1(name), QStringLiteral("2nonsense")}});
}

void tst_PythonRuntime::nobodyElsesCodeRuns()
{
    QFETCH(const QVector<Trap>, traps);
    QFETCH(const QString, folder);
    QFETCH(const Variables, variables);
    StartRoot root;
    root.writeStartModule("");
    for (const Trap& trap : traps) {
        root.write(QString::fromLatin1(trap.path), trap.content);
        QFile::setPermissions(root.path() + QLatin1Char('/') + QLatin1String(trap.path),
                              QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    }
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable)
        root.setVariable(variable.key(), QString(variable.value()).replace(QLatin1Char('@'), root.path()));
    root.process().setWorkingDirectory(root.path() + QLatin1Char('/') + folder);
    QCOMPARE(root.run(QStringLiteral("call")), QByteArray("true\n5\n"));
    QCOMPARE(root.error(), QByteArray());
}

void tst_PythonRuntime::placesAreThoseOfTheLinkedRuntime()
{
    StartRoot root;
    root.writeStartModule("import os, sys\n"
                          "print sys.prefix, sys.exec_prefix, sys.executable, os.path.dirname(os.__file__)\n"
                          "sys.stdout.flush()\n");
    root.setVariable(QStringLiteral("PATH"), QStringLiteral("/nonexistent"));
    const QByteArray home = QByteArray(PYTHON_HOME);
    QCOMPARE(root.run(QStringLiteral("call")),
             home + ' ' + home + ' ' + home + "/bin/python2.7 " + home + "/lib/python2.7\ntrue\n5\n");
}

void tst_PythonRuntime::runtimeBringsItsOwnLibrary()
{
    StartRoot root;
    root.writeStartModule("import sys\nprint sys.prefix\nsys.stdout.flush()\n");
    const QString library = root.path() + QStringLiteral("/python/lib");
    QVERIFY(QDir().mkpath(library + QStringLiteral("/platform")));
    const QString runtime = QFileInfo(QStringLiteral(PYTHON_RUNTIME)).canonicalFilePath();
    QVERIFY(QFile::copy(runtime, library + QStringLiteral("/platform/libpython2.7.so.1.0")));
    QVERIFY(
        QFile::link(QStringLiteral(PYTHON_HOME "/lib/python2.7"), library + QStringLiteral("/python2.7")));
    root.setVariable(QStringLiteral("LD_LIBRARY_PATH"), library + QStringLiteral("/platform"));
    QCOMPARE(root.run(QStringLiteral("call")), root.path().toUtf8() + "/python\ntrue\n5\n");
}

void tst_PythonRuntime::runtimeAloneTakesTheLibraryBuiltWith_data()
{
    QTest::addColumn<QVector<Trap>>("traps");
    QTest::newRow("no library") << QVector<Trap>();
    QTest::newRow("library above it") << QVector<Trap>{{"lib/python2.7/os.py"}, {"lib/python2.7/site.py"}};
}

// A host may ship the runtime in its own lib folder.
void tst_PythonRuntime::runtimeAloneTakesTheLibraryBuiltWith()
{
    QFETCH(const QVector<Trap>, traps);
    StartRoot root;
    root.writeStartModule("import sys\nprint sys.prefix\nsys.stdout.flush()\n");
    for (const Trap& trap : traps)
        root.write(QString::fromLatin1(trap.path), trap.content);
    const QString library = root.path() + QStringLiteral("/app/lib");
    QVERIFY(QDir().mkpath(library));
    const QString runtime = QFileInfo(QStringLiteral(PYTHON_RUNTIME)).canonicalFilePath();
    QVERIFY(QFile::copy(runtime, library + QStringLiteral("/libpython2.7.so.1.0")));
    root.setVariable(QStringLiteral("LD_LIBRARY_PATH"), library);
    QCOMPARE(root.run(QStringLiteral("call")), QByteArray(PYTHON_HOME) + "\ntrue\n5\n");
}

void tst_PythonRuntime::startWithoutAUsableLibraryIsFalse_data()
{
    QTest::addColumn<QVector<Trap>>("files");
    QTest::addColumn<QByteArray>("cause");
    const char* const os = "python/lib/python2.7/os.py";
    const char* const site = "python/lib/python2.7/site.py";
    QTest::newRow("no site") << QVector<Trap>{{os, ""}} << QByteArray("ImportError: No module named site");
    QTest::newRow("damaged") << QVector<Trap>{{os, ""}, {site, "def f(:\n"}} << QByteArray("SyntaxError: ");
    QTest::newRow("ends the process")
        << QVector<Trap>{{os, ""}, {site, "raise SystemExit(3)\n"}} << QByteArray("SystemExit: 3");
}

void tst_PythonRuntime::startWithoutAUsableLibraryIsFalse()
{
    QFETCH(const QVector<Trap>, files);
    QFETCH(const QByteArray, cause);
    StartRoot root;
    root.writeStartModule("");
    for (const Trap& file : files)
        root.write(QString::fromLatin1(file.path), file.content);
    const QString library = root.path() + QStringLiteral("/python/lib");
    QVERIFY(QDir().mkpath(library));
    const QString runtime = QFileInfo(QStringLiteral(PYTHON_RUNTIME)).canonicalFilePath();
    QVERIFY(QFile::copy(runtime, library + QStringLiteral("/libpython2.7.so.1.0")));
    root.setVariable(QStringLiteral("LD_LIBRARY_PATH"), library);
    QCOMPARE(root.run(QStringLiteral("failing")), QByteArray("false\nfalse\n-1\nhandled\n"));
    QVERIFY2(root.error().contains("the Python interpreter could not be started: " + cause),
             root.error().constData());
}

void tst_PythonRuntime::startWithoutAnyLibraryIsFalse()
{
    StartRoot root;
    root.writeStartModule("");
    root.preload(QStringLiteral(NO_LIBRARY));
    QCOMPARE(root.run(QStringLiteral("failing")), QByteArray("false\nfalse\n-1\nhandled\n"));
    QVERIFY2(root.error().contains("could not be started: its standard library is missing"),
             root.error().constData());
}

void tst_PythonRuntime::startWithAFolderAsInputIsFalse()
{
    StartRoot root;
    root.writeStartModule("");
    root.process().setStandardInputFile(root.path());
    QCOMPARE(root.run(QStringLiteral("failing")), QByteArray("false\nfalse\n-1\nhandled\n"));
    QVERIFY2(root.error().contains("could not be started: the standard input is a folder"),
             root.error().constData());
}

void tst_PythonRuntime::startBesideAnotherVersionIsFalse()
{
    StartRoot root;
    root.writeStartModule("");
    root.preload(QStringLiteral(OTHER_PYTHON));
    QCOMPARE(root.run(QStringLiteral("failing")), QByteArray("false\nfalse\n-1\nhandled\n"));
    QVERIFY2(root.error().contains("the process has loaded another version of it, 3.99.1"),
             root.error().constData());
}

QTEST_GUILESS_MAIN(tst_PythonRuntime)
#include "tst_pythonruntime.moc"
