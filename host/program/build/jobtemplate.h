// SPDX-License-Identifier: MIT
#ifndef JOBTEMPLATE_H
#define JOBTEMPLATE_H

#include <QString>

/** A job to begin with: commented, and sound as it stands. */
namespace JobTemplate {

/** A person's own files in the place of the sample's; absolute paths, empty for the sample's. */
struct OwnFiles {
    QString base;
    QString icon;
    QString marks; ///< a folder with a folder a mark, each of which becomes a channel
    QString game; ///< what the base's game is called; empty for the name of its file
};

/** Why a folder cannot take it, since it would mix with what is there; empty when it can. */
QString objectionTo(const QString& folder);

/**
 * Writes job.json and the sample's files that it names, all of them or none.
 *
 * @param folder absolute path without links; it is made when it is missing, and empty otherwise
 * @return what failed and why; empty when all is there
 */
QString write(const QString& folder, const OwnFiles& own);

} // namespace JobTemplate

#endif
