// SPDX-License-Identifier: MIT
#ifndef RECORDSSCENE_H
#define RECORDSSCENE_H

#include "build/buildrecords.h"
#include "build/job.h"

#include <QTemporaryDir>
#include <QVector>

/** A folder for the records of runs that never were. */
class RecordsScene {
public:
    static const QString game;

    /** A moment, counted from the start of every run. */
    static QDateTime timeAt(qint64 ms);
    static QString folder(int channel);
    static BuildStep step(const QString& name, qint64 ms, BuildStep::Outcome outcome = BuildStep::Done,
                          const QString& message = {});
    static ChannelOutcome channelOutcome(int number, ChannelOutcome::Outcome outcome);
    static Job jobOf(int channels);
    static BuildOutcome buildOf(const QVector<ChannelOutcome>& channels = {});

    /** One run of such outcomes, as a whole. */
    static bool runAll(BuildRecords& records, const QVector<ChannelOutcome>& channels);
    /** A run of one channel, the records of which are closed again; 0 when it is written. */
    static int writeOnce(const QString& file);

    bool isValid() const { return m_folder.isValid(); }
    QString path(const QString& name = QStringLiteral("records.db")) const { return m_folder.filePath(name); }

    /** What a statement gives of the file records.db. */
    QVector<QStringList> rows(const QString& sql) const;

private:
    QTemporaryDir m_folder;
};

#endif
