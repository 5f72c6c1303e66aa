// SPDX-License-Identifier: MIT
#include "window/channels/channelicons.h"

#include "icons/iconset.h"
#include "window/background.h"

#include <threadgenerateicon.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImageReader>
#include <QPixmap>
#include <QTemporaryDir>

#include <utility>

// One icon on its way.
struct ChannelIcons::Entry {
    QString key;
    QString mark;
    MarkPlace place;
    QString file; // where it stays
    ST_CHANNEL_ICON icon; // what the library makes of it; its folder is the file's name
    QImage picture;
};

// Those that are made together, so that none of the threads needs the object.
struct ChannelIcons::Batch {
    QString folder;
    QString master;
    QString marks;
    int state = 0;
    QVector<Entry> entries;
    bool isFirst = false; // of this start
    QStringList pictures; // the files that were read, and their folders, as far as they are there
    std::unique_ptr<QTemporaryDir> made;
    int madeCount = 0;
};

namespace {

constexpr int shownSide = 96; // sharp at 48 pixels on a screen of the double density
constexpr int batchSize = 8;
constexpr int mostWishes = 64; // what has been scrolled away is asked for again when it comes back
constexpr int mostIcons = 1000; // in memory, 36 KiB each
constexpr int keptDays = 60;

QString keyOf(const QString& mark, const MarkPlace& place)
{
    const auto text = [](const std::optional<int>& pixels) {
        return pixels ? QString::number(*pixels) : QStringLiteral("-");
    };
    return QStringLiteral("%1/%2/%3/").arg(QString::number(place.corner), text(place.x), text(place.y))
        + mark;
}

// A picture as it is on the disk: its size, and a digest of its content.
struct Picture {
    QSize size;
    QByteArray identity;
};

Picture pictureAt(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    QCryptographicHash digest(QCryptographicHash::Sha1);
    digest.addData(&file);
    QImageReader reader(path);
    return {reader.size().isValid() ? reader.size() : reader.read().size(), digest.result()};
}

void removeOld(const QString& folder)
{
    const QDateTime oldest = QDateTime::currentDateTime().addDays(-keptDays);
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files)) {
        if (file.lastModified() < oldest)
            QFile::remove(file.filePath());
    }
}

QImage loaded(const QString& file)
{
    return QFile::exists(file) ? QImage(file) : QImage();
}

// The folder as well: a picture that is replaced is another file, and a missing one may come.
void addWatched(const QString& picture, QStringList& paths)
{
    for (const QString& path : {picture, QFileInfo(picture).path()}) {
        if (!paths.contains(path) && QFileInfo::exists(path))
            paths.append(path);
    }
}

} // namespace

ChannelIcons::ChannelIcons(const QString& folder, QObject* parent)
    : QObject(parent)
    , m_folder(folder)
    , m_icons(mostIcons)
{
    m_begin.setSingleShot(true);
    connect(&m_begin, &QTimer::timeout, this, &ChannelIcons::takeWishes);
    m_news.setSingleShot(true);
    m_news.setInterval(200); // a program that writes a picture does so in several steps
    connect(&m_news, &QTimer::timeout, this, &ChannelIcons::beginAnew);
    const auto begin = QOverload<>::of(&QTimer::start);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_news, begin);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_news, begin);
}

ChannelIcons::~ChannelIcons()
{
    if (m_generator)
        m_generator->wait();
}

void ChannelIcons::setPictures(const QString& master, const QString& marks)
{
    if (m_master == master && m_marks == marks)
        return;
    m_master = master;
    m_marks = marks;
    m_icons.clear();
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    if (!watched.isEmpty())
        m_watcher.removePaths(watched);
    beginAnew();
}

void ChannelIcons::beginAnew()
{
    ++m_state;
    Q_EMIT picturesChanged();
    Q_EMIT changed();
}

QIcon ChannelIcons::iconOf(const QString& mark, const MarkPlace& place)
{
    if (m_master.isEmpty())
        return {};
    const QString key = keyOf(mark, mark.isEmpty() ? MarkPlace() : place);
    const Icon* const known = m_icons.object(key);
    if ((!known || known->state != m_state) && !m_asked.contains(key)) {
        Entry entry;
        entry.key = key;
        entry.mark = mark;
        entry.place = place;
        m_wishes.append(entry);
        m_asked.insert(key);
        if (m_wishes.size() > mostWishes)
            m_asked.remove(m_wishes.takeFirst().key);
        if (!m_batch && !m_begin.isActive())
            m_begin.start(0);
    }
    return known ? known->picture : QIcon();
}

void ChannelIcons::takeWishes()
{
    if (m_batch || m_wishes.isEmpty())
        return;
    m_batch = std::make_shared<Batch>();
    m_batch->folder = m_folder;
    m_batch->master = m_master;
    m_batch->marks = m_marks;
    m_batch->state = m_state;
    m_batch->isFirst = !std::exchange(m_hasTidied, true);
    while (!m_wishes.isEmpty() && m_batch->entries.size() < batchSize)
        m_batch->entries.append(m_wishes.takeLast());
    run(&ChannelIcons::look, &ChannelIcons::make);
}

