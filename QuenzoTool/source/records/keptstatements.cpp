// SPDX-License-Identifier: MIT
#include "records/keptstatements.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t mostKept = 32;

} // namespace

RowStatement* KeptStatements::find(const StatementText::Shape& shape, const QMap<QString, QVariant>& row)
{
    const auto found = std::find_if(m_statements.begin(), m_statements.end(),
                                    [&](const RowStatement& kept) { return kept.serves(shape, row); });
    if (found == m_statements.end())
        return nullptr;
    m_statements.splice(m_statements.begin(), m_statements, found);
    return &m_statements.front();
}

RowStatement* KeptStatements::add(RowStatement&& statement)
{
    if (m_statements.size() == mostKept)
        m_statements.pop_back();
    m_statements.push_front(std::move(statement));
    return &m_statements.front();
}

void KeptStatements::dropFound()
{
    m_statements.pop_front();
}

void KeptStatements::clear()
{
    m_statements.clear();
}

bool KeptStatements::isDirect(const QSqlDriver& driver)
{
    // A new driver may stand where a deleted one stood.
    if (m_driver != &driver) {
        m_direct = SqliteDirect::isSharedWith(driver);
        m_driver = &driver;
    }
    return m_direct;
}
