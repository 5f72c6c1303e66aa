// SPDX-License-Identifier: MIT
#ifndef TOOLCHILD_H
#define TOOLCHILD_H

#include <QByteArray>
#include <QProcess>

/**
 * A program that is run for a command. It reads nothing, has no terminal, can be ended with all its children,
 * and is ended when it prints without end, or when the thread that started it is gone.
 *
 * A plain QProcess must not be used: where the system refuses another process, Qt's own way of starting one
 * waits for it in vain, and kill() then hits the process -1, which is every one of the user. A derived class
 * is forked as the C library does.
 */
class ToolChild : public QProcess {
public:
    /** Of both streams together, in bytes. */
    static constexpr int outputLimit = 64 * 1024 * 1024;

    ToolChild();
    ~ToolChild() override;

    /** Ends it with its children, and waits for it. */
    void end();

    /** What it has printed so far. */
    QByteArray output() const { return m_output; }
    QByteArray error() const { return m_error; }

    /** Whether it was ended for what it printed. */
    bool isOverLimit() const { return m_output.size() + m_error.size() > outputLimit; }

protected:
    void setupChildProcess() override;

private:
    void take();
    void stop();

    QByteArray m_output;
    QByteArray m_error;
};

#endif
