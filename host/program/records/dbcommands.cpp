// SPDX-License-Identifier: MIT
#include "command.h"

#include "console/console.h"
#include "console/progress.h"
#include "console/spinner.h"
#include "console/standardstreams.h"
#include "records/dbrequest.h"
#include "records/dbsession.h"
#include "records/dbstructure.h"
#include "records/rowformat.h"
#include "records/scrambling.h"

#include <quenzotool.h>

#include <QBuffer>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

struct DBCommands {
    Q_DECLARE_TR_FUNCTIONS(DBCommands)
};

ExitCode fail(Console& console, const QString& text, Failure::Code code = Failure::Failed)
{
    console.error({code, text});
    return code == Failure::Usage ? ExitUsage : ExitFailed;
}

QString noFile(const QString& file)
{
    return DBCommands::tr("there is no database file '%1'; create --init makes one").arg(file);
}

void decodeColumns(QVariantList& rows, const QStringList& columns)
{
    for (QVariant& row : rows) {
        QVariantMap values = row.toMap();
        for (const QString& column : columns) {
            const auto value = values.find(column);
            if (value != values.end() && value->type() == QVariant::String && !value->isNull())
                *value = QuenzoTool::ckDecode(value->toString());
        }
        row = values;
    }
}

// Of no rows the columns are not known.
void warnOfMissingColumns(Console& console, const QVariantList& rows, const QStringList& columns)
{
    const QVariantMap row = rows.value(0).toMap();
    for (const QString& column : columns) {
        if (!row.isEmpty() && !row.contains(column))
            console.warn(DBCommands::tr("there is no column '%1' to unscramble").arg(column));
    }
}

QString jsonLine(const QVariant& row)
{
    return QString::fromUtf8(QJsonDocument(RowFormat::json(row.toMap())).toJson(QJsonDocument::Compact));
}

void reportRows(Console& console, const QVariantList& rows, bool csv)
{
    QJsonArray array;
    QStringList lines;
    if (console.json()) {
        for (const QVariant& row : rows)
            array.append(RowFormat::json(row.toMap()));
    } else if (csv) {
        lines = RowFormat::csv(rows);
    } else if (Console::outputIsTerminal()) {
        lines = RowFormat::table(rows) + QStringList(DBCommands::tr("rows: %1").arg(rows.size()));
    } else {
        for (const QVariant& row : rows)
            lines.append(jsonLine(row));
    }
    console.set(QStringLiteral("rows"), array);
    if (!lines.isEmpty())
        console.printText(lines.join(QLatin1Char('\n')));
}

// Statements of an update differ in their values alone: each meets the rows that the last one met.
void reportWritten(Console& console, const DBRequest& request, int changed)
{
    const QString count = QString::number(request.rows.size());
    if (request.command == DB_INSERT) {
        console.say(DBCommands::tr("inserted into %1, rows: %2").arg(request.table, count));
        console.set(QStringLiteral("inserted"), request.rows.size());
    } else if (request.command == DB_UPDATE) {
        console.say(DBCommands::tr("updated %1, statements: %2, rows: %3")
                        .arg(request.table, count, QString::number(changed)));
        console.set(QStringLiteral("statements"), request.rows.size());
        console.set(QStringLiteral("updated"), changed);
    } else {
        console.say(DBCommands::tr("deleted from %1, rows: %2").arg(request.table, QString::number(changed)));
        console.set(QStringLiteral("deleted"), changed);
    }
}

ExitCode createTable(const QCommandLineParser& parser, Console& console)
{
    const QStringList words = parser.positionalArguments().mid(1);
    const QString file = parser.value(QStringLiteral("file"));
    const QString table = words.value(1);
    QString error;
    const QString columns = DBStructure::columnsOf(words.mid(2), error);
    if (!DBRequests::isName(table))
        error = DBRequests::badName(table);
    if (!error.isEmpty())
        return fail(console, error, Failure::Usage);
    if (!QFileInfo(file).isFile() && !parser.isSet(QStringLiteral("init")))
        return fail(console, noFile(file), Failure::NotFound);
    error = DBStructure::create(file, table, columns);
    if (!error.isEmpty())
        return fail(console, DBCommands::tr("the table %1 cannot be made: %2").arg(table, error));
    console.say(DBCommands::tr("made the table %1").arg(table));
    console.set(QStringLiteral("created"), table);
    return ExitDone;
}

