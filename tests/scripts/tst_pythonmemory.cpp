// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include "runroot.h"

#include <QFileInfo>
#include <QtTest>

#include <unistd.h>

namespace {

qint64 residentBytes()
{
    QFile statistics(QStringLiteral("/proc/self/statm"));
    if (!statistics.open(QIODevice::ReadOnly))
        return 0;
    return statistics.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

void dropMessage(QtMsgType, const QMessageLogContext&, const QString&) { }

} // namespace

class tst_PythonMemory : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void manyCallsDoNotGrow_data();
    void manyCallsDoNotGrow();
    void manyFoldersDoNotGrow();

private:
    QString m_script;
};

void tst_PythonMemory::initTestCase()
{
    RunRoot::clear();
    RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
    m_script = RunRoot::write(QStringLiteral("Script/memory.py"),
                              "def make(kind, *rest):\n"
                              "    if kind == 'list': return ['text' * 10, 5, u'text' * 10]\n"
                              "    if kind == 'dict': return {'key' * 10: 'text' * 10, 5: 5}\n"
                              "    if kind == 'text': return u'text' * 100\n"
                              "    if kind == 'int': return 2**40\n"
                              "    if kind == 'exit': raise SystemExit('text' * 10)\n"
                              "    if kind == 'error': raise ValueError(u'text' * 10)\n"
                              "    return kind\n");
    QVERIFY(PythonForQt::initPythonEnv());
}

void tst_PythonMemory::manyCallsDoNotGrow_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<bool>("unload");
    const QString make = QStringLiteral("make");
    for (const char* kind : {"list", "dict", "text", "int", "exit", "error", "argument given back"})
        QTest::newRow(kind) << make << QVariantList{QString::fromLatin1(kind)} << false;
    QTest::newRow("unloaded") << make << QVariantList{QStringLiteral("text")} << true;
    QTest::newRow("unloaded, raises") << make << QVariantList{QStringLiteral("error")} << true;
    QTest::newRow("arguments left out") << make << QVariantList{1.5, QStringLiteral("int"), true} << false;
    QTest::newRow("no argument for a required parameter") << make << QVariantList() << false;
    QTest::newRow("missing function") << QStringLiteral("absent") << QVariantList{1} << false;
}

void tst_PythonMemory::manyCallsDoNotGrow()
{
    QFETCH(const QString, function);
    QFETCH(const QVariantList, arguments);
    QFETCH(const bool, unload);
    OpenBridge bridge;
    const auto call = [&](int rounds) {
        for (int round = 0; round < rounds; ++round) {
            bridge.callScript(m_script, function, arguments, unload);
            switch (round % 5) {
            case 0:
                bridge.getResultAsInt();
                break;
            case 1:
                bridge.getResultAsString();
                break;
            case 2:
                bridge.getResultAsStrList();
                break;
            case 3:
                bridge.getResultAsStrDict();
                break;
            default:
                bridge.releaseObj(&bridge.pResult);
            }
        }
    };
    const QtMessageHandler before = qInstallMessageHandler(dropMessage);
    call(5000);
    const qint64 resident = residentBytes();
    call(100000);
    const qint64 growth = residentBytes() - resident;
    qInstallMessageHandler(before);
    QVERIFY(resident > 0);
    // A leak of as little as eight bytes a call shows.
    QVERIFY2(growth < 800000, qPrintable(QStringLiteral("grown by %1 bytes").arg(growth)));
}

// What is compiled for the folder of one script is not kept for ever.
void tst_PythonMemory::manyFoldersDoNotGrow()
{
    const auto call = [this](int first, int count) {
        for (int i = first; i < first + count; ++i) {
            const QString folder = RunRoot::path() + QStringLiteral("/Script/folder%1").arg(i);
            QVERIFY(QFile::link(QFileInfo(m_script).path(), folder));
            OpenBridge bridge;
            bridge.callScript(folder + QStringLiteral("/memory.py"), QStringLiteral("make"), {1}, false);
            QCOMPARE(bridge.getResultAsInt(), 1);
        }
    };
    call(0, 600);
    const qint64 resident = residentBytes();
    call(600, 3000);
    const qint64 growth = residentBytes() - resident;
    QVERIFY(resident > 0);
    QVERIFY2(growth < 800000, qPrintable(QStringLiteral("grown by %1 bytes").arg(growth)));
}

QTEST_GUILESS_MAIN(tst_PythonMemory)
#include "tst_pythonmemory.moc"
