// SPDX-License-Identifier: MIT
#include "console/figures.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <cwchar>

namespace {

struct Figures {
    Q_DECLARE_TR_FUNCTIONS(Figures)
};

} // namespace

QString sizeText(qint64 bytes)
{
    constexpr qint64 step = 1000;
    const QLocale locale;
    if (bytes < step)
        return Figures::tr("%1 bytes").arg(locale.toString(bytes));
    const QStringList units{Figures::tr("kB"), Figures::tr("MB"), Figures::tr("GB"), Figures::tr("TB")};
    double number = double(bytes) / step;
    int unit = 0;
    // What would be rounded to 1000.0 belongs to the next unit.
    while (number >= step - 0.05 && unit + 1 < units.size()) {
        number /= step;
        ++unit;
    }
    return QStringLiteral("%1 %2").arg(locale.toString(number, 'f', 1), units.at(unit));
}

QString durationText(qint64 seconds)
{
    constexpr qint64 minute = 60;
    constexpr qint64 hour = 60 * minute;
    if (seconds < minute)
        return Figures::tr("%1 s").arg(seconds);
    if (seconds < hour)
        return Figures::tr("%1 min %2 s").arg(seconds / minute).arg(seconds % minute);
    return Figures::tr("%1 h %2 min").arg(seconds / hour).arg(seconds % hour / minute);
}

int columnsOf(const QString& text)
{
    int columns = 0;
    for (const uint letter : text.toUcs4())
        columns += std::max(0, wcwidth(static_cast<wchar_t>(letter)));
    return columns;
}

QStringList tabulated(const QVector<QStringList>& rows)
{
    constexpr int gap = 2;
    QVector<int> widths;
    for (const QStringList& row : rows) {
        widths.resize(row.size());
        for (int i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths.at(i), columnsOf(row.at(i)));
    }
    QStringList lines;
    for (const QStringList& row : rows) {
        QString line;
        for (int i = 0; i < row.size(); ++i)
            line += row.at(i) + QString(widths.at(i) + gap - columnsOf(row.at(i)), QLatin1Char(' '));
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        lines.append(line);
    }
    return lines;
}
