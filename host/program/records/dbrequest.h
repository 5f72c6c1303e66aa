// SPDX-License-Identifier: MIT
#ifndef DBREQUEST_H
#define DBREQUEST_H

#include <dbhelper.h>

#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <functional>

QT_BEGIN_NAMESPACE
class QCommandLineParser;
class QIODevice;
QT_END_NAMESPACE

/** What a person asks of the database, with names checked: the library pastes them into statements as they
 * are. */
struct DBRequest {
    DB_COMMAND command = DB_SELECT;
    QString file;
    QString table;
    QVariantMap conditions; ///< of an update exactly one
    QVariantList rows; ///< to write
    bool encode = false; ///< all values; scrambled by the library
    QStringList encodedColumns; ///< scrambled before the library gets them
    bool direct = false;

    bool writes() const { return command == DB_INSERT || command == DB_UPDATE; }

    /** The one column of an update's condition; empty without conditions. */
    QString conditionColumn() const { return conditions.isEmpty() ? QString() : conditions.firstKey(); }
};

namespace DBRequests {

/**
 * Reads the command line, but for rows on the standard input.
 *
 * @param[out] error why it makes no sense; left empty when it does
 */
DBRequest fromCommandLine(const QCommandLineParser& parser, QString& error);

/** Whether a word can be the name of a table or a column. */
bool isName(const QString& text);
QString badName(const QString& name);

/**
 * Gives the option for scrambling a value of its own, as the parser wants it: none stands for all columns.
 * A word behind it is its column only when operation and table are given before.
 */
QStringList withEncodeValues(const QStringList& words);

/**
 * Reads one row from each line, a JSON object of names to texts, numbers, true, false and null.
 *
 * @param request whose condition's column a row must not have, and whose scrambled ones it must
 * @param[out] error why a line is no row; there are no rows then
 * @param follow told now and then how many bytes are read
 */
QVariantList rowsFromJsonLines(QIODevice& input, const DBRequest& request, QString& error,
                               const std::function<void(qint64)>& follow);

} // namespace DBRequests

#endif
