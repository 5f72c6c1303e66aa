// SPDX-License-Identifier: MIT
#ifndef FAILURE_H
#define FAILURE_H

#include <QJsonObject>
#include <QString>
#include <QStringList>

/** What kept a command from its end. */
struct Failure {
    /** The kinds that a caller may tell apart; docs/output.schema.json lists the names. */
    enum Code {
        Failed, ///< the work itself: what was done is in the result
        Usage, ///< the words
        NotFound, ///< something named does not exist
        Refused, ///< nothing was begun: it would have done harm
        Declined, ///< nothing was begun: a person said no
        BadInput, ///< something named cannot be read, or does not hold what it should
        NoTool, ///< a program that the work needs is missing or does not work
        NoDevice, ///< no device, not the one asked for, or too many to choose
        TimedOut,
        Interrupted,
    };
    Code code = Failed;
    QString message; ///< one line
    QStringList causes = {}; ///< what is known of why, nearest first
    QString hint = {}; ///< what to do instead

    /** The lines for a person. */
    QStringList lines() const;

    /** "code", "message", "cause" and "hint", the last two null when there is none. */
    QJsonObject json() const;
};

#endif
