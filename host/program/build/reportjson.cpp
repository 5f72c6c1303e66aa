// SPDX-License-Identifier: MIT
#include "build/buildreport.h"

#include <QDir>
#include <QJsonArray>

#include <array>
#include <limits>

namespace {

constexpr int formatVersion = 1;

const std::array<const char*, 4> channelOutcomes{"built", "unchanged", "failed", "not reached"};
const std::array<const char*, 3> stepOutcomes{"done", "failed", "skipped"};

struct TextField {
    const char* key;
    QString ChannelOutcome::*member;
};
const std::array<TextField, 8> textFields{{
    {"folder", &ChannelOutcome::folder},
    {"name", &ChannelOutcome::name},
    {"message", &ChannelOutcome::message},
    {"packageName", &ChannelOutcome::packageName},
    {"versionName", &ChannelOutcome::versionName},
    {"signer", &ChannelOutcome::signer},
    {"inputs", &ChannelOutcome::inputs},
    {"digest", &ChannelOutcome::digest},
}};

QJsonValue timeValue(const QDateTime& time)
{
    return time.isValid() ? QJsonValue(time.toUTC().toString(Qt::ISODateWithMs)) : QJsonValue();
}

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

    QJsonArray relative(const QStringList& paths) const
    {
        QJsonArray array;
        for (const QString& path : paths)
            array.append(relative(path));
        return array;
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

QJsonObject stepObject(const BuildStep& step)
{
    return {{QStringLiteral("name"), step.name},
            {QStringLiteral("start"), timeValue(step.start)},
            {QStringLiteral("end"), timeValue(step.end)},
            {QStringLiteral("outcome"), QLatin1String(stepOutcomes.at(size_t(step.outcome)))},
            {QStringLiteral("message"), step.message}};
}

QJsonObject channelObject(const ChannelOutcome& channel, const Places& places)
{
    QJsonArray steps;
    for (const BuildStep& step : channel.steps)
        steps.append(stepObject(step));
    QJsonObject object{
        {QStringLiteral("index"), channel.index},
        {QStringLiteral("outcome"), QLatin1String(channelOutcomes.at(size_t(channel.outcome)))},
        {QStringLiteral("steps"), steps},
        {QStringLiteral("notes"), QJsonArray::fromStringList(channel.notes)},
        {QStringLiteral("icons"), places.relative(channel.icons)},
        {QStringLiteral("package"), places.relative(channel.package)},
        {QStringLiteral("size"), channel.size},
        {QStringLiteral("replaced"), channel.replaced},
        {QStringLiteral("added"), channel.added},
        {QStringLiteral("takenOver"), channel.takenOver}};
    for (const TextField& field : textFields)
        object.insert(QLatin1String(field.key), channel.*field.member);
    return object;
}

// Takes values out of an object, and remembers whether each was there in its shape.
class Reader {
public:
    Reader(const QJsonValue& value, bool& isSound)
        : m_object(value.toObject())
        , m_isSound(isSound)
    {
        require(value.isObject());
    }

    QJsonValue value(const char* key) const { return m_object.value(QLatin1String(key)); }

    QString text(const char* key) const
    {
        require(value(key).isString());
        return value(key).toString();
    }

    bool flag(const char* key) const
    {
        require(value(key).isBool());
        return value(key).toBool();
    }

    qint64 number(const char* key, qint64 least = 0, qint64 most = qint64(1) << 53) const
    {
        const double number = value(key).toDouble(-1);
        const bool fits = number >= double(least) && number <= double(most);
        require(fits && double(qint64(number)) == number);
        return fits ? qint64(number) : least;
    }

    int count(const char* key, int least = 0) const
    {
        return int(number(key, least, std::numeric_limits<int>::max()));
    }

    QDateTime time(const char* key) const
    {
        if (value(key).isNull())
            return {};
        const QDateTime time = QDateTime::fromString(text(key), Qt::ISODateWithMs);
        require(time.isValid());
        return time.toUTC();
    }

    QStringList texts(const char* key) const
    {
        QStringList texts;
        for (const QJsonValue text : array(key)) {
            require(text.isString());
            texts.append(text.toString());
        }
        return texts;
    }

    QJsonArray array(const char* key) const
    {
        require(value(key).isArray());
        return value(key).toArray();
    }

    // The number of one of these words.
    template <size_t Count> int choice(const char* key, const std::array<const char*, Count>& words) const
    {
        const QString word = text(key);
        for (size_t i = 0; i < Count; ++i) {
            if (word == QLatin1String(words.at(i)))
                return int(i);
        }
        require(false);
        return 0;
    }

private:
    void require(bool holds) const { m_isSound = m_isSound && holds; }

    const QJsonObject m_object;
    bool& m_isSound;
};

BuildStep stepOf(const Reader& reader)
{
    BuildStep step;
    step.name = reader.text("name");
    step.start = reader.time("start");
    step.end = reader.time("end");
    step.outcome = BuildStep::Outcome(reader.choice("outcome", stepOutcomes));
    step.message = reader.text("message");
    return step;
}

ChannelOutcome channelOf(const Reader& reader, const Places& places, bool& isSound)
{
    ChannelOutcome channel;
    channel.index = reader.count("index");
    channel.outcome = ChannelOutcome::Outcome(reader.choice("outcome", channelOutcomes));
    for (const TextField& field : textFields)
        channel.*field.member = reader.text(field.key);
    for (const QJsonValue step : reader.array("steps"))
        channel.steps.append(stepOf(Reader(step, isSound)));
    channel.notes = reader.texts("notes");
    channel.icons = places.absolute(reader.texts("icons"));
    channel.package = places.absolute(reader.text("package"));
    channel.size = reader.number("size");
    channel.replaced = reader.count("replaced");
    channel.added = reader.count("added");
    channel.takenOver = reader.number("takenOver");
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
            {QStringLiteral("start"), timeValue(build.start)},
            {QStringLiteral("end"), timeValue(build.end)},
            {QStringLiteral("interrupted"), build.interrupted},
            {QStringLiteral("succeeded"), build.succeeded()},
            {QStringLiteral("sheets"), places.relative(build.sheets)},
            {QStringLiteral("channels"), channels}};
}

bool BuildReport::fromJson(const QJsonObject& object, BuildOutcome& build)
{
    build = {};
    bool isSound = object.value(QLatin1String("report")).toInt() == formatVersion;
    const Reader reader(object, isSound);
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
        read.channels.append(channelOf(Reader(channel, isSound), places, isSound));
    if (!isSound || read.slice >= read.slices)
        return false;
    build = read;
    return true;
}
