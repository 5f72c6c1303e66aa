// SPDX-License-Identifier: MIT
#ifndef TREERIGHTSKEEPER_H
#define TREERIGHTSKEEPER_H

#include "trees/treewalk.h"

#include <QVector>

/**
 * Gives folders that a cut for output left behind, with rights under which their owner cannot enter them, the
 * rights they had before.
 */
class TreeRightsKeeper {
public:
    /** Notes the rights of every folder in a folder, and of those that links in it lead to. */
    explicit TreeRightsKeeper(const QByteArray& path);

    /** May be called from any thread, and as often as is wanted. */
    void restore() const;

private:
    struct Folder {
        QByteArray path;
        FileIdentity id;
        mode_t mode;
    };
    QVector<Folder> m_folders; // each before those in it, which cannot be reached without it
};

#endif
