// SPDX-License-Identifier: MIT
#include "command.h"
#include "console.h"
#include "treecount.h"
#include "treerightskeeper.h"
#include "worker.h"

#include <quenzobase.h>
#include <quenzotool.h>
#include <threadcommon.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QLoggingCategory>
#include <QThread>

#include <memory>

namespace {

struct TreeCommands {
    Q_DECLARE_TR_FUNCTIONS(TreeCommands)
};

struct Paths {
    QString source;
    QString target;
};

QString absolute(const QString& path)
{
    // Joined by hand: Qt takes a leading colon for the name of a built-in resource.
    return QDir::cleanPath(path.startsWith(QLatin1Char('/')) ? path
                                                             : QDir::currentPath() + QLatin1Char('/') + path);
}

// Where a folder that need not exist yet really is.
QString real(const QString& path)
{
    const QFileInfo info(path);
    if (info.exists())
        return info.canonicalFilePath();
    return QDir::cleanPath(real(info.path()) + QLatin1Char('/') + info.fileName());
}

bool isInside(const QString& inner, const QString& outer)
{
    const QString beginning = outer.endsWith(QLatin1Char('/')) ? outer : outer + QLatin1Char('/');
    return inner.startsWith(beginning);
}

QString summaryOf(const TreeCount& count)
{
    return TreeCommands::tr("%1 files, %2")
        .arg(QLocale().toString(count.files), QLocale().formattedDataSize(count.bytes));
}

// What speaks against the operation before anything is touched; empty if nothing does.
QString objection(const Paths& paths, THREAD_OPERATE operate)
{
    const QFileInfo source(paths.source);
    const QFileInfo target(paths.target);
    if (!source.exists())
        return TreeCommands::tr("there is no folder '%1'").arg(paths.source);
    if (!source.isDir())
        return TreeCommands::tr("'%1' is not a folder").arg(paths.source);
    if (!source.isReadable() || !source.isExecutable())
        return TreeCommands::tr("the folder '%1' cannot be read").arg(paths.source);
    if (target.exists() && !target.isDir())
        return TreeCommands::tr("'%1' is not a folder").arg(paths.target);
    if (target.exists() && !target.isWritable())
        return TreeCommands::tr("the folder '%1' cannot be written to").arg(paths.target);
    if (operate != OPERATE_COPY && !target.exists() && !QFileInfo(target.path()).isDir())
        return TreeCommands::tr("the folder '%1', in which '%2' is to be made, does not exist")
            .arg(target.path(), target.fileName());
    if (real(paths.source) == real(paths.target))
        return TreeCommands::tr("'%1' and '%2' are the same folder").arg(paths.source, paths.target);
    if (operate != OPERATE_CUT_OUTPUT && isInside(real(paths.target), real(paths.source)))
        return TreeCommands::tr("'%1' is inside '%2'").arg(paths.target, paths.source);
    return {};
}

/** What the operation writes to the tool's log, where it tells which file could not be copied. */
class LogReader {
public:
    LogReader()
        : m_file(QuenzoBase::getRunPath() + QStringLiteral("/../log/quenzotool.log"))
        , m_before(m_file.size())
    {
    }

