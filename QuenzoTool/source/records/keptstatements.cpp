// SPDX-License-Identifier: MIT
#include "records/keptstatements.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr std::size_t mostKept = 32;

} // namespace

RowStatement* KeptStatements::find(const StatementText::Shape& shape, const QMap<QString, QVariant>& row)
{
    const auto found = std::find_if(m_statements.begin(), m_statements.end(), [&](const RowStatement& kept) {
        return !kept.isAwake() && kept.serves(shape, row);
    });
    if (found == m_statements.end())
        return nullptr;
    m_statements.splice(m_statements.begin(), m_statements, found);
    return &m_statements.front();
}

RowStatement* KeptStatements::add(RowStatement&& statement)
{
    if (m_statements.size() >= mostKept)
        dropOldest();
    m_statements.push_front(std::move(statement));
    return &m_statements.front();
}

void KeptStatements::dropOldest()
{
    const auto oldest = std::find_if(m_statements.crbegin(), m_statements.crend(),
                                     [](const RowStatement& kept) { return !kept.isAwake(); });
    if (oldest != m_statements.crend())
        m_statements.erase(std::prev(oldest.base()));
}

void KeptStatements::drop(const RowStatement* statement)
{
    m_statements.remove_if([statement](const RowStatement& kept) { return &kept == statement; });
}

void KeptStatements::clear()
{
    m_statements.clear();
}

bool KeptStatements::sharesSqlite(const QSqlDriver& driver)
{
    // A new driver may stand where a deleted one stood.
    if (m_driver != &driver) {
        m_sharesSqlite = SqliteDirect::isSharedWith(driver);
        m_driver = &driver;
    }
    return m_sharesSqlite;
}
