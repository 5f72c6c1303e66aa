// SPDX-License-Identifier: MIT
// Everything at the same time in one process, for QUENZO_SOAK_SECONDS: each result is right, and when the
// work pauses memory, open files and threads are what they were after a quarter of the time.
#include "runroot.h"
#include "work.h"

#include <pythonforqt.h>

#include <QDir>
#include <QtTest>

#include <atomic>
#include <malloc.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int patienceMs = 120000;
std::atomic<int> warnings{0};
QtMessageHandler handlerBefore = nullptr;

// The library's messages at debug level are many, and described elsewhere.
void countWarnings(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtDebugMsg)
        return;
    if (type != QtInfoMsg)
        ++warnings;
    handlerBefore(type, context, text);
}

int entriesIn(const char* folder)
{
    return QDir(QLatin1String(folder))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

struct Usage {
    qint64 bytes;
    int files;
    int threads;

    static Usage now()
    {
        malloc_trim(0);
        QFile statistics(QStringLiteral("/proc/self/statm"));
        const bool isOpen = statistics.open(QIODevice::ReadOnly);
        const QByteArray pages = isOpen ? statistics.readAll().split(' ').value(1) : QByteArray();
        statistics.close();
        return {pages.toLongLong() * sysconf(_SC_PAGESIZE), entriesIn("/proc/self/fd"),
                entriesIn("/proc/self/task")};
    }
};

void print(const char* when, const Usage& usage)
{
    qInfo("%-8s %6.1f MiB, %d files, %d threads", when, static_cast<double>(usage.bytes) / (1 << 20),
          usage.files, usage.threads);
}

} // namespace

class tst_Soak : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everythingAtOnceIsRightAndStaysFlat();
    void cleanupTestCase();

private:
    void workFor(int seconds);
    bool isPaused() const;

    std::vector<std::unique_ptr<Work>> m_works;
};

void tst_Soak::initTestCase()
{
    handlerBefore = qInstallMessageHandler(countWarnings);
    RunRoot::clear();
    const QDir scripts(QStringLiteral(SCRIPTS));
    for (const QString& name : scripts.entryList({QStringLiteral("*.py")}))
        QVERIFY(QFile::copy(scripts.filePath(name), RunRoot::path() + QStringLiteral("/Script/") + name));
    RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
    QVERIFY(PythonForQt::initPythonEnv());
    for (int i = 0; i < 4; ++i)
        m_works.push_back(scriptWork());
    m_works.push_back(recordWork());
    m_works.push_back(treeWork());
    m_works.push_back(iconWork());
    m_works.push_back(deviceWork());
}

void tst_Soak::cleanupTestCase()
{
    m_works.clear();
    qInstallMessageHandler(handlerBefore);
}

bool tst_Soak::isPaused() const
{
    return std::none_of(m_works.begin(), m_works.end(), [](const auto& work) { return work->isAtWork(); });
}

void tst_Soak::workFor(int seconds)
{
    for (const auto& work : m_works)
        work->start();
    QTest::qWait(seconds * 1000);
    for (const auto& work : m_works)
        work->pause();
    QTRY_VERIFY2_WITH_TIMEOUT(isPaused(), "a piece of work does not end", patienceMs);
    for (const auto& work : m_works)
        QVERIFY2(work->fault().isEmpty(), qUtf8Printable(work->name() + QLatin1String(": ") + work->fault()));
    QTest::qWait(1500); // the worker of the records closes its burst
}

void tst_Soak::everythingAtOnceIsRightAndStaysFlat()
{
    const int seconds =
        qEnvironmentVariableIsSet("QUENZO_SOAK_SECONDS") ? qgetenv("QUENZO_SOAK_SECONDS").toInt() : 30;
    workFor(seconds / 4);
    const Usage before = Usage::now();
    if (!QTest::currentTestFailed())
        workFor(seconds - seconds / 4);
    if (QTest::currentTestFailed())
        return;
    QTRY_VERIFY_WITH_TIMEOUT(Usage::now().threads <= before.threads, patienceMs);
    const Usage after = Usage::now();

    for (const auto& work : m_works)
        qInfo("%6d %s", work->pieces(), qUtf8Printable(work->name()));
    print("before:", before);
    print("after:", after);
    QCOMPARE(after.files, before.files);
    QCOMPARE(after.threads, before.threads);
    QVERIFY2(after.bytes - before.bytes < (8 << 20), "memory has grown by more than 8 MiB");
    QCOMPARE(warnings.load(), 0);
    for (const auto& work : m_works)
        QVERIFY2(work->pieces() > 1, qUtf8Printable(work->name()));
}

int main(int count, char** words)
{
    qputenv("QTEST_FUNCTION_TIMEOUT", "86400000"); // as long as it is asked to take
    QCoreApplication application(count, words);
    tst_Soak test;
    return QTest::qExec(&test, count, words);
}

#include "tst_soak.moc"
