// SPDX-License-Identifier: MIT
#include "duration.h"

#include <QRegularExpression>

qint64 secondsOf(const QString& text)
{
    // Nine digits fit, whatever the unit.
    static const QRegularExpression form(QRegularExpression::anchoredPattern(
        QStringLiteral("(?=.)(?:([0-9]{1,9})h)?(?:([0-9]{1,9})m)?(?:([0-9]{1,9})s?)?")));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return -1;
    return match.captured(1).toLongLong() * 3600 + match.captured(2).toLongLong() * 60
        + match.captured(3).toLongLong();
}
