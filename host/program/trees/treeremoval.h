// SPDX-License-Identifier: MIT
#ifndef TREEREMOVAL_H
#define TREEREMOVAL_H

#include "trees/treecount.h"

#include <QString>
#include <QVector>

#include <atomic>
#include <functional>

/**
 * Removes a folder with everything in it, and nothing else: every step is relative to the handle of a folder
 * and follows no link, so that whoever writes to the tree meanwhile leads it nowhere. The library's removal
 * first makes files writable, also those behind links: this one changes no rights, and tells why it failed.
 */
class TreeRemoval {
public:
    /** @param folder an absolute path without links */
    explicit TreeRemoval(const QByteArray& folder);
    ~TreeRemoval();
    TreeRemoval(const TreeRemoval&) = delete;
    TreeRemoval& operator=(const TreeRemoval&) = delete;

    /** Who is told of every folder that is gone, on the thread of the run; to be set before it. */
    std::function<void(const QString& folder)> onFolderGone;

    /** Goes on behind what cannot be removed; false when there is any. Blocks; for one run. */
    bool run();

    /** How many files are gone by now; from any thread. */
    qint64 filesGone() const { return m_filesGone; }

    /** After the run: what is gone, and why the first of what stayed could not be removed. */
    const TreeCount& gone() const { return m_gone; }
    const QString& error() const { return m_error; }

private:
    struct Level {
        QByteArray name;
        FileIdentity id;
        int handle = -1; // not held when it is far above
        QVector<QByteArray> names; // what is in it and has not been looked at
    };
    bool openTop();
    bool enter(const QByteArray& name);
    bool list(Level& level) const;
    void removeFile(const Level& level, const QByteArray& name);
    void leave();
    bool reopen(Level& level, int below);
    void closeAll();
    void fail(const QByteArray& name, int error);
    QString pathOf(const QByteArray& name) const;

    const QByteArray m_folder;
    QVector<Level> m_levels; // from the one above the folder to the one at work
    TreeCount m_gone;
    std::atomic<qint64> m_filesGone{0};
    QString m_error;
};

#endif
