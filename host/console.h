// SPDX-License-Identifier: MIT
#ifndef CONSOLE_H
#define CONSOLE_H

#include <QJsonObject>
#include <QString>

/** Where a command reports: results on the standard output, diagnostics and progress on the standard error.
 */
class Console {
public:
    explicit Console(bool json)
        : m_json(json)
    {
    }

    /** Whether one JSON object is wanted in the place of the result's text. */
    bool json() const { return m_json; }

    /** Whether a person watches the diagnostics, and thus wants progress and may be asked. */
    static bool isInteractive();

    /** Whether a person reads the results. */
    static bool outputIsTerminal();

    /** A line of the result for people; nothing with JSON. */
    void print(const QString& line);

    /** A value of the result for machines; nothing without JSON. */
    void set(const QString& key, const QJsonValue& value);

    /** A diagnostic; with JSON also the value of "error". */
    void error(const QString& text);

    /** A diagnostic that leaves the operation's success alone. */
    void warn(const QString& text);

    /** Asks the person at the terminal; empty at the end of the input. */
    QString ask(const QString& question);

    /** Shows the state of work at hand on a terminal, in the place of the state before. */
    void showProgress(const QString& text);
    void clearProgress();

    /** Ends the report: prints the JSON object with "command" and "ok", if wanted. */
    void finish(const QString& command, bool ok);

private:
    void writeDiagnostic(const QString& text);

    bool m_json;
    bool m_progressShown = false;
    QJsonObject m_values;
};

#endif
