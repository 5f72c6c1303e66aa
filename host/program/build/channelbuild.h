// SPDX-License-Identifier: MIT
#ifndef CHANNELBUILD_H
#define CHANNELBUILD_H

#include "build/buildoutcome.h"
#include "build/buildplaces.h"
#include "build/packagefacts.h"

#include <functional>
#include <future>

class ApkEditor;
class Console;
struct ApkChange;
struct Failure;
struct Job;
struct JobChannel;

/** Makes the package of one channel, step by step, from what has been prepared for all. */
class ChannelBuild {
public:
    /**
     * @param editor has the job's base open
     * @param base what aapt tells of it
     * @param isInterrupted asked between the steps; the rest is left out then
     */
    ChannelBuild(const Job& job, const BuildPlaces& places, ApkEditor& editor, const PackageFacts& base,
                 std::function<bool()> isInterrupted);

    /** Called as each step begins, by its name, and as it has ended. */
    std::function<void(const QString& step)> onBegin;
    std::function<void(const BuildStep& step)> onEnd;

    /** The outcome lacks the inputs' digest. */
    ChannelOutcome run(const JobChannel& channel);

private:
    using Work = QString (ChannelBuild::*)();

    bool perform(const QString& name, Work work);
    // Each gives a fault in one sentence, or an empty text.
    QString clear();
    QString gatherIcons();
    QString makeManifest();
    QString makePackage();
    QString encrypt();
    QString sign();
    QString check();
    QString exportRecord();
    QString output();

    bool renameForOutput(const QString& name) const;
    QString cutForOutput(const QStringList& left);
    QString moveToOutput();

    QByteArray channelContent() const;
    QString packageName() const;
    QString packageFile() const;
    QString channelFile(const QString& name) const;

    const Job& m_job;
    const BuildPlaces m_places;
    ApkEditor& m_editor;
    const PackageFacts m_base;
    const std::function<bool()> m_isInterrupted;
    const JobChannel* m_channel = nullptr; ///< the one at work
    ChannelOutcome m_outcome;
    QVector<ApkChange> m_changes; ///< of its package
    std::future<void> m_flush; ///< of the last package
};

/** Whether a channel's manifest is not the base's; its SDKs are imported. */
bool changesManifest(const JobChannel& channel, const BuildPlaces& places);

/** What removes a folder with all in it; a fault in one sentence. */
QString removeFolder(const QString& folder);

/** Brings all that was written to a folder's file system to the disk; the system's reason when that fails. */
QString flushFolder(const QString& folder);

/** What removes a channel's package and all else that builds finish there; files of others stay. */
QString clearFinished(const BuildPlaces& places, const QString& folder);

/** Tells packages apart by their size and every entry's checksum; empty for what is none. */
QString digestOfPackage(const QString& package);

/** For the parts of a run: what they say is told by its report. */
Console muteConsole();

/** A failure in one sentence. */
QString sentenceOf(const Failure& failure);

#endif
