// SPDX-License-Identifier: MIT
#include "build/outcomejson.h"

#include "build/jsonreader.h"

namespace {

struct TextField {
    const char* key;
    QString ChannelOutcome::*member;
};
constexpr std::array<TextField, 8> textFields{{
    {"folder", &ChannelOutcome::folder},
    {"name", &ChannelOutcome::name},
    {"message", &ChannelOutcome::message},
    {"packageName", &ChannelOutcome::packageName},
    {"versionName", &ChannelOutcome::versionName},
    {"signer", &ChannelOutcome::signer},
    {"inputs", &ChannelOutcome::inputs},
    {"digest", &ChannelOutcome::digest},
}};

} // namespace

QString OutcomeJson::word(ChannelOutcome::Outcome outcome)
{
    return QLatin1String(channelWords.at(size_t(outcome)));
}

QString OutcomeJson::word(BuildStep::Outcome outcome)
{
    return QLatin1String(stepWords.at(size_t(outcome)));
}

QJsonValue OutcomeJson::time(const QDateTime& time)
{
    return time.isValid() ? QJsonValue(time.toUTC().toString(Qt::ISODateWithMs)) : QJsonValue();
}

QJsonObject OutcomeJson::object(const BuildStep& step)
{
    return {{QStringLiteral("name"), step.name},
            {QStringLiteral("start"), time(step.start)},
            {QStringLiteral("end"), time(step.end)},
            {QStringLiteral("outcome"), word(step.outcome)},
            {QStringLiteral("message"), step.message}};
}

QJsonObject OutcomeJson::object(const ChannelOutcome& channel)
{
    QJsonArray steps;
    for (const BuildStep& step : channel.steps)
        steps.append(object(step));
    QJsonObject values{{QStringLiteral("index"), channel.index},
                       {QStringLiteral("outcome"), word(channel.outcome)},
                       {QStringLiteral("steps"), steps},
                       {QStringLiteral("notes"), QJsonArray::fromStringList(channel.notes)},
                       {QStringLiteral("icons"), QJsonArray::fromStringList(channel.icons)},
                       {QStringLiteral("package"), channel.package},
                       {QStringLiteral("size"), channel.size},
                       {QStringLiteral("replaced"), channel.replaced},
                       {QStringLiteral("added"), channel.added},
                       {QStringLiteral("takenOver"), channel.takenOver}};
    for (const TextField& field : textFields)
        values.insert(QLatin1String(field.key), channel.*field.member);
    return values;
}

BuildStep OutcomeJson::step(const QJsonValue& value, bool& isSound)
{
    const JsonReader reader(value, isSound);
    BuildStep step;
    step.name = reader.text("name");
    step.start = reader.time("start");
    step.end = reader.time("end");
    step.outcome = BuildStep::Outcome(reader.choice("outcome", stepWords));
    step.message = reader.text("message");
    return step;
}

ChannelOutcome OutcomeJson::channel(const QJsonValue& value, bool& isSound)
{
    const JsonReader reader(value, isSound);
    ChannelOutcome channel;
    channel.index = reader.count("index");
    channel.outcome = ChannelOutcome::Outcome(reader.choice("outcome", channelWords));
    for (const TextField& field : textFields)
        channel.*field.member = reader.text(field.key);
    for (const QJsonValue step : reader.array("steps"))
        channel.steps.append(OutcomeJson::step(step, isSound));
    channel.notes = reader.texts("notes");
    channel.icons = reader.texts("icons");
    channel.package = reader.text("package");
    channel.size = reader.number("size");
    channel.replaced = reader.count("replaced");
    channel.added = reader.count("added");
    channel.takenOver = reader.number("takenOver");
    return channel;
}
