// SPDX-License-Identifier: MIT
#ifndef JOBSCENE_H
#define JOBSCENE_H

#include "build/job.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/** A folder with everything that a job may name, for the tests of job files. */
class JobScene {
public:
    JobScene();

    QString root() const { return m_folder.path(); }
    QString path(const QString& relative) const { return m_folder.filePath(relative); }
    void write(const QString& relative, const QByteArray& content) const;

    /** Writes job.json and reads it. */
    Job read(const QByteArray& json);

    /** What was wrong with the last one, as "PLACE: TEXT"; the folder's own path stands as "@". */
    QStringList faults() const;
    const QVector<JobFault>& found() const { return m_faults; }

    /** A sound job with further members of its outermost object. */
    static QByteArray with(const QByteArray& members);

    /** A job with icons, marks and the SDK "pay", with one channel. */
    static QByteArray channel(const QByteArray& object);

private:
    QTemporaryDir m_folder;
    QVector<JobFault> m_faults;
};

#endif
