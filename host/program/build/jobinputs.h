// SPDX-License-Identifier: MIT
#ifndef JOBINPUTS_H
#define JOBINPUTS_H

#include "build/jobobject.h"

#include <QHash>

/** The files and folders that a job names: each is looked at once, and the mistakes are noted at its place.
 */
class JobInputs {
public:
    /** @param job absolute path of the job file, whose folder relative paths begin at */
    JobInputs(const QString& job, JobFaults& faults);

    /** The absolute paths of what must be there; empty where the job names none, or no path. */
    QString file(const JobObject& object, const QString& key, JobObject::Need need = JobObject::Optional);
    QString archive(const JobObject& object, const QString& key, JobObject::Need need = JobObject::Optional);
    QString picture(const JobObject& object, const QString& key, JobObject::Need need = JobObject::Optional);
    QString folder(const JobObject& object, const QString& key);

    /** The picture of a mark. */
    void mark(const QString& path, const QString& place);

    /** A folder that the run makes: its absolute path without links. */
    QString place(const JobObject& object, const QString& key);

    /** Why something named is not what it should be, as in "names /a.apk, which does not exist". */
    static QString faultOfFile(const QString& path);
    static QString faultOfArchive(const QString& path);
    static QString faultOfPicture(const QString& path);
    static QString faultOfFolder(const QString& path);

    /** Notes where work and output lie in each other, or in the way of what the run reads. */
    void keepApart(const JobObject& object, const QString& work, const QString& output) const;

private:
    using Check = QString (*)(const QString& path);
    struct Input {
        QString place;
        QString path; ///< without links
        bool isFolder;
    };

    QString absolute(const QString& path) const;
    QString checked(const JobObject& object, const QString& key, JobObject::Need need, Check check);
    void keepFromInputs(const JobObject& object, const QString& key, const QString& made) const;

    QString m_folder;
    JobFaults& m_faults;
    QVector<Input> m_inputs;
    QHash<QString, QString> m_markFaults;
    QSet<QString> m_known;
};

#endif
