// SPDX-License-Identifier: MIT
#include "trees/treewalk.h"

#include <QFile>
#include <QSet>
#include <QVector>

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <vector>

namespace {

bool isAmong(const QStringList& names, const QByteArray& name)
{
    const QString lowered = QFile::decodeName(name).toLower();
    return std::any_of(names.cbegin(), names.cend(),
                       [&lowered](const QString& one) { return one.toLower() == lowered; });
}

class Walk {
public:
    using Visit = std::function<TreeScope::Step(const WalkedEntry&)>;

    Walk(const TreeScope& scope, const Visit& visit)
        : m_scope(scope)
        , m_visit(visit)
    {
    }

    // With levels of its own: trees can be deeper than what the thread's stack holds.
    bool run(const FileIdentity& top)
    {
        enter({}, top);
        while (!m_levels.empty()) {
            Level& level = m_levels.back();
            if (level.next == level.entries.size()) {
                m_levels.pop_back();
                m_within.removeLast();
                continue;
            }
            WalkedEntry& entry = level.entries[level.next++];
            const bool isLeft = m_levels.size() == 1 && isAmong(m_scope.left, entry.name);
            if (!isLeft && !meet(entry))
                return false;
        }
        return true;
    }

private:
    struct Level {
        QVector<WalkedEntry> entries;
        int next = 0;
    };

    void enter(const QByteArray& relative, const FileIdentity& id)
    {
        m_within.append(id);
        m_levels.push_back({list(relative), 0});
    }

    bool meet(WalkedEntry& entry)
    {
        const FileIdentity id(entry.status);
        entry.leadsBack = entry.isFolder() && m_within.contains(id);
        const TreeScope::Step step = m_visit(entry);
        if (step == TreeScope::Stop)
            return false;
        const bool enters = entry.isFolder() && !entry.leadsBack && !(id == m_scope.apart);
        if (step == TreeScope::PassBy || !enters || (m_scope.emptied && m_entered.contains(id)))
            return true;
        if (m_scope.emptied)
            m_entered.insert(id);
        enter(entry.path + '/', id); // the entry may have moved afterwards
        return true;
    }

    // At once, and no folder stays open: trees can be deeper than a process may have files open.
    QVector<WalkedEntry> list(const QByteArray& relative) const
    {
        QVector<WalkedEntry> entries;
        const QByteArray path = m_scope.top + '/' + relative;
        const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.constData()), closedir);
        if (!folder)
            return entries;
        while (const dirent* const read = readdir(folder.get())) {
            WalkedEntry entry;
            entry.name = read->d_name;
            entry.path = relative + entry.name;
            const bool isMeant = m_scope.filesToo || read->d_type != DT_REG;
            if (isMeant && entry.name != "." && entry.name != ".." && look(dirfd(folder.get()), entry))
                entries.append(entry);
        }
        return entries;
    }

    bool look(int folder, WalkedEntry& entry) const
    {
        const char* const name = entry.name.constData();
        if (fstatat(folder, name, &entry.status, AT_SYMLINK_NOFOLLOW) != 0)
            return false; // gone meanwhile
        entry.isLink = S_ISLNK(entry.status.st_mode);
        struct stat behind { };
        if (entry.isLink && m_scope.links == TreeScope::Followed && fstatat(folder, name, &behind, 0) == 0)
            entry.status = behind;
        return true;
    }

    const TreeScope& m_scope;
    const Visit& m_visit;
    std::vector<Level> m_levels;
    QVector<FileIdentity> m_within;
    QSet<FileIdentity> m_entered;
};

} // namespace

bool TreeScope::walk(const std::function<Step(const WalkedEntry&)>& visit) const
{
    struct stat status { };
    return stat(top.constData(), &status) != 0 || Walk(*this, visit).run(FileIdentity(status));
}
