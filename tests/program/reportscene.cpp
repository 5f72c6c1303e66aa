// SPDX-License-Identifier: MIT
#include "reportscene.h"

#include <algorithm>
#include <tuple>

namespace {

const QString output = QStringLiteral("/builds/harbour/output");

void appendStep(ChannelOutcome& channel, const char* name, qint64 ms, BuildStep::Outcome outcome)
{
    const QDateTime start =
        channel.steps.isEmpty() ? ReportScene::at(channel.index) : channel.steps.last().end;
    channel.steps.append({QLatin1String(name), start, start.addMSecs(ms), outcome, {}});
}

} // namespace

QDateTime ReportScene::at(qint64 ms)
{
    return QDateTime(QDate(2026, 3, 14), QTime(9, 26, 53), Qt::UTC).addMSecs(ms);
}

ChannelOutcome ReportScene::built(int index, const QString& folder)
{
    ChannelOutcome channel;
    channel.index = index;
    channel.folder = folder;
    channel.name = folder;
    channel.outcome = ChannelOutcome::Built;
    for (const char* const name : {"sdks", "icons", "package"})
        appendStep(channel, name, 200, BuildStep::Done);
    appendStep(channel, "encrypt", 0, BuildStep::Skipped);
    appendStep(channel, "sign", 600, BuildStep::Done);
    for (const char* const name : {"check", "output", "export"})
        appendStep(channel, name, 50, BuildStep::Done);
    channel.icons =
        QStringList(output + QLatin1Char('/') + folder + QStringLiteral("/icons/android-icon.png"));
    channel.package = output + QStringLiteral("/%1/%1.apk").arg(folder);
    channel.packageName = QStringLiteral("com.quenzo.skyharbour");
    channel.versionName = QStringLiteral("1.2.0");
    channel.signer = QString(64, QLatin1Char('a'));
    channel.size = 2345678;
    channel.replaced = 6;
    channel.added = 4;
    channel.takenOver = 2100000;
    channel.inputs = QString(64, QLatin1Char('b'));
    channel.digest = QString(64, QLatin1Char('c'));
    return channel;
}

ChannelOutcome ReportScene::failed(int index, const QString& folder, const QString& message)
{
    const ChannelOutcome whole = built(index, folder);
    ChannelOutcome channel;
    channel.index = index;
    channel.folder = folder;
    channel.name = folder;
    channel.outcome = ChannelOutcome::Failed;
    channel.message = message;
    channel.icons = whole.icons;
    channel.steps = whole.steps.mid(0, 5);
    channel.steps.last().outcome = BuildStep::Failed;
    channel.steps.last().message = message;
    return channel;
}

BuildOutcome ReportScene::run()
{
    BuildOutcome build;
    build.job = QStringLiteral("/builds/harbour/job.json");
    build.game = QStringLiteral("Sky Harbour");
    build.output = output;
    build.start = at(0);
    build.end = at(12345);
    build.sheets = QStringList(output + QStringLiteral("/sheet-android.png"));
    build.channels = {built(0, QStringLiteral("harbor")),
                      built(1, QStringLiteral("meadow")),
                      built(2, QStringLiteral("nimbus")),
                      failed(3, QStringLiteral("quartz"), QStringLiteral("the key cannot be read")),
                      {}};
    build.channels[1].name = QString::fromUtf8("草地渠道");
    build.channels[1].notes = QStringList(QStringLiteral("replaces assets/story.txt"));
    build.channels[2].outcome = ChannelOutcome::Unchanged;
    build.channels[4].index = 4;
    build.channels[4].folder = QStringLiteral("tideway");
    build.channels[4].name = QStringLiteral("tideway");
    return build;
}

BuildOutcome ReportScene::slice(int index, int count, int channels)
{
    BuildOutcome build = run();
    build.slice = index;
    build.slices = count;
    build.start = at(100 + index);
    build.end = at(2000 + index);
    build.sheets =
        QStringList(output + QStringLiteral("/slices/%1-of-%2/sheet-android.png").arg(index + 1).arg(count));
    build.channels.clear();
    for (int i = index; i < channels; i += count)
        build.channels.append(built(i, QStringLiteral("channel%1").arg(i)));
    return build;
}

QString ReportScene::differenceOf(const ChannelOutcome& one, const ChannelOutcome& other)
{
    QStringList fields;
    const auto compare = [&fields](const QString& field, const auto& mine, const auto& others) {
        if (!(mine == others))
            fields.append(field);
    };
    compare(QStringLiteral("index"), one.index, other.index);
    compare(QStringLiteral("folder"), one.folder, other.folder);
    compare(QStringLiteral("name"), one.name, other.name);
    compare(QStringLiteral("outcome"), one.outcome, other.outcome);
    compare(QStringLiteral("message"), one.message, other.message);
    compare(QStringLiteral("notes"), one.notes, other.notes);
    compare(QStringLiteral("icons"), one.icons, other.icons);
    compare(QStringLiteral("package"), one.package, other.package);
    compare(QStringLiteral("packageName"), one.packageName, other.packageName);
    compare(QStringLiteral("versionName"), one.versionName, other.versionName);
    compare(QStringLiteral("signer"), one.signer, other.signer);
    compare(QStringLiteral("size"), one.size, other.size);
    compare(QStringLiteral("replaced"), one.replaced, other.replaced);
    compare(QStringLiteral("added"), one.added, other.added);
    compare(QStringLiteral("takenOver"), one.takenOver, other.takenOver);
    compare(QStringLiteral("inputs"), one.inputs, other.inputs);
    compare(QStringLiteral("digest"), one.digest, other.digest);
    compare(QStringLiteral("number of steps"), one.steps.size(), other.steps.size());
    for (int i = 0; i < std::min(one.steps.size(), other.steps.size()); ++i) {
        const BuildStep& mine = one.steps.at(i);
        const BuildStep& others = other.steps.at(i);
        compare(QStringLiteral("step %1").arg(i),
                std::tie(mine.name, mine.start, mine.end, mine.outcome, mine.message),
                std::tie(others.name, others.start, others.end, others.outcome, others.message));
    }
    return fields.join(QStringLiteral(", "));
}

QString ReportScene::hostileText()
{
    return QString::fromUtf8("<script>alert(\"1\")</script>'--></style>&amp;]]>\r\n\t\x1b[31m\x7f\xc2\x9b"
                             "\xe2\x80\xae"
                             "kpa.\xe2\x81\xa6\xd8\xb9");
}
