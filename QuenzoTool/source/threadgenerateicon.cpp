// SPDX-License-Identifier: MIT
#include "threadgenerateicon.h"

#include "files/treefolder.h"
#include "icons/iconplan.h"
#include "icons/iconsetwriter.h"
#include "messages.h"
#include "trees/treeremoval.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr int platformAndroid = 0;
constexpr int cornerDefault = 4;
constexpr int cornerRightBottom = 3;

QString cornerFile(int corner)
{
    switch (corner) {
    case 0:
        return QStringLiteral("left-top.png");
    case 1:
        return QStringLiteral("left-bottom.png");
    case 2:
        return QStringLiteral("right-top.png");
    default:
        return QStringLiteral("right-bottom.png");
    }
}

template <std::size_t count, typename Name>
QVector<IconFile> iconFiles(const std::array<int, count>& sides, Name name)
{
    QVector<IconFile> files;
    for (const int side : sides)
        files.append({side, name(QString::number(side))});
    files.append({0, QStringLiteral("icon512x512.png")});
    return files;
}

// What is no file counts as no picture: a pipe would be waited for. The device pixel ratio that Qt reads out
// of a name like icon@2x.png would double the mark and its position.
QImage loadPicture(const QString& path, const char* title)
{
    const QFileInfo file(path);
    if (file.exists() && !file.isFile()) {
        qCWarning(iconsLog).noquote() << title << path << "cannot be loaded: it is no regular file";
        return {};
    }
    QImageReader reader(path);
    QImage picture = reader.read();
    if (picture.isNull())
        qCWarning(iconsLog).noquote() << title << path << "cannot be loaded:" << reader.errorString();
    picture.setDevicePixelRatio(1);
    return picture;
}

// The bytes that the icon takes in memory, or the largest file that is scaled from it.
qint64 largestPicture(const QString& gameIcon, int platform)
{
    const qint64 largestSide = platform == platformAndroid ? 192 : 180;
    if (!QFileInfo(gameIcon).isFile())
        return 0;
    const QImageReader reader(gameIcon);
    const QSize size = reader.size();
    if (!size.isValid()) // not every format tells it beforehand
        return std::numeric_limits<qint64>::max();
    const QImage::Format format = reader.imageFormat();
    const bool isUsual =
        format != QImage::Format_Invalid && QImage::toPixelFormat(format).bitsPerPixel() <= 32;
    return std::max(qint64(size.width()) * size.height(), largestSide * largestSide) * (isUsual ? 4 : 8);
}

// What the system takes the path for, where Qt would take back ".." by its text: a link in the place of the
// folder itself is left one.
QByteArray placeOf(const QString& path)
{
    const QFileInfo folder(QDir(path).path());
    const QString name = folder.fileName();
    const bool isName = !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..");
    const QString place = isName ? QFileInfo(folder.path()).canonicalFilePath() + QLatin1Char('/') + name
                                 : folder.canonicalFilePath();
    return TreeFolder::nativePath(place);
}

