// SPDX-License-Identifier: MIT
#include "devices/toolprocess.h"

#include "devices/toolplatform.h"
#include "messages.h"

ToolProcess::ToolProcess(Group group)
    : m_group(group)
{
    connect(this, &QProcess::readyReadStandardOutput, this, &ToolProcess::look);
    connect(this, &QProcess::readyReadStandardError, this, &ToolProcess::look);
    connect(this, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            qCWarning(devicesLog).noquote() << program() << "cannot be started:" << errorString();
    });
}

bool ToolProcess::begin(const QString& command)
{
    QStringList words = splitCommand(command);
    if (words.isEmpty() || words.first().isEmpty())
        return false;
    qCDebug(devicesLog).noquote() << "running" << command;
    const QString program = words.takeFirst();
    start(program, words, QIODevice::ReadWrite);
    return true;
}

void ToolProcess::end()
{
    if (state() == NotRunning)
        return;
    stop();
    waitForFinished();
}

void ToolProcess::setupChildProcess()
{
    prepareToolChild(m_group == Own);
}

void ToolProcess::look()
{
    if (m_overLimit)
        return;
    setReadChannel(StandardError);
    const qint64 errors = bytesAvailable();
    setReadChannel(StandardOutput);
    if (errors + bytesAvailable() <= outputLimit)
        return;
    m_overLimit = true;
    qCWarning(devicesLog).noquote() << program() << "was ended: it printed more than" << outputLimit
                                    << "bytes";
    stop();
}

void ToolProcess::stop()
{
    if (m_group == Own)
        endToolGroup(processId());
    kill();
}
