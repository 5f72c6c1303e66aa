// SPDX-License-Identifier: MIT
#include "records/dbrequest.h"

#include "records/jsonrow.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QIODevice>
#include <QRegularExpression>

#include <algorithm>

namespace {

struct DBRequestTexts {
    Q_DECLARE_TR_FUNCTIONS(DBRequestTexts)
};

// SQLite knows columns by their names in whatever capitals.
bool containsColumn(const QVariantMap& values, const QString& name)
{
    return std::any_of(values.keyBegin(), values.keyEnd(), [&name](const QString& other) {
        return other.compare(name, Qt::CaseInsensitive) == 0;
    });
}

QVariantMap pairs(const QStringList& words, QString& error)
{
    QVariantMap values;
    for (const QString& word : words) {
        const int equals = word.indexOf(QLatin1Char('='));
        const QString name = word.left(equals);
        if (equals < 0)
            error = DBRequestTexts::tr("'%1' is not of the form COLUMN=VALUE").arg(word);
        else if (!DBRequests::isName(name))
            error = DBRequests::badName(name);
        else if (containsColumn(values, name))
            error = DBRequestTexts::tr("the column '%1' is given twice").arg(name);
        values.insert(name, word.mid(equals + 1));
    }
    return values;
}

DB_COMMAND commandOf(const QString& word)
{
    static const QMap<QString, DB_COMMAND> commands{{QStringLiteral("insert"), DB_INSERT},
                                                    {QStringLiteral("update"), DB_UPDATE},
                                                    {QStringLiteral("delete"), DB_DELETE},
                                                    {QStringLiteral("select"), DB_SELECT}};
    return commands.value(word);
}

QString conditionsError(const DBRequest& request, bool all)
{
    if (request.command == DB_INSERT && !request.conditions.isEmpty())
        return DBRequestTexts::tr("an insert takes no --where");
    // The queue leaves out a condition without text, and the statement then fails.
    if (request.command == DB_UPDATE
        && (request.conditions.size() != 1 || request.conditions.first().toString().isEmpty()))
        return DBRequestTexts::tr("an update takes exactly one --where COLUMN=VALUE, and no empty value");
    if (request.command == DB_DELETE && request.conditions.isEmpty() != all)
        return DBRequestTexts::tr("a delete takes either --where COLUMN=VALUE or --all");
    if (request.command != DB_DELETE && all)
        return DBRequestTexts::tr("--all is for a delete");
    return {};
}

// A statement has one placeholder for a column's name as it is spelt, and would bind the condition's value to
// it.
QString conditionAmongValues(const QString& column)
{
    const QString other = column == column.toUpper() ? column.toLower() : column.toUpper();
    return DBRequestTexts::tr(
               "the condition's column '%1' cannot be written under the same name; '%2' would do")
        .arg(column, other);
}

QString rowError(const QVariantMap& row, const DBRequest& request)
{
    // More than any table of SQLite's can have; its parser would take minutes to find that out.
    constexpr int mostColumns = 32767;
    if (row.isEmpty())
        return DBRequestTexts::tr("a row needs a column");
    if (row.size() > mostColumns)
        return DBRequestTexts::tr("a row has more columns, %1, than any table").arg(row.size());
    if (row.contains(request.conditionColumn()))
        return conditionAmongValues(request.conditionColumn());
    // A mistyped one would leave the value readable.
    for (const QString& column : request.encodedColumns) {
        if (!containsColumn(row, column) && !containsColumn(request.conditions, column))
            return DBRequestTexts::tr("the column '%1' of --encode is not among those to be written")
                .arg(column);
    }
    for (auto value = row.cbegin(); value != row.cend(); ++value) {
        if (!DBRequests::isName(value.key()))
            return DBRequests::badName(value.key());
    }
    return {};
}

} // namespace

bool DBRequests::isName(const QString& text)
{
    static const QRegularExpression name(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_]*\\z"));
    return name.match(text).hasMatch();
}

QString DBRequests::badName(const QString& name)
{
    return DBRequestTexts::tr("'%1' is no name: letters, digits and underscores of ASCII make one").arg(name);
}

QStringList DBRequests::withEncodeValues(const QStringList& words)
{
    const QStringList withValue{QStringLiteral("--file"), QStringLiteral("--where"),
                                QStringLiteral("--decode"), QStringLiteral("--progress")};
    constexpr int needed = 3; // the command, the operation and the table
    QStringList result;
    int bare = 0;
    for (int i = 0; i < words.size() && words.at(i) != QLatin1String("--"); ++i) {
        const QString& word = words.at(i);
        result.append(word);
        const QString next = words.value(i + 1);
        if (withValue.contains(word) && i + 1 < words.size())
            result.append(words.at(++i));
        else if (word == QLatin1String("--encode") && bare >= needed && isName(next))
            result.last() += QLatin1Char('=') + words.at(++i);
        else if (word == QLatin1String("--encode"))
            result.last() += QLatin1Char('=');
        else if (!word.startsWith(QLatin1Char('-')))
            ++bare;
    }
    return result
        + (words.contains(QStringLiteral("--")) ? words.mid(words.indexOf(QStringLiteral("--")))
                                                : QStringList());
}

DBRequest DBRequests::fromCommandLine(const QCommandLineParser& parser, QString& error)
{
    const QStringList words = parser.positionalArguments().mid(1);
    DBRequest request;
    request.file = parser.value(QStringLiteral("file"));
    request.table = words.value(1);
    request.encodedColumns = parser.values(QStringLiteral("encode"));
    request.encode = request.encodedColumns.removeAll({}) > 0;
    request.direct = parser.isSet(QStringLiteral("direct"));
    request.command = commandOf(words.at(0));
    request.conditions = pairs(parser.values(QStringLiteral("where")), error);
    const QStringList values = words.mid(2);
    // "-" says what no values mean.
    const QVariantMap row =
        pairs(values == QStringList(QStringLiteral("-")) && request.writes() ? QStringList() : values, error);
    if (!row.isEmpty())
        request.rows.append(row);

    if (!error.isEmpty())
        return request;
    if (!DBRequests::isName(request.table))
        error = DBRequests::badName(request.table);
    else if (!request.writes() && !row.isEmpty())
        error = DBRequestTexts::tr("conditions are given as --where COLUMN=VALUE");
    else
        error = conditionsError(request, parser.isSet(QStringLiteral("all")));
    if (error.isEmpty() && request.encode && !request.encodedColumns.isEmpty())
        error = DBRequestTexts::tr("--encode is for all columns or for those that are named, not for both");
    if (error.isEmpty() && !row.isEmpty())
        error = rowError(row, request);
    return request;
}

QVariantList DBRequests::rowsFromJsonLines(QIODevice& input, const DBRequest& request, QString& error,
                                           const std::function<void(qint64)>& follow)
{
    constexpr int linesAStep = 1024;
    QVariantList rows;
    for (int number = 1; !input.atEnd(); ++number) {
        const QByteArray text = input.readLine();
        if (text.isEmpty())
            break; // what cannot be read has no end
        if (number % linesAStep == 0)
            follow(input.pos());
        const QByteArray line = text.trimmed();
        if (line.isEmpty())
            continue;
        QString problem;
        const QVariantMap row = JsonRow::parse(line, problem);
        if (problem.isEmpty())
            problem = rowError(row, request);
        if (!problem.isEmpty()) {
            error = DBRequestTexts::tr("line %1 of the input: %2").arg(QString::number(number), problem);
            return {};
        }
        rows.append(row);
    }
    return rows;
}
