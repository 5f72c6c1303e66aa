// SPDX-License-Identifier: MIT
#ifndef CHANNELOUTCOMES_H
#define CHANNELOUTCOMES_H

#include "build/buildoutcome.h"

#include <QFileSystemWatcher>
#include <QHash>
#include <QTimer>

#include <memory>

QT_BEGIN_NAMESPACE
class QThread;
QT_END_NAMESPACE

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
    /** Waits for a report that is being read. */
    ~ChannelOutcomes() override;

    /** @param output the folder; empty for none */
    void setOutput(const QString& output);
    void read();

    /** None for a channel that no report knows. */
    const Last* of(const QString& folder) const;

Q_SIGNALS:
    void changed();

private:
    using All = QHash<QString, Last>;

    static All all(const QString& output);
    void take(const QString& output, const All& read);
    void watch();

    QString m_output;
    All m_all;
    bool m_isStale = false; // while one is read
    QTimer m_soon;
    QFileSystemWatcher m_watcher;
    std::unique_ptr<QThread> m_thread;
};

#endif
