// SPDX-License-Identifier: MIT
#include "window/records/rowview.h"

#include <quenzotool.h>

#include <algorithm>
#include <numeric>

namespace {

// What no scrambling has made stays as it is.
QString plainOf(const QString& text)
{
    const QString plain = QuenzoTool::ckDecode(text);
    return QuenzoTool::ckEncode(plain) == text ? plain : text;
}

bool isNumber(const QVariant& value)
{
    return value.type() == QVariant::LongLong || value.type() == QVariant::Int
        || value.type() == QVariant::Double;
}

// Nothing comes before numbers, and these before texts, as the database itself sorts.
int rankOf(const QVariant& value)
{
    if (value.isNull())
        return 0;
    return isNumber(value) ? 1 : 2;
}

bool isLess(const QVariant& one, const QVariant& other)
{
    if (rankOf(one) != rankOf(other))
        return rankOf(one) < rankOf(other);
    if (rankOf(one) == 1)
        return one.type() == QVariant::Double || other.type() == QVariant::Double
            ? one.toDouble() < other.toDouble()
            : one.toLongLong() < other.toLongLong();
    return one.toString().compare(other.toString(), Qt::CaseInsensitive) < 0;
}

QString textOf(const QVariant& value)
{
    return value.type() == QVariant::ByteArray ? QString::fromLatin1(value.toByteArray().toBase64())
                                               : value.toString();
}

} // namespace

QVariant RowView::value(const QVariantMap& row, const QString& column) const
{
    const QVariant stored = row.value(column);
    return stored.type() == QVariant::String && plain.contains(column) ? plainOf(stored.toString()) : stored;
}

QString RowView::cell(const QVariantMap& row, int column) const
{
    return textOf(value(row, columns.at(column)));
}

bool RowView::matches(const QVariantMap& row) const
{
    return filter.isEmpty() || std::any_of(columns.cbegin(), columns.cend(), [&](const QString& column) {
               return textOf(value(row, column)).contains(filter, Qt::CaseInsensitive);
           });
}

QVector<int> RowView::seen(const QVariantList& rows) const
{
    QVector<int> numbers;
    for (int i = 0; i < rows.size(); ++i) {
        if (matches(rows.at(i).toMap()))
            numbers.append(i);
    }
    if (sortColumn < 0 || sortColumn >= columns.size())
        return numbers;
    const QString& column = columns.at(sortColumn);
    QVector<QVariant> keys;
    keys.reserve(numbers.size());
    for (const int number : qAsConst(numbers))
        keys.append(value(rows.at(number).toMap(), column));
    QVector<int> places(numbers.size());
    std::iota(places.begin(), places.end(), 0);
    std::stable_sort(places.begin(), places.end(), [&](int one, int other) {
        return order == Qt::AscendingOrder ? isLess(keys.at(one), keys.at(other))
                                           : isLess(keys.at(other), keys.at(one));
    });
    QVector<int> sorted;
    sorted.reserve(places.size());
    for (const int place : qAsConst(places))
        sorted.append(numbers.at(place));
    return sorted;
}

QVariantList RowView::taken(const QVariantList& rows, const QVector<int>& numbers) const
{
    QVariantList all;
    for (const int number : numbers) {
        QVariantMap row = rows.at(number).toMap();
        for (const QString& column : plain)
            row.insert(column, value(row, column));
        all.append(row);
    }
    return all;
}
