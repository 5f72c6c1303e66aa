// SPDX-License-Identifier: MIT
#ifndef BUILDRUN_H
#define BUILDRUN_H

#include "build/apkeditor.h"
#include "build/buildoutcome.h"
#include "build/buildplaces.h"
#include "build/buildwishes.h"
#include "build/packagefacts.h"
#include "command.h"
#include "console/interruptguard.h"
#include "console/spinner.h"

#include <QHash>
#include <QMap>

class BuildPreparation;
class BuildRecords;
class QFile;
struct EarlierBuild;
struct Progress;

/** One run over a job's channels, or a slice of them: prepares, builds, records and reports. */
class BuildRun {
public:
    BuildRun(const Job& job, const BuildWishes& wishes, Console& console);
    ~BuildRun();

    /** Does it; what it came to is told. */
    ExitCode run();

    /** Builds one share of what another process has prepared, and tells that process of it. */
    static ExitCode serve(const Job& job, const Slice& slice, int share, int shares);

    static BuildPlaces placesOf(const Job& job, const Slice& slice);

private:
    bool begin();
    bool takeLock(QFile& file);
    bool readBase();
    void tellIconsThatStay();
    void findWork(BuildRecords& records);
    void prepareAndBuild(BuildRecords& records);
    void buildHere(BuildRecords& records);
    void buildInProcesses(BuildRecords& records);
    void endStep(const QString& folder, const BuildStep& step, BuildRecords& records);
    void finish(ChannelOutcome outcome, BuildRecords& records);
    void failChannel(const QString& folder, const QString& message, BuildRecords& records);
    ChannelOutcome& outcomeOf(const QString& folder);
    static bool stands(const EarlierBuild& earlier, const QString& package);
    bool flushOutput();
    ExitCode report(BuildRecords& records);
    ExitCode fail(const QString& message);
    void tell(const ChannelOutcome& channel);
    Progress progress() const;
    void enter(const QString& stage);
    void beginStep(const QString& folder, const QString& step);

    const Job& m_job;
    const BuildWishes m_wishes;
    const BuildPlaces m_places;
    Console& m_console;
    const InterruptHold m_hold;
    ApkEditor m_editor;
    PackageFacts m_base;
    BuildOutcome m_outcome;
    QVector<JobChannel> m_pending; ///< channels to be built, in the job's order
    QHash<QString, QString> m_inputs; ///< digests by folder
    QByteArray m_baseDigest;
    QString m_baseFile; ///< tells whether another process has opened the same base
    QString m_stage; ///< what a person reads of the work at hand
    QMap<QString, QString> m_atWork; ///< the steps at hand, by the channels' folders
    int m_finished = 0; ///< of the channels to be built
    PacedProgress m_pace;
};

/** Tells what a run came to: the table, the object for machines, and how many failed; false when it did not
 * succeed. */
bool tellBuild(const BuildOutcome& build, Console& console);

#endif
