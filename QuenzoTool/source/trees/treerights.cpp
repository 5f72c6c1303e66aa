// SPDX-License-Identifier: MIT
#include "trees/treerights.h"

#include "files/treefolder.h"
#include "messages.h"

#include <QDir>

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
    void visit(TreeFolder& folder, const QString& shownPath)
    {
        const FolderChain::Visit visit(m_chain, folder);
        QVector<TreeEntry> entries;
        folder.list(entries, TreeFolder::LinksFollowed); // one that cannot be read counts as empty
        const QString absolutePath = TreeFolder::text(folder.path());
        for (const TreeEntry& entry : qAsConst(entries)) {
            if (entry.kind == TreeEntry::Folder)
                visitFolder(folder, entry, shownPath);
            else
                changeFile(folder, entry, absolutePath);
        }
    }

private:
    void visitFolder(TreeFolder& parent, const TreeEntry& entry, const QString& shownPath)
    {
        const QString path = joined(shownPath, entry.name);
        if (m_messages)
            writeRightsMessage(__LINE__, path);
        TreeFolder folder = parent.openChild(entry.name, TreeFolder::Listing);
        // Links that lead back would multiply without changing anything more.
        const bool leadsBack = entry.isLink && m_chain.contains(folder.id());
        if (parent.canHold(entry.name) && folder.isOpen() && !leadsBack)
            visit(folder, path);
    }

    void changeFile(const TreeFolder& folder, const TreeEntry& entry, const QString& absolutePath) const
    {
        if (m_messages) {
            writeRightsMessage(__LINE__, joined(absolutePath, entry.name));
            writeRightsMessage(__LINE__, QLatin1String(folder.isWritable(entry.name) ? "true" : "false"));
        }
        folder.forceWriteOther(entry.name);
    }

    // Nobody can tell a message that was not composed from one that was composed and dropped.
    const bool m_messages = QLoggingCategory::defaultCategory()->isDebugEnabled();
    FolderChain m_chain;
};

} // namespace

void forceTreeWriteOther(const QString& path)
{
    TreeFolder folder = TreeFolder::open(TreeFolder::nativePath(QDir(path)), TreeFolder::Listing);
    if (folder.isOpen())
        RightsWalk().visit(folder, path);
}
