// SPDX-License-Identifier: MIT
#include "trees/treerights.h"

#include "files/stacklimit.h"
#include "files/treefolder.h"
#include "messages.h"
#include "trees/treefailure.h"

#include <QDir>

#include <cerrno>

namespace {

void writeRightsMessage(int line, const QString& text)
{
    writeMessage("QuenzoTool/source/quenzotool", line,
                 "bool __cdecl QuenzoTool::changePermessionRecursively(class QDir &)", text);
}

QString joined(const QString& folder, const QByteArray& name)
{
    const bool isRoot = folder.endsWith(QLatin1Char('/'));
    return folder + QLatin1String(isRoot ? "" : "/") + TreeFolder::text(name);
}

class RightsWalk {
public:
    void visit(TreeFolder& folder, const QString& shownPath, const QStringList& nameFilters)
    {
        const FolderChain::Visit visit(m_chain, folder);
        QVector<TreeEntry> entries;
        if (!folder.list(entries)) // counts as empty
            logSystemFailure(folder.path(), QStringLiteral("read"));
        keepNamed(entries, nameFilters);
        const QString absolutePath = TreeFolder::text(folder.path());
        for (const TreeEntry& entry : qAsConst(entries)) {
            if (folder.kindOf(entry) != TreeEntry::Folder)
                changeFile(folder, entry, absolutePath);
            else
                visitFolder(folder, entry, shownPath);
        }
    }

    // Qt's resources are told of like files; their rights cannot be changed.
    void visitResources(const QDir& folder) const
    {
        const QDir::Filters all =
            QDir::Dirs | QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
        const QFileInfoList infos = folder.entryInfoList(all, QDir::Unsorted);
        for (const QFileInfo& info : infos) {
            if (info.isDir()) {
                tellFolder(info.filePath());
                visitResources(QDir(info.filePath()));
            } else if (m_messages) {
                tellFile(info.absoluteFilePath(), info.isWritable());
            }
        }
    }

private:
    void visitFolder(TreeFolder& parent, const TreeEntry& entry, const QString& shownPath)
    {
        const QString path = joined(shownPath, entry.name);
        tellFolder(path);
        TreeFolder folder = parent.openChild(entry.name, TreeFolder::Listing);
        if (isStackNearlyUsedUp()) {
            logFailure(folder.path(), QStringLiteral("read"),
                       QStringLiteral("it is too deep for the thread's stack"));
            return;
        }
        // Links that lead back would multiply without changing anything more.
        const bool leadsBack = entry.isLink && m_chain.contains(folder.id());
        if (!parent.canHold(entry.name))
            logFailure(folder.path(), QStringLiteral("read"), errorText(ENAMETOOLONG));
        else if (!folder.isOpen())
            logUnreadable(folder);
        else if (!leadsBack)
            visit(folder, path, {});
    }

    void changeFile(const TreeFolder& folder, const TreeEntry& entry, const QString& absolutePath) const
    {
        if (m_messages)
            tellFile(joined(absolutePath, entry.name), folder.isWritable(entry.name));
        // There is nothing behind a link that leads nowhere.
        if (!folder.forceWriteOther(entry.name) && (!entry.isLink || errno != ENOENT))
            logSystemFailure(folder.pathOf(entry.name), QStringLiteral("made writable"));
    }

    void tellFolder(const QString& path) const
    {
        if (m_messages)
            writeRightsMessage(__LINE__, path);
    }

    static void tellFile(const QString& path, bool isWritable)
    {
        writeRightsMessage(__LINE__, path);
        writeRightsMessage(__LINE__, QLatin1String(isWritable ? "true" : "false"));
    }

    // Nobody can tell a message that was not composed from one that was composed and dropped.
    const bool m_messages = QLoggingCategory::defaultCategory()->isDebugEnabled();
    FolderChain m_chain;
};

} // namespace

void forceTreeWriteOther(const QDir& top)
{
    RightsWalk walk;
    if (TreeFolder::isResource(top)) {
        walk.visitResources(top);
        return;
    }
    TreeFolder folder = TreeFolder::open(TreeFolder::nativePath(top), TreeFolder::Listing);
    if (folder.isOpen())
        walk.visit(folder, top.path(), top.nameFilters());
    else if (!folder.isMissing())
        logUnreadable(folder);
}
