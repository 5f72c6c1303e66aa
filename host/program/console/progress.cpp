// SPDX-License-Identifier: MIT
#include "console/progress.h"

#include "console/figures.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

#include <array>

namespace {

struct ProgressText {
    Q_DECLARE_TR_FUNCTIONS(Progress)
};

QString counted(Progress::Unit unit, qint64 number)
{
    const QString text = QLocale().toString(number);
    switch (unit) {
    case Progress::Files:
        return ProgressText::tr("%1 files").arg(text);
    case Progress::Bytes:
        return sizeText(number);
    case Progress::Rows:
        return ProgressText::tr("%1 rows").arg(text);
    case Progress::Channels:
        return ProgressText::tr("%1 channels").arg(text);
    case Progress::None:
        break;
    }
    return {};
}

QString figures(const Progress& progress)
{
    QString done = counted(progress.unit, progress.done);
    if (progress.unit == Progress::None || progress.total < 0)
        return done;
    const QString total = counted(progress.unit, progress.total);
    const QString first = progress.unit == Progress::Bytes ? done : QLocale().toString(progress.done);
    return ProgressText::tr("%1 of %2").arg(first, total);
}

bool isMeasured(const Progress& progress)
{
    return progress.unit != Progress::None && progress.total > 0;
}

QString percent(const Progress& progress)
{
    if (!isMeasured(progress))
        return {};
    return ProgressText::tr("%1 %").arg(
        int(qBound(0.0, double(progress.done) / double(progress.total), 1.0) * 100));
}

QString bar(const Progress& progress)
{
    constexpr int width = 20;
    if (!isMeasured(progress))
        return {};
    const int filled = int(qBound(0.0, double(progress.done) / double(progress.total), 1.0) * width);
    return QLatin1Char('[') + QString(filled, QLatin1Char('#')) + QString(width - filled, QLatin1Char('.'))
        + QLatin1Char(']');
}

// What is said of the first second is a guess.
bool hasPace(const Progress& progress, qint64 elapsedMs)
{
    constexpr qint64 leastMs = 1000;
    return progress.unit != Progress::None && progress.done > 0 && elapsedMs >= leastMs;
}

QString rate(const Progress& progress, qint64 elapsedMs)
{
    if (!hasPace(progress, elapsedMs))
        return {};
    const double perSecond = double(progress.done) * 1000 / double(elapsedMs);
    return ProgressText::tr("%1/s").arg(counted(progress.unit, qRound64(perSecond)));
}

QString timeLeft(const Progress& progress, qint64 elapsedMs)
{
    if (!hasPace(progress, elapsedMs) || progress.total < progress.done)
        return {};
    const double leftMs = double(progress.total - progress.done) * double(elapsedMs) / double(progress.done);
    return ProgressText::tr("%1 left").arg(durationText(qRound64(leftMs / 1000)));
}

// Those behind the first are parted by commas, but for the bar.
QString joined(const QStringList& words, const QStringList& figures)
{
    QStringList parts = words;
    parts.removeAll({});
    QStringList numbers = figures;
    numbers.removeAll({});
    if (!numbers.isEmpty())
        parts.append(numbers.join(QStringLiteral(", ")));
    return parts.join(QLatin1Char(' '));
}

QJsonValue unitName(Progress::Unit unit)
{
    switch (unit) {
    case Progress::Files:
        return QStringLiteral("files");
    case Progress::Bytes:
        return QStringLiteral("bytes");
    case Progress::Rows:
        return QStringLiteral("rows");
    case Progress::Channels:
        return QStringLiteral("channels");
    case Progress::None:
        break;
    }
    return QJsonValue::Null;
}

} // namespace

QString Progress::line(qint64 elapsedMs, int columns) const
{
    QStringList words{doing, percent(*this), bar(*this)};
    QStringList numbers{figures(*this), more, rate(*this, elapsedMs), timeLeft(*this, elapsedMs)};
    // What a narrow line goes without, the least missed first.
    const std::array<QString*, 5> spared{&words[2], &numbers[1], &numbers[2], &numbers[0], &numbers[3]};
    for (QString* const part : spared) {
        if (columnsOf(joined(words, numbers)) <= columns)
            break;
        part->clear();
    }
    return joined(words, numbers);
}

QJsonObject Progress::json() const
{
    const bool counts = unit != None;
    return {{QStringLiteral("doing"), doing},
            {QStringLiteral("unit"), unitName(unit)},
            {QStringLiteral("done"), counts ? QJsonValue(done) : QJsonValue()},
            {QStringLiteral("total"), counts && total >= 0 ? QJsonValue(total) : QJsonValue()}};
}
