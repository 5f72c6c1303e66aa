// SPDX-License-Identifier: MIT
#include "devices/devicewords.h"

#include <QRegularExpression>

bool DeviceWords::isPackageName(const QString& name)
{
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("[A-Za-z][A-Za-z0-9_.]*")));
    return form.match(name).hasMatch();
}

QString DeviceWords::asOneWord(const QString& serial)
{
    return QLatin1Char('"') + serial + QLatin1Char('"');
}
