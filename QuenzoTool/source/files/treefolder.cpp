// SPDX-License-Identifier: MIT
#include "files/treefolder.h"

#include <QDir>

#include <algorithm>
#include <utility>

QString errorText(int error)
{
    return qt_error_string(error);
}

void keepNamed(QVector<TreeEntry>& entries, const QStringList& nameFilters)
{
    if (nameFilters.isEmpty() || nameFilters.contains(QLatin1String("*")))
        return;
    const auto isOther = [&nameFilters](const TreeEntry& entry) {
        return !QDir::match(nameFilters, TreeFolder::text(entry.name));
    };
    entries.erase(std::remove_if(entries.begin(), entries.end(), isOther), entries.end());
}

TreeFolder::TreeFolder(TreeFolder&& other) noexcept
    : m_handle(std::exchange(other.m_handle, -1))
    , m_path(std::move(other.m_path))
    , m_purpose(other.m_purpose)
    , m_error(other.m_error)
    , m_id(std::move(other.m_id))
{
}

TreeFolder& TreeFolder::operator=(TreeFolder&& other) noexcept
{
    std::swap(m_handle, other.m_handle);
    m_path.swap(other.m_path);
    std::swap(m_purpose, other.m_purpose);
    std::swap(m_error, other.m_error);
    m_id.swap(other.m_id);
    return *this;
}

QByteArray TreeFolder::nativePath(const QDir& folder)
{
    return isResource(folder) ? QByteArray() : nativePath(folder.absolutePath());
}

bool TreeFolder::isResource(const QDir& folder)
{
    return folder.absolutePath().startsWith(QLatin1Char(':'));
}

QByteArray TreeFolder::parentPath(const QByteArray& path)
{
    return path.left(qMax(path.lastIndexOf('/'), 1));
}

QByteArray TreeFolder::lastName(const QByteArray& path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

QByteArray TreeFolder::pathOf(const QByteArray& name) const
{
    const char* const separator = m_path.endsWith('/') ? "" : "/";
    return m_path + separator + name;
}

FolderChain::Visit::Visit(FolderChain& chain, TreeFolder& folder)
    : m_chain(chain)
{
    m_chain.enter(folder);
}

FolderChain::Visit::~Visit()
{
    m_chain.leave();
}

void FolderChain::enter(TreeFolder& folder)
{
    constexpr int mostOpen = 32;
    m_folders.append(&folder);
    if (m_folders.size() > mostOpen)
        m_folders.at(m_folders.size() - 1 - mostOpen)->suspend();
}

void FolderChain::leave()
{
    const TreeFolder* const child = m_folders.takeLast();
    // One that could not be opened again refuses what is asked of it next, and so fails the walk.
    if (!m_folders.isEmpty() && !m_folders.last()->isOpen())
        m_folders.last()->resume(*child);
}

bool FolderChain::contains(const FileIdentity& id) const
{
    return std::any_of(m_folders.cbegin(), m_folders.cend(),
                       [&id](const TreeFolder* folder) { return folder->id() == id; });
}
