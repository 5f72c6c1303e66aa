// SPDX-License-Identifier: MIT
#include "build/jobobject.h"

#include "icons/channellist.h"
#include "jsonplace.h"
#include "suggestion.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

struct JobText {
    Q_DECLARE_TR_FUNCTIONS(JobObject)
};

const QString commentKey = QStringLiteral("//");

QString kindOf(QJsonValue::Type type)
{
    switch (type) {
    case QJsonValue::String:
        return JobText::tr("a text");
    case QJsonValue::Double:
        return JobText::tr("a number");
    case QJsonValue::Bool:
        return JobText::tr("true or false");
    case QJsonValue::Array:
        return JobText::tr("an array");
    case QJsonValue::Object:
        return JobText::tr("an object");
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    return JobText::tr("null");
}

bool isText(const QJsonValue& value)
{
    return value.isString();
}

} // namespace

void JobFaults::add(const QString& place, const QString& text)
{
    const QString whole = place + QLatin1Char('\n') + text;
    if (m_seen.contains(whole))
        return;
    m_seen.insert(whole);
    m_faults.append({place, text});
}

JobObject::JobObject(const QJsonValue& value, const QString& place, JobFaults& faults)
    : m_values(value.toObject())
    , m_place(place)
    , m_faults(&faults)
    , m_exists(value.isObject())
{
    checkComment();
}

void JobObject::checkComment() const
{
    const QJsonValue comment = m_values.value(commentKey);
    const QJsonArray lines = comment.toArray();
    const bool isComment = comment.isUndefined() || comment.isString()
        || (comment.isArray() && std::all_of(lines.begin(), lines.end(), isText));
    if (!isComment)
        complain(commentKey, JobText::tr("is a comment, and not a text or an array of texts"));
}

void JobObject::allowKeys(const QStringList& keys) const
{
    for (const QString& key : this->keys()) {
        if (keys.contains(key))
            continue;
        const QString meant = likelyMeant(key, keys);
        complain(
            key,
            meant.isEmpty()
                ? JobText::tr("is an unknown key; the keys here are %1").arg(keys.join(QStringLiteral(", ")))
                : withSuggestion(JobText::tr("is an unknown key"), meant));
    }
}

QStringList JobObject::keys() const
{
    QStringList keys = m_values.keys();
    keys.removeAll(commentKey);
    return keys;
}

QString JobObject::at(const QString& key) const
{
    return JsonPlace::below(m_place, key);
}

void JobObject::complain(const QString& key, const QString& text) const
{
    m_faults->add(at(key), text);
}

QJsonValue JobObject::valueOf(const QString& key, QJsonValue::Type type, Need need) const
{
    QJsonValue value = m_values.value(key);
    if (value.type() == type)
        return value;
    if (!value.isUndefined())
        complain(key, wrongKind(value, kindOf(type)));
    else if (need == Required)
        complain(key, JobText::tr("is missing"));
    return {QJsonValue::Undefined};
}

QString JobObject::text(const QString& key, Need need) const
{
    const QJsonValue value = valueOf(key, QJsonValue::String, need);
    const QString fault = value.isString() ? faultOfText(value.toString()) : QString();
    if (!fault.isEmpty())
        complain(key, fault);
    return fault.isEmpty() ? value.toString() : QString();
}

QString JobObject::path(const QString& key, Need need) const
{
    constexpr int longest = 4095; // as the system takes them
    QString path = text(key, need);
    if (path.toUtf8().size() <= longest)
        return path;
    complain(key, JobText::tr("is longer than %1 bytes").arg(longest));
    return {};
}

QString JobObject::folderName(const QString& key, Need need) const
{
    const QJsonValue value = valueOf(key, QJsonValue::String, need);
    const QString fault = value.isString() ? ChannelList::faultOfName(value.toString()) : QString();
    if (!fault.isEmpty())
        complain(key, fault);
    return fault.isEmpty() ? value.toString() : QString();
}

std::optional<int> JobObject::number(const QString& key, int least) const
{
    const QJsonValue value = valueOf(key, QJsonValue::Double, Optional);
    const std::optional<int> number = ChannelList::wholeNumber(value);
    if (value.isDouble() && (!number || *number < least)) {
        complain(key, JobText::tr("is not a whole number from %1 to 2147483647").arg(least));
        return {};
    }
    return number;
}

bool JobObject::flag(const QString& key) const
{
    return valueOf(key, QJsonValue::Bool, Optional).toBool();
}

QJsonArray JobObject::array(const QString& key, Need need) const
{
    return valueOf(key, QJsonValue::Array, need).toArray();
}

JobObject JobObject::object(const QString& key, Need need) const
{
    return {valueOf(key, QJsonValue::Object, need), at(key), *m_faults};
}

QJsonObject JobObject::freeObject(const QString& key) const
{
    JobObject free = object(key);
    free.m_values.remove(commentKey);
    return free.m_values;
}

QStringList JobObject::texts(const QString& key, const Check& faultOf) const
{
    QStringList texts;
    QSet<QString> known;
    const QJsonArray values = array(key);
    for (int i = 0; i < values.size(); ++i) {
        const QString text = values.at(i).toString();
        QString fault =
            isText(values.at(i)) ? faultOfText(text) : wrongKind(values.at(i), kindOf(QJsonValue::String));
        if (fault.isEmpty() && known.contains(text))
            fault = JobText::tr("is %1, which stands here already").arg(quoted(text));
        if (fault.isEmpty() && faultOf)
            fault = faultOf(text);
        known.insert(text);
        if (fault.isEmpty())
            texts.append(text);
        else
            m_faults->add(JsonPlace::below(at(key), i), fault);
    }
    return texts;
}

QString JobObject::faultOfText(const QString& text)
{
    const auto isControl = [](QChar letter) { return letter.unicode() < 0x20; };
    if (text.isEmpty())
        return JobText::tr("is empty");
    if (std::any_of(text.cbegin(), text.cend(), isControl))
        return JobText::tr("holds a control character");
    if (!text.isValidUtf16())
        return JobText::tr("holds half of a surrogate pair");
    return {};
}

QString JobObject::quoted(const QString& text)
{
    constexpr int longest = 80;
    const QString cut = text.size() > longest ? text.left(longest) + QStringLiteral("…") : text;
    return QLatin1Char('"') + cut + QLatin1Char('"');
}

QString JobObject::wrongKind(const QJsonValue& value, const QString& wanted)
{
    return JobText::tr("is %1, not %2").arg(kindOf(value.type()), wanted);
}
