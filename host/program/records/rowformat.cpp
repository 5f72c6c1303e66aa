// SPDX-License-Identifier: MIT
#include "records/rowformat.h"

#include "console/console.h"

#include <QVector>

#include <algorithm>
#include <cmath>

namespace {

bool isBytes(const QVariant& value)
{
    return value.type() == QVariant::ByteArray;
}

QString cell(const QVariant& value)
{
    return isBytes(value) ? QString::fromLatin1(value.toByteArray().toBase64()) : value.toString();
}

// Besides what steers a terminal there is what turns the direction of writing, or takes no place.
QString shown(const QString& text)
{
    constexpr int widest = 60;
    QString result = Console::shown(text);
    for (QChar& letter : result) {
        if (!letter.isPrint() && !letter.isSurrogate())
            letter = QChar(QChar::ReplacementCharacter);
    }
    return result.size() <= widest ? result : result.left(widest - 1) + QChar(0x2026);
}

QString csvField(const QVariant& value)
{
    if (value.isNull())
        return {};
    QString text = cell(value);
    const auto isSpecial = [](QChar letter) { return QStringLiteral(",\"\r\n").contains(letter); };
    if (!text.isEmpty() && std::none_of(text.cbegin(), text.cend(), isSpecial))
        return text;
    text.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString aligned(const QStringList& cells, const QVector<int>& widths)
{
    QStringList parts;
    for (int i = 0; i < cells.size(); ++i)
        parts.append(i + 1 < cells.size() ? cells.at(i).leftJustified(widths.at(i)) : cells.at(i));
    return parts.join(QStringLiteral("  "));
}

// Qt writes JSON numbers as doubles: whole numbers that these cannot hold go as text, lest they be rounded.
// JSON has no infinite ones; the text is one that SQLite takes for such a number.
QJsonValue jsonValue(const QVariant& value)
{
    constexpr qint64 greatestExact = Q_INT64_C(1) << 53;
    if (value.isNull())
        return QJsonValue::Null;
    if (value.type() == QVariant::Double && std::isinf(value.toDouble()))
        return value.toDouble() > 0 ? QStringLiteral("9e999") : QStringLiteral("-9e999");
    const bool isRounded = value.type() == QVariant::LongLong
        && (value.toLongLong() > greatestExact || value.toLongLong() < -greatestExact);
    return isBytes(value) || isRounded ? QJsonValue(cell(value)) : QJsonValue::fromVariant(value);
}

// The columns of the first row are every row's: all come from one select.
QStringList columns(const QVariantList& rows)
{
    return rows.first().toMap().keys();
}

} // namespace

QStringList RowFormat::table(const QVariantList& rows)
{
    if (rows.isEmpty())
        return {};
    QStringList names;
    const QStringList allNames = columns(rows);
    for (const QString& name : allNames)
        names.append(shown(name));
    QVector<QStringList> lines{names};
    for (const QVariant& row : rows) {
        QStringList cells;
        const QVariantMap values = row.toMap();
        for (const QVariant& value : values)
            cells.append(value.isNull() ? QStringLiteral("<null>") : shown(cell(value)));
        lines.append(cells);
    }
    QVector<int> widths(lines.first().size(), 0);
    for (const QStringList& cells : qAsConst(lines)) {
        for (int i = 0; i < cells.size(); ++i)
            widths[i] = std::max(widths.at(i), cells.at(i).size());
    }
    QStringList rules;
    for (const int width : qAsConst(widths))
        rules.append(QString(width, QLatin1Char('-')));
    lines.insert(1, rules);

    QStringList text;
    for (const QStringList& cells : qAsConst(lines))
        text.append(aligned(cells, widths));
    return text;
}

QStringList RowFormat::csv(const QVariantList& rows)
{
    if (rows.isEmpty())
        return {};
    QStringList names;
    const QStringList allNames = columns(rows);
    for (const QString& name : allNames)
        names.append(csvField(name));
    QStringList text{names.join(QLatin1Char(','))};
    for (const QVariant& row : rows) {
        QStringList fields;
        const QVariantMap values = row.toMap();
        for (const QVariant& value : values)
            fields.append(csvField(value));
        text.append(fields.join(QLatin1Char(',')));
    }
    return text;
}

QJsonObject RowFormat::json(const QVariantMap& row)
{
    QJsonObject object;
    for (auto value = row.cbegin(); value != row.cend(); ++value)
        object.insert(value.key(), jsonValue(*value));
    return object;
}
