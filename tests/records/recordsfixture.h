// SPDX-License-Identifier: MIT
#ifndef RECORDSFIXTURE_H
#define RECORDSFIXTURE_H

#include "messagelog.h"
#include "steppeddatabase.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>

using Row = QMap<QString, QVariant>;

inline const QString table = QStringLiteral("channel");

Row row(const QVariant& id, const QVariant& name);

/** Tests of records: each has the table in a file of its own, an empty log, and is the worker. */
class RecordsFixture : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    virtual void init();
    /** Fails on warnings that the test has not taken. */
    virtual void cleanup();

protected:
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<SteppedDatabase> m_database;
};

#endif
