// SPDX-License-Identifier: MIT
#include "window/build/buildprocess.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

#include <csignal>

namespace {

constexpr int linesInATurn = 100; // what is between two turns of the event loop must stay short

QString valueOf(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toString();
}

} // namespace

BuildProcess::BuildProcess(QObject* parent)
    : QObject(parent)
{
    m_quenzo.setStandardInputFile(QProcess::nullDevice());
    m_quenzo.setStandardOutputFile(QProcess::nullDevice());
    m_quenzo.setReadChannel(QProcess::StandardError);
    m_nextTurn.setSingleShot(true);
    connect(&m_nextTurn, &QTimer::timeout, this, &BuildProcess::takeLines);
    connect(&m_quenzo, &QProcess::readyReadStandardError, this, &BuildProcess::takeLines);
    connect(&m_quenzo, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &BuildProcess::takeLines);
    connect(&m_quenzo, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        m_isRunning = false;
        Q_EMIT ended(false,
                     tr("The program %1 cannot be started. Install it beside the window, and build again.")
                         .arg(m_quenzo.program()));
    });
}

BuildProcess::~BuildProcess()
{
    disconnect(&m_quenzo, nullptr, this, nullptr);
    if (!m_isRunning)
        return;
    constexpr int patienceMs = 30000;
    stop();
    if (!m_quenzo.waitForFinished(patienceMs))
        m_quenzo.kill();
}

void BuildProcess::start(const Wishes& wishes)
{
    QStringList words{QStringLiteral("build"), QStringLiteral("--progress=json")};
    if (wishes.force)
        words.append(QStringLiteral("--force"));
    for (const QString& folder : wishes.only)
        words += {QStringLiteral("--only"), folder};
    words += {QStringLiteral("--"), wishes.job};
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString language = QSettings().value(QStringLiteral("language")).toString();
    if (!language.isEmpty())
        environment.insert(QStringLiteral("LANGUAGE"), language);
    m_quenzo.setProcessEnvironment(environment);
    m_lastWords.clear();
    m_isRunning = true;
    m_isStopping = false;
    m_quenzo.start(QCoreApplication::applicationDirPath() + QStringLiteral("/quenzo"), words,
                   QIODevice::ReadOnly);
}

void BuildProcess::stop()
{
    if (!m_isRunning || m_isStopping || m_quenzo.processId() <= 0)
        return;
    m_isStopping = true;
    ::kill(pid_t(m_quenzo.processId()), SIGINT);
}

void BuildProcess::takeLines()
{
    for (int i = 0; i < linesInATurn && m_quenzo.canReadLine(); ++i)
        take(m_quenzo.readLine().trimmed());
    if (m_quenzo.canReadLine())
        m_nextTurn.start();
    else if (m_isRunning && m_quenzo.state() == QProcess::NotRunning)
        finish();
}

void BuildProcess::take(const QByteArray& line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    const QJsonObject channel = object.value(QLatin1String("channel")).toObject();
    const QJsonObject progress = object.value(QLatin1String("progress")).toObject();
    if (channel.contains(QLatin1String("step")))
        Q_EMIT stepBegan(valueOf(channel, "folder"), valueOf(channel, "step"));
    else if (channel.contains(QLatin1String("outcome")))
        Q_EMIT channelEnded(valueOf(channel, "folder"), valueOf(channel, "outcome"),
                            valueOf(channel, "message"));
    else if (!progress.isEmpty())
        Q_EMIT progressed(valueOf(progress, "doing"), progress.value(QLatin1String("done")).toInt(-1),
                          progress.value(QLatin1String("total")).toInt(-1));
    else if (object.isEmpty() && !line.isEmpty()) {
        m_lastWords = QString::fromUtf8(line);
        Q_EMIT said(m_lastWords);
    }
}

void BuildProcess::finish()
{
    m_isRunning = false;
    // 0 is success, 1 is a failure that is told, 130 an interruption.
    const bool isCrash = m_quenzo.exitStatus() != QProcess::NormalExit && !m_isStopping;
    Q_EMIT ended(m_quenzo.exitStatus() == QProcess::NormalExit && m_quenzo.exitCode() == 0,
                 isCrash
                     ? tr("The build crashed. Build again: it goes on where it stood. %1").arg(m_lastWords)
                     : QString());
}
