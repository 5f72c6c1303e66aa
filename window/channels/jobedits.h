// SPDX-License-Identifier: MIT
#ifndef JOBEDITS_H
#define JOBEDITS_H

#include "window/channels/jobdocument.h"

#include <QUndoCommand>

/** Some channels say something else. */
class JobDocument::Change : public QUndoCommand {
public:
    struct Entry {
        int row;
        OrderedJson before;
        OrderedJson after;
    };

    Change(JobDocument& document, const QString& text, const QVector<Entry>& entries, Step step);

    void undo() override;
    void redo() override;
    int id() const override { return 1; }
    bool mergeWith(const QUndoCommand* next) override;

private:
    QVector<int> rows() const;
    void follow();

    JobDocument& m_document;
    QString m_folder; // which the channels' paths are relative to
    QVector<Entry> m_entries;
    Step m_step;
};

/** Some channels go, and some come: another place is both. */
class JobDocument::Arrangement : public QUndoCommand {
public:
    /** @param items what comes, in the order of the rows that it has afterwards */
    Arrangement(JobDocument& document, const QString& text, const QVector<int>& taken,
                const QVector<int>& placed, const Items& items);

    void undo() override;
    void redo() override;

private:
    void follow();

    JobDocument& m_document;
    QString m_folder;
    QVector<int> m_taken;
    QVector<int> m_placed;
    Items m_gone;
    Items m_items;
};

#endif
