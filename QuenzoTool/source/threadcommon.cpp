// SPDX-License-Identifier: MIT
#include "threadcommon.h"

#include "quenzotool.h"
#include "trees/outputcut.h"

#include <QDir>
#include <QVariantMap>

namespace {

/** The folders that an operation is given. */
struct Folders {
    explicit Folders(const QVariant& param)
    {
        const QVariantMap map = param.toMap();
        const auto src = map.constFind(QStringLiteral("src"));
        const auto dest = map.constFind(QStringLiteral("dest"));
        given = src != map.constEnd() && dest != map.constEnd();
        if (given) {
            source = src->toString();
            target = dest->toString();
        }
    }

    bool given;
    QString source;
    QString target;
};

} // namespace

ThreadCommon::ThreadCommon(QObject* parent)
    : QThread(parent)
    , m_operate(static_cast<THREAD_OPERATE>(-1)) // a thread started without an operation does nothing
{
}

ThreadCommon::~ThreadCommon()
{
    m_published.load(std::memory_order_acquire);
}

bool ThreadCommon::StartOperate(THREAD_OPERATE operate, const QVariant& param)
{
    m_published.load(std::memory_order_acquire);
    m_operate = operate;
    m_param = param;
    return true;
}

const QVariant& ThreadCommon::getResult()
{
    m_published.load(std::memory_order_acquire);
    return m_result;
}

void ThreadCommon::run()
{
    switch (m_operate) {
    case OPERATE_COPY:
        execCopy();
        break;
    case OPERATE_CUT:
        execCut();
        break;
    case OPERATE_CUT_OUTPUT:
        execCutOutput();
        break;
    }
    m_published.store(true, std::memory_order_release);
}

void ThreadCommon::execCopy()
{
    const Folders folders(m_param);
    m_result = false;
    if (!folders.given)
        return;
    const QDir target(folders.target);
    if (!target.exists())
        QDir().mkpath(folders.target);
    m_result = QuenzoTool::copyDirectory(QDir(folders.source), target, true, false);
}

void ThreadCommon::execCut()
{
    const Folders folders(m_param);
    m_result =
        folders.given && QuenzoTool::copyDirectory(QDir(folders.source), QDir(folders.target), true, true);
}

void ThreadCommon::execCutOutput()
{
    const Folders folders(m_param);
    m_result = false;
    if (!folders.given)
        return;
    const QVariantMap map = m_param.toMap();
    const auto filter = map.constFind(QStringLiteral("filter"));
    if (filter != map.constEnd())
        m_filterList = filter->toString().split(QLatin1Char(','), Qt::KeepEmptyParts, Qt::CaseSensitive);
    m_outputDir = folders.target;
    m_result = cutForOutput(QDir(folders.source), QDir(folders.target), &m_filterList);
}

void ThreadCommon::execMigrateData()
{
    const Folders folders(m_param);
    m_result = folders.given && cutForOutput(QDir(folders.source), QDir(folders.target), nullptr);
}

bool ThreadCommon::cutForOutput(const QDir& fromDir, const QDir& toDir, QStringList* filterList)
{
    OutputCut cut(m_outputDir, m_exceptDir);
    const bool moved = cut.cut(fromDir, toDir, filterList);
    return cut.finish() && moved;
}

bool ThreadCommon::exceptCut(QString fromPath, QString toPath, QString /*exceptName*/)
{
    OutputCut cut(m_outputDir, m_exceptDir);
    const bool moved = cut.cutExcept(QDir(fromPath), QDir(toPath));
    return cut.finish() && moved;
}
