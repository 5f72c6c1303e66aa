// SPDX-License-Identifier: MIT
// A host without an application object: prints the paths it is told, runs a command and prints its output, or
// logs a number of entries.
//   basehost paths | basehost run COMMAND | basehost log TEXT COUNT
#include <quenzobase.h>
#include <quenzotool.h>

#include <cstdio>

int main(int argc, char* argv[])
{
    if (argc == 2) {
        std::printf("%s\n%s\n", qUtf8Printable(QuenzoBase::getRunPath()),
                    qUtf8Printable(QuenzoTool::getToolPath()));
        return 0;
    }
    if (argc == 3) {
        QString output;
        QString error;
        const bool finished = QuenzoTool::runCmdWaitFinish(QString::fromLocal8Bit(argv[2]), output, error);
        std::printf("%s", qUtf8Printable(output));
        return finished ? 0 : 1;
    }
    if (argc != 4)
        return 2;
    const int count = QString::fromLocal8Bit(argv[3]).toInt();
    for (int i = 0; i < count; ++i)
        QuenzoBase::Log(QString::fromLocal8Bit(argv[2]).arg(i));
    return 0;
}
