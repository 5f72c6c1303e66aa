// SPDX-License-Identifier: MIT
#ifndef QUENZOPROCESS_H
#define QUENZOPROCESS_H

#include <QByteArray>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

#include <functional>

/** How a run of the program ended. */
struct Ended {
    int code = 0; ///< the exit code; a signal that ended it, as a negative number
    QByteArray output;
    QByteArray error;

    /** The object that --json prints; empty when the output is none. */
    QJsonObject json() const;

    /** What of that object tells what was done, and what kept the command from its end. */
    QJsonObject result() const;
    QJsonObject failure() const;
};

/**
 * The program "quenzo", run as a user runs it.
 *
 *     const Ended ended = QuenzoProcess({"copy", "a", "b"}, folder).end();
 *
 * Whatever else QProcess lets one set (files for the streams, the environment) is set before the start.
 */
class QuenzoProcess : public QProcess {
public:
    /** @param folder the working folder; that of the test when it is empty */
    explicit QuenzoProcess(const QStringList& arguments, const QString& folder = {});
    /** Kills the program if it is still running. */
    ~QuenzoProcess() override;

    /** Done in the new process before the program begins. */
    std::function<void()> before;

    /** Adds to the environment. */
    void setVariable(const char* name, const QString& value);

    /**
     * Waits for the end, after the start if that has not been.
     *
     * @param input all of the standard input; a program that does not end is killed after a minute
     */
    Ended end(const QByteArray& input = {});

    /** The words of a line, which blanks part. */
    static QStringList words(const char* line);

    /** Gives up the rights of root; for before. */
    static void becomePlainUser();

protected:
    void setupChildProcess() override;

private:
    bool m_started = false;
};

#endif
