// SPDX-License-Identifier: MIT
// A row holds what Qt's parser finds, and comes back when it is written; whatever else is refused with a
// reason.
#include "fuzz.h"
#include "jsonleak.h"
#include "records/jsonrow.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

using Fuzz::require;

namespace {

QByteArray written(const QVariant& value)
{
    if (value.userType() == QMetaType::LongLong)
        return QByteArray::number(value.toLongLong());
    if (value.userType() == QMetaType::Double)
        return QByteArray::number(value.toDouble(), 'e', std::numeric_limits<double>::max_digits10);
    const QByteArray list =
        QJsonDocument(QJsonArray{QJsonValue::fromVariant(value)}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

QByteArray written(const QVariantMap& row)
{
    QByteArrayList members;
    for (auto value = row.cbegin(); value != row.cend(); ++value)
        members.append(written(QVariant(value.key())) + ':' + written(*value));
    return '{' + members.join(',') + '}';
}

bool isSame(const QVariant& value, const QJsonValue& parsed)
{
    switch (value.userType()) {
    case QMetaType::LongLong:
        return parsed.isDouble() && static_cast<double>(value.toLongLong()) == parsed.toDouble();
    case QMetaType::Double:
        return parsed.isDouble() && value.toDouble() == parsed.toDouble();
    default:
        return value == parsed.toVariant() && value.userType() == parsed.toVariant().userType();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const JsonLeak leak(text);
    QString error;
    const QVariantMap row = JsonRow::parse(text, error);
    const QJsonDocument document = QJsonDocument::fromJson(text);
    require(error.isEmpty() || row.isEmpty(), "what is refused gives no row");
    require(document.isObject() || !error.isEmpty(), "what is no object is refused");
    if (!error.isEmpty())
        return 0;

    const QJsonObject object = document.object();
    require(row.keys() == object.keys(), "the columns are the names of the object");
    for (auto value = row.cbegin(); value != row.cend(); ++value)
        require(isSame(*value, object.value(value.key())), "the values are those of the object");
    const QVariantMap again = JsonRow::parse(written(row), error);
    require(error.isEmpty() && again == row, "a row that is written comes back");
    for (auto value = row.cbegin(); value != row.cend(); ++value)
        require(again.value(value.key()).userType() == value->userType(), "and so do its types");
    return 0;
}
