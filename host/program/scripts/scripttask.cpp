// SPDX-License-Identifier: MIT
#include "scripts/scripttask.h"

#include "console/console.h"
#include "console/diagnostics.h"
#include "console/progress.h"
#include "console/worker.h"
#include "scripts/scriptmessages.h"
#include "scripts/workcount.h"

#include <pythonforqt.h>
#include <quenzobase.h>
#include <quenzotool.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QThread>

#include <memory>

namespace {

struct ScriptTasks {
    Q_DECLARE_TR_FUNCTIONS(ScriptTask)
};

/** How the scripts of this process are heard and spoken to, one call at a time. */
struct Channels {
    WorkCount count;
    ScriptMessages messages;
};

// The interpreter learns of them once, when it starts, and may write to them until the process ends.
Channels& channelsOfTheProcess()
{
    static auto* const channels = new Channels;
    channels->count.begin();
    return *channels;
}

Failure tellWarnings(ScriptMessages& messages, Console& console)
{
    const ScriptMessages::Told told = messages.take();
    for (const QString& warning : told.warnings)
        console.warn(warning);
    return told.failure;
}

// Runs a worker that calls scripts; what kept it from beginning has been reported.
void runHeard(QThread& worker, Console& console, Channels& channels, const QString& doing,
              ScriptOutcome& outcome)
{
    // Taking away what a script has half done is its own business: of a merge it holds what was there before.
    const auto stop = [&worker, &console, &channels] {
        constexpr unsigned long patienceMs = 10000;
        if (channels.count.stop())
            worker.wait(patienceMs);
        tellWarnings(channels.messages, console);
    };
    outcome.hasInterpreter = QuenzoTool::initPythonEnv();
    if (outcome.hasInterpreter)
        outcome.began = runWorker(
            worker, console, [&channels, &doing] { return channels.count.progress(doing); }, stop);
    // A signal of the worker was queued before its end was.
    outcome.diagnostics = Diagnostics::takeAll();
    outcome.failure = tellWarnings(channels.messages, console);
}

// What a task is about, in the order of the names.
QString stepText(const QString& doing, const QVariantMap& parameters)
{
    QStringList words;
    for (auto parameter = parameters.cbegin(); parameter != parameters.cend(); ++parameter) {
        if (!parameter->toString().isEmpty())
            words.append(QStringLiteral("%1 '%2'").arg(parameter.key(), parameter->toString()));
    }
    return ScriptTasks::tr("%1: calling the script with %2").arg(doing, words.join(QStringLiteral(", ")));
}

} // namespace

ScriptOutcome runTask(Console& console, PYTHON_TOOL_OPERATE operate, const QVariantMap& parameters,
                      const QString& doing)
{
    ScriptOutcome outcome;
    console.step(stepText(doing, parameters));
    PythonToolThread thread;
    QObject::connect(&thread, &PythonToolThread::onTaskFinsih, &thread,
                     [&outcome](int, const QVariantMap* values, bool succeeded) {
                         outcome.succeeded = succeeded;
                         if (values != nullptr)
                             outcome.values = *values;
                     });
    thread.StartOperate(operate, parameters);
    Channels& channels = channelsOfTheProcess();
    runHeard(thread, console, channels, doing, outcome);
    return outcome;
}

ScriptOutcome runCall(Console& console, const ScriptCall& call, const QString& doing,
                      const std::function<void(PythonForQt&, ScriptOutcome&)>& read)
{
    ScriptOutcome outcome;
    console.step(ScriptTasks::tr("%1: calling %2 of %3").arg(doing, call.function, call.script));
    const std::unique_ptr<QThread> worker(QThread::create([&outcome, &call, &read] {
        PythonForQt python;
        python.callScript(QuenzoBase::getRunPath() + QStringLiteral("/../Script/") + call.script,
                          call.function, call.arguments, true);
        read(python, outcome);
    }));
    Channels& channels = channelsOfTheProcess();
    runHeard(*worker, console, channels, doing, outcome);
    return outcome;
}

ExitCode failTask(Console& console, const QString& what, const ScriptOutcome& outcome)
{
    if (!outcome.began)
        return ExitFailed;
    const Failure& told = outcome.failure;
    // The library's lines name files and lines of the scripts, which tell nothing to who uses them.
    const QStringList causes = told.message.isEmpty() ? outcome.diagnostics : QStringList(told.message);
    const QString hint = outcome.hasInterpreter
        ? told.hint
        : ScriptTasks::tr("where Python 2.7 is missing, scripts/dependencies.sh python installs it");
    console.error({told.code, what, causes, hint});
    return ExitFailed;
}

QString objectionToStream(const QString& path)
{
    if (path != QLatin1String("-"))
        return {};
    return ScriptTasks::tr("- stands for no file here; one of this name is ./-");
}

bool pathExists(Console& console, const QString& path)
{
    if (QFileInfo::exists(path))
        return true;
    console.error(
        {Failure::NotFound, ScriptTasks::tr("'%1' does not exist").arg(path), {}, objectionToStream(path)});
    return false;
}
