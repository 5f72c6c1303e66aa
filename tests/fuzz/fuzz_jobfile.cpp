// SPDX-License-Identifier: MIT
// A job is refused with mistakes that name places in it, or says all that a run needs, and says the same once
// it is written anew.
#include "fuzz.h"
#include "jobscene.h"
#include "jsonleak.h"

#include "icons/channellist.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

using Fuzz::require;

namespace {

// Whether a JSON pointer leads to a value, or to a key or index that its parent lacks.
bool leadsSomewhere(const QString& pointer, const QJsonValue& root)
{
    if (pointer.isEmpty())
        return true;
    QJsonValue value = root;
    const QStringList tokens = pointer.split(QLatin1Char('/'));
    if (!tokens.first().isEmpty())
        return false;
    for (int i = 1; i < tokens.size(); ++i) {
        QString key = tokens.at(i);
        key.replace(QLatin1String("~1"), QLatin1String("/")).replace(QLatin1String("~0"), QLatin1String("~"));
        const bool isParent = value.isObject() || value.isArray();
        value = value.isArray() ? value.toArray().at(key.toInt()) : value.toObject().value(key);
        if (value.isUndefined())
            return isParent && i + 1 == tokens.size();
    }
    return true;
}

QStringList described(const JobChannel& channel)
{
    return {channel.folder,
            channel.name,
            channel.number,
            channel.mark,
            QString::number(channel.corner),
            channel.x ? QString::number(*channel.x) : QString(),
            channel.y ? QString::number(*channel.y) : QString(),
            channel.sdks.join(QLatin1Char('\n')),
            channel.package,
            channel.files,
            QString::fromUtf8(QJsonDocument(channel.settings).toJson()),
            QString::number(int(channel.encrypt))};
}

QStringList described(const Job& job)
{
    QStringList lines{job.path,
                      job.game,
                      job.base,
                      job.icon,
                      job.marks,
                      job.key,
                      job.work,
                      job.output,
                      job.exclude.join(QLatin1Char('\n')),
                      job.leave.join(QLatin1Char('\n'))};
    for (const int platform : job.platforms)
        lines.append(QString::number(platform));
    for (const JobSdk& sdk : job.sdks)
        lines << sdk.name << sdk.package << QString::number(sdk.id);
    for (const JobChannel& channel : job.channels)
        lines += described(channel);
    if (job.signing)
        lines << job.signing->keystore << job.signing->alias << job.signing->password;
    return lines;
}

void holdMistakes(QStringList faults, const QVector<JobFault>& found, const QByteArray& content)
{
    const QJsonDocument document = QJsonDocument::fromJson(content);
    const QJsonValue root =
        document.isObject() ? QJsonValue(document.object()) : QJsonValue(document.array());
    for (const JobFault& fault : found) {
        require(!fault.text.isEmpty(), "a mistake is told");
        require(leadsSomewhere(fault.place, root), "at its place");
    }
    require(faults.removeDuplicates() == 0, "and once");
}

void holdJob(const Job& job)
{
    require(!job.game.isEmpty() && !job.base.isEmpty() && !job.channels.isEmpty(),
            "a run has all that it needs");
    QSet<QString> folders;
    for (const JobChannel& channel : job.channels) {
        require(ChannelList::faultOfName(channel.folder).isEmpty(), "a channel's folder has a name for one");
        folders.insert(channel.folder.toLower());
        for (const QString& sdk : channel.sdks)
            require(job.sdks.contains(sdk), "SDKs of channels are the job's");
    }
    require(folders.size() == job.channels.size(), "each channel has a folder of its own");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::startApplication();
    static JobScene scene;
    const QByteArray content(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const JsonLeak leak(content);
    const Job job = scene.read(content);
    if (!scene.faults().isEmpty()) {
        holdMistakes(scene.faults(), scene.found(), content);
        return 0;
    }
    holdJob(job);
    const Job again = scene.read(QJsonDocument::fromJson(content).toJson(QJsonDocument::Compact));
    require(scene.faults().isEmpty() && described(again) == described(job),
            "a job that is written comes back");
    return 0;
}
