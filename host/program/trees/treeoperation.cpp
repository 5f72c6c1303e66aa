// SPDX-License-Identifier: MIT
#include "trees/treeoperation.h"

#include "console/console.h"
#include "console/diagnostics.h"
#include "console/interruptguard.h"
#include "console/progress.h"
#include "console/worker.h"
#include "trees/treeprogress.h"
#include "trees/treerightskeeper.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>

#include <unistd.h>

namespace {

struct TreeOperations {
    Q_DECLARE_TR_FUNCTIONS(TreeOperation)
};

Progress progressOf(THREAD_OPERATE operate, const TreeCount& done, const TreeCount& all)
{
    const QLocale locale;
    const QString doing =
        operate == OPERATE_COPY ? TreeOperations::tr("copying") : TreeOperations::tr("moving");
    const QString files =
        TreeOperations::tr("%1 of %2 files").arg(locale.toString(done.files), locale.toString(all.files));
    return {doing, Progress::Bytes, done.bytes, all.bytes, files};
}

// Whether something is a folder, or one of those above it.
bool isLineOf(const FileIdentity& one, QByteArray folder)
{
    while (!(identityOf(QFile::decodeName(folder)) == one)) {
        if (folder.size() <= 1)
            return false;
        folder.truncate(qMax(1, folder.lastIndexOf('/')));
    }
    return true;
}

// A move into the source passes over failures before the one that ends it.
QStringList withTheEndingFirst(QStringList failures)
{
    if (!failures.isEmpty())
        failures.prepend(failures.takeLast());
    return failures;
}

QStringList shortened(const QStringList& causes, bool tellsAll)
{
    if (tellsAll)
        return causes;
    constexpr int most = 5;
    QStringList lines = causes.mid(0, most);
    if (causes.size() > most)
        lines.append(TreeOperations::tr("and %1 more like these").arg(causes.size() - most));
    return lines;
}

} // namespace

TreeOperation::TreeOperation(THREAD_OPERATE operate, const TreePaths& paths, const QStringList& left)
    : m_operate(operate)
    , m_paths(paths)
    , m_left(left)
    , m_target(QFile::encodeName(paths.realTarget))
    , m_scope{QFile::encodeName(paths.realSource)}
{
    m_scope.left = left;
    m_scope.emptied = operate != OPERATE_COPY;
}

TreeOperation::~TreeOperation() = default;

// Learns of the links to folders in the tree, and returns one that leads to the target, or to what holds it,
// if there is any: what comes to the target would belong to the tree, too, without an end.
QByteArray TreeOperation::findFolderLinks()
{
    QByteArray found;
    TreeScope scope = m_scope;
    scope.filesToo = false;
    scope.walk([&](const WalkedEntry& entry) {
        if (!entry.isLink || !entry.isFolder())
            return TreeScope::GoOn;
        m_folderLinks.insert(entry.path);
        if (!isLineOf(FileIdentity(entry.status), m_target))
            return TreeScope::GoOn;
        found = scope.top + '/' + entry.path;
        return TreeScope::Stop;
    });
    return found;
}

bool TreeOperation::run(Console& console)
{
    m_tellsAll = console.verbose();
    console.step(TreeOperations::tr("from '%1' to '%2'").arg(m_paths.realSource, m_paths.realTarget));
    console.showProgress({TreeOperations::tr("counting")});
    const QByteArray endless = findFolderLinks();
    if (!endless.isEmpty()) {
        console.error(TreeOperations::tr(
                          "'%1' is a link to the target, or to a folder that holds it; nothing was touched")
                          .arg(QFile::decodeName(endless)));
        return false;
    }
    // Made here, so that what the cut does to its rights can be undone.
    if (m_paths.isNested() && !QDir(m_paths.realTarget).exists() && !QDir().mkdir(m_paths.realTarget)) {
        console.error(TreeOperations::tr("the folder '%1' could not be made").arg(m_paths.target));
        return false;
    }
    struct stat status { };
    if (m_paths.isNested() && stat(m_target.constData(), &status) == 0)
        m_scope.apart = FileIdentity(status);
    m_progress = std::make_unique<TreeProgress>(m_scope);
    m_arrival = std::make_unique<TreeArrival>(targets());
    const bool done = m_operate == OPERATE_CUT_OUTPUT ? runOutput(console) : start(console, {});
    return done || onlyLinksAreLeft() || fail(console);
}

