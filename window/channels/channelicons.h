// SPDX-License-Identifier: MIT
#ifndef CHANNELICONS_H
#define CHANNELICONS_H

#include "window/channels/jobdocument.h"

#include <QCache>
#include <QFileSystemWatcher>
#include <QIcon>
#include <QSet>
#include <QTimer>

#include <memory>

class ThreadGenerateIcon;

/**
 * The icons of channels as a run will make them: the library makes each once, into a folder where the next
 * start finds it. What is shown is made first. Everything happens on other threads; changed() tells of news.
 */
class ChannelIcons : public QObject {
    Q_OBJECT

public:
    /** @param folder for what has been made, absolute; it is made when it is needed */
    explicit ChannelIcons(const QString& folder, QObject* parent = nullptr);
    /** Waits for the icons that are being made. */
    ~ChannelIcons() override;

    /** Where the pictures are, absolute paths; empty for none. */
    void setPictures(const QString& master, const QString& marks);

    /** One icon, null as long as it is not there; it is made then. @param mark empty for none */
    QIcon iconOf(const QString& mark, const MarkPlace& place);

    /** How many the library has made, and not found. */
    int madeCount() const { return m_madeCount; }

Q_SIGNALS:
    void changed();
    void picturesChanged(); ///< a picture on the disk is another one now, maybe

private:
    struct Entry;
    struct Batch;
    struct Icon {
        QIcon picture;
        int state = 0; ///< that of the pictures when it was made
    };

    static void look(Batch& batch);
    static void collect(Batch& batch);
    void takeWishes();
    void run(void (*work)(Batch& batch), void (ChannelIcons::*then)());
    void make();
    void gather();
    void finish();
    void watch(const QStringList& paths);
    void beginAnew();

    QString m_folder;
    QString m_master;
    QString m_marks;
    int m_state = 0; // another one whenever a picture may have changed
    int m_madeCount = 0;
    QCache<QString, Icon> m_icons;
    QVector<Entry> m_wishes; // the latest one last
    QSet<QString> m_asked; // the wishes, and what is being made
    QTimer m_begin;
    QTimer m_news;
    QFileSystemWatcher m_watcher;
    std::shared_ptr<Batch> m_batch;
    bool m_hasTidied = false;
    std::unique_ptr<ThreadGenerateIcon> m_generator;
};

#endif
