// SPDX-License-Identifier: MIT
#ifndef CONSOLE_H
#define CONSOLE_H

#include <QJsonObject>
#include <QString>
#include <QStringList>

struct Progress;

/** Where a command reports: results on the standard output, diagnostics and progress on the standard error.
 */
class Console {
public:
    explicit Console(bool json)
        : m_json(json)
    {
    }

    /**
     * A text in which nothing steers a terminal: control characters stand as \n, \r, \t or like \x1b.
     * Names of files may hold them. What is handed to error(), warn() and the like needs no call of this.
     */
    static QString shown(const QString& text);

    /** Whether one JSON object is wanted in the place of the result's text. */
    bool json() const { return m_json; }

    /** Whether a person watches the diagnostics, and thus wants progress and may be asked. */
    static bool isInteractive();

    /** Whether the state of work at hand is shown: to a machine that asked for it, or on a terminal that can
     * take a line back. */
    bool showsProgress() const;

    /** Whether a person reads the results. */
    static bool outputIsTerminal();

    /**
     * A line for people; nothing with JSON. A terminal gets it without anything that would steer it, and
     * without other lines; what is no terminal gets it as it stands.
     */
    void print(const QString& line);

    /** The same of a text that may have lines and tabs: a table, or what was asked for itself. */
    void printText(const QString& text);

    /** A value of the result for machines; nothing without JSON. */
    void set(const QString& key, const QJsonValue& value);

    /** A diagnostic, with further lines below it; with JSON also the value of "error". */
    void error(const QString& text, const QStringList& lines = {});

    /** A diagnostic that leaves the operation's success alone. */
    void warn(const QString& text, const QStringList& lines = {});

    /** Asks the person at the terminal; empty at the end of the input. */
    QString ask(const QString& question);

    /** Asks a question that y or yes affirms; false when it was not, which has been reported. */
    bool confirms(const QString& question);

    /** Shows the state of work at hand, on a terminal in the place of the state before and cut to one line.
     */
    void showProgress(const Progress& progress);
    void clearProgress();

    /** Ends the report: prints the JSON object with "command" and "ok", if wanted. */
    void finish(const QString& command, bool ok);

private:
    void writeDiagnostic(const QString& text, const QStringList& lines);

    bool m_json;
    bool m_progressShown = false;
    int m_turn = 0;
    QJsonObject m_values;
};

#endif
