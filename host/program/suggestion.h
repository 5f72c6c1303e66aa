// SPDX-License-Identifier: MIT
#ifndef SUGGESTION_H
#define SUGGESTION_H

#include <QStringList>

/** Which of some names a mistyped word was probably meant to be; empty when it is like none of them. */
QString likelyMeant(const QString& word, const QStringList& names);

#endif
