// SPDX-License-Identifier: MIT
#ifndef SMALLICON_H
#define SMALLICON_H

#include <QString>

/**
 * The file that shows a finished channel's icon on sheets and cards: the smallest of its set with 144 pixels
 * or more, which is read many times faster than the whole icon; that one where there is none.
 */
QString smallIconOf(const QString& icon);

#endif
