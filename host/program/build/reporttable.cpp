// SPDX-License-Identifier: MIT
#include "build/buildreport.h"

#include "build/reporttext.h"
#include "console/figures.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <numeric>

namespace {

struct Table {
    Q_DECLARE_TR_FUNCTIONS(Report)
};

constexpr int gap = 2;
constexpr int leastChannel = 10; // columns that still tell channels apart

enum Column : int { Channel, Outcome, Package, Size, Time, ColumnCount };
using Row = std::array<QString, ColumnCount>;
using Widths = std::array<int, ColumnCount>; ///< 0 for a column that is left out

QString nameOf(const ChannelOutcome& channel)
{
    const QString name = channel.name.isEmpty() || channel.name == channel.folder
        ? channel.folder
        : QStringLiteral("%1 (%2)").arg(channel.folder, channel.name);
    return ReportText::shown(name);
}

Row rowOf(const ChannelOutcome& channel)
{
    Row row;
    row[Channel] = nameOf(channel);
    row[Outcome] = ReportText::outcomeName(channel.outcome);
    if (!channel.package.isEmpty()) {
        row[Package] =
            ReportText::shown(channel.packageName + QLatin1Char(' ') + channel.versionName).trimmed();
        row[Size] = sizeText(channel.size);
    }
    if (!channel.steps.isEmpty() && channel.outcome != ChannelOutcome::Unchanged)
        row[Time] = ReportText::stretch(ReportText::duration(channel));
    return row;
}

int total(const Widths& widths)
{
    const auto used = std::count_if(widths.cbegin(), widths.cend(), [](int width) { return width > 0; });
    return std::accumulate(widths.cbegin(), widths.cend(), 0) + gap * qMax(0, int(used) - 1);
}

// The channel's name gives way first, as far as names can still be told apart; then columns go.
Widths fitted(const QVector<Row>& rows, int columns)
{
    Widths widths{};
    for (const Row& row : rows) {
        for (size_t i = 0; i < row.size(); ++i)
            widths.at(i) = qMax(widths.at(i), columnsOf(row.at(i)));
    }
    const auto shrinkChannel = [&widths, columns](int least) {
        const int excess = total(widths) - columns;
        if (excess > 0)
            widths[Channel] = qMax(qMin(widths[Channel], least), widths[Channel] - excess);
        return excess <= 0 || total(widths) <= columns;
    };
    constexpr int comfortable = 24;
    for (const Column dispensable : {Package, Time, Size}) {
        if (shrinkChannel(dispensable == Package ? comfortable : leastChannel))
            return widths;
        widths.at(dispensable) = 0;
    }
    shrinkChannel(1);
    return widths;
}

// As much of a text as so many columns hold, with a sign that there was more.
QString elided(const QString& text, int columns)
{
    if (columnsOf(text) <= columns)
        return text;
    const QString more(QChar(0x2026));
    QString start;
    int left = columns - columnsOf(more);
    for (const uint letter : text.toUcs4()) {
        const QString next = QString::fromUcs4(&letter, 1);
        left -= columnsOf(next);
        if (left < 0)
            break;
        start += next;
    }
    return start + more;
}

QString lineOf(const Row& row, const Widths& widths)
{
    QStringList cells;
    for (size_t i = 0; i < row.size(); ++i) {
        if (widths.at(i) == 0)
            continue;
        const QString text = elided(row.at(i), widths.at(i));
        const QString filling(widths.at(i) - columnsOf(text), QLatin1Char(' '));
        const bool isFigure = i == Size || i == Time;
        cells.append(isFigure ? filling + text : text + filling);
    }
    QString line = cells.join(QString(gap, QLatin1Char(' ')));
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    return line;
}

// A sentence in lines; words that are longer than a line, like paths, go on in the next one.
QStringList wrapped(const QString& sentence, int columns, const QString& indent)
{
    QStringList lines;
    QString line;
    int used = 0;
    const int room = qMax(1, columns - indent.size());
    const auto flush = [&] {
        lines.append(indent + line);
        line.clear();
        used = 0;
    };
    for (const QString& word : ReportText::shown(sentence).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const int width = columnsOf(word);
        if (used > 0 && used + 1 + width > room)
            flush();
        if (used > 0) {
            line += QLatin1Char(' ');
            ++used;
        }
        for (const uint letter : word.toUcs4()) {
            const QString next = QString::fromUcs4(&letter, 1);
            if (used > 0 && used + columnsOf(next) > room)
                flush();
            line += next;
            used += columnsOf(next);
        }
    }
    if (used > 0)
        flush();
    return lines;
}

QString sumsOf(const BuildOutcome& build)
{
    const ReportSums sums(build);
    QStringList parts;
    for (const ChannelOutcome::Outcome outcome : {ChannelOutcome::Built, ChannelOutcome::Unchanged,
                                                  ChannelOutcome::Failed, ChannelOutcome::NotReached}) {
        if (sums.of(outcome) > 0)
            parts.append(QStringLiteral("%1 %2").arg(QLocale().toString(sums.of(outcome)),
                                                     ReportText::outcomeName(outcome)));
    }
    if (parts.isEmpty())
        parts.append(ReportText::verdict(build, sums));
    if (sums.packages > 0)
        parts.append(sizeText(sums.bytes));
    if (build.end.isValid())
        parts.append(ReportText::stretch(ReportText::duration(build.start, build.end)));
    if (sums.packages > 0)
        parts.append(ReportText::signing(sums));
    if (build.interrupted)
        parts.append(Table::tr("interrupted"));
    return parts.join(QStringLiteral(", "));
}

} // namespace

QStringList BuildReport::toTable(const BuildOutcome& build, int columns)
{
    const QString indent = QStringLiteral("  ");
    QVector<Row> rows;
    if (!build.channels.isEmpty())
        rows.append({Table::tr("channel"), Table::tr("outcome"), Table::tr("package"), Table::tr("size"),
                     Table::tr("time")});
    for (const ChannelOutcome& channel : build.channels)
        rows.append(rowOf(channel));
    const Widths widths = fitted(rows, columns);
    QStringList lines;
    for (int i = 0; i < rows.size(); ++i) {
        lines.append(lineOf(rows.at(i), widths));
        if (i > 0 && build.channels.at(i - 1).outcome == ChannelOutcome::Failed)
            lines += wrapped(build.channels.at(i - 1).message, columns, indent);
    }
    return lines + wrapped(sumsOf(build), columns, {});
}
