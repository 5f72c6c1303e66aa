// SPDX-License-Identifier: MIT
#ifndef CHANNELOUTCOMES_H
#define CHANNELOUTCOMES_H

#include "build/buildoutcome.h"

#include <QFileSystemWatcher>
#include <QHash>
#include <QTimer>

/** What became of each channel the last time, by the reports in the job's output folder: read on a thread,
 * and again when they change. */
class ChannelOutcomes : public QObject {
    Q_OBJECT

public:
    struct Last {
        ChannelOutcome::Outcome outcome = ChannelOutcome::NotReached;
        QString message; ///< why it failed
        QDateTime end;
    };

    explicit ChannelOutcomes(QObject* parent = nullptr);

    /** @param output the folder; empty for none */
    void setOutput(const QString& output);
    void read();

    /** None for a channel that no report knows. */
    const Last* of(const QString& folder) const;

Q_SIGNALS:
    void changed();

private:
    using All = QHash<QString, Last>;

    struct Found {
        All outcomes;
        QStringList folders; ///< where other reports would come
    };

    static Found find(const QString& output);
    static All outcomesIn(const QStringList& reports);
    void take(const QString& output, const Found& found);
    void watch(const QStringList& folders);

    QString m_output;
    All m_all;
    bool m_isReading = false;
    bool m_isStale = false; // while one is read
    QTimer m_soon;
    QFileSystemWatcher m_watcher;
};

#endif
