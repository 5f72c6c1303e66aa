// SPDX-License-Identifier: MIT
#include "build/reporttext.h"

#include "console/console.h"
#include "console/figures.h"

#include <QCoreApplication>
#include <QHash>
#include <QLocale>

#include <algorithm>

namespace {

struct Report {
    Q_DECLARE_TR_FUNCTIONS(Report)
};

// Marks that turn the direction of writing, ends of lines, and what no text may hold.
bool steersText(QChar letter)
{
    const ushort code = letter.unicode();
    return code == 0x061c || code == 0x200e || code == 0x200f || (code >= 0x2028 && code <= 0x202e)
        || (code >= 0x2066 && code <= 0x2069) || code == 0xfeff || letter.isNonCharacter();
}

} // namespace

ReportSums::ReportSums(const BuildOutcome& build)
{
    for (const ChannelOutcome& channel : build.channels) {
        ++channels.at(size_t(channel.outcome));
        if (!channel.package.isEmpty()) {
            ++packages;
            unsignedPackages += channel.signer.isEmpty() ? 1 : 0;
            bytes += channel.size;
        }
        if (channel.outcome == ChannelOutcome::Unchanged)
            continue; // its steps are those of an earlier run
        for (const BuildStep& step : channel.steps) {
            const auto known =
                std::find_if(steps.begin(), steps.end(),
                             [&step](const QPair<QString, qint64>& sum) { return sum.first == step.name; });
            const qint64 ms = ReportText::duration(step.start, step.end);
            if (known != steps.end())
                known->second += ms;
            else
                steps.append({step.name, ms});
        }
    }
}

QString ReportText::shown(const QString& text)
{
    QString plain = Console::shown(text);
    if (std::none_of(plain.cbegin(), plain.cend(), steersText))
        return plain;
    QString result;
    for (const QChar letter : qAsConst(plain)) {
        if (steersText(letter))
            result += QStringLiteral("\\u%1").arg(letter.unicode(), 4, 16, QLatin1Char('0'));
        else
            result += letter;
    }
    return result;
}

QString ReportText::outcomeName(ChannelOutcome::Outcome outcome)
{
    switch (outcome) {
    case ChannelOutcome::Built:
        return Report::tr("built");
    case ChannelOutcome::Unchanged:
        return Report::tr("unchanged");
    case ChannelOutcome::Failed:
        return Report::tr("failed");
    case ChannelOutcome::NotReached:
        break;
    }
    return Report::tr("not reached");
}

QString ReportText::stepOutcomeName(BuildStep::Outcome outcome)
{
    switch (outcome) {
    case BuildStep::Done:
        return Report::tr("done");
    case BuildStep::Failed:
        return Report::tr("failed");
    case BuildStep::Skipped:
        break;
    }
    return Report::tr("skipped");
}

QString ReportText::stepName(const QString& step)
{
    const QHash<QString, QString> names{{QStringLiteral("sdks"), Report::tr("SDKs")},
                                        {QStringLiteral("clear"), Report::tr("clearing")},
                                        {QStringLiteral("manifest"), Report::tr("manifest")},
                                        {QStringLiteral("icons"), Report::tr("icons")},
                                        {QStringLiteral("package"), Report::tr("package")},
                                        {QStringLiteral("encrypt"), Report::tr("encryption")},
                                        {QStringLiteral("sign"), Report::tr("signature")},
                                        {QStringLiteral("check"), Report::tr("check")},
                                        {QStringLiteral("output"), Report::tr("output")},
                                        {QStringLiteral("export"), Report::tr("export")}};
    return names.value(step, step);
}

QString ReportText::stretch(qint64 ms)
{
    constexpr qint64 second = 1000;
    constexpr qint64 minute = 60 * second;
    const QLocale locale;
    if (ms < second)
        return Report::tr("%1 ms").arg(locale.toString(ms));
    // What would be rounded to 60.0 is a minute.
    if (ms < minute - second / 20)
        return Report::tr("%1 s").arg(locale.toString(double(ms) / second, 'f', 1));
    return durationText((ms + second / 2) / second);
}

qint64 ReportText::duration(const QDateTime& start, const QDateTime& end)
{
    // A clock that was set back meanwhile makes no time negative.
    return start.isValid() && end.isValid() ? qMax<qint64>(0, start.msecsTo(end)) : 0;
}

qint64 ReportText::duration(const ChannelOutcome& channel)
{
    qint64 ms = 0;
    for (const BuildStep& step : channel.steps)
        ms += duration(step.start, step.end);
    return ms;
}

QString ReportText::signing(const ReportSums& sums)
{
    if (sums.packages == 0)
        return {};
    if (sums.unsignedPackages == 0)
        return Report::tr("signed");
    if (sums.unsignedPackages == sums.packages)
        return Report::tr("unsigned");
    return Report::tr("%1 of %2 unsigned").arg(sums.unsignedPackages).arg(sums.packages);
}

QString ReportText::verdict(const BuildOutcome& build, const ReportSums& sums)
{
    const int all = build.channels.size();
    const int finished = sums.of(ChannelOutcome::Built) + sums.of(ChannelOutcome::Unchanged);
    if (build.interrupted)
        return Report::tr("interrupted: %1 of %2 channels are finished").arg(finished).arg(all);
    if (sums.of(ChannelOutcome::Failed) > 0)
        return Report::tr("%1 of %2 channels failed").arg(sums.of(ChannelOutcome::Failed)).arg(all);
    if (finished < all)
        return Report::tr("%1 of %2 channels were not reached").arg(all - finished).arg(all);
    return all == 0 ? Report::tr("there was no channel to build") : Report::tr("every channel is built");
}
