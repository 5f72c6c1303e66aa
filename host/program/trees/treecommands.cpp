// SPDX-License-Identifier: MIT
#include "command.h"
#include "console/console.h"
#include "console/figures.h"
#include "console/progress.h"
#include "console/worker.h"
#include "trees/treecount.h"
#include "trees/treeoperation.h"
#include "trees/treepaths.h"
#include "trees/treeplan.h"
#include "trees/treeremoval.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QThread>

#include <memory>

namespace {

struct TreeCommands {
    Q_DECLARE_TR_FUNCTIONS(TreeCommands)
};

const QString dryRunOption = QStringLiteral("dry-run");
const QString yesOption = QStringLiteral("yes");

QString summaryOf(const TreeCount& count)
{
    return TreeCommands::tr("files: %1, size: %2")
        .arg(QLocale().toString(count.files), sizeText(count.bytes));
}

void setCount(Console& console, const TreeCount& count)
{
    console.set(QStringLiteral("files"), count.files);
    console.set(QStringLiteral("bytes"), count.bytes);
}

// Nothing was touched.
ExitCode object(Console& console, const QString& objection, const QString& folder)
{
    console.error({QFileInfo::exists(folder) ? Failure::Refused : Failure::NotFound, objection});
    return ExitFailed;
}

ExitCode tellPlan(const TreeScope& scope, const QByteArray& target, Console& console)
{
    const TreeCount count = reportPlan(scope, target, console);
    setCount(console, count);
    QString text = scope.emptied ? TreeCommands::tr("would move %1") : TreeCommands::tr("would copy %1");
    if (target.isEmpty())
        text = TreeCommands::tr("would remove %1");
    console.say(text.arg(summaryOf(count)));
    return ExitDone;
}

ExitCode perform(THREAD_OPERATE operate, const QCommandLineParser& parser, Console& console)
{
    const QStringList arguments = parser.positionalArguments();
    const TreePaths paths(arguments.at(1), arguments.at(2));
    console.set(QStringLiteral("source"), paths.source);
    console.set(QStringLiteral("dest"), paths.target);
    const QString objection = paths.objection(operate);
    if (!objection.isEmpty())
        return object(console, objection, paths.realSource);

    QStringList left;
    if (operate == OPERATE_CUT_OUTPUT && parser.isSet(QStringLiteral("leave")))
        left = parser.value(QStringLiteral("leave")).split(QLatin1Char(','));
    if (parser.isSet(dryRunOption)) {
        TreeScope scope{QFile::encodeName(paths.realSource)};
        scope.left = left;
        scope.emptied = operate != OPERATE_COPY;
        if (paths.isNested())
            scope.apart = identityOf(paths.realTarget);
        return tellPlan(scope, QFile::encodeName(paths.realTarget), console);
    }
    TreeOperation operation(operate, paths, left);
    const bool done = operation.run(console);
    const TreeCount handled = operation.handled();
    if (done || operate != OPERATE_COPY)
        setCount(console, handled);
    if (!done)
        return ExitFailed;
    // The library removes what it has copied as well as it can, and its result says nothing of it.
    const TreeCount stayed = operate == OPERATE_COPY ? TreeCount() : operation.left();
    if (stayed.files > 0) {
        console.error(TreeCommands::tr("everything was copied to '%1', but files are still in '%2': %3")
                          .arg(paths.target, paths.source, QLocale().toString(stayed.files)),
                      operation.causes());
        return ExitFailed;
    }
    const QString text =
        operate == OPERATE_COPY ? TreeCommands::tr("Copied to %1: %2") : TreeCommands::tr("Moved to %1: %2");
    console.say(text.arg(Console::shown(paths.target), summaryOf(handled)));
    return ExitDone;
}

ExitCode removeTree(const RemovalPath& path, const TreeCount& all, Console& console)
{
    TreeRemoval removal(QFile::encodeName(path.realFolder));
    if (console.verbose())
        removal.onFolderGone = [&console](const QString& folder) {
            console.step(TreeCommands::tr("removed the folder '%1'").arg(folder));
        };
    const std::unique_ptr<QThread> worker(QThread::create([&removal] { removal.run(); }));
    const bool began = runWorker(*worker, console, [&] {
        return Progress{TreeCommands::tr("removing"), Progress::Files, removal.filesGone(), all.files};
    });
    if (!began)
        return ExitFailed;
    setCount(console, removal.gone());
    if (!removal.error().isEmpty()) {
        console.error(removal.error());
        return ExitFailed;
    }
    console.say(
        TreeCommands::tr("Removed %1: %2").arg(Console::shown(path.folder), summaryOf(removal.gone())));
    return ExitDone;
}

ExitCode removeFolder(const QCommandLineParser& parser, Console& console)
{
    const RemovalPath path(parser.positionalArguments().at(1));
    console.set(QStringLiteral("folder"), path.folder);
    const QString objection = path.objection();
    if (!objection.isEmpty())
        return object(console, objection, path.realFolder);

    const TreeScope tree{QFile::encodeName(path.realFolder), TreeScope::Kept};
    if (parser.isSet(dryRunOption))
        return tellPlan(tree, {}, console);
    if (!parser.isSet(yesOption) && !Console::isInteractive()) {
        console.error(
            {Failure::Usage,
             TreeCommands::tr("this removes '%1' with all in it: --yes is needed where nobody can be asked")
                 .arg(path.folder)});
        return ExitUsage;
    }
    console.showProgress({TreeCommands::tr("counting")});
    const TreeCount all = TreeCount::of(tree);
    const QString question = TreeCommands::tr("Remove '%1' with all in it (%2)? [y/N]");
    if (!parser.isSet(yesOption) && !console.confirms(question.arg(path.folder, summaryOf(all))))
        return ExitFailed;
    return removeTree(path, all, console);
}

QCommandLineOption dryRun()
{
    return {{QStringLiteral("n"), dryRunOption},
            TreeCommands::tr("Tells file by file what would be done, and does nothing.")};
}

Command treeCommand(const QString& name, const QString& summary, THREAD_OPERATE operate)
{
    const Argument source{QStringLiteral("SRC"), TreeCommands::tr("The folder whose content is meant."),
                          Argument::Once};
    const Argument target{QStringLiteral("DEST"),
                          TreeCommands::tr("The folder for it; existing files are replaced."),
                          Argument::Once};
    return {name,
            summary,
            {source, target},
            {dryRun()},
            [operate](const QCommandLineParser& parser, Console& console) {
                return perform(operate, parser, console);
            }};
}

} // namespace

QVector<Command> treeCommands()
{
    Command output =
        treeCommand(QStringLiteral("output"),
                    TreeCommands::tr("moves a folder's content into an output folder, which may lie inside"),
                    OPERATE_CUT_OUTPUT);
    output.options.append({QStringLiteral("leave"),
                           TreeCommands::tr("Names directly in SRC that stay, in any case: Log,build"),
                           QStringLiteral("NAME,...")});
    const Argument folder{QStringLiteral("FOLDER"), TreeCommands::tr("The folder."), Argument::Once};
    return {
        treeCommand(QStringLiteral("copy"), TreeCommands::tr("copies a folder's content into another folder"),
                    OPERATE_COPY),
        treeCommand(QStringLiteral("cut"), TreeCommands::tr("moves a folder's content into another folder"),
                    OPERATE_CUT),
        output,
        {QStringLiteral("remove"),
         TreeCommands::tr("removes a folder with everything in it, read-only files too"),
         {folder},
         {dryRun(),
          {{QStringLiteral("y"), yesOption},
           TreeCommands::tr("Does not ask; needed where there is no terminal.")}},
         removeFolder},
    };
}
