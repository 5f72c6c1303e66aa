// SPDX-License-Identifier: MIT
#ifndef JOB_H
#define JOB_H

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/** One SDK that channels may have. */
struct JobSdk {
    QString name; ///< its key in the job
    QString package; ///< absolute path of the archive
    int id = -1; ///< the number that the package has to bear; -1 for any
};

/** One channel: what the job says of it, completed by the job's defaults. */
struct JobChannel {
    QString folder; ///< its name below work and output; unlike every other channel's, whatever the case
    QString name; ///< for people; the folder when the job gives none
    QString number; ///< its developer record's, for the export; empty for none
    QString mark; ///< folder of the mark; empty for none
    int corner = 4; ///< as the library numbers them
    std::optional<int> x, y; ///< flush in the corner when not given
    QStringList sdks; ///< names, in the order of the job
    QString package; ///< another package name than the base's; empty for that one
    QString files; ///< absolute path of the folder whose content goes over the package; empty for none
    QJsonObject settings; ///< what assets/channel.json holds besides
    bool encrypt = false;
};

/** What the packages are signed with. */
struct JobSigning {
    QString keystore; ///< absolute path
    QString alias; ///< empty for the only key
    QString password; ///< "file:PATH" or "env:NAME"
};

/** One job: a game, and the channels whose packages are wanted. All paths are absolute. */
struct Job {
    QString path; ///< of the job file
    QString game; ///< the game's name
    QString base; ///< the APK that every package starts from
    QString icon; ///< the master picture; empty when icons stay as they are
    QString marks; ///< the marks' folder; empty for none
    QVector<int> platforms; ///< of the icon sets, as the library numbers them: Android first
    QMap<QString, JobSdk> sdks;
    QVector<JobChannel> channels; ///< at least one
    std::optional<JobSigning> signing;
    QString key; ///< the key file of the encryption; empty for the person's own
    QStringList exclude; ///< patterns of assets that are never encrypted
    QString work; ///< folder of what is in the making
    QString output; ///< folder of what is finished
    QStringList leave; ///< names in a channel's work folder that the output leaves there
};

/** A mistake in a job, with its place as a JSON pointer; a file that is no JSON has the place "". */
struct JobFault {
    QString place; ///< "/channels/3/sdks/0"
    QString text;
};

namespace JobFile {

/**
 * Reads a job and finds all of its mistakes, those of the files that it names included.
 *
 * @param[out] faults empty when the job can be run
 */
Job read(const QString& path, QVector<JobFault>& faults);

} // namespace JobFile

#endif
