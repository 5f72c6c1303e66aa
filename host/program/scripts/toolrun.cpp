// SPDX-License-Identifier: MIT
#include "scripts/toolrun.h"

#include "console/interruptguard.h"
#include "console/interruptreport.h"
#include "console/progress.h"
#include "console/spinner.h"

#include <QEventLoop>
#include <QProcess>

ToolRun runTool(Console& console, const QString& program, const QStringList& words, const QString& doing,
                const std::function<void()>& tidy)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    QEventLoop loop;
    QObject::connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    process.start(program, words);
    if (!process.waitForStarted(-1))
        return {false, {}, process.errorString()};
    const InterruptReport report(console);
    const InterruptGuard guard([&process, &tidy] {
        process.kill();
        process.waitForFinished();
        tidy();
    });
    const Spinner spinner(console, [&doing] { return Progress{doing}; });
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    return {process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError()).trimmed()};
}