ExitCode tellStructure(const QCommandLineParser& parser, Console& console)
{
    const QStringList words = parser.positionalArguments().mid(1);
    const QString& operation = words.first();
    const QString file = parser.value(QStringLiteral("file"));
    const int most = operation == QLatin1String("tables") ? 1 : 2;
    if (words.size() > most)
        return fail(console, DBCommands::tr("db: '%1' is one word too many").arg(words.at(most)),
                    Failure::Usage);
    if (!QFileInfo(file).isFile())
        return fail(console, noFile(file), Failure::NotFound);
    QString error;
    const QStringList found =
        most == 1 ? DBStructure::tables(file, error) : DBStructure::schema(file, words.value(1), error);
    if (!error.isEmpty())
        return fail(console, DBCommands::tr("'%1' cannot be read: %2").arg(file, error), Failure::BadInput);
    console.set(operation, QJsonArray::fromStringList(found));
    for (const QString& line : found)
        console.printText(most == 1 ? line : line + QLatin1Char(';'));
    return ExitDone;
}

QVariantList readRows(const DBRequest& request, Console& console, QString& error)
{
    QByteArray lines = StandardStreams::readInput(error);
    QBuffer input(&lines);
    if (!error.isEmpty() || !input.open(QIODevice::ReadOnly))
        return {};
    PacedProgress progress(console);
    return DBRequests::rowsFromJsonLines(input, request, error, [&](qint64 done) {
        progress.show({DBCommands::tr("reading rows"), Progress::Bytes, done, lines.size()});
    });
}

ExitCode runRows(const QCommandLineParser& parser, Console& console)
{
    QString error;
    DBRequest request = DBRequests::fromCommandLine(parser, error);
    if (!error.isEmpty())
        return fail(console, error, Failure::Usage);
    // The library would make the file, and with it a database without tables.
    if (!QFileInfo(request.file).isFile())
        return fail(console, noFile(request.file), Failure::NotFound);
    if (request.writes() && request.rows.isEmpty()) {
        request.rows = readRows(request, console, error);
        if (!error.isEmpty())
            return fail(console, error, Failure::BadInput);
    }

    if (!parser.isSet(QStringLiteral("lossy")))
        error = Scrambling::loss(request);
    if (!error.isEmpty())
        return fail(console, error, Failure::Refused);
    Scrambling::apply(request);

    DBOutcome outcome = runRequest(request, console);
    if (!outcome.error.isEmpty())
        return fail(console, outcome.error);
    if (request.command != DB_SELECT) {
        reportWritten(console, request, outcome.changed);
        return ExitDone;
    }
    const QStringList scrambled = parser.values(QStringLiteral("decode"));
    warnOfMissingColumns(console, outcome.rows, scrambled);
    decodeColumns(outcome.rows, scrambled);
    reportRows(console, outcome.rows, parser.isSet(QStringLiteral("csv")));
    return ExitDone;
}

ExitCode runDatabase(const QCommandLineParser& parser, Console& console)
{
    const QString operation = parser.positionalArguments().at(1);
    const bool creates = operation == QLatin1String("create");
    const bool tells = operation == QLatin1String("tables") || operation == QLatin1String("schema");
    if (parser.isSet(QStringLiteral("init")) && !creates)
        return fail(console, DBCommands::tr("--init is for create"), Failure::Usage);
    if (creates)
        return createTable(parser, console);
    return tells ? tellStructure(parser, console) : runRows(parser, console);
}

QStringList missingWords(const QCommandLineParser& parser)
{
    const QStringList words = parser.positionalArguments().mid(1);
    const QString operation = words.value(0);
    const auto isOneOf = [&operation](const QStringList& names) { return names.contains(operation); };
    const bool changes = isOneOf({QStringLiteral("update"), QStringLiteral("delete")});
    const QString condition = QStringLiteral("--where COLUMN=VALUE");
    QStringList missing;
    if (words.size() == 1 && !isOneOf({QStringLiteral("tables"), QStringLiteral("schema")}))
        missing.append(QStringLiteral("TABLE"));
    if (operation == QLatin1String("create") && words.size() < 3)
        missing.append(QStringLiteral("COLUMN:TYPE"));
    if (parser.value(QStringLiteral("file")).isEmpty())
        missing.append(QStringLiteral("--file DB"));
    if (changes && !parser.isSet(QStringLiteral("where")) && !parser.isSet(QStringLiteral("all")))
        missing.append(operation == QLatin1String("delete") ? DBCommands::tr("%1 or --all").arg(condition)
                                                            : condition);
    return missing;
}

// The text that is meant: the word itself, or the standard input without its last line break.
bool readText(const QCommandLineParser& parser, Console& console, QString& text)
{
    text = parser.positionalArguments().at(1);
    if (text != QLatin1String("-"))
        return true;
    QString error;
    QByteArray bytes = StandardStreams::readInput(error);
    if (bytes.endsWith('\n'))
        bytes.chop(1);
    text = QString::fromUtf8(bytes);
    if (error.isEmpty() && text.toUtf8() != bytes)
        error = DBCommands::tr("the standard input is not UTF-8 text");
    if (!error.isEmpty())
        fail(console, error, Failure::BadInput);
    return error.isEmpty();
}

