// SPDX-License-Identifier: MIT
#ifndef BUILDOUTCOME_H
#define BUILDOUTCOME_H

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>

/** One step of a channel: "sdks", "icons", "package", "encrypt", "sign", "check", "output", "export". */
struct BuildStep {
    enum Outcome : int { Done, Failed, Skipped };
    QString name;
    QDateTime start; ///< UTC
    QDateTime end;
    Outcome outcome = Done;
    QString message; ///< one sentence; empty where there is nothing to say
};

/** What became of one channel. */
struct ChannelOutcome {
    enum Outcome : int { Built, Unchanged, Failed, NotReached };
    int index = 0; ///< its place in the job, from 0
    QString folder;
    QString name;
    Outcome outcome = NotReached;
    QString message; ///< why it failed, in one sentence
    QVector<BuildStep> steps;
    QStringList notes; ///< what is worth a look: icons left alone, assets replaced
    QStringList icons; ///< absolute paths of the pictures that it shows, the largest first
    QString package; ///< absolute path of the finished package
    QString packageName; ///< "com.quenzo.skyharbour"
    QString versionName;
    QString signer; ///< the certificate's SHA-256; empty for an unsigned package
    qint64 size = 0; ///< of the package, in bytes
    int replaced = 0; ///< entries that differ from the base's
    int added = 0;
    qint64 takenOver = 0; ///< bytes of the base that were taken as they were
    QString inputs; ///< digest of everything that the package follows from
    QString digest; ///< tells packages apart by their size and their entries' checksums
};

/** One run of a job. */
struct BuildOutcome {
    QString job; ///< absolute path of the job file
    QString game;
    QString output; ///< folder of what is finished
    int slice = 0; ///< from 0
    int slices = 1;
    QDateTime start; ///< UTC
    QDateTime end;
    bool interrupted = false;
    QStringList sheets; ///< absolute paths of the contact sheets
    QVector<ChannelOutcome> channels;

    bool succeeded() const;
};

#endif
