// SPDX-License-Identifier: MIT
#include "command.h"

QVector<Command> scriptCommands()
{
    return {};
}
