// SPDX-License-Identifier: MIT
#ifndef JOBCONTENT_H
#define JOBCONTENT_H

#include "window/channels/orderedjson.h"

#include <QCoreApplication>

/** A job's file as it is read and written, on any thread. */
struct JobContent {
    Q_DECLARE_TR_FUNCTIONS(JobDocument)

public:
    QString path; ///< absolute
    OrderedJson root;
    QByteArray digest; ///< of the file as it was read or written; empty when it may be written over
    QString fault; ///< why it could not be: a sentence; empty when it could

    static JobContent read(const QString& path);

    /** Writes it, unless another program has changed the file since. */
    JobContent written() const;

    /** The same job in another place, which may be written over: it finds there what it found here. */
    JobContent movedTo(const QString& newPath) const;

    /** A channel's part of that. @param from the folder of the job, as @p to */
    static void moveChannel(OrderedJson& channel, const QString& from, const QString& to);
};

#endif
