// SPDX-License-Identifier: MIT
#include "treerightskeeper.h"

#include <QDirIterator>
#include <QFile>

namespace {

// What the file system holds, without what it means for this process.
constexpr QFileDevice::Permissions stored = QFileDevice::Permissions(0x7077);

} // namespace

TreeRightsKeeper::TreeRightsKeeper(const QString& path)
{
    QDirIterator walk(path, QDir::Dirs | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString folder = walk.next();
        m_rights.insert(folder, QFile::permissions(folder) & stored);
    }
}

void TreeRightsKeeper::restore() const
{
    for (auto folder = m_rights.cbegin(); folder != m_rights.cend(); ++folder) {
        const QFileDevice::Permissions now = QFile::permissions(folder.key()) & stored;
        if (now == QFileDevice::WriteOther)
            QFile::setPermissions(folder.key(), folder.value());
    }
}
