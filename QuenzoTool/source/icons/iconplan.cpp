// SPDX-License-Identifier: MIT
#include "icons/iconplan.h"

#include <utility>

bool operator==(const Decoration& left, const Decoration& right)
{
    return left.x == right.x && left.y == right.y && left.markPath == right.markPath;
}

uint qHash(const Decoration& decoration, uint seed)
{
    return qHash(decoration.markPath, seed) ^ qHash(qMakePair(decoration.x, decoration.y), seed);
}

void IconPlan::add(const Decoration& decoration, const QString& folder)
{
    const auto known = m_groupOfDecoration.constFind(decoration);
    if (known != m_groupOfDecoration.constEnd()) {
        m_last = *known;
    } else {
        m_last = m_groups.size();
        m_groups.append({decoration, {}});
        m_groupOfDecoration.insert(decoration, m_last);
    }
    if (folder.isEmpty())
        return;
    const auto before = m_groupOfFolder.constFind(folder);
    if (before != m_groupOfFolder.constEnd())
        m_groups[*before].folders.removeOne(folder);
    m_groups[m_last].folders.append(folder);
    m_groupOfFolder.insert(folder, m_last);
}

QVector<IconPlan::Group> IconPlan::take()
{
    if (!m_groups.isEmpty())
        m_groups.append(m_groups.takeAt(m_last));
    m_groupOfDecoration.clear();
    m_groupOfFolder.clear();
    return std::exchange(m_groups, {});
}
