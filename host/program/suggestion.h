// SPDX-License-Identifier: MIT
#ifndef SUGGESTION_H
#define SUGGESTION_H

#include <QStringList>

/** Which of some names a mistyped word was probably meant to be; empty when it is like none of them. */
QString likelyMeant(const QString& word, const QStringList& names);

/** An objection that asks for the name that was probably meant, if there is one. */
QString withSuggestion(const QString& objection, const QString& meant);

/**
 * An objection to a word that is no name of a short list, with a suggestion where one is near.
 *
 * @param what the command or option that takes the word
 */
QString noneOf(const QString& what, const QString& word, const QStringList& names);

#endif
