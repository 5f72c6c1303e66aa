// SPDX-License-Identifier: MIT
#ifndef TASKWORKER_H
#define TASKWORKER_H

#include <pythontoolthread.h>

#include <QList>
#include <QPair>
#include <QVariant>

#include <atomic>
#include <vector>

/** Writes the library's four scripts: they record their calls and answer what setAnswer() said, 0 to begin
 * with. */
void writeRecordingScripts();

/** The Python expression whose value the scripts answer. */
void setAnswer(const QByteArray& expression);

/** Takes the calls that the scripts have recorded, each as "script.function(arguments): types". */
QStringList takeCalls();

QVariantMap params(const QList<QPair<const char*, QVariant>>& pairs);
QVariant text(const char* utf8);

// What a directly connected slot saw of an emission.
struct Emission {
    int type = -1;
    QVariantMap* map = nullptr;
    QVariantMap values;
    bool success = false;
    bool busy = false;
    QThread* thread = nullptr;
};

/** Runs tasks and records their emissions on the worker. Opens the protected steps to the test. */
class Worker : public PythonToolThread {
public:
    Worker();

    /** Records the task, runs it to its end and returns the calls that the scripts saw. */
    QString perform(int operation, const QVariantMap& params);

    // The end of run() is told once more: what QThread::wait() synchronises with, the thread sanitizer cannot
    // see.
    bool startAndWait()
    {
        start();
        return hasEnded();
    }
    bool hasEnded() { return wait(60000) && m_ended.exchange(false); }

    using PythonToolThread::importSDK;
    using PythonToolThread::unzip;
    using PythonToolThread::zip;
    using PythonToolThread::zipFunction;

    std::vector<Emission> emissions;

protected:
    void run() override
    {
        PythonToolThread::run();
        m_ended.store(true);
    }

private:
    std::atomic<bool> m_ended{false};
};

#endif
