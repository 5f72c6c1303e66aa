// SPDX-License-Identifier: MIT
#ifndef TERMINAL_H
#define TERMINAL_H

#include <QByteArray>
#include <QString>

/** A pseudo-terminal: a program that is given its path believes that a person sits there. */
class Terminal {
public:
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /** What a program opens. */
    QString path() const;

    /** How many letters a line holds, and how many lines there are; without this it tells nothing of it. */
    void setColumns(unsigned short columns, unsigned short rows = 24);

    void type(const QByteArray& text);

    /** What the programs have written so far, what was typed included. */
    QByteArray shown();

private:
    int m_master;
    int m_slave;
    QByteArray m_shown;
};

#endif