ExitCode encodeText(const QCommandLineParser& parser, Console& console)
{
    QString text;
    if (!readText(parser, console, text))
        return ExitFailed;
    const QString scrambled = QuenzoTool::ckEncode(text);
    if (scrambled.isEmpty() && !text.isEmpty())
        console.warn(DBCommands::tr("a text of less than four bytes encodes to an empty one"));
    console.print(scrambled);
    console.set(QStringLiteral("text"), scrambled);
    return ExitDone;
}

ExitCode decodeText(const QCommandLineParser& parser, Console& console)
{
    QString text;
    if (!readText(parser, console, text))
        return ExitFailed;
    const QString plain = QuenzoTool::ckDecode(text);
    if (QuenzoTool::ckEncode(plain) != text)
        console.warn(DBCommands::tr("the text is not what encode makes of this result"));
    console.printText(plain);
    console.set(QStringLiteral("text"), plain);
    return ExitDone;
}

QCommandLineOption option(const char* name, const QString& description, const QString& value = {})
{
    return {QLatin1String(name), description, value};
}

Command dbCommand()
{
    const QString pair = QStringLiteral("COLUMN=VALUE");
    return {
        QStringLiteral("db"),
        DBCommands::tr("writes, changes, removes and reads records of a database file"),
        {{QStringLiteral("OPERATION"),
          DBCommands::tr(
              "insert writes rows; update writes new values into the rows that meet --where; delete "
              "removes and "
              "select reads the rows that meet every --where; tables and schema tell what there is; create "
              "makes a "
              "table")},
         {QStringLiteral("TABLE"),
          DBCommands::tr("the table's name, but for tables, and if one is meant for schema"),
          Argument::Optional},
         {pair,
          DBCommands::tr(
              "values to insert or update, as text; without any, or with -, each line of the standard "
              "input is a row, a JSON object of names to values; for create COLUMN:TYPE, with the types "
              "text, "
              "integer, real, numeric and blob"),
          Argument::AnyNumber}},
        {option("file", DBCommands::tr("The database file, which exists."), QStringLiteral("DB")),
         option("where",
                DBCommands::tr(
                    "A condition, compared as text; may be repeated for select and delete, and is given "
                    "once for "
                    "update."),
                pair),
         option("all", DBCommands::tr("Empties the table: for delete without a condition.")),
         option("encode",
                DBCommands::tr(
                    "Writes values scrambled, of this column, or of all if none is named; may be repeated. "
                    "Give it "
                    "behind the table, or as --encode=COLUMN. With columns, conditions on them are compared "
                    "scrambled. Without, delete compares with scrambled values; update leaves its "
                    "condition "
                    "plain; select unscrambles its conditions."),
                QStringLiteral("COLUMN")),
         option(
             "lossy",
             DBCommands::tr(
                 "Writes scrambled what cannot be brought back: null, less than four bytes, a zero byte.")),
         option("init", DBCommands::tr("Makes the file with its first table: for create.")),
         option("decode", DBCommands::tr("Unscrambles this column of what select has read; may be repeated."),
                QStringLiteral("COLUMN")),
         option("direct",
                DBCommands::tr(
                    "Goes without the queue: each row is committed by itself, and those before a failed "
                    "one stay. "
                    "The queue writes all rows of an insert or none; of an update, what the rows before a "
                    "failed one changed stays, too, unless the table says ON CONFLICT ROLLBACK or the disk "
                    "is full.")),
         option("csv",
                DBCommands::tr(
                    "Prints rows as CSV; otherwise as a table on a terminal, elsewhere as JSON lines."))},
        runDatabase,
        DBCommands::tr(
            "A row of the input whose values would not be kept as they are is refused, and nothing is "
            "written: "
            "one with a column given twice, an integer beyond 64 bits, or half a surrogate pair.\n"
            "JSON shows reals without a fraction as whole numbers, bytes as Base64, and integers beyond "
            "2^53 "
            "and infinite numbers (9e999) as text. Inserted again, the latter are numbers in columns of a "
            "numeric type, and text in others."),
        {{QStringLiteral("OPERATION"),
          {QStringLiteral("insert"), QStringLiteral("update"), QStringLiteral("delete"),
           QStringLiteral("select"), QStringLiteral("tables"), QStringLiteral("schema"),
           QStringLiteral("create")}}},
        DBRequests::withEncodeValues,
        missingWords};
}

} // namespace

QVector<Command> dbCommands()
{
    const Argument text{QStringLiteral("TEXT"),
                        DBCommands::tr("the text; - is the standard input, without its last line break")};
    return {
        dbCommand(),
        {QStringLiteral("encode"),
         DBCommands::tr("scrambles a text as db --encode does"),
         {text},
         {},
         encodeText},
        {QStringLiteral("decode"), DBCommands::tr("unscrambles such a text"), {text}, {}, decodeText},
    };
}