void clear(const QString& path)
{
    const QDir root(path);
    if (root.exists() && !removeTree(placeOf(path)) && root.exists()
        && !root.isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
        qCWarning(iconsLog).noquote() << "the folder" << path << "could not be cleared";
}

// The channel's folder in its canonical form, made if need be; empty when it cannot be.
QString makeFolder(const QString& path)
{
    QDir folder(path);
    if (!folder.exists() && !folder.mkdir(path))
        qCWarning(iconsLog).noquote() << "the folder" << path << "could not be made:" << qt_error_string();
    return folder.exists() ? folder.canonicalPath() : QString();
}

Decoration decorationOf(const ST_CHANNEL_ICON& channel, const QString& markRoot)
{
    if (channel.strMarkName == QLatin1String("None"))
        return {};
    const QString markPath = markRoot + QLatin1Char('/') + channel.strMarkName + QLatin1String("/icon/")
        + cornerFile(channel.nCorner);
    return {markPath, channel.nOffsetX, channel.nOffsetY};
}

void drawMark(QImage& icon, const QImage& mark, const Decoration& decoration)
{
    const qint64 left = decoration.x;
    const qint64 top = -qint64(decoration.y);
    const bool visible =
        left < icon.width() && left + mark.width() > 0 && top < icon.height() && top + mark.height() > 0;
    if (icon.isNull() || mark.isNull() || !visible)
        return;
    // QPainter refuses pictures with a table of colours, or paints with the nearest of two.
    if (icon.pixelFormat().colorModel() == QPixelFormat::Indexed)
        icon = icon.convertToFormat(icon.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    QPainter painter(&icon);
    painter.drawImage(static_cast<int>(left), static_cast<int>(top), mark);
}

} // namespace

struct ThreadGenerateIcon::Production {
    explicit Production(qint64 largestPicture)
        : writer(largestPicture)
    {
    }
    IconPlan plan;
    IconSetWriter writer;
};

ThreadGenerateIcon::ThreadGenerateIcon(QObject* parent)
    : QThread(parent)
    , m_strOutputDir(QLatin1String(""))
{
}

ThreadGenerateIcon::~ThreadGenerateIcon() = default;

void ThreadGenerateIcon::setInfo(QString markRoot, const QList<ST_CHANNEL_ICON>& channels)
{
    m_strMarkRoot = markRoot;
    m_lsChannelIcon = channels;
}

void ThreadGenerateIcon::setGameInfo(QString gameIcon, int defaultCorner, int defaultX, int defaultY,
                                     int platform)
{
    m_strGameIcon = gameIcon;
    m_nDefaultCorner = defaultCorner;
    m_nDefaultX = defaultX;
    m_nDefaultY = defaultY;
    m_nPlatform = platform;
}

void ThreadGenerateIcon::setOutputDir(QString dir)
{
    m_strOutputDir = dir;
}

void ThreadGenerateIcon::setClearDirFirst(bool clear)
{
    m_bClearDirFirst = clear;
}

void ThreadGenerateIcon::run()
{
    if (!QFile::exists(m_strGameIcon) || m_strOutputDir.isEmpty() || QDir::isRelativePath(m_strOutputDir))
        return;
    Production production(largestPicture(m_strGameIcon, m_nPlatform));
    if (!production.writer.isReady()) {
        qCWarning(iconsLog).noquote() << "no icon is made: the system gives no threads for it";
        return;
    }
    if (m_bClearDirFirst)
        clear(m_strOutputDir);
    if (!QDir(m_strOutputDir).mkpath(m_strOutputDir))
        qCWarning(iconsLog).noquote()
            << "the folder" << m_strOutputDir << "could not be made:" << qt_error_string();

    m_production = &production;
    const QString gameIconDir = QFileInfo(QFileInfo(m_strGameIcon).canonicalFilePath()).path();
    for (const ST_CHANNEL_ICON& channel : qAsConst(m_lsChannelIcon)) {
        // Such a folder may have the name of a file that is still to be written, and then cannot be made.
        if (channel.strChannelDir.contains(QLatin1String(".png")))
            produce();
        const QString folder = makeFolder(m_strOutputDir + channel.strChannelDir + QLatin1Char('/'));
        production.plan.add(decorationOf(withDefaults(channel), m_strMarkRoot), folder);
        // Its files may replace the game's icon, which the channels after it then get.
        if (folder == gameIconDir)
            produce();
    }
    produce();
    m_production = nullptr;
}

ST_CHANNEL_ICON ThreadGenerateIcon::withDefaults(ST_CHANNEL_ICON channel) const
{
    if (channel.nCorner != cornerDefault)
        return channel;
    channel.nCorner = m_nDefaultCorner == cornerDefault ? cornerRightBottom : m_nDefaultCorner;
    channel.nOffsetX = m_nDefaultX;
    channel.nOffsetY = m_nDefaultY;
    return channel;
}

// Makes the icons that are planned so far.
void ThreadGenerateIcon::produce()
{
    if (m_production->plan.isEmpty())
        return;
    const QImage icon = loadPicture(m_strGameIcon, "the icon");
    const QVector<IconPlan::Group> groups = m_production->plan.take();
    for (const IconPlan::Group& group : groups) {
        m_imgIcon = icon;
        if (!group.decoration.markPath.isEmpty())
            drawMark(m_imgIcon, loadPicture(group.decoration.markPath, "the mark"), group.decoration);
        for (const QString& folder : group.folders) {
            if (m_nPlatform == platformAndroid)
                generateAndroidIcon(folder + QLatin1Char('/'));
            else
                generateIOSIcon(folder + QLatin1Char('/'));
        }
    }
    m_production->writer.wait();
}

void ThreadGenerateIcon::generateAndroidIcon(QString channelDir)
{
    static constexpr std::array<int, 6> sides{36, 48, 72, 96, 144, 192};
    m_production->writer.write(m_imgIcon,
                               iconFiles(sides,
                                         [](const QString& side) {
                                             return QString(QLatin1String("icon") + side + QLatin1Char('x')
                                                            + side + QLatin1String(".png"));
                                         }),
                               channelDir);
}

void ThreadGenerateIcon::generateIOSIcon(QString channelDir)
{
    static constexpr std::array<int, 15> sides{29, 40,  50,  57,  58,  72,  76, 80,
                                               87, 100, 114, 120, 144, 152, 180};
    m_production->writer.write(m_imgIcon,
                               iconFiles(sides,
                                         [](const QString& side) {
                                             return QString(QLatin1String("Icon-") + side
                                                            + QLatin1String(".png"));
                                         }),
                               channelDir);
}
