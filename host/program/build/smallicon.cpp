// SPDX-License-Identifier: MIT
#include "build/smallicon.h"

#include "icons/iconset.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QImageReader>

#include <limits>

namespace {

constexpr int side = 144; // which both platforms have

// What the run has drawn besides; the names of Android's are the base's.
QStringList othersOf(const QFileInfo& icon)
{
    QStringList files;
    if (icon.fileName() == IconSet::wholeFile())
        files.append(icon.path() + QLatin1Char('/') + IconSet::fileName(IconSet::Ios, side));
    if (icon.fileName() != QLatin1String("android-icon.png"))
        return files;
    QDirIterator entries(icon.path() + QStringLiteral("/android"), {QStringLiteral("*.png")},
                         QDir::Files | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (entries.hasNext())
        files.append(entries.next());
    return files;
}

// By the file's header; 0 for what is no picture.
int widthOf(const QString& path)
{
    QImageReader reader(path, "png");
    reader.setAutoDetectImageFormat(false);
    return QFileInfo(path).isFile() ? reader.size().width() : 0;
}

} // namespace

QString smallIconOf(const QString& icon)
{
    QString found = icon;
    int least = std::numeric_limits<int>::max();
    for (const QString& file : othersOf(QFileInfo(icon))) {
        const int width = widthOf(file);
        if (width < side || width >= least)
            continue;
        found = file;
        least = width;
    }
    return found;
}
