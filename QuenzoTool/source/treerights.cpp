// SPDX-License-Identifier: MIT
#include "treerights.h"

#include "treefolder.h"

#include <QDir>
#include <QLoggingCategory>
#include <QMessageLogger>

namespace {

QDebug message(int line)
{
    const QMessageLogger logger("QuenzoTool/source/quenzotool", line,
                                "bool __cdecl QuenzoTool::changePermessionRecursively(class QDir &)");
    return logger.debug().noquote();
}

class RightsWalk {
public:
    void visit(TreeFolder& folder, const QString& shownPath)
    {
        const FolderChain::Visit visit(m_chain, folder);
        QVector<TreeEntry> entries;
        folder.list(entries, TreeFolder::LinksFollowed); // one that cannot be read counts as empty
        for (const TreeEntry& entry : qAsConst(entries)) {
            if (entry.kind == TreeEntry::Folder)
                visitFolder(folder, entry, shownPath);
            else
                changeFile(folder, entry);
        }
    }

private:
    void visitFolder(TreeFolder& parent, const TreeEntry& entry, const QString& shownPath)
    {
        const QString separator = shownPath.endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/");
        const QString path = shownPath + separator + TreeFolder::text(entry.name);
        if (m_messages)
            message(__LINE__) << path;
        TreeFolder folder = parent.openChild(entry.name, TreeFolder::Listing);
        // Links that lead back would multiply without changing anything more.
        const bool leadsBack = entry.isLink && m_chain.contains(folder.id());
        if (parent.canHold(entry.name) && folder.isOpen() && !leadsBack)
            visit(folder, path);
    }

    void changeFile(const TreeFolder& folder, const TreeEntry& entry) const
    {
        if (m_messages) {
            message(__LINE__) << TreeFolder::text(folder.pathOf(entry.name));
            message(__LINE__) << folder.isWritable(entry.name);
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
    const QString absolute = QDir(path).absolutePath();
    TreeFolder folder = TreeFolder::open(TreeFolder::nativePath(absolute), TreeFolder::Listing);
    if (folder.isOpen())
        RightsWalk().visit(folder, path);
}
