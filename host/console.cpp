// SPDX-License-Identifier: MIT
#include "console.h"

#include <QJsonDocument>

#include <cstdio>
#include <iostream>
#include <string>
#include <unistd.h>

namespace {

void write(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

} // namespace

bool Console::isInteractive()
{
    return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0;
}

bool Console::outputIsTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
}

void Console::print(const QString& line)
{
    if (m_json)
        return;
    clearProgress();
    write(stdout, line + QLatin1Char('\n'));
}

void Console::set(const QString& key, const QJsonValue& value)
{
    m_values.insert(key, value);
}

void Console::error(const QString& text)
{
    m_values.insert(QStringLiteral("error"), text);
    writeDiagnostic(text);
}

void Console::warn(const QString& text)
{
    writeDiagnostic(text);
}

void Console::writeDiagnostic(const QString& text)
{
    clearProgress();
    write(stderr, QStringLiteral("quenzo: ") + text + QLatin1Char('\n'));
}

QString Console::ask(const QString& question)
{
    clearProgress();
    write(stderr, question + QLatin1Char(' '));
    std::string line;
    std::getline(std::cin, line);
    return QString::fromStdString(line).trimmed();
}

void Console::showProgress(const QString& text)
{
    if (isatty(STDERR_FILENO) == 0)
        return;
    write(stderr, QStringLiteral("\r\033[K") + text);
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
    write(stdout,
          QString::fromUtf8(QJsonDocument(m_values).toJson(QJsonDocument::Compact)) + QLatin1Char('\n'));
}
