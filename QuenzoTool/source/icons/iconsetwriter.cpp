// SPDX-License-Identifier: MIT
#include "icons/iconsetwriter.h"

#include "files/helperthread.h"
#include "files/wholefile.h"
#include "icons/pngencoder.h"
#include "messages.h"

#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <new>

namespace {

// Enough that no core waits for the next mark to be drawn, few enough that at most a few pictures are in
// memory.
constexpr std::size_t mostWaiting = 16;

// Starts as many threads as the system gives, up to a number.
void startThreads(std::vector<std::thread>& threads, int wanted, const std::function<void()>& work)
{
    for (; wanted > 0; --wanted) {
        std::thread thread = startHelperThread(work);
        if (!thread.joinable())
            return;
        threads.push_back(std::move(thread));
    }
}

// How many threads of its pool Qt may want at once while every thread of ours scales or converts a picture.
int threadsForQt(qint64 largestPicture)
{
    constexpr qint64 bytesATask = 65536;
    const qint64 tasks = largestPicture / bytesATask;
    // Qt splits no work into one task.
    if (tasks < 2)
        return 0;
    const qint64 all = QThreadPool::globalInstance()->maxThreadCount();
    return static_cast<int>(std::min(all, std::min(tasks, all) * (QThread::idealThreadCount() + 1)));
}

// Threads that do nothing until it ends: as many as the system gives, up to a number.
class ParkedThreads {
public:
    explicit ParkedThreads(int wanted)
        : m_gate(m_mutex)
    {
        startThreads(m_threads, wanted, [this] { const std::lock_guard<std::mutex> waiting(m_mutex); });
    }
    ~ParkedThreads()
    {
        m_gate.unlock();
        for (std::thread& thread : m_threads)
            thread.join();
    }
    ParkedThreads(const ParkedThreads&) = delete;
    ParkedThreads& operator=(const ParkedThreads&) = delete;

    int count() const { return static_cast<int>(m_threads.size()); }

private:
    std::mutex m_mutex;
    std::unique_lock<std::mutex> m_gate;
    std::vector<std::thread> m_threads;
};

} // namespace

// One icon and its files' contents, each encoded by the first job that needs it.
class IconSetWriter::EncodedSet {
public:
    EncodedSet(const QImage& image, const QVector<IconFile>& files)
        : m_image(image)
        , m_files(files)
        , m_contents(static_cast<std::size_t>(files.size()))
    {
    }

    bool isOf(const QImage& image) const { return m_image.cacheKey() == image.cacheKey(); }

    void write(int index, const QString& folder)
    {
        const IconFile& file = m_files.at(index);
        Content& content = m_contents[static_cast<std::size_t>(index)];
        std::call_once(content.encoded, [&] {
            content.bytes =
                PngEncoder::encode(file.side == 0 ? m_image
                                                  : m_image.scaled(file.side, file.side, Qt::KeepAspectRatio,
                                                                   Qt::SmoothTransformation));
        });
        if (content.bytes.isEmpty()) {
            qCWarning(iconsLog).noquote() << folder + file.name << "was not written: it could not be encoded";
            return;
        }
        const QString reason = writeWholeFile(folder + file.name, content.bytes);
        if (!reason.isEmpty())
            qCWarning(iconsLog).noquote() << folder + file.name << "was not written:" << reason;
    }

private:
    struct Content {
        std::once_flag encoded;
        QByteArray bytes;
    };
    const QImage m_image;
    const QVector<IconFile> m_files;
    std::vector<Content> m_contents;
};

IconSetWriter::IconSetWriter(qint64 largestPicture)
{
    // Parked until ours have started, which must not take Qt's.
    const int wanted = threadsForQt(largestPicture);
    const ParkedThreads forQt(wanted);
    m_isReady = forQt.count() == wanted;
    if (!m_isReady)
        return;
    startThreads(m_threads, QThread::idealThreadCount(), [this] {
        Job job;
        while (takeJob(job, true))
            perform(job);
    });
}

IconSetWriter::~IconSetWriter()
{
    wait();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_closed = true;
    }
    m_jobAdded.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

void IconSetWriter::write(const QImage& image, const QVector<IconFile>& files, const QString& folder)
{
    if (image.isNull())
        return;
    if (m_set == nullptr || !m_set->isOf(image))
        m_set = std::make_shared<EncodedSet>(image, files);
    // The largest file stands last, and is begun first.
    for (int i = files.size() - 1; i >= 0; --i)
        add([set = m_set, i, folder] { set->write(i, folder); });
}

void IconSetWriter::wait()
{
    Job job;
    while (takeJob(job, false))
        perform(job);
    std::unique_lock<std::mutex> lock(m_mutex);
    m_allDone.wait(lock, [this] { return m_running == 0; });
}

void IconSetWriter::add(Job job)
{
    bool full = false;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_jobs.push_back(std::move(job));
        full = m_jobs.size() > mostWaiting;
    }
    m_jobAdded.notify_one();
    Job own;
    if (full && takeJob(own, false))
        perform(own);
}

bool IconSetWriter::takeJob(Job& job, bool waitForOne)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (waitForOne)
        m_jobAdded.wait(lock, [this] { return m_closed || !m_jobs.empty(); });
    if (m_jobs.empty())
        return false;
    job = std::move(m_jobs.front());
    m_jobs.pop_front();
    ++m_running;
    return true;
}

void IconSetWriter::perform(Job& job)
{
    try {
        job();
    } catch (const std::bad_alloc&) {
        // A file that there is no memory for is passed over, as one that there is no room for.
        qCWarning(iconsLog) << "an icon was not written: there is not enough memory";
    }
    job = nullptr;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (--m_running == 0 && m_jobs.empty())
        m_allDone.notify_all();
}
