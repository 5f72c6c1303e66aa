// SPDX-License-Identifier: MIT
#include "scripts/toolrun.h"

#include "console/interruptguard.h"
#include "console/interruptreport.h"
#include "console/progress.h"
#include "console/spinner.h"
#include "scripts/toolchild.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace {

struct ToolRunText {
    Q_DECLARE_TR_FUNCTIONS(ToolRun)
};

} // namespace

ToolRun runTool(Console& console, const QString& program, const QStringList& words, const QString& doing,
                const std::function<void()>& tidy)
{
    ToolChild process;
    QEventLoop loop;
    QObject::connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    const InterruptReport report(console);
    const InterruptGuard guard([&process, &tidy] {
        process.end();
        tidy();
    });
    process.start(program, words);
    if (!process.waitForStarted(-1))
        return {false, false, {}, process.errorString()};
    const Spinner spinner(console, [&doing] { return Progress{doing}; });
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    if (process.isOverLimit())
        return {
            false, false, {}, ToolRunText::tr("it printed more than %1 bytes").arg(ToolChild::outputLimit)};
    if (process.exitStatus() != QProcess::NormalExit)
        return {false, false, {}, ToolRunText::tr("it crashed")};
    return {true, process.exitCode() == 0, QString::fromUtf8(process.output()),
            QString::fromUtf8(process.error()).trimmed()};
}
