// SPDX-License-Identifier: MIT
#include "icons/layoutproduction.h"

#include "wholesave.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QMutexLocker>
#include <QPainter>
#include <QThreadPool>

#include <cmath>

namespace {

struct Production {
    Q_DECLARE_TR_FUNCTIONS(LayoutProduction)
};

QByteArray encoded(const QImage& picture)
{
    constexpr int quality =
        70; // on Qt's scale: a quarter of the time of the default, for files hardly larger
    QBuffer buffer;
    return buffer.open(QIODevice::WriteOnly) && picture.save(&buffer, "PNG", quality) ? buffer.data()
                                                                                      : QByteArray();
}

QImage loaded(const QString& path)
{
    QImage picture = QImageReader(path).read();
    picture.setDevicePixelRatio(1); // which Qt reads out of a name like icon@2x.png
    return picture;
}

QImage scaled(const QImage& icon, int side)
{
    return icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

void drawCentred(QImage& canvas, const QImage& picture)
{
    QPainter painter(&canvas);
    painter.drawImage((canvas.width() - picture.width()) / 2, (canvas.height() - picture.height()) / 2,
                      picture);
}

QImage opaque(const QImage& icon, int side)
{
    QImage canvas(side, side, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    drawCentred(canvas, scaled(icon, side));
    return canvas;
}

// Launchers cut layers to shapes of their own; all show a circle of 66 of a layer's 108 units.
int sideWithinCircle(int layerSide)
{
    const int side = static_cast<int>(layerSide * 66 / (108 * std::sqrt(2.0)));
    return (layerSide - side) % 2 == 0 ? side : side - 1; // an equal margin on both sides
}

QImage foreground(const QImage& icon, int side)
{
    QImage canvas(side, side, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    drawCentred(canvas, scaled(icon, sideWithinCircle(side)));
    return canvas;
}

QImage background(const QImage& picture, int side)
{
    const QImage covering =
        picture.scaled(side, side, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    return covering.copy((covering.width() - side) / 2, (covering.height() - side) / 2, side, side);
}

// The file of a set that holds these pixels already; empty when none does.
QString stagedName(const LayoutFile& file, int platform)
{
    if (file.content != LayoutFile::Icon)
        return {};
    if (file.side == 0)
        return IconSet::wholeFile();
    return IconSet::sides(platform).contains(file.side) ? IconSet::fileName(platform, file.side) : QString();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

LayoutProduction::LayoutProduction(const IconJob& job, const QString& staged)
    : m_job(job)
    , m_staged(staged)
{
    // Where channels share a folder the later one's icons stay.
    QHash<QString, int> lastOf;
    for (int i = 0; i < job.channels.size(); ++i)
        lastOf.insert(job.channels.at(i).icon.strChannelDir, i);
    QHash<QString, int> known;
    for (int i = 0; i < job.channels.size(); ++i) {
        ST_CHANNEL_ICON icon = job.channels.at(i).icon;
        if (lastOf.value(icon.strChannelDir) != i)
            continue;
        const QString key = IconJob::isMarked(job.channels.at(i))
            ? QStringLiteral("%1 %2 %3 ").arg(icon.nCorner).arg(icon.nOffsetX).arg(icon.nOffsetY)
                + icon.strMarkName
            : QString();
        const QString folder = icon.strChannelDir;
        if (!known.contains(key)) {
            known.insert(key, m_decorations.size());
            icon.strChannelDir = QString::number(m_decorations.size());
            m_decorations.append(icon);
            m_folders.append(QStringList());
        }
        m_folders[known.value(key)].append(folder);
    }
}

QStringList LayoutProduction::stagedFiles() const
{
    QStringList files;
    for (const ST_CHANNEL_ICON& decoration : m_decorations) {
        for (const QString& name : IconSet::fileNames(m_job.layout.platform))
            files.append(m_staged + QLatin1Char('/') + decoration.strChannelDir + QLatin1Char('/') + name);
    }
    return files;
}

void LayoutProduction::run()
{
    if (!m_job.background.isEmpty())
        m_background = loaded(m_job.background);
    // A pool of its own: Qt scales in the global one, for which the tasks would wait.
    QThreadPool pool;
    for (int i = 0; i < m_decorations.size(); ++i)
        pool.start([this, i] { writeChannels(i); });
    pool.waitForDone();
}

void LayoutProduction::writeChannels(int decoration)
{
    const QString set =
        m_staged + QLatin1Char('/') + m_decorations.at(decoration).strChannelDir + QLatin1Char('/');
    const QImage icon = loaded(set + IconSet::wholeFile());
    QVector<QByteArray> contents;
    for (const QString& folder : m_folders.at(decoration)) {
        const QVector<LayoutFile> files = m_job.layout.filesOf(folder);
        for (int i = 0; i < files.size(); ++i) {
            if (contents.size() <= i) // the same for every folder
                contents.append(contentOf(files.at(i), set, icon));
            write(m_job.out + QLatin1Char('/') + files.at(i).path, contents.at(i));
        }
    }
}

QByteArray LayoutProduction::contentOf(const LayoutFile& file, const QString& set, const QImage& icon) const
{
    if (file.content == LayoutFile::Text)
        return file.text;
    if (file.content == LayoutFile::Background)
        return encoded(background(m_background, file.side));
    if (icon.isNull())
        return {};
    if (file.content == LayoutFile::Foreground)
        return encoded(foreground(icon, file.side));
    if (file.content == LayoutFile::OpaqueIcon)
        return encoded(opaque(icon, file.side));
    const QString staged = stagedName(file, m_job.layout.platform);
    return staged.isEmpty() ? encoded(scaled(icon, file.side)) : readFile(set + staged);
}

void LayoutProduction::write(const QString& path, const QByteArray& content)
{
    if (content.isEmpty())
        return complain(path, Production::tr("its picture could not be made"));
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder))
        return complain(path, Production::tr("the folder could not be made: %1").arg(qt_error_string()));
    const QFileInfo there(path);
    if (there.exists() && !there.isFile())
        return complain(path, Production::tr("what is there is no regular file"));
    const QString cause = saveWhole(path, content);
    if (!cause.isEmpty())
        complain(path, cause);
}

void LayoutProduction::complain(const QString& path, const QString& cause)
{
    const QMutexLocker locked(&m_mutex);
    m_causes.append(Production::tr("%1 was not written: %2").arg(path, cause));
}
