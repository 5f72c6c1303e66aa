// SPDX-License-Identifier: MIT
#ifndef TREEPATHS_H
#define TREEPATHS_H

#include <threadcommon.h>

#include <QString>

/** The folders of an operation on trees: as they are shown, and where they really are. */
struct TreePaths {
    TreePaths(const QString& sourceWord, const QString& targetWord);

    /** Whether the target is inside the source. */
    bool isNested() const;

    /** What speaks against the operation before anything is touched; empty if nothing does. */
    QString objection(THREAD_OPERATE operate) const;

    QString source;
    QString target;
    QString realSource; ///< without links, so that the library can tell where one folder is in the other
    QString realTarget;

private:
    QString objectionToSource() const;
    QString objectionToTarget(THREAD_OPERATE operate) const;

    QString m_objection;
};

/** The folder of a removal. */
struct RemovalPath {
    explicit RemovalPath(const QString& word);

    /** What speaks against removing it; empty if nothing does. */
    QString objection() const;

    QString folder;
    QString realFolder;

private:
    QString m_objection;
};

#endif
