// SPDX-License-Identifier: MIT
#ifndef RECORDSBASE_H
#define RECORDSBASE_H

#include "window/records/rowview.h"

#include <QObject>

/** One records file at a time, read through the library's queue: answers come when the worker has them. */
class RecordsBase : public QObject {
    Q_OBJECT

public:
    explicit RecordsBase(QObject* parent = nullptr);

    /** Opens a file and asks for its tables. Returns why it cannot be read; empty when it can. Not while an
     * answer is awaited. */
    QString open(const QString& file);

    /** Asks for a table's columns and rows. */
    void read(const QString& table);

    const QString& file() const { return m_file; }

    /** Whether an answer is awaited. */
    bool isBusy() const { return m_awaited > 0; }

Q_SIGNALS:
    void tablesRead(const QStringList& tables);
    void rowsRead(const Rows& rows, const QStringList& columns);

private:
    void ask(const QString& table, const QVariantMap& conditions, const QString& purpose);
    void take(const QVariantList& rows, const QString& purpose);

    QString m_file;
    QStringList m_columns;
    int m_awaited = 0;
};

#endif
