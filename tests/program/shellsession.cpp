// SPDX-License-Identifier: MIT
#include "shellsession.h"

#include <QRegularExpression>
#include <QtTest>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int timeLimitMs = 30000;

QByteArray withoutSteering(const QByteArray& text)
{
    static const QRegularExpression sequences(
        QStringLiteral("\x1b(\\[[0-9;?]*[A-Za-z]|[=>]|\\][^\x07]*\x07)|\x07"));
    return QString::fromUtf8(text).replace(sequences, QStringLiteral(" ")).toUtf8();
}

} // namespace

ShellSession::ShellSession(const QStringList& command, const QString& folder)
{
    m_terminal.setColumns(120);
    m_process.setProgram(command.first());
    m_process.setArguments(command.mid(1));
    m_process.setWorkingDirectory(folder);
    m_process.setVariable(
        "PATH", QCoreApplication::applicationDirPath() + QLatin1Char(':') + qEnvironmentVariable("PATH"));
    m_process.setVariable("HOME", folder);
    m_process.setVariable("PS1", QStringLiteral("[ready] "));
    // A shell completes for whoever sits at the terminal that is its own.
    m_process.before = [] {
        setsid();
        ioctl(STDIN_FILENO, TIOCSCTTY, 0);
    };
    m_process.setStandardInputFile(m_terminal.path());
    m_process.setStandardOutputFile(m_terminal.path());
    m_process.setStandardErrorFile(m_terminal.path());
    m_process.start();
}

ShellSession::~ShellSession()
{
    m_process.kill();
    m_process.waitForFinished();
}

bool ShellSession::enter(const QByteArray& line)
{
    static const QRegularExpression nextPrompt(QStringLiteral("\\n\\s*\\[ready\\] "));
    type(line + '\n');
    return QTest::qWaitFor([this] { return QString::fromUtf8(shown()).contains(nextPrompt); }, timeLimitMs);
}

void ShellSession::type(const QByteArray& keys)
{
    m_begin = m_terminal.shown().size();
    m_terminal.type(keys);
}

QByteArray ShellSession::shown()
{
    return withoutSteering(m_terminal.shown().mid(m_begin)).replace('\r', "");
}

bool ShellSession::forget()
{
    return enter("\x15");
}
