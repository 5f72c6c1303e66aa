// SPDX-License-Identifier: MIT
#ifndef TREERIGHTSKEEPER_H
#define TREERIGHTSKEEPER_H

#include <QFileDevice>
#include <QMap>
#include <QString>

/**
 * Gives folders that a cut for output left behind, with rights under which their owner cannot enter them, the
 * rights they had before.
 */
class TreeRightsKeeper {
public:
    /** Notes the rights of every folder in a folder, and of those that links in it lead to. */
    explicit TreeRightsKeeper(const QString& path);

    void restore() const;

private:
    QMap<QString, QFileDevice::Permissions> m_rights; // by path: a folder comes before those in it
};

#endif
