// SPDX-License-Identifier: MIT
#include "console/console.h"

#include "console/progress.h"
#include "console/standardstreams.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <iostream>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

using StandardStreams::write;

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

// The columns of the terminal that shows the diagnostics; some tell nothing.
int terminalWidth()
{
    constexpr int usual = 80;
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
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

// Inside its strings JSON can name every character by its number, and outside of them there are no controls.
QString jsonLine(const QJsonObject& values)
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
    return isatty(STDERR_FILENO) != 0 && qgetenv("TERM") != "dumb";
}

bool Console::outputIsTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
}

void Console::print(const QString& line)
{
    printText(outputIsTerminal() ? shown(line) : line);
}

void Console::printText(const QString& text)
{
    if (m_json)
        return;
    clearProgress();
    const QString whole = outputIsTerminal() ? withoutControls(text, QStringLiteral("\n\t")) : text;
    write(stdout, whole + QLatin1Char('\n'));
}

void Console::set(const QString& key, const QJsonValue& value)
{
    m_values.insert(key, value);
}

void Console::error(const QString& text, const QStringList& lines)
{
    m_values.insert(QStringLiteral("error"), (QStringList(text) + lines).join(QLatin1Char('\n')));
    writeDiagnostic(text, lines);
}

void Console::warn(const QString& text, const QStringList& lines)
{
    writeDiagnostic(text, lines);
}

void Console::writeDiagnostic(const QString& text, const QStringList& lines)
{
    clearProgress();
    QString whole = QStringLiteral("quenzo: ") + shown(text) + QLatin1Char('\n');
    for (const QString& line : lines)
        whole += shown(line) + QLatin1Char('\n');
    write(stderr, whole);
}

QString Console::ask(const QString& question)
{
    clearProgress();
    write(stderr, shown(question) + QLatin1Char(' '));
    std::string line;
    std::getline(std::cin, line);
    return QString::fromStdString(line).trimmed();
}

bool Console::confirms(const QString& question)
{
    const QString answer = ask(question).toLower();
    if (answer == ConsoleText::tr("y") || answer == ConsoleText::tr("yes"))
        return true;
    error(ConsoleText::tr("called off; nothing was changed"));
    return false;
}

void Console::showProgress(const Progress& progress)
{
    if (!showsProgress())
        return;
    const QString signs = QStringLiteral("|/-\\");
    const QString text = signs.at(m_turn++ % signs.size()) + QLatin1Char(' ') + shown(progress.text());
    write(stderr, QStringLiteral("\r\033[K") + inOneLine(text, terminalWidth() - 1));
    m_progressShown = true;
}

void Console::clearProgress()
{
    if (!m_progressShown)
        return;
    write(stderr, QStringLiteral("\r\033[K"));
    m_progressShown = false;
}

void Console::finish(const QString& command, bool ok)
{
    clearProgress();
    if (!m_json)
        return;
    m_values.insert(QStringLiteral("command"), command);
    m_values.insert(QStringLiteral("ok"), ok);
    write(stdout, jsonLine(m_values) + QLatin1Char('\n'));
}
