// SPDX-License-Identifier: MIT
#include "console/console.h"

#include "console/progress.h"
#include "console/standardstreams.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <algorithm>
#include <cwchar>
#include <iostream>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

struct ConsoleText {
    Q_DECLARE_TR_FUNCTIONS(Console)
};

// C0, DEL and C1, all of which terminals act upon.
bool isControl(QChar letter)
{
    return letter.unicode() < 0x20 || (letter.unicode() >= 0x7f && letter.unicode() < 0xa0);
}

QString escaped(QChar control)
{
    switch (control.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return QStringLiteral("\\x%1").arg(control.unicode(), 2, 16, QLatin1Char('0'));
    }
}

QString withoutControls(const QString& text, const QString& kept)
{
    if (std::none_of(text.cbegin(), text.cend(), isControl))
        return text;
    QString result;
    result.reserve(text.size());
    for (const QChar letter : text) {
        if (isControl(letter) && !kept.contains(letter))
            result += escaped(letter);
        else
            result += letter;
    }
    return result;
}

// The size of the terminal that shows the diagnostics; some tell nothing.
winsize terminalSize()
{
    constexpr unsigned short usualRows = 24;
    constexpr unsigned short usualColumns = 80;
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0)
        size = {};
    if (size.ws_row == 0)
        size.ws_row = usualRows;
    if (size.ws_col == 0)
        size.ws_col = usualColumns;
    return size;
}

// NO_COLOR is how a person switches colours off for all programs.
bool takesColour()
{
    return isatty(STDERR_FILENO) != 0 && qgetenv("TERM") != "dumb" && qEnvironmentVariableIsEmpty("NO_COLOR");
}

// As much of a text as a line holds; one that is wrapped could not be taken back.
QString inOneLine(const QString& text, int columns)
{
    QString line;
    for (const uint letter : text.toUcs4()) {
        columns -= std::max(0, wcwidth(static_cast<wchar_t>(letter)));
        if (columns < 0)
            break;
        line += QString::fromUcs4(&letter, 1);
    }
    return line;
}

} // namespace

QString Console::shown(const QString& text)
{
    return withoutControls(text, {});
}

bool Console::isInteractive()
{
    return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0;
}

bool Console::showsProgress() const
{
    if (m_style.mute)
        return false;
    if (m_style.progress == ConsoleStyle::JsonLines)
        return true;
    // Steps would come in between.
    return isatty(STDERR_FILENO) != 0 && qgetenv("TERM") != "dumb" && !m_style.quiet && !m_style.verbose;
}

bool Console::outputIsTerminal()
{
    return StandardStreams::outputIsTerminal();
}

// A terminal that shows results is the one of the diagnostics.
int Console::outputColumns()
{
    constexpr int wide = 120; // for files and pipes
    return outputIsTerminal() ? terminalSize().ws_col : wide;
}

void Console::print(const QString& line)
{
    printText(outputIsTerminal() ? shown(line) : line);
}

void Console::printText(const QString& text)
{
    if (m_style.json || m_style.mute)
        return;
    clearProgress();
    if (!m_outputIsFree)
        return StandardStreams::writeDiagnostic(shown(text) + QLatin1Char('\n'));
    const QString whole = outputIsTerminal() ? withoutControls(text, QStringLiteral("\n\t")) : text;
    StandardStreams::writeResult((whole + QLatin1Char('\n')).toUtf8());
}

void Console::say(const QString& line)
{
    if (!m_style.quiet)
        print(line);
}

void Console::set(const QString& key, const QJsonValue& value)
{
    m_result.insert(key, value);
}

void Console::error(const Failure& told)
{
    Failure failure = told;
    if (failure.code == Failure::Usage && failure.hint.isEmpty()) {
        const QString help = QStringLiteral("--help");
        failure.hint = ConsoleText::tr("see quenzo %1")
                           .arg(m_command.isEmpty() ? help : m_command + QLatin1Char(' ') + help);
    }
    if (m_hasFailed)
        m_failure.causes += QStringList(failure.message) + failure.causes;
    else
        m_failure = failure;
    m_hasFailed = true;
    writeDiagnostic(failure.lines(), Red);
}

void Console::error(const QString& text, const QStringList& causes)
{
    error(Failure{Failure::Failed, text, causes});
}

void Console::warn(const QString& text, const QStringList& lines)
{
    m_warnings.append((QStringList(text) + lines).join(QLatin1Char('\n')));
    if (!m_style.quiet)
        writeDiagnostic(QStringList(text) + lines, Yellow);
}

void Console::stage(const QString& text)
{
    if (!m_style.quiet && !m_style.json && !showsProgress())
        writeDiagnostic({text});
}

