// SPDX-License-Identifier: MIT
#ifndef BUILDWORDS_H
#define BUILDWORDS_H

#include <QString>

/** What a run's words for machines mean to a person. */
namespace BuildWords {

/** "package": the package is being written. */
QString step(const QString& step);

/** How much of a channel's work is done when it begins this step, in percent. */
int percentBefore(const QString& step);

QString outcome(const QString& outcome);

/** What stands in a table of a message that may be long. */
QString firstSentence(const QString& message);

/** "about 3 min left" */
QString timeLeft(qint64 seconds);

} // namespace BuildWords

#endif