// The library stops at a link that leads nowhere, even to one whose folder it has just moved.
bool TreeOperation::onlyLinksAreLeft() const
{
    return m_started && m_operate != OPERATE_COPY && m_scope.walk([this](const WalkedEntry& entry) {
        return entry.isLink && m_folderLinks.contains(entry.path) ? TreeScope::PassBy : TreeScope::Stop;
    });
}

bool TreeOperation::start(Console& console, const QStringList& left)
{
    QVariantMap map{{QStringLiteral("src"), m_paths.realSource},
                    {QStringLiteral("dest"), m_paths.realTarget}};
    if (!left.isEmpty())
        map.insert(QStringLiteral("filter"), left.join(QLatin1Char(',')));
    Diagnostics::takeAll();
    const int before = Diagnostics::steps().size();
    ThreadCommon worker;
    worker.StartOperate(m_operate, map);
    m_started = runWorker(worker, console, [this] {
        TreeCount done = m_progress->done([this](const QByteArray& path) { return m_arrival->has(path); });
        done.bytes += m_arrival->unnamedBytes();
        return progressOf(m_operate, done, m_progress->all());
    });
    m_failures = Diagnostics::takeAll();
    m_leftBehind = Diagnostics::steps().mid(before);
    return m_started && worker.getResult().toBool();
}

bool TreeOperation::runOutput(Console& console)
{
    const TreeRightsKeeper rights(m_scope.top);
    const InterruptGuard guard([&rights] { rights.restore(); });
    const bool done = start(console, m_left) || finishOutput(console, rights);
    rights.restore();
    return done;
}

// The rights that the cut gives an output folder inside its source lock a plain user out of it, once it has
// been passed, and what comes after it is not moved. That is moved when the output folder itself is left
// behind.
bool TreeOperation::finishOutput(Console& console, const TreeRightsKeeper& rights)
{
    const bool isLockedOut = m_paths.isNested() && access(m_target.constData(), W_OK | X_OK) != 0;
    const QString way = m_paths.realTarget.mid(m_paths.realSource.size() + 1);
    const QString first = way.section(QLatin1Char('/'), 0, 0);
    if (!isLockedOut || first.contains(QLatin1Char(',')))
        return false;
    rights.restore();
    return start(console, m_left + QStringList(first)) && TreeCount::of(m_scope).files == 0;
}

QStringList TreeOperation::causes() const
{
    return shortened(m_failures + m_leftBehind, m_tellsAll);
}

bool TreeOperation::fail(Console& console) const
{
    if (!m_started)
        return false;
    const QStringList lines = shortened(withTheEndingFirst(m_failures) + m_leftBehind, m_tellsAll);
    if (lines.isEmpty())
        console.error(TreeOperations::tr("not everything has come to '%1'; the rest is in '%2'")
                          .arg(m_paths.target, m_paths.source));
    else
        console.error(lines.first(), lines.mid(1));
    return false;
}

TreeCount TreeOperation::handled() const
{
    if (!m_started)
        return {};
    TreeCount count = m_progress->all();
    if (m_operate != OPERATE_COPY)
        count -= left();
    return count;
}

// A link to a folder stays in a move; it may lead nowhere by then, since that folder was moved, too.
TreeCount TreeOperation::left() const
{
    TreeCount count;
    m_scope.walk([&](const WalkedEntry& entry) {
        if (!entry.isLink || !m_folderLinks.contains(entry.path))
            count.add(entry);
        return TreeScope::GoOn;
    });
    return count;
}

// What a cut for output has moved into a target inside its source may move on within it.
QVector<QByteArray> TreeOperation::targets() const
{
    QVector<QByteArray> paths{m_target};
    if (m_paths.isNested())
        paths.append(m_target + m_target.mid(m_scope.top.size()));
    return paths;
}
