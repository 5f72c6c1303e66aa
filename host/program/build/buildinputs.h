// SPDX-License-Identifier: MIT
#ifndef BUILDINPUTS_H
#define BUILDINPUTS_H

#include "build/jobtools.h"

#include <QHash>
#include <QString>

class Console;
struct Job;
struct JobChannel;

/** Tells by a digest whether a channel's package would become another one: contents, settings and tools go
 * into it. */
class BuildInputs {
public:
    /** @param base the digest of the base's content */
    BuildInputs(const Job& job, const QByteArray& base, Console& console);

    /** The digest for a channel; empty with error() when something cannot be read. */
    QString digestOf(const JobChannel& channel);

    const QString& error() const { return m_error; }

private:
    QByteArray fileDigest(const QString& path);
    QByteArray folderDigest(const QString& folder);
    QByteArray commonDigest();
    QByteArray apktoolVersion();

    const Job& m_job;
    Console& m_console;
    JobTools m_needed;
    QHash<QString, QByteArray> m_digests; ///< of files and folders, by path
    QByteArray m_tools;
    QByteArray m_apktool; ///< its version, once somebody needs it
    QByteArray m_common;
    QString m_error;
};

#endif
