// SPDX-License-Identifier: MIT
#include "window/channels/jobedits.h"

JobDocument::Change::Change(JobDocument& document, const QString& text, const QVector<Entry>& entries,
                            Step step)
    : QUndoCommand(text)
    , m_document(document)
    , m_folder(document.folder())
    , m_entries(entries)
    , m_step(step)
{
}

// The job may have been saved in another folder since the edit.
void JobDocument::Change::follow()
{
    const QString folder = m_document.folder();
    if (folder == m_folder)
        return;
    for (Entry& entry : m_entries) {
        JobContent::moveChannel(entry.before, m_folder, folder);
        JobContent::moveChannel(entry.after, m_folder, folder);
    }
    m_folder = folder;
}

void JobDocument::Change::undo()
{
    follow();
    for (const Entry& entry : qAsConst(m_entries))
        m_document.replace(entry.row, entry.before);
    Q_EMIT m_document.channelsChanged(rows());
}

void JobDocument::Change::redo()
{
    follow();
    for (const Entry& entry : qAsConst(m_entries))
        m_document.replace(entry.row, entry.after);
    Q_EMIT m_document.channelsChanged(rows());
}

bool JobDocument::Change::mergeWith(const QUndoCommand* next)
{
    const auto& change = static_cast<const Change&>(*next);
    if (m_step != Continued || change.m_step != Continued || rows() != change.rows())
        return false;
    follow();
    bool isSame = true;
    for (int i = 0; i < m_entries.size(); ++i) {
        m_entries[i].after = change.m_entries.at(i).after;
        isSame = isSame && m_entries.at(i).after == m_entries.at(i).before;
    }
    setObsolete(isSame);
    return true;
}

QVector<int> JobDocument::Change::rows() const
{
    QVector<int> rows;
    rows.reserve(m_entries.size());
    for (const Entry& entry : m_entries)
        rows.append(entry.row);
    return rows;
}

JobDocument::Arrangement::Arrangement(JobDocument& document, const QString& text, const QVector<int>& taken,
                                      const QVector<int>& placed, const Items& items)
    : QUndoCommand(text)
    , m_document(document)
    , m_folder(document.folder())
    , m_taken(taken)
    , m_placed(placed)
    , m_items(items)
{
}

void JobDocument::Arrangement::follow()
{
    const QString folder = m_document.folder();
    if (folder == m_folder)
        return;
    for (Items* const items : {&m_gone, &m_items}) {
        for (OrderedJson::Item& item : *items)
            JobContent::moveChannel(item.value, m_folder, folder);
    }
    m_folder = folder;
}

void JobDocument::Arrangement::undo()
{
    follow();
    m_document.take(m_placed);
    m_document.put(m_taken, m_gone);
    Q_EMIT m_document.channelsPlaced(m_taken);
}

void JobDocument::Arrangement::redo()
{
    follow();
    m_gone = m_document.take(m_taken);
    m_document.put(m_placed, m_items);
    Q_EMIT m_document.channelsPlaced(m_placed);
}
