// SPDX-License-Identifier: MIT
#ifndef TOOLPROCESS_H
#define TOOLPROCESS_H

#include <QProcess>

/**
 * A child process of an external tool. One that prints without end is ended before it takes all memory, and
 * what became of it is told to the log of the devices.
 *
 * No child is to be a plain QProcess: where the system refuses another process, Qt's own way of starting one
 * waits for it in vain, and kill() then hits the process -1, which is every one of the user. A derived class
 * is forked as the C library does.
 */
class ToolProcess : public QProcess {
public:
    /** Of both streams together, in bytes. */
    static constexpr qint64 outputLimit = qint64(64) * 1024 * 1024;

    enum Group {
        Shared, ///< ends with its host at Ctrl-C
        Own ///< can be ended with all its children, ends with the thread that began it, and has no terminal
    };

    explicit ToolProcess(Group group);

    /** Splits the command line into words and starts it; false when it names no program. */
    bool begin(const QString& command);

    /** Ends it, with its children if they have a group of their own, and waits for it. */
    void end();

    /** Whether it was ended for what it printed. */
    bool isOverLimit() const { return m_overLimit; }

protected:
    void setupChildProcess() override;

private:
    void look();
    void stop();

    const Group m_group;
    bool m_overLimit = false;
};

#endif
