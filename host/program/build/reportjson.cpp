// SPDX-License-Identifier: MIT
#include "build/buildreport.h"

#include "build/jsonreader.h"
#include "build/outcomejson.h"

#include <QDir>
#include <QJsonArray>

namespace {

constexpr int formatVersion = 1;

// Turns paths below a folder into relative ones, and back.
class Places {
public:
    explicit Places(const QString& output)
        : m_root(output.endsWith(QLatin1Char('/')) ? output : output + QLatin1Char('/'))
    {
    }

    QString relative(const QString& path) const
    {
        const QString rest = path.startsWith(m_root) ? path.mid(m_root.size()) : QString();
        return rest.isEmpty() || QDir::isAbsolutePath(rest) ? path : rest;
    }

    QString absolute(const QString& path) const
    {
        return path.isEmpty() || QDir::isAbsolutePath(path) ? path : m_root + path;
    }

    QStringList relative(const QStringList& paths) const
    {
        QStringList result;
        for (const QString& path : paths)
            result.append(relative(path));
        return result;
    }

    QStringList absolute(const QStringList& paths) const
    {
        QStringList result;
        for (const QString& path : paths)
            result.append(absolute(path));
        return result;
    }

private:
    const QString m_root;
};

QJsonObject channelObject(ChannelOutcome channel, const Places& places)
{
    channel.icons = places.relative(channel.icons);
    channel.package = places.relative(channel.package);
    return OutcomeJson::object(channel);
}

ChannelOutcome channelOf(const QJsonValue& value, const Places& places, bool& isSound)
{
    ChannelOutcome channel = OutcomeJson::channel(value, isSound);
    channel.icons = places.absolute(channel.icons);
    channel.package = places.absolute(channel.package);
    return channel;
}

} // namespace

QJsonObject BuildReport::toJson(const BuildOutcome& build)
{
    const Places places(build.output);
    QJsonArray channels;
    for (const ChannelOutcome& channel : build.channels)
        channels.append(channelObject(channel, places));
    return {{QStringLiteral("report"), formatVersion},
            {QStringLiteral("game"), build.game},
            {QStringLiteral("job"), build.job},
            {QStringLiteral("output"), build.output},
            {QStringLiteral("slice"), build.slice},
            {QStringLiteral("slices"), build.slices},
            {QStringLiteral("start"), OutcomeJson::time(build.start)},
            {QStringLiteral("end"), OutcomeJson::time(build.end)},
            {QStringLiteral("interrupted"), build.interrupted},
            {QStringLiteral("succeeded"), build.succeeded()},
            {QStringLiteral("sheets"), QJsonArray::fromStringList(places.relative(build.sheets))},
            {QStringLiteral("channels"), channels}};
}

bool BuildReport::fromJson(const QJsonObject& object, BuildOutcome& build)
{
    build = {};
    bool isSound = object.value(QLatin1String("report")).toInt() == formatVersion;
    const JsonReader reader(object, isSound);
    BuildOutcome read;
    read.game = reader.text("game");
    read.job = reader.text("job");
    read.output = reader.text("output");
    read.slices = reader.count("slices", 1);
    read.slice = reader.count("slice");
    read.start = reader.time("start");
    read.end = reader.time("end");
    read.interrupted = reader.flag("interrupted");
    const Places places(read.output);
    read.sheets = places.absolute(reader.texts("sheets"));
    for (const QJsonValue channel : reader.array("channels"))
        read.channels.append(channelOf(channel, places, isSound));
    if (!isSound || read.slice >= read.slices)
        return false;
    build = read;
    return true;
}
