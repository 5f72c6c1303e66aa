// SPDX-License-Identifier: MIT
// What a host can see of the libraries, for a tool that reads layouts from what the compiler tells debuggers.
#include <dbhelper.h>
#include <installapk.h>
#include <pythonforqt.h>
#include <pythontoolthread.h>
#include <quenzobase.h>
#include <quenzotool.h>
#include <threadcommon.h>
#include <threadgenerateicon.h>

extern "C" __attribute__((visibility("default"))) void
seeInterface(QuenzoTool*, QuenzoBase*, PythonForQt*, PyThreadStateLock*, PythonToolThread*,
             PYTHON_TOOL_OPERATE*, ThreadCommon*, THREAD_OPERATE*, DBHelper*, DB_COMMAND*, ST_DB_COMMAND*,
             DBCommandEvent*, ThreadGenerateIcon*, ST_CHANNEL_ICON*, CInstallApk*)
{
}
