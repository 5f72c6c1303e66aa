// SPDX-License-Identifier: MIT
#ifndef BUILDRECORDS_H
#define BUILDRECORDS_H

#include "build/buildoutcome.h"

#include <QHash>
#include <QVariant>

#include <memory>

struct Job;
class RecordsLog;

/** What an earlier run left of a channel. */
struct EarlierBuild {
    QString inputs; ///< digest of what it followed from
    QString digest; ///< of the package
    bool isFlushed = false; ///< whether its run has come to its end, behind which all is on the disk
    ChannelOutcome outcome;
};

/** A run as `quenzo builds` lists it. */
struct ListedBuild {
    qint64 number = 0;
    QString game;
    int slice = 0; ///< from 0
    int slices = 1;
    QDateTime start;
    QDateTime end; ///< invalid for a run that did not come to its end
    QString outcome; ///< "done", "failed", "interrupted", "running or killed"
    int built = 0, unchanged = 0, failed = 0;
};

/**
 * The records of a job's runs: games, channels, SDKs, builds and steps, in one SQLite file through the
 * library's queue. One object a process at a time, on a thread with an event loop. What the library says of
 * failures comes by way of Diagnostics, which must be installed.
 */
class BuildRecords {
public:
    BuildRecords();
    /** Waits until all is written. */
    ~BuildRecords();
    BuildRecords(const BuildRecords&) = delete;
    BuildRecords& operator=(const BuildRecords&) = delete;

    /** Opens the file, makes it with its folder and its tables when it is missing; false with error(). */
    bool open(const QString& file);

    /**
     * The last complete build of each channel of the game, by folder: from this file and from those of the
     * other slices of the output folder. Empty with error() when this one cannot be read.
     */
    QHash<QString, EarlierBuild> earlier(const QString& game);

    /** All runs, the latest first. */
    QVector<ListedBuild> builds();

    /** Begins a run: game, channels, SDKs and the run itself become rows. Its row is in the file at once. */
    void begin(const Job& job, const BuildOutcome& build);

    /** The number of the run that has begun; 0 before. */
    qint64 build() const { return m_build; }

    /** A step of a channel has ended. Queued: written within a second, or at flush(). */
    void add(const QString& folder, const BuildStep& step);

    /** A channel has come to its end. */
    void finish(const ChannelOutcome& channel);

    /** The run has come to its end. */
    void end(const BuildOutcome& build);

    /**
     * Waits, by an event loop of its own, until everything that was said since the last call is in the file;
     * false with error() when some of it never will be: of a file that another program keeps locked no more
     * is written then.
     */
    bool flush();

    const QString& error() const { return m_error; }

private:
    void close();
    void queue(const QString& table, QVariantMap row);
    void queue(const QString& table, QList<QVariant> rows);
    void mark();
    bool drain();

    QString m_file;
    QString m_error;
    QString m_game;
    QString m_refusal; ///< why the run has no row
    qint64 m_build = 0;
    bool m_isOpen = false;
    bool m_hasQueued = false;
    int m_mark = 0;
    bool m_isMarked = false; ///< whether nothing was queued since
    std::unique_ptr<QObject> m_receiver; ///< while a file is open
    std::shared_ptr<RecordsLog> m_log;
};

#endif
