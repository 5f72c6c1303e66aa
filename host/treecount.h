// SPDX-License-Identifier: MIT
#ifndef TREECOUNT_H
#define TREECOUNT_H

#include <QDirIterator>
#include <QElapsedTimer>
#include <QString>

#include <memory>

/** How many files a folder tree holds, and how large they are together. */
struct TreeCount {
    qint64 files = 0;
    qint64 bytes = 0;

    /** Counts a folder's content, but for the content of one folder in it, if that is not empty. */
    static TreeCount of(const QString& path, const QString& apart);

    /** What is more than in another count, at least nothing. */
    TreeCount& operator-=(const TreeCount& other);
};

/** Watches a folder fill, or empty, from outside: a little at a time, so that whoever asks is never held up.
 */
class TreeWatch {
public:
    explicit TreeWatch(const QString& path);

    /** What was in the folder when it was last seen as a whole. */
    TreeCount seen();

private:
    void restart();

    const QString m_path;
    TreeCount m_seen;
    TreeCount m_counting;
    std::unique_ptr<QDirIterator> m_walk;
};

#endif
