// SPDX-License-Identifier: MIT
#ifndef SHELLSESSION_H
#define SHELLSESSION_H

#include "quenzoprocess.h"
#include "terminal.h"

/** An interactive shell on a terminal of its own, in which "quenzo WORD..." prints <WORD>... */
class ShellSession {
public:
    /** @param folder the working folder, in which nothing but the program's words is completed */
    ShellSession(const QStringList& command, const QString& folder);
    ~ShellSession();
    ShellSession(const ShellSession&) = delete;
    ShellSession& operator=(const ShellSession&) = delete;

    /** Enters a line, and waits for the next prompt. */
    bool enter(const QByteArray& line);

    void type(const QByteArray& keys);

    /** What the terminal has shown since the last keys, without what steers it. */
    QByteArray shown();

    /** Takes back what was typed. */
    bool forget();

private:
    Terminal m_terminal;
    QuenzoProcess m_process{{}};
    int m_begin = 0;
};

#endif
