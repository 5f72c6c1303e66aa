// SPDX-License-Identifier: MIT
#include "records/jsonrow.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QVector>

#include <algorithm>

namespace {

struct JsonRowTexts {
    Q_DECLARE_TR_FUNCTIONS(JsonRowTexts)
};

bool isBetween(char letter)
{
    return QByteArray::fromRawData(" \t\r\n{}:,", 8).contains(letter);
}

// Behind the closing quotation mark.
int endOfString(const QByteArray& json, int begin)
{
    int i = begin + 1;
    while (i < json.size() && json.at(i) != '"')
        i += json.at(i) == '\\' ? 2 : 1;
    return i + 1;
}

// The names and values as they are written, in turns. The object is well-formed and holds no other, nor
// lists.
QVector<QByteArray> tokensOf(const QByteArray& object)
{
    QVector<QByteArray> tokens;
    for (int i = object.indexOf('{'); i < object.size();) {
        const int begin = i++;
        if (isBetween(object.at(begin)))
            continue;
        if (object.at(begin) == '"') {
            i = endOfString(object, begin);
        } else {
            while (i < object.size() && !isBetween(object.at(i)))
                ++i;
        }
        tokens.append(object.mid(begin, i - begin));
    }
    return tokens;
}

QString textOf(const QByteArray& token)
{
    return QJsonDocument::fromJson('[' + token + ']').array().first().toString();
}

bool hasHalfASurrogatePair(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        if (!text.at(i).isSurrogate())
            continue;
        if (!text.at(i).isHighSurrogate() || i + 1 == text.size() || !text.at(i + 1).isLowSurrogate())
            return true;
        ++i;
    }
    return false;
}

QString memberError(const QString& name, const QVariant& value)
{
    // No column has such a name, and Qt's parser compares two of them up to there: it may have dropped one.
    const int null = name.indexOf(QChar::Null);
    if (null >= 0)
        return JsonRowTexts::tr("a name holds a null character behind '%1'").arg(name.left(null));
    if (value.type() == QVariant::Map || value.type() == QVariant::List)
        return JsonRowTexts::tr("'%1' holds neither text, number, true, false nor null").arg(name);
    if (value.type() == QVariant::String && hasHalfASurrogatePair(value.toString()))
        return JsonRowTexts::tr("'%1' holds half a surrogate pair, which is no character").arg(name);
    return {};
}

// Qt's parser makes a real of an integer that is too large, and an integer of 1.0.
void readNumber(const QByteArray& token, QVariant& value, bool& ok)
{
    ok = true;
    if (value.type() != QVariant::Double && value.type() != QVariant::LongLong)
        return;
    const bool isReal = std::any_of(token.cbegin(), token.cend(), [](char letter) {
        return letter == '.' || letter == 'e' || letter == 'E';
    });
    if (isReal)
        value = token.toDouble(&ok);
    else
        value = token.toLongLong(&ok);
}

QJsonObject objectIn(const QByteArray& text, QString& error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(text, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        error = parseError.errorString();
    else if (!document.isObject())
        error = JsonRowTexts::tr("a row is one JSON object");
    return document.object();
}

} // namespace

QVariantMap JsonRow::parse(const QByteArray& object, QString& error)
{
    QVariantMap row = objectIn(object, error).toVariantMap();
    for (auto value = row.cbegin(); value != row.cend() && error.isEmpty(); ++value)
        error = memberError(value.key(), *value);
    if (!error.isEmpty())
        return {};

    QSet<QString> names;
    const QVector<QByteArray> tokens = tokensOf(object);
    for (int i = 0; i + 1 < tokens.size(); i += 2) {
        const QString name = textOf(tokens.at(i));
        if (names.contains(name.toLower()))
            error = JsonRowTexts::tr("the column '%1' is given twice").arg(name);
        names.insert(name.toLower());
        bool ok = false;
        readNumber(tokens.at(i + 1), row[name], ok);
        if (!ok) {
            error = JsonRowTexts::tr(
                        "the integer of '%1' is beyond 64 bits; in quotation marks it is kept as text")
                        .arg(name);
        }
    }
    return error.isEmpty() ? row : QVariantMap();
}
