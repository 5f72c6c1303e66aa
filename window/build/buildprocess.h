// SPDX-License-Identifier: MIT
#ifndef BUILDPROCESS_H
#define BUILDPROCESS_H

#include <QProcess>
#include <QStringList>
#include <QTimer>

/**
 * One `quenzo build` after another, beside the event loop: what the window shows is what the command would
 * have made.
 */
class BuildProcess : public QObject {
    Q_OBJECT

public:
    struct Wishes {
        QString job; ///< absolute path
        QStringList only; ///< folders of the channels; empty for all
        bool force = false; ///< those that are unchanged, too
    };

    explicit BuildProcess(QObject* parent = nullptr);
    /** Stops a run, and waits for the end of its step. */
    ~BuildProcess() override;

    bool isRunning() const { return m_isRunning; }
    bool isStopping() const { return m_isStopping; }

    void start(const Wishes& wishes);

    /** Lets the step at hand end, and the run with it. */
    void stop();

Q_SIGNALS:
    void stepBegan(const QString& folder, const QString& step);
    void channelEnded(const QString& folder, const QString& outcome, const QString& message);
    /** @param done -1, as @p total, before it is known what is to be built */
    void progressed(const QString& doing, int done, int total);
    void said(const QString& line); ///< for people
    /** @param fault why there was no run: a sentence; empty when there was one */
    void ended(bool succeeded, const QString& fault);

private:
    void takeLines();
    void take(const QByteArray& line);
    void finish();

    QProcess m_quenzo;
    QTimer m_nextTurn; ///< for lines that are left
    QString m_lastWords;
    bool m_isRunning = false;
    bool m_isStopping = false;
};

#endif
