// SPDX-License-Identifier: MIT
#include "devices/toolplatform.h"

#include <csignal>
#include <unistd.h>
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

void prepareToolChild(bool ownGroup)
{
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (!ownGroup)
        return;
    // Not a group within the host's session: one that is not in front is stopped when it asks the terminal.
    setsid();
#ifdef Q_OS_LINUX
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
}

void endToolGroup(qint64 child)
{
    if (child > 0)
        kill(-static_cast<pid_t>(child), SIGKILL);
}