void Console::step(const QString& text)
{
    if (m_style.verbose)
        writeDiagnostic({text});
}

void Console::writeDiagnostic(const QStringList& lines, Colour colour)
{
    if (m_style.mute)
        return;
    clearProgress();
    QString whole = QStringLiteral("quenzo: ");
    if (colour != Plain && takesColour())
        whole = QStringLiteral("\033[1;%1mquenzo:\033[0m ").arg(int(colour));
    for (const QString& line : lines)
        whole += shown(line) + QLatin1Char('\n');
    StandardStreams::writeDiagnostic(whole);
}

QString Console::ask(const QString& question)
{
    clearProgress();
    StandardStreams::writeDiagnostic(shown(question) + QLatin1Char(' '));
    std::string line;
    std::getline(std::cin, line);
    if (std::cin.eof()) // no line break has been typed
        StandardStreams::writeDiagnostic(QStringLiteral("\n"));
    return QString::fromStdString(line).trimmed();
}

bool Console::confirms(const QString& question)
{
    const QString answer = ask(question).toLower();
    if (answer == ConsoleText::tr("y") || answer == ConsoleText::tr("yes"))
        return true;
    error(Failure{Failure::Declined, ConsoleText::tr("called off; nothing was changed")});
    return false;
}

void Console::showProgress(const Progress& progress)
{
    if (!showsProgress())
        return;
    if (m_style.progress == ConsoleStyle::JsonLines) {
        const QString line = jsonLine({{QStringLiteral("progress"), progress.json()}});
        if (line != m_progressLine)
            StandardStreams::writeDiagnostic(line + QLatin1Char('\n'));
        m_progressLine = line;
        return;
    }
    if (!m_progressClock.isValid() || m_doing != progress.doing)
        m_progressClock.start();
    m_doing = progress.doing;
    const QString signs = QStringLiteral("|/-\\");
    const winsize size = terminalSize();
    const int columns = size.ws_col - 1; // the last one stays free: some terminals wrap behind it
    QStringList lines;
    if (progress.atWork.size() < size.ws_row) {
        for (const QString& part : progress.atWork)
            lines.append(inOneLine(QStringLiteral("  ") + shown(part), columns));
    }
    const QString whole = signs.at(m_turn++ % signs.size()) + QLatin1Char(' ')
        + shown(progress.line(m_progressClock.elapsed(), columns - 2));
    lines.append(inOneLine(whole, columns));
    StandardStreams::writeDiagnostic(takingBack() + lines.join(QLatin1Char('\n')));
    m_progressRows = lines.size();
}

QString Console::takingBack() const
{
    if (m_progressRows > 1)
        return QStringLiteral("\r\033[%1A\033[J").arg(m_progressRows - 1);
    return QStringLiteral("\r\033[K");
}

void Console::clearProgress()
{
    if (m_progressRows == 0)
        return;
    StandardStreams::writeDiagnostic(takingBack());
    m_progressRows = 0;
}

void Console::event(const QString& kind, const QJsonObject& values)
{
    if (m_style.progress == ConsoleStyle::JsonLines && !m_style.mute)
        StandardStreams::writeDiagnostic(jsonLine({{kind, values}}) + QLatin1Char('\n'));
}

QStringList Console::warnings() const
{
    QStringList texts;
    for (const auto& warning : m_warnings)
        texts.append(warning.toString());
    return texts;
}

void Console::finish(bool ok)
{
    clearProgress();
    if (!m_style.json)
        return;
    constexpr int version = 1; // of the object's shape
    QJsonObject outcome{
        {QStringLiteral("quenzo"), version},
        {QStringLiteral("command"), m_command.isEmpty() ? QJsonValue() : QJsonValue(m_command)},
        {QStringLiteral("ok"), ok}};
    if (!ok)
        outcome.insert(QStringLiteral("error"), m_failure.json());
    if (ok || !m_result.isEmpty())
        outcome.insert(QStringLiteral("result"), m_result);
    if (!m_warnings.isEmpty())
        outcome.insert(QStringLiteral("warnings"), m_warnings);
    StandardStreams::writeResult((jsonLine(outcome) + QLatin1Char('\n')).toUtf8());
}

// Inside its strings JSON can name every character by its number, and outside of them there are no controls.
QString Console::jsonLine(const QJsonObject& values)
{
    QString line;
    QString text = QString::fromUtf8(QJsonDocument(values).toJson(QJsonDocument::Compact));
    if (std::none_of(text.cbegin(), text.cend(), isControl))
        return text;
    for (const QChar letter : qAsConst(text)) {
        if (isControl(letter))
            line += QStringLiteral("\\u%1").arg(letter.unicode(), 4, 16, QLatin1Char('0'));
        else
            line += letter;
    }
    return line;
}
