// SPDX-License-Identifier: MIT
#include "build/outcomejson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// What is kept as text, and under which key.
struct TextField {
    QLatin1String key;
    QString ChannelOutcome::*member;
};

const TextField textFields[] = {
    {QLatin1String("message"), &ChannelOutcome::message},
    {QLatin1String("package"), &ChannelOutcome::package},
    {QLatin1String("packageName"), &ChannelOutcome::packageName},
    {QLatin1String("versionName"), &ChannelOutcome::versionName},
    {QLatin1String("signer"), &ChannelOutcome::signer},
};

QStringList textsOf(const QJsonValue& value)
{
    QStringList texts;
    for (const QJsonValue& text : value.toArray())
        texts.append(text.toString());
    return texts;
}

QJsonArray stepsOf(const QVector<BuildStep>& steps)
{
    QJsonArray array;
    for (const BuildStep& step : steps) {
        array.append(QJsonArray{step.name, step.start.toMSecsSinceEpoch(), step.end.toMSecsSinceEpoch(),
                                int(step.outcome), step.message});
    }
    return array;
}

QVector<BuildStep> stepsFrom(const QJsonValue& value)
{
    const auto time = [](const QJsonValue& ms) {
        return QDateTime::fromMSecsSinceEpoch(qint64(ms.toDouble()), Qt::UTC);
    };
    QVector<BuildStep> steps;
    for (const QJsonValue& element : value.toArray()) {
        const QJsonArray step = element.toArray();
        steps.append(
            {step.at(0).toString(), time(step.at(1)), time(step.at(2)),
             BuildStep::Outcome(qBound(int(BuildStep::Done), step.at(3).toInt(), int(BuildStep::Skipped))),
             step.at(4).toString()});
    }
    return steps;
}

} // namespace

QString OutcomeJson::textOf(const ChannelOutcome& channel)
{
    QJsonObject object{{QStringLiteral("steps"), stepsOf(channel.steps)},
                       {QStringLiteral("notes"), QJsonArray::fromStringList(channel.notes)},
                       {QStringLiteral("icons"), QJsonArray::fromStringList(channel.icons)},
                       {QStringLiteral("replaced"), channel.replaced},
                       {QStringLiteral("added"), channel.added},
                       {QStringLiteral("takenOver"), channel.takenOver}};
    for (const TextField& field : textFields)
        object.insert(field.key, channel.*field.member);
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

void OutcomeJson::read(const QString& text, ChannelOutcome& channel)
{
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    channel.steps = stepsFrom(object.value(QLatin1String("steps")));
    channel.notes = textsOf(object.value(QLatin1String("notes")));
    channel.icons = textsOf(object.value(QLatin1String("icons")));
    channel.replaced = object.value(QLatin1String("replaced")).toInt();
    channel.added = object.value(QLatin1String("added")).toInt();
    channel.takenOver = qint64(object.value(QLatin1String("takenOver")).toDouble());
    for (const TextField& field : textFields)
        channel.*field.member = object.value(field.key).toString();
}
