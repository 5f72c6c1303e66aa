// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"

#include <QJsonDocument>

#include <grp.h>
#include <unistd.h>

namespace {

constexpr int timeLimitMs = 60000;

} // namespace

QJsonObject Ended::json() const
{
    return QJsonDocument::fromJson(output).object();
}

QJsonObject Ended::result() const
{
    return json().value(QStringLiteral("result")).toObject();
}

QJsonObject Ended::failure() const
{
    return json().value(QStringLiteral("error")).toObject();
}

QuenzoProcess::QuenzoProcess(const QStringList& arguments, const QString& folder)
{
    setProgram(QStringLiteral(QUENZO_PROGRAM));
    setArguments(arguments);
    setWorkingDirectory(folder);
    setVariable("TERM", QStringLiteral("xterm"));
    connect(this, &QProcess::started, this, [this] { m_started = true; });
}

QuenzoProcess::~QuenzoProcess()
{
    if (state() == QProcess::NotRunning)
        return;
    kill();
    waitForFinished();
}

void QuenzoProcess::setVariable(const char* name, const QString& value)
{
    QProcessEnvironment environment = processEnvironment();
    if (environment.isEmpty())
        environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(name), value);
    setProcessEnvironment(environment);
}

Ended QuenzoProcess::end(const QByteArray& input)
{
    if (!m_started)
        start();
    if (!input.isEmpty())
        write(input);
    closeWriteChannel();
    if (!waitForFinished(timeLimitMs) && state() != QProcess::NotRunning) {
        kill();
        waitForFinished();
    }
    if (error() == QProcess::FailedToStart)
        qFatal("%s: %s", qPrintable(program()), qPrintable(errorString()));
    // Qt hands over the signal's number as the code of a crash.
    const int code = exitStatus() == QProcess::NormalExit ? exitCode() : -exitCode();
    return {code, readAllStandardOutput(), readAllStandardError()};
}

QStringList QuenzoProcess::words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

void QuenzoProcess::becomePlainUser()
{
    constexpr uid_t nobody = 65534;
    if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0))
        _exit(127);
}

void QuenzoProcess::setupChildProcess()
{
    if (before)
        before();
}
