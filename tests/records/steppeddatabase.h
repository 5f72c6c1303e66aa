// SPDX-License-Identifier: MIT
#ifndef STEPPEDDATABASE_H
#define STEPPEDDATABASE_H

#include "treefiles.h"

#include <dbhelper.h>

#include <QTemporaryDir>

/** A DBHelper whose worker is the test itself, on a database file that other connections can look into. */
class SteppedDatabase : public DBHelper {
public:
    SteppedDatabase() = default;
    ~SteppedDatabase() override;

    using DBHelper::commandExec;
    using DBHelper::customEvent;

    /** Opens the file of a new folder and creates the table channel(id, name, state), whose id is unique. */
    void openNew();

    /** Opens the same file again. */
    bool reopen();

    QString path() const { return m_folder.filePath(QStringLiteral("records.db")); }

    /** Runs one burst: every queued command up to the commit. */
    void runBurst();

    /** Queues a row {id, name} through the list form, which leaves isRunning() as it is. */
    bool queueRow(int id, const QString& name);

    /**
     * Runs an SQL statement on a connection of its own, as a program beside us would: it sees what is
     * committed.
     *
     * @return the first column of each row
     */
    QVariantList outside(const QString& sql) const;

    /** The committed ids, in order. */
    QVariantList committedIds() const;

private:
    QTemporaryDir m_folder{TreeFiles::quickFolder()};
};

#endif
