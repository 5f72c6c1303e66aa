// SPDX-License-Identifier: MIT
#include "scripts/toolchild.h"

#include <csignal>
#include <unistd.h>
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

ToolChild::ToolChild()
{
    setStandardInputFile(nullDevice());
    connect(this, &QProcess::readyReadStandardOutput, this, &ToolChild::take);
    connect(this, &QProcess::readyReadStandardError, this, &ToolChild::take);
}

ToolChild::~ToolChild()
{
    end();
}

void ToolChild::end()
{
    if (state() == NotRunning)
        return;
    stop();
    waitForFinished();
}

void ToolChild::setupChildProcess()
{
    // Not a group within this session: one that is not in front is stopped when it asks the terminal.
    setsid();
#ifdef Q_OS_LINUX
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
}

void ToolChild::take()
{
    if (isOverLimit())
        return;
    m_output += readAllStandardOutput();
    m_error += readAllStandardError();
    if (isOverLimit())
        stop();
}

void ToolChild::stop()
{
    if (processId() > 0)
        ::kill(-static_cast<pid_t>(processId()), SIGKILL);
    kill();
}
