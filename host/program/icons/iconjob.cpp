// SPDX-License-Identifier: MIT
#include "icons/iconjob.h"

#include "fileidentity.h"
#include "icons/picturefault.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImage>
#include <QImageReader>
#include <QSet>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace {

struct Job {
    Q_DECLARE_TR_FUNCTIONS(Job)
};

bool holds(const QString& folder, const QString& path)
{
    const QString inner = QFileInfo(path).canonicalFilePath();
    return !inner.isEmpty()
        && (inner == folder || folder == QLatin1String("/") || inner.startsWith(folder + QLatin1Char('/')));
}

QString markPath(const IconJob& job, const QString& mark, int corner)
{
    return job.marks + QLatin1Char('/') + mark + QLatin1Char('/') + IconSet::cornerFile(corner);
}

QString markPath(const IconJob& job, const ST_CHANNEL_ICON& icon)
{
    return markPath(job, icon.strMarkName, icon.nCorner);
}

struct Input {
    QString path;
    QString title;
};

// The files that must stay as they are; among them the pictures of marks that no channel uses.
QVector<Input> inputsOf(const IconJob& job)
{
    QVector<Input> inputs{{job.icon, Job::tr("the icon '%1'").arg(job.icon)}};
    if (!job.base.isEmpty())
        inputs.append({job.base, Job::tr("the package '%1'").arg(job.base)});
    if (!job.background.isEmpty())
        inputs.append({job.background, Job::tr("the background '%1'").arg(job.background)});
    if (job.list != QLatin1String("-"))
        inputs.append({job.list, Job::tr("the channel list '%1'").arg(job.list)});
    QStringList marks = QDir(job.marks).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    // A folder that may be entered, but not listed, shows none of them.
    for (const ListedChannel& channel : job.channels)
        marks.append(channel.icon.strMarkName);
    marks.removeDuplicates();
    for (const QString& mark : qAsConst(marks)) {
        for (int corner = 0; corner <= IconSet::RightBottom; ++corner) {
            const QString path = markPath(job, mark, corner);
            inputs.append({path, Job::tr("the mark picture '%1'").arg(path)});
        }
    }
    return inputs;
}

// A mark that is no file, like a pipe, would be waited for.
QString faultOfMarkFiles(const IconJob& job)
{
    for (const ListedChannel& channel : job.channels) {
        const QFileInfo mark(markPath(job, channel.icon));
        if (IconJob::isMarked(channel) && mark.exists() && !mark.isFile())
            return Job::tr("the mark picture '%1' is not a regular file").arg(mark.filePath());
    }
    return {};
}

QString faultOfIcons(const IconJob& job)
{
    QHash<FileIdentity, QString> titles;
    for (const Input& input : inputsOf(job))
        titles.insert(identityOf(input.path), input.title);
    titles.remove({});
    for (const QString& file : job.files()) {
        const QString title = titles.value(identityOf(file));
        if (!title.isEmpty())
            return Job::tr("%1 is one of the files to be written").arg(title);
    }
    return {};
}

QString faultOfSheet(const IconJob& job)
{
    if (job.sheet.isEmpty() || job.sheet == QLatin1String("-"))
        return {};
    const FileIdentity identity = identityOf(job.sheet);
    const QString place = placeOf(job.sheet);
    const auto isSheet = [&](const QString& path) {
        return placeOf(path) == place || (identity.isKnown() && identityOf(path) == identity);
    };
    const QString folder = QFileInfo(job.sheet).path();
    if (!QFileInfo(folder).isDir() && !place.startsWith(job.out + QLatin1Char('/')))
        return Job::tr("the sheet '%1' cannot be written: there is no folder '%2'").arg(job.sheet, folder);
    for (const Input& input : inputsOf(job)) {
        if (isSheet(input.path))
            return Job::tr("the sheet would replace %1").arg(input.title);
    }
    for (const QString& file : job.files()) {
        if (isSheet(file))
            return Job::tr("the sheet would replace '%1', one of the files to be written").arg(file);
    }
    return {};
}

