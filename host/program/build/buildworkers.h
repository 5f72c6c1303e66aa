// SPDX-License-Identifier: MIT
#ifndef BUILDWORKERS_H
#define BUILDWORKERS_H

#include "build/buildoutcome.h"
#include "build/buildplaces.h"

#include <QStringList>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

class ToolChild;
struct Job;
struct JobChannel;
struct Slice;

/** Builds channels in several processes of this program: the interpreter serves one thread at a time. */
class BuildWorkers {
public:
    /** @param base what baseOf() gives to the processes */
    BuildWorkers(const Job& job, const Slice& slice, const BuildPlaces& places, const QString& base);
    ~BuildWorkers();
    BuildWorkers(const BuildWorkers&) = delete;
    BuildWorkers& operator=(const BuildWorkers&) = delete;

    std::function<void(const QString& folder, const QString& step)> onBegin;
    std::function<void(const QString& folder, const BuildStep& step)> onEnd;
    std::function<void(const ChannelOutcome& channel)> onDone;
    /** A channel that its process has not brought to an end, and why in one sentence. */
    std::function<void(const QString& folder, const QString& fault)> onLost;

    /**
     * Builds channels whose common parts are prepared, and lets the event loop run meanwhile.
     *
     * @param isInterrupted once it is, every process ends behind its step at hand; what is left then is not
     * lost
     */
    void run(const QVector<JobChannel>& channels, int processes, const std::function<bool()>& isInterrupted);

    /** The folders of the channels that a share of several has, as run() has left them for its processes. */
    static QStringList shareOf(const BuildPlaces& places, int share, int shares);

    /** Which base it was that the run has read. */
    static QString baseOf(const BuildPlaces& places);

    /** What a process tells of its work. */
    static void tellBegin(const QString& folder, const QString& step);
    static void tellEnd(const QString& folder, const BuildStep& step);
    static void tellDone(const Job& job, const ChannelOutcome& channel);

private:
    struct Worker;
    void start(int share, int shares);
    void wait(const std::function<bool()>& isInterrupted);
    void read(Worker& worker);
    void take(const QByteArray& line, Worker& worker);
    static QString faultOf(const Worker& worker);

    const Job& m_job;
    const Slice& m_slice;
    const BuildPlaces m_places;
    const QString m_base;
    std::vector<std::unique_ptr<Worker>> m_workers;
};

#endif
