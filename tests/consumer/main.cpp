// SPDX-License-Identifier: MIT
#include <pythonforqt.h>
#include <pythontoolthread.h>
#include <quenzobase.h>
#include <quenzotool.h>

#include <cstdio>

int main()
{
    QuenzoBase::Log("the consumer runs");
    PythonForQt python;
    python.callScript(QuenzoBase::getRunPath() + "/../Script/hello.py", "hello", {"consumer", 3}, true);
    std::printf("%s\n", qPrintable(python.getResultAsString()));
    const PythonToolThread thread;
    std::printf("%s\n", thread.metaObject()->className());
    std::printf("%s\n", qPrintable(QuenzoTool::getDownloadFileName("host/app.apk?sign=1")));
    return 0;
}
