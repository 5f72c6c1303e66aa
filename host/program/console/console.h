// SPDX-License-Identifier: MIT
#ifndef CONSOLE_H
#define CONSOLE_H

#include "console/failure.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

struct Progress;

/** How a command is to report. */
struct ConsoleStyle {
    enum ProgressForm { Terminal, JsonLines };

    bool json = false; ///< one JSON object in the place of the result's text
    bool quiet = false; ///< only results and errors
    bool verbose = false; ///< steps, and causes in full
    bool mute = false; ///< nothing: what is said is kept for whoever asks for it
    ProgressForm progress = Terminal;
};

/** Where a command reports: results on the standard output, diagnostics and progress on the standard error.
 */
class Console {
public:
    /** @param command what reports; empty where the words name none */
    explicit Console(const ConsoleStyle& style, const QString& command = {})
        : m_style(style)
        , m_command(command)
    {
    }

    /**
     * A text in which nothing steers a terminal: control characters stand as \n, \r, \t or like \x1b.
     * Names of files may hold them. What is handed to error(), warn() and the like needs no call of this.
     */
    static QString shown(const QString& text);

    /** Whether one JSON object is wanted in the place of the result's text. */
    bool json() const { return m_style.json; }

    /** Whether a person wants to read all of the steps and causes. */
    bool verbose() const { return m_style.verbose; }

    /** Whether only results and errors are wanted. */
    bool isQuiet() const { return m_style.quiet; }

    /** Whether a person watches the diagnostics, and thus may be asked. */
    static bool isInteractive();

    /** Whether the state of work at hand is shown: to a machine that asked for it, or on a terminal that can
     * take a line back. */
    bool showsProgress() const;

    /** Whether a person reads the results. */
    static bool outputIsTerminal();

    /** How many columns a table of the result may have. */
    static int outputColumns();

    /**
     * A line of the result; nothing with JSON. A terminal gets it without anything that would steer it, and
     * without other lines; what is no terminal gets it as it stands.
     */
    void print(const QString& line);

    /** The same of a text that may have lines and tabs: a table, or what was asked for itself. */
    void printText(const QString& text);

    /** Hands the standard output to what a command writes there itself: lines for people go to the other
     * stream from now on. */
    void leaveOutputFree() { m_outputIsFree = false; }

    /** A line that merely tells what was done; nothing for those who want it quiet, too. */
    void say(const QString& line);

    /** A value of the result for machines; nothing without JSON. */
    void set(const QString& key, const QJsonValue& value);

    /** What kept the command from its end. Of several failures the first is the one that machines get; the
     * others are among its causes. Wrong words get the hint where the right ones are told. */
    void error(const Failure& told);

    /** The same for a failure of the work itself. */
    void error(const QString& text, const QStringList& causes = {});

    /** A diagnostic that leaves the operation's success alone; machines get its text beside the result. */
    void warn(const QString& text, const QStringList& lines = {});

    /** A stage that work of many has reached, for who reads along where nothing else shows how far it is. */
    void stage(const QString& text);

    /** A step on the way, for who wants to know them. */
    void step(const QString& text);

    /** Asks the person at the terminal; empty at the end of the input. */
    QString ask(const QString& question);

    /** Asks a question that y or yes affirms; false when it was not, which has been reported. */
    bool confirms(const QString& question);

    /** Shows the state of work at hand, on a terminal in the place of the state before: what is done at once
     * where there are rows enough, and the whole in the last line, each of them cut to one. */
    void showProgress(const Progress& progress);
    void clearProgress();

    /** Tells a machine that follows the progress what has just happened: a line {"KIND": {...}}. Others get
     * nothing. */
    void event(const QString& kind, const QJsonObject& values);

    /** What was said so far, for a report that tells it in other words. */
    const Failure& failure() const { return m_failure; }
    QStringList warnings() const;

    /** Ends the report: prints the JSON object, if wanted. */
    void finish(bool ok);

    /** An object in one line, in which nothing steers a terminal. */
    static QString jsonLine(const QJsonObject& values);

private:
    /** As terminals number them. */
    enum Colour { Plain = 0, Red = 31, Yellow = 33 };

    /** What takes the state of work off the terminal. */
    QString takingBack() const;

    /** Writes lines behind the program's name, which has the colour where a terminal takes it. */
    void writeDiagnostic(const QStringList& lines, Colour colour = Plain);

    const ConsoleStyle m_style;
    const QString m_command;
    int m_progressRows = 0; ///< that the state of work takes now
    int m_turn = 0;
    QString m_doing;
    QElapsedTimer m_progressClock; ///< since that is being done
    QString m_progressLine;
    QJsonObject m_result;
    QJsonArray m_warnings;
    bool m_outputIsFree = true; // for lines
    bool m_hasFailed = false;
    Failure m_failure;
};

#endif
