// SPDX-License-Identifier: MIT
#include "window/log/logfilter.h"

#include "window/log/logmodel.h"

void LogFilter::set(int kinds, const QString& text)
{
    m_kinds = kinds;
    m_text = text;
    invalidateFilter();
}

bool LogFilter::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    const QModelIndex entry = sourceModel()->index(row, LogModel::Text, parent);
    const int kind = entry.data(LogModel::KindRole).toInt();
    if (m_kinds == ToolLog && kind != LogEntry::Tool)
        return false;
    if (m_kinds == WarningsAndErrors && kind < LogEntry::Warning)
        return false;
    return m_text.isEmpty()
        || entry.data(LogModel::TextRole).toString().contains(m_text, Qt::CaseInsensitive);
}