QString faultOfClearing(const IconJob& job)
{
    const QFileInfo root(job.out);
    if (job.keep || !root.exists())
        return {};
    const std::initializer_list<std::pair<QString, QString>> kept{
        {QDir::rootPath(), Job::tr("the whole file system")},
        {QDir::homePath(), Job::tr("your home folder")},
        {QDir::currentPath(), Job::tr("the current folder")},
        {QCoreApplication::applicationDirPath(), Job::tr("this program")},
        {job.icon, Job::tr("the icon")},
        {job.marks, Job::tr("the marks")},
        {job.list == QLatin1String("-") ? QString() : job.list, Job::tr("the channel list")},
    };
    for (const auto& [path, what] : kept) {
        if (!path.isEmpty() && holds(root.canonicalFilePath(), path))
            return Job::tr(
                       "the output folder '%1' is deleted first, and it holds %2 (--keep deletes nothing)")
                .arg(job.out, what);
    }
    return {};
}

bool isEmpty(const QString& folder)
{
    return QDir(folder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

// Empty for what is no picture.
QSize sizeOf(const QString& path)
{
    if (!QFileInfo(path).isFile())
        return {};
    QImageReader reader(path);
    const QSize size = reader.size();
    return size.isValid() ? size : reader.read().size(); // not every format tells it beforehand
}

QString shown(const QSize& size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

// An entry of an app icon set names the size that its file must have.
QString faultOfShape(const IconJob& job)
{
    const QSize size = sizeOf(job.icon);
    if (job.layout.arrangement != IconLayout::IosAppIconSet || size.width() == size.height())
        return {};
    return Job::tr("the icon has %1 pixels, and an app icon set takes a square one").arg(shown(size));
}

bool hasTransparentParts(const QString& path)
{
    const QImage picture = QImageReader(path).read().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < picture.height(); ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        if (std::any_of(line, line + picture.width(), [](QRgb pixel) { return qAlpha(pixel) < 255; }))
            return true;
    }
    return false;
}

// What the store's large picture will not be as it should.
QStringList doubtsOfStorePicture(const IconJob& job)
{
    if (job.layout.arrangement != IconLayout::IosAppIconSet)
        return {};
    QStringList texts;
    const QSize size = sizeOf(job.icon);
    if (size.width() < IconLayout::storeSide)
        texts.append(Job::tr("the icon has %1 pixels, and is enlarged for the store's picture of %2")
                         .arg(shown(size), shown(QSize(IconLayout::storeSide, IconLayout::storeSide))));
    if (hasTransparentParts(job.icon))
        texts.append(Job::tr("the icon has transparent parts, which become white in the store's picture"));
    return texts;
}

// Why not all of a mark will be seen; empty when it will.
QString faultOfPlace(const ST_CHANNEL_ICON& icon, const QSize& markSize, const QSize& iconSize)
{
    const qint64 x = icon.nOffsetX;
    const qint64 y = -qint64(icon.nOffsetY);
    const qint64 right = x + markSize.width();
    const qint64 bottom = y + markSize.height();
    if (x >= iconSize.width() || y >= iconSize.height() || right <= 0 || bottom <= 0)
        return Job::tr("the mark lies outside the icon: its top left corner is at (%1, %2)").arg(x).arg(y);
    if (x < 0 || y < 0 || right > iconSize.width() || bottom > iconSize.height())
        return Job::tr("the mark is cut off: it has %1 pixels at (%2, %3), and the icon has %4")
            .arg(shown(markSize))
            .arg(x)
            .arg(y)
            .arg(shown(iconSize));
    return {};
}

} // namespace

void IconJob::placeMarks()
{
    const QSize iconSize = sizeOf(icon);
    for (ListedChannel& channel : channels) {
        ST_CHANNEL_ICON& decoration = channel.icon;
        if (decoration.nCorner == IconSet::Default) {
            decoration.nCorner = defaultCorner;
            decoration.nOffsetX = defaultX.value_or(0);
            decoration.nOffsetY = defaultY.value_or(0);
            channel.givesX = defaultX.has_value();
            channel.givesY = defaultY.has_value();
        }
        const QSize markSize = isMarked(channel) ? sizeOf(markPath(*this, decoration)) : QSize();
        if (markSize.isEmpty())
            continue;
        if (!channel.givesX)
            decoration.nOffsetX =
                IconSet::isRight(decoration.nCorner) ? iconSize.width() - markSize.width() : 0;
        if (!channel.givesY)
            decoration.nOffsetY =
                IconSet::isBottom(decoration.nCorner) ? markSize.height() - iconSize.height() : 0;
    }
}

bool IconJob::isMarked(const ListedChannel& channel)
{
    return channel.icon.strMarkName != QLatin1String("None");
}

QString IconJob::folderOf(const ListedChannel& channel) const
{
    return out + QLatin1Char('/') + channel.icon.strChannelDir;
}

QStringList IconJob::files() const
{
    QStringList paths;
    for (const ListedChannel& channel : channels) {
        for (const LayoutFile& file : layout.filesOf(channel.icon.strChannelDir))
            paths.append(out + QLatin1Char('/') + file.path);
    }
    paths.removeDuplicates();
    return paths;
}

QString IconJob::danger() const
{
    const QFileInfo root(out);
    if (root.exists() && !root.isDir())
        return Job::tr("the output folder '%1' is not a folder").arg(out);
    for (const auto& faultOf :
         {faultOfShape, faultOfMarkFiles, faultOfIcons, faultOfSheet, faultOfClearing}) {
        QString fault = faultOf(*this);
        if (!fault.isEmpty())
            return fault;
    }
    return {};
}

bool IconJob::isForeign() const
{
    return !isEmpty(out) && !QFileInfo::exists(marker());
}

QString IconJob::refusal() const
{
    if (keep || clear || !isForeign())
        return {};
    return Job::tr("the output folder '%1' is not empty, and no earlier run has made it: --clear deletes "
                   "what is in it, --keep leaves it")
        .arg(out);
}

QString IconJob::marker() const
{
    return out + QLatin1String("/.quenzo-icons");
}

QStringList IconJob::leftovers() const
{
    if (keep)
        return {};
    QSet<QString> own;
    QStringList folders{out};
    for (const ListedChannel& channel : channels)
        folders.append(folderOf(channel));
    for (const QString& path : files() + folders)
        own.insert(path);
    folders.removeDuplicates();

    QStringList others;
    for (const QString& folder : qAsConst(folders)) {
        QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        while (entries.hasNext()) {
            const QString path = entries.next();
            if (!own.contains(path))
                others.append(path);
        }
    }
    others.sort();
    return others;
}

QStringList IconJob::missingMarks() const
{
    QStringList texts;
    for (const ListedChannel& channel : channels) {
        const QString fault =
            isMarked(channel) ? PictureFault::ofMark(markPath(*this, channel.icon)) : QString();
        if (!fault.isEmpty())
            texts.append(Job::tr("channel '%1': %2").arg(channel.name, fault));
    }
    return texts;
}

QStringList IconJob::warnings() const
{
    QStringList texts = doubtsOfStorePicture(*this);
    for (const QString& other : keptIcons)
        texts.append(Job::tr("%1 also shows %2 as its icon, which stays").arg(base, other));
    QSet<QString> folders;
    const QSize iconSize = sizeOf(icon);
    for (const ListedChannel& channel : channels) {
        const QString& folder = channel.icon.strChannelDir;
        if (folders.contains(folder))
            texts.append(
                Job::tr("the folder '%1' is given twice; the later channel's icons stay").arg(folder));
        folders.insert(folder);
        if (channel.losesPlace && !defaultX && !defaultY && isMarked(channel))
            texts.append(Job::tr("channel '%1': \"x\" and \"y\" do not count without a \"corner\"; the "
                                 "options of the default one place the mark")
                             .arg(channel.name));
        const QSize markSize = isMarked(channel) ? sizeOf(markPath(*this, channel.icon)) : QSize();
        const QString fault = markSize.isEmpty() ? QString() : faultOfPlace(channel.icon, markSize, iconSize);
        if (!fault.isEmpty())
            texts.append(Job::tr("channel '%1': %2").arg(channel.name, fault));
    }
    return texts;
}

bool IconJob::markAsOwn() const
{
    QFile file(marker());
    return file.open(QIODevice::WriteOnly);
}
