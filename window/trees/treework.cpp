// SPDX-License-Identifier: MIT
#include "window/trees/treework.h"

#include "trees/treepaths.h"
#include "trees/treeprogress.h"
#include "trees/treerightskeeper.h"
#include "window/background.h"

#include <QDir>
#include <QFile>

#include <optional>

struct TreeWork::Watch {
    Watch(const TreeWish& wish, const TreePaths& paths)
        : scope(scopeOf(wish, paths))
        , progress(scope)
        , arrival({QFile::encodeName(paths.realTarget)})
    {
        if (wish.operate == OPERATE_CUT_OUTPUT)
            rights.emplace(scope.top);
    }

    static TreeScope scopeOf(const TreeWish& wish, const TreePaths& paths)
    {
        TreeScope scope{QFile::encodeName(paths.realSource)};
        scope.emptied = wish.operate != OPERATE_COPY;
        if (paths.isNested())
            scope.apart = identityOf(paths.realTarget);
        if (wish.operate == OPERATE_CUT_OUTPUT)
            scope.left = wish.left;
        return scope;
    }

    qint64 bytesDone()
    {
        return progress.done([this](const QByteArray& path) { return arrival.has(path); }).bytes
            + arrival.unnamedBytes();
    }

    const TreeScope scope;
    TreeProgress progress;
    const TreeArrival arrival;
    std::optional<TreeRightsKeeper> rights; // folders that stay in a cut for output are locked by it
};

TreeWork::TreeWork(QObject* parent)
    : QObject(parent)
{
    constexpr int intervalMs = 200;
    m_timer.setInterval(intervalMs);
    connect(&m_timer, &QTimer::timeout, this, &TreeWork::look);
}

TreeWork::~TreeWork()
{
    if (m_worker && m_worker->isRunning()) {
        m_worker->requestInterruption();
        m_worker->wait();
    }
}

void TreeWork::start(const TreeWish& wish)
{
    m_wish = wish;
    m_isRunning = true;
    m_isStopping = false;
    Q_EMIT progressed(0, -1);
    const auto prepare = [wish] {
        const TreePaths paths(wish.source, wish.target);
        // Made here, so that what a cut for output does to its rights can be undone.
        if (paths.isNested())
            QDir().mkdir(paths.realTarget);
        return std::make_shared<Watch>(wish, paths);
    };
    inBackground(this, prepare, [this](const std::shared_ptr<Watch>& watch) { run(watch); });
}

void TreeWork::run(const std::shared_ptr<Watch>& watch)
{
    m_watch = watch;
    m_worker = std::make_unique<ThreadCommon>();
    const TreePaths paths(m_wish.source, m_wish.target);
    QVariantMap folders{{QStringLiteral("src"), paths.realSource},
                        {QStringLiteral("dest"), paths.realTarget}};
    if (!m_wish.left.isEmpty())
        folders.insert(QStringLiteral("filter"), m_wish.left.join(QLatin1Char(',')));
    m_worker->StartOperate(m_wish.operate, folders);
    connect(m_worker.get(), &QThread::finished, this, &TreeWork::finish);
    m_worker->start();
    if (m_isStopping)
        m_worker->requestInterruption();
    m_timer.start();
}

void TreeWork::stop()
{
    m_isStopping = true;
    if (m_worker)
        m_worker->requestInterruption();
}

void TreeWork::look()
{
    if (m_isLooking)
        return;
    m_isLooking = true;
    inBackground(
        this, [watch = m_watch] { return watch->bytesDone(); },
        [this, watch = m_watch](qint64 done) {
            m_isLooking = false;
            if (m_isRunning && watch == m_watch)
                Q_EMIT progressed(done, watch->progress.all().bytes);
        });
}

void TreeWork::finish()
{
    m_timer.stop();
    const bool done = m_worker->getResult().toBool();
    m_worker.release()->deleteLater();
    if (m_watch->rights)
        m_watch->rights->restore();
    m_isRunning = false;
    Q_EMIT ended(done);
}