void ChannelIcons::run(void (*work)(Batch& batch), void (ChannelIcons::*then)())
{
    inBackground(
        this,
        [work, batch = m_batch] {
            work(*batch);
            return true;
        },
        [this, then](bool) { (this->*then)(); });
}

// Finds out what the library has to make, and what has been made before.
void ChannelIcons::look(Batch& batch)
{
    if (QDir().mkpath(batch.folder) && batch.isFirst)
        removeOld(batch.folder);
    const Picture master = pictureAt(batch.master);
    addWatched(batch.master, batch.pictures);
    QHash<QString, Picture> marks;
    for (Entry& entry : batch.entries) {
        const QString path =
            QStringLiteral("%1/%2/%3").arg(batch.marks, entry.mark, IconSet::cornerFile(entry.place.corner));
        if (!entry.mark.isEmpty() && !marks.contains(path)) {
            marks.insert(path, pictureAt(path));
            addWatched(path, batch.pictures);
        }
        const Picture mark = entry.mark.isEmpty() ? Picture() : marks.value(path);
        if (master.size.isEmpty() || (!entry.mark.isEmpty() && mark.size.isEmpty()))
            continue; // a run would refuse it
        const QPoint at = entry.place.cornerIn(master.size, mark.size);
        entry.icon.nCorner = entry.place.corner;
        entry.icon.nOffsetX = at.x();
        entry.icon.nOffsetY = -at.y();
        entry.icon.strMarkName = entry.mark.isEmpty() ? QStringLiteral("None") : entry.mark;
        const QByteArray all = master.identity + mark.identity
            + (entry.mark.isEmpty() ? QByteArray()
                                    : QByteArray::number(at.x()) + ' ' + QByteArray::number(at.y()));
        entry.icon.strChannelDir =
            QString::fromLatin1(QCryptographicHash::hash(all, QCryptographicHash::Sha1).toHex());
        entry.file = batch.folder + QLatin1Char('/') + entry.icon.strChannelDir + QLatin1String(".png");
        entry.picture = loaded(entry.file);
    }
}

void ChannelIcons::make()
{
    QList<ST_CHANNEL_ICON> icons;
    for (const Entry& entry : qAsConst(m_batch->entries)) {
        if (!entry.file.isEmpty() && entry.picture.isNull())
            icons.append(entry.icon);
    }
    m_batch->made = std::make_unique<QTemporaryDir>(m_folder + QStringLiteral("/making-XXXXXX"));
    if (icons.isEmpty() || !m_batch->made->isValid()) {
        finish();
        return;
    }
    m_batch->madeCount = icons.size();
    m_generator = std::make_unique<ThreadGenerateIcon>();
    m_generator->setGameInfo(m_batch->master, IconSet::RightBottom, 0, 0, IconSet::Android);
    m_generator->setInfo(m_batch->marks, icons);
    m_generator->setOutputDir(m_batch->made->path() + QLatin1Char('/'));
    m_generator->setClearDirFirst(false);
    connect(m_generator.get(), &QThread::finished, this, &ChannelIcons::gather);
    m_generator->start();
}

void ChannelIcons::gather()
{
    m_generator->wait();
    run(&ChannelIcons::collect, &ChannelIcons::finish);
}

void ChannelIcons::collect(Batch& batch)
{
    for (Entry& entry : batch.entries) {
        if (entry.file.isEmpty() || !entry.picture.isNull())
            continue;
        const QString made = batch.made->filePath(entry.icon.strChannelDir + QLatin1Char('/')
                                                  + IconSet::fileName(IconSet::Android, shownSide));
        if (QFile::exists(made)) {
            QFile::remove(entry.file); // one that could not be read
            QFile::rename(made, entry.file);
        }
        entry.picture = loaded(entry.file);
    }
    batch.made.reset();
}

void ChannelIcons::finish()
{
    const std::shared_ptr<Batch> batch = std::move(m_batch);
    m_batch.reset();
    m_madeCount += batch->madeCount;
    const bool isCurrent = batch->master == m_master && batch->marks == m_marks;
    for (const Entry& entry : qAsConst(batch->entries)) {
        m_asked.remove(entry.key);
        if (!isCurrent)
            continue;
        auto icon = std::make_unique<Icon>();
        if (!entry.picture.isNull()) {
            const QPixmap picture = QPixmap::fromImage(entry.picture);
            icon->picture = QIcon(picture);
            icon->picture.addPixmap(picture, QIcon::Selected); // not tinted: it is what people compare
        }
        icon->state = batch->state;
        m_icons.insert(entry.key, icon.release());
    }
    if (isCurrent)
        watch(batch->pictures);
    Q_EMIT changed();
    takeWishes();
}

void ChannelIcons::watch(const QStringList& paths)
{
    QStringList fresh;
    const QStringList known = m_watcher.files() + m_watcher.directories();
    for (const QString& path : paths) {
        if (!known.contains(path))
            fresh.append(path);
    }
    if (!fresh.isEmpty())
        m_watcher.addPaths(fresh);
}
