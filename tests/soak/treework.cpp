// SPDX-License-Identifier: MIT
#include "work.h"

#include "treefiles.h"

#include <quenzotool.h>
#include <threadcommon.h>

#include <QTemporaryDir>

namespace {

class TreeWork : public Work {
public:
    TreeWork();

protected:
    void begin() override;

private:
    QString path(const char* name) const { return m_folder.filePath(QLatin1String(name)); }
    QMap<QByteArray, QByteArray> content(const char* name) const
    {
        return TreeFiles::content(QFile::encodeName(path(name)));
    }
    void perform(THREAD_OPERATE operation, const char* from, const char* to);
    void goOn();

    QTemporaryDir m_folder;
    ThreadCommon m_thread;
    QMap<QByteArray, QByteArray> m_source;
    bool m_isCut = false;
};

TreeWork::TreeWork()
    : Work("trees copied, moved and removed")
{
    for (const char* folder : {"source/a", "source/b/c", "source/b/c/d/e"})
        TreeFiles::writeManySizes(QFile::encodeName(path(folder)) + "/file", 50);
    m_source = content("source");
    connect(&m_thread, &QThread::finished, this, [this] { goOn(); });
}

void TreeWork::perform(THREAD_OPERATE operation, const char* from, const char* to)
{
    m_isCut = operation == OPERATE_CUT;
    m_thread.wait();
    m_thread.StartOperate(
        operation, QVariantMap{{QStringLiteral("src"), path(from)}, {QStringLiteral("dest"), path(to)}});
    m_thread.start();
}

void TreeWork::begin()
{
    perform(OPERATE_COPY, "source", "copy");
}

void TreeWork::goOn()
{
    if (!m_thread.getResult().toBool())
        return end(QStringLiteral("a copy or a move fails"));
    if (!m_isCut)
        return perform(OPERATE_CUT, "copy", "moved");
    const bool isMoved = content("moved") == m_source && content("copy").isEmpty();
    bool isRemoved = true;
    for (const char* name : {"copy", "moved"}) {
        QDir folder(path(name));
        isRemoved = QuenzoTool::removeRecursively(folder) && isRemoved;
    }
    end(isMoved && isRemoved ? QString() : QStringLiteral("a tree is not what its source was, or stays"));
}

} // namespace

std::unique_ptr<Work> treeWork()
{
    return std::make_unique<TreeWork>();
}
