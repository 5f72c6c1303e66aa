// SPDX-License-Identifier: MIT
#include "treeruns.h"

#include "treefiles.h"

#include <quenzotool.h>
#include <threadcommon.h>

#include <QDir>
#include <QtTest>

#include <sys/mount.h>

bool TreeRuns::transfer(const QByteArray& source, const QByteArray& target, Manner manner)
{
    const QString from = QFile::decodeName(source);
    const QString to = QFile::decodeName(target);
    if (manner != CutForOutput)
        return QuenzoTool::copyDirectory(QDir(from), QDir(to), true, manner == Move);
    ThreadCommon thread;
    thread.StartOperate(OPERATE_CUT_OUTPUT,
                        QVariantMap{{QStringLiteral("src"), from}, {QStringLiteral("dest"), to}});
    thread.start();
    thread.wait();
    return thread.getResult() == QVariant(true);
}

void TreeRuns::addEveryWay()
{
    QTest::addColumn<TreeRuns::Manner>("manner");
    for (const auto& [manner, what] : everyWay)
        QTest::newRow(what) << manner;
}

void TreeRuns::addEveryMove()
{
    QTest::addColumn<TreeRuns::Manner>("manner");
    QTest::newRow("move") << Move;
    QTest::newRow("output") << CutForOutput;
}

void TreeRuns::addHardNames()
{
    QTest::addColumn<QByteArray>("name");
    const auto names = TreeFiles::hardNames();
    for (const auto& [what, name] : names)
        QTest::newRow(what.constData()) << name;
}

TreeRuns::Mount::Mount(const QByteArray& place, bool mounted)
    : isMounted(mounted)
    , m_place(place)
{
}

TreeRuns::Mount TreeRuns::Mount::smallDisk(const QByteArray& place, const char* size)
{
    TreeFiles::makeFolder(place);
    return {place, mount("small", place.constData(), "tmpfs", 0, size) == 0};
}

TreeRuns::Mount TreeRuns::Mount::folder(const QByteArray& folder, const QByteArray& place)
{
    TreeFiles::makeFolder(place);
    return {place, mount(folder.constData(), place.constData(), nullptr, MS_BIND, nullptr) == 0};
}

TreeRuns::Mount::~Mount()
{
    if (isMounted)
        umount2(m_place.constData(), MNT_DETACH);
}
