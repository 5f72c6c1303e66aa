// SPDX-License-Identifier: MIT
#include "scripts/toolrun.h"

#include "console/console.h"
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

// As a person would type it, more or less: a word with a blank stands in quotation marks.
QString lineOf(const QString& program, const QStringList& words)
{
    QString line = program;
    for (const QString& word : words)
        line +=
            QLatin1Char(' ') + (word.contains(QLatin1Char(' ')) ? QStringLiteral("\"%1\"").arg(word) : word);
    return line;
}

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
    console.step(ToolRunText::tr("running %1").arg(lineOf(program, words)));
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
