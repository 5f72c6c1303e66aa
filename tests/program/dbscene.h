// SPDX-License-Identifier: MIT
#ifndef DBSCENE_H
#define DBSCENE_H

#include "quenzoprocess.h"

#include <QObject>
#include <QTemporaryDir>

#include <memory>

/** Tests of the built program's records: each has the table channel(id, name, state) in a file of its own. */
class DBScene : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    virtual void init();

protected:
    QString path() const { return m_folder->filePath(QStringLiteral("records.db")); }

    /** The first column of what a statement yields on a connection of the test's own. */
    QStringList ask(const QString& sql) const;

    QStringList dbWords(const QStringList& arguments) const;

    /** Runs the command db on the file. */
    Ended db(const QStringList& arguments, const QByteArray& input = {}) const;

    static QStringList words(const QByteArray& line) { return QuenzoProcess::words(line.constData()); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

#endif
