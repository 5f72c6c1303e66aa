// SPDX-License-Identifier: MIT
#ifndef ICONSETWRITER_H
#define ICONSETWRITER_H

#include <QImage>
#include <QString>
#include <QVector>

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/** One file of an icon set. */
struct IconFile {
    int side; // pixels; 0 leaves the icon in its own size
    QString name;
};

/**
 * Scales, encodes and writes icon sets on all cores. Files are written through files/, as copies are.
 *
 * A few jobs wait at most, and the caller then takes one itself, so that memory is bounded and a system that
 * gives few threads still gets its icons.
 */
class IconSetWriter {
public:
    /** @param largestPicture the bytes of the largest picture that will be scaled or encoded */
    explicit IconSetWriter(qint64 largestPicture);
    /** Waits for everything given so far. */
    ~IconSetWriter();

    /** Whether there are threads enough for Qt's scaling, which waits for ever for those that the system
     * refuses. Otherwise it must be given nothing. */
    bool isReady() const { return m_isReady; }

    IconSetWriter(const IconSetWriter&) = delete;
    IconSetWriter& operator=(const IconSetWriter&) = delete;

    /**
     * Writes a set. Files that cannot be written are passed over, and stay as they were.
     *
     * @param image the icon; the very picture of the call before shares what was encoded for it
     * @param files the set, the same for each call with one picture
     * @param folder ends in a separator
     */
    void write(const QImage& image, const QVector<IconFile>& files, const QString& folder);

    /** Waits until everything given so far is written. */
    void wait();

private:
    class EncodedSet;
    using Job = std::function<void()>;

    void add(Job job);
    bool takeJob(Job& job, bool waitForOne);
    void perform(Job& job);

    bool m_isReady = false;
    std::vector<std::thread> m_threads;
    std::shared_ptr<EncodedSet> m_set;
    // The standard's primitives, since a job must be handed over in a way that race detectors can follow into
    // it.
    std::mutex m_mutex;
    std::condition_variable m_jobAdded;
    std::condition_variable m_allDone;
    std::deque<Job> m_jobs;
    int m_running = 0;
    bool m_closed = false;
};

#endif