    /** The last failed copy since then, in words; empty when there is none. */
    QString failedCopy()
    {
        if (!m_file.open(QIODevice::ReadOnly) || !m_file.seek(m_before))
            return {};
        const QString text = QString::fromUtf8(m_file.readAll());
        const QString opening = QStringLiteral("Copy Fail:\r\nSrc:");
        const QString middle = QStringLiteral("\r\nDest:");
        const int from = text.lastIndexOf(opening);
        const int to = text.indexOf(middle, from);
        const int end = text.indexOf(QStringLiteral("\r\n"), to + middle.size());
        if (from < 0 || to < 0 || end < 0)
            return {};
        return TreeCommands::tr("'%1' could not be copied to '%2'")
            .arg(text.mid(from + opening.size(), to - from - opening.size()),
                 text.mid(to + middle.size(), end - to - middle.size()));
    }

private:
    QFile m_file;
    const qint64 m_before;
};

// The first entry that is in the source and not as large in the target. Nothing is logged by a copy or a cut.
QString firstMissing(const Paths& paths)
{
    QDirIterator walk(paths.source, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString entry = walk.next();
        const QFileInfo info = walk.fileInfo();
        const QFileInfo copied(paths.target + entry.mid(paths.source.size()));
        if (info.isDir()) {
            if (!info.isReadable() || !info.isExecutable())
                return TreeCommands::tr("the folder '%1' cannot be read").arg(entry);
            continue;
        }
        if (info.isSymLink() && !info.exists())
            return TreeCommands::tr("the link '%1' leads nowhere").arg(entry);
        if (!info.isFile())
            return TreeCommands::tr("'%1' is neither a file nor a folder").arg(entry);
        if (!info.isReadable())
            return TreeCommands::tr("the file '%1' cannot be read").arg(entry);
        if (!copied.exists() || copied.size() != info.size())
            return TreeCommands::tr("'%1' could not be copied to '%2'").arg(entry, copied.filePath());
    }
    return TreeCommands::tr("not everything could be copied to '%1'").arg(paths.target);
}

ExitCode perform(THREAD_OPERATE operate, const QCommandLineParser& parser, Console& console)
{
    const QStringList arguments = parser.positionalArguments();
    const Paths paths{absolute(arguments.at(1)), absolute(arguments.at(2))};
    console.set(QStringLiteral("source"), paths.source);
    console.set(QStringLiteral("dest"), paths.target);
    const QString against = objection(paths, operate);
    if (!against.isEmpty()) {
        console.error(against);
        return ExitFailed;
    }

    QVariantMap map{{QStringLiteral("src"), paths.source}, {QStringLiteral("dest"), paths.target}};
    if (operate == OPERATE_CUT_OUTPUT && parser.isSet(QStringLiteral("leave")))
        map.insert(QStringLiteral("filter"), parser.value(QStringLiteral("leave")));
    const bool isOutput = operate == OPERATE_CUT_OUTPUT;
    const QString apart = isOutput ? paths.target : QString();
    const TreeCount before = TreeCount::of(paths.source, apart);
    const std::unique_ptr<TreeRightsKeeper> rights =
        isOutput ? std::make_unique<TreeRightsKeeper>(paths.source) : nullptr;
    LogReader log;

    ThreadCommon worker;
    TreeWatch watch(paths.target);
    worker.StartOperate(operate, map);
    const TreeCount there = TreeCount::of(paths.target, {});
    runWorker(worker, console, [&] {
        TreeCount arrived = watch.seen();
        arrived -= there;
        return TreeCommands::tr("%1 of %2").arg(summaryOf(arrived), summaryOf(before));
    });
    if (rights)
        rights->restore();

    const bool done = worker.getResult().toBool();
    TreeCount moved = before;
    if (operate != OPERATE_COPY)
        moved -= TreeCount::of(paths.source, apart);
    if (done || operate != OPERATE_COPY) {
        console.set(QStringLiteral("files"), moved.files);
        console.set(QStringLiteral("bytes"), moved.bytes);
    }
    if (!done) {
        const QString logged = log.failedCopy();
        console.error(logged.isEmpty() ? firstMissing(paths) : logged);
        return ExitFailed;
    }
    const QString text =
        operate == OPERATE_COPY ? TreeCommands::tr("Copied %1 to %2") : TreeCommands::tr("Moved %1 to %2");
    console.print(text.arg(summaryOf(moved), Console::shown(paths.target)));
    return ExitDone;
}

// What the library's way of removing would change outside: links are followed before they are removed.
void removeLinks(const QString& path)
{
    QStringList links;
    QDirIterator walk(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString entry = walk.next();
        if (walk.fileInfo().isSymLink())
            links.append(entry);
    }
    for (const QString& link : qAsConst(links))
        QFile::remove(link);
}

QString objectionToRemoval(const QString& path)
{
    const QFileInfo info(path);
    if (info.isSymLink())
        return TreeCommands::tr("'%1' is a link; name the folder that it leads to").arg(path);
    if (!info.exists())
        return TreeCommands::tr("there is no folder '%1'").arg(path);
    if (!info.isDir())
        return TreeCommands::tr("'%1' is not a folder").arg(path);
    const QString current = QDir(QDir::currentPath()).canonicalPath();
    if (info.isRoot() || current == real(path) || isInside(current, real(path)))
        return TreeCommands::tr("'%1' holds the current folder and is not removed").arg(path);
    return {};
}

ExitCode removeFolder(const QCommandLineParser& parser, Console& console)
{
    const QString path = absolute(parser.positionalArguments().at(1));
    console.set(QStringLiteral("folder"), path);
    const QString against = objectionToRemoval(path);
    if (!against.isEmpty()) {
        console.error(against);
        return ExitFailed;
    }
    const TreeCount before = TreeCount::of(path, {});
    TreeWatch watch(path);
    bool removed = false;
    // The message of every single file is for those who look for an error.
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, false);
    const std::unique_ptr<QThread> worker(QThread::create([&] {
        removeLinks(path);
        QDir folder(path);
        removed = QuenzoTool::removeRecursively(folder);
    }));
    runWorker(*worker, console, [&] { return TreeCommands::tr("%1 left").arg(summaryOf(watch.seen())); });
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);

    TreeCount gone = before;
    gone -= TreeCount::of(path, {});
    console.set(QStringLiteral("files"), gone.files);
    console.set(QStringLiteral("bytes"), gone.bytes);
    if (!removed) {
        console.error(TreeCommands::tr("not everything in '%1' could be removed").arg(path));
        return ExitFailed;
    }
    console.print(TreeCommands::tr("Removed %1: %2").arg(Console::shown(path), summaryOf(gone)));
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
