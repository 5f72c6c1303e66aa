// SPDX-License-Identifier: MIT
#ifndef TREEWALK_H
#define TREEWALK_H

#include "fileidentity.h"

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <sys/stat.h>

/** One entry of a tree. */
struct WalkedEntry {
    QByteArray path; ///< behind that of the tree's folder, in the file system's own bytes
    QByteArray name;
    bool isLink = false;
    bool leadsBack = false; ///< a link to a folder that the walk is in, which is not entered again
    struct stat status { }; ///< of what a followed link leads to; of the link itself if that cannot be told

    bool isFolder() const { return S_ISDIR(status.st_mode); }
};

/**
 * A folder tree, or what an operation does with it: read in the file system's own bytes, so that names that
 * are no text count too, and in the order in which the library goes through it.
 */
struct TreeScope {
    enum Links { Followed, Kept };
    enum Step { GoOn, PassBy, Stop };

    QByteArray top; ///< the folder's path
    Links links = Followed;
    FileIdentity apart = {}; ///< a folder in the tree that is not entered
    bool filesToo = true;
    bool emptied = false; ///< a move leaves nothing for a second way to a folder, which is not entered again
    QStringList left = {}; ///< names directly in the folder that are passed by, in any case

    /** Visits every entry, a folder before what is in it; false when the visitor said to stop. */
    bool walk(const std::function<Step(const WalkedEntry&)>& visit) const;
};

#endif
