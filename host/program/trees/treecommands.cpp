// SPDX-License-Identifier: MIT
#include "command.h"
#include "console/console.h"
#include "console/worker.h"
#include "trees/treecount.h"
#include "trees/treeoperation.h"
#include "trees/treepaths.h"
#include "trees/treeprogress.h"

#include <quenzotool.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QLoggingCategory>
#include <QThread>

#include <cerrno>
#include <memory>
#include <unistd.h>

namespace {

struct TreeCommands {
    Q_DECLARE_TR_FUNCTIONS(TreeCommands)
};

QString summaryOf(const TreeCount& count)
{
    return TreeCommands::tr("files: %1, bytes: %2")
        .arg(QLocale().toString(count.files), QLocale().toString(count.bytes));
}

void setCount(Console& console, const TreeCount& count)
{
    console.set(QStringLiteral("files"), count.files);
    console.set(QStringLiteral("bytes"), count.bytes);
}

ExitCode fail(Console& console, const QString& error)
{
    console.error(error);
    return ExitFailed;
}

ExitCode perform(THREAD_OPERATE operate, const QCommandLineParser& parser, Console& console)
{
    const QStringList arguments = parser.positionalArguments();
    const TreePaths paths(arguments.at(1), arguments.at(2));
    console.set(QStringLiteral("source"), paths.source);
    console.set(QStringLiteral("dest"), paths.target);
    const QString objection = paths.objection(operate);
    if (!objection.isEmpty())
        return fail(console, objection);

    QStringList left;
    if (operate == OPERATE_CUT_OUTPUT && parser.isSet(QStringLiteral("leave")))
        left = parser.value(QStringLiteral("leave")).split(QLatin1Char(','));
    TreeOperation operation(operate, paths, left);
    const bool done = operation.run(console);
    const TreeCount handled = operation.handled();
    if (done || operate != OPERATE_COPY)
        setCount(console, handled);
    if (!done)
        return ExitFailed;
    const QString text =
        operate == OPERATE_COPY ? TreeCommands::tr("Copied to %1: %2") : TreeCommands::tr("Moved to %1: %2");
    console.print(text.arg(Console::shown(paths.target), summaryOf(handled)));
    return ExitDone;
}

// Removes what the library would follow out of the tree to change rights there: links, and files that have
// other names, too. Counts the tree; returns an error, for which nothing more may be done.
QString removeTiesToOutside(const TreeScope& tree, TreeCount& count)
{
    QString error;
    tree.walk([&](const WalkedEntry& entry) {
        count.add(entry);
        const bool isTie = entry.isLink || (!entry.isFolder() && entry.status.st_nlink > 1);
        const QByteArray path = tree.top + '/' + entry.path;
        if (!isTie || unlink(path.constData()) == 0 || errno == ENOENT)
            return TreeScope::GoOn;
        const QString reason = qt_error_string(errno);
        const QString text = entry.isLink
            ? TreeCommands::tr("the link '%1' could not be removed (%2); it and what comes after it stay")
            : TreeCommands::tr(
                "'%1', which has other names, could not be removed (%2); it and what comes after "
                "it stay");
        error = text.arg(QFile::decodeName(path), reason);
        return TreeScope::Stop;
    });
    return error;
}

// False when it could not even begin.
bool removeTree(const TreeScope& tree, Console& console)
{
    TreeProgress progress(tree);
    const auto isGone = [&tree](const QByteArray& path) {
        struct stat status { };
        return lstat(QByteArray(tree.top + '/' + path).constData(), &status) != 0;
    };
    // The message of every single file is for those who look for an error.
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, false);
    const std::unique_ptr<QThread> worker(QThread::create([&tree] {
        QDir folder(QFile::decodeName(tree.top));
        QuenzoTool::removeRecursively(folder);
    }));
    const bool began = runWorker(*worker, console, [&] {
        const QLocale locale;
        return TreeCommands::tr("files: %1 of %2")
            .arg(locale.toString(progress.done(isGone).files), locale.toString(progress.all().files));
    });
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
    return began;
}

// What is left of a tree: something that keeps the rest.
QString remainder(const TreeScope& tree)
{
    QByteArray path = tree.top;
    tree.walk([&](const WalkedEntry& entry) {
        path = tree.top + '/' + entry.path;
        return entry.isFolder() ? TreeScope::GoOn : TreeScope::Stop;
    });
    return QFile::decodeName(path);
}

ExitCode removeFolder(const QCommandLineParser& parser, Console& console)
{
    const RemovalPath path(parser.positionalArguments().at(1));
    console.set(QStringLiteral("folder"), path.folder);
    const QString objection = path.objection();
    if (!objection.isEmpty())
        return fail(console, objection);

    const TreeScope tree{QFile::encodeName(path.realFolder), TreeScope::Kept};
    console.showProgress(TreeCommands::tr("counting"));
    TreeCount gone;
    const QString tie = removeTiesToOutside(tree, gone);
    if (!tie.isEmpty())
        return fail(console, tie);
    if (!removeTree(tree, console))
        return ExitFailed;
    gone -= TreeCount::of(tree);
    setCount(console, gone);
    if (QDir(path.realFolder).exists()) {
        return fail(console,
                    TreeCommands::tr("not everything in '%1' could be removed: there is still '%2'")
                        .arg(path.folder, remainder(tree)));
    }
    console.print(TreeCommands::tr("Removed %1: %2").arg(Console::shown(path.folder), summaryOf(gone)));
    return ExitDone;
}

Command treeCommand(const QString& name, const QString& summary, THREAD_OPERATE operate)
{
    const Argument source{QStringLiteral("SRC"), TreeCommands::tr("The folder whose content is meant."),
                          Argument::Once};
    const Argument target{QStringLiteral("DEST"),
                          TreeCommands::tr("The folder for it; existing files are replaced."),
                          Argument::Once};
    return {
        name, summary, {source, target}, {}, [operate](const QCommandLineParser& parser, Console& console) {
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
         {},
         removeFolder},
    };
}
