// SPDX-License-Identifier: MIT
#include "trees/treerights.h"

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
    void visit(TreeFolder& folder, const QString& shownPath)
    {
        const FolderChain::Visit visit(m_chain, folder);
        QVector<TreeEntry> entries;
        if (!folder.list(entries)) // counts as empty
            logSystemFailure(folder.path(), QStringLiteral("read"));
        const QString absolutePath = TreeFolder::text(folder.path());
        for (const TreeEntry& entry : qAsConst(entries)) {
            if (folder.kindOf(entry) == TreeEntry::Folder)
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
        if (!parent.canHold(entry.name))
            logFailure(folder.path(), QStringLiteral("read"), errorText(ENAMETOOLONG));
        else if (!folder.isOpen())
            logUnreadable(folder);
        else if (!leadsBack)
            visit(folder, path);
    }

    void changeFile(const TreeFolder& folder, const TreeEntry& entry, const QString& absolutePath) const
    {
        if (m_messages) {
            writeRightsMessage(__LINE__, joined(absolutePath, entry.name));
            writeRightsMessage(__LINE__, QLatin1String(folder.isWritable(entry.name) ? "true" : "false"));
        }
        // There is nothing behind a link that leads nowhere.
        if (!folder.forceWriteOther(entry.name) && (!entry.isLink || errno != ENOENT))
            logSystemFailure(folder.pathOf(entry.name), QStringLiteral("made writable"));
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
    else if (!folder.isMissing())
        logUnreadable(folder);
}
