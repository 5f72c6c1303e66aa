// SPDX-License-Identifier: MIT
#include "icons/iconsetwriter.h"

#include "icons/pngencoder.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <new>
#include <vector>

namespace {

// Enough that no core waits for the next mark to be drawn, few enough that at most a few pictures are in
// memory.
constexpr std::size_t mostWaiting = 16;

// Fills a file that was just opened. What cannot be written whole is taken away, and emptied before: its
// folder may take no changes, or its name be a link.
bool fill(QFile& file, const QByteArray& content)
{
    const bool complete = file.write(content) == content.size();
    file.close();
    if (complete && file.error() == QFileDevice::NoError)
        return true;
    file.resize(0);
    file.remove();
    return false;
}

// Makes a file beside the path, of a name that nothing has: neither a file that stays nor a link to one.
bool openBeside(QFile& file, const QString& path)
{
    for (int number = 0;; ++number) {
        const QString suffix = number == 0 ? QString() : QString::number(number);
        file.setFileName(path + QStringLiteral(".part") + suffix);
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
            return true;
        const QFileInfo taken(file.fileName());
        if (!taken.exists() && !taken.isSymLink())
            return false;
    }
}

// A new file gets its name once it is whole. One that is there is overwritten in place: it may be a link,
// have rights of its own or stand in a folder that takes no new files.
void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    const QFileInfo present(path);
    if (present.exists()) {
        // Opening a pipe would wait for someone to read it.
        if (present.isFile() && file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            fill(file, content);
        return;
    }
    if (!openBeside(file, path) || !fill(file, content))
        return;
    if (std::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(path).constData()) != 0)
        file.remove();
}

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
        if (!content.bytes.isEmpty())
            writeFile(folder + file.name, content.bytes);
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

IconSetWriter::IconSetWriter()
{
    for (int i = 0; i < m_pool.maxThreadCount(); ++i) {
        m_pool.start([this] {
            Job job;
            while (takeJob(job, true))
                perform(job);
        });
    }
}

IconSetWriter::~IconSetWriter()
{
    wait();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_closed = true;
    }
    m_jobAdded.notify_all();
    m_pool.waitForDone();
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
    }
    job = nullptr;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (--m_running == 0 && m_jobs.empty())
        m_allDone.notify_all();
}
