// SPDX-License-Identifier: MIT
#ifndef DURATION_H
#define DURATION_H

#include <QString>

/** The seconds of a duration as people write it, 90, 90s, 2m or 1h30m; -1 when it is none. */
qint64 secondsOf(const QString& text);

#endif
