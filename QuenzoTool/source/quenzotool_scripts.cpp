// SPDX-License-Identifier: MIT
#include "quenzotool.h"

#include "pythonforqt.h"

bool QuenzoTool::initPythonEnv()
{
    return PythonForQt::initPythonEnv();
}
