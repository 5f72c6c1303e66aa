// SPDX-License-Identifier: MIT
#include "icons/iconlayout.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace {

constexpr int longestName = 200; // bytes; a file's name has a few letters more

struct Density {
    const char* name;
    int side;
};
constexpr std::array<Density, 6> densities{
    {{"ldpi", 36}, {"mdpi", 48}, {"hdpi", 72}, {"xhdpi", 96}, {"xxhdpi", 144}, {"xxxhdpi", 192}}};

// One entry of an app icon set; its side is points times scale.
struct SetEntry {
    const char* idiom;
    double points;
    int scale;

    int side() const { return static_cast<int>(points * scale); }
};
constexpr std::array<SetEntry, 18> setEntries{{
    {"iphone", 20, 2},
    {"iphone", 20, 3},
    {"iphone", 29, 2},
    {"iphone", 29, 3},
    {"iphone", 40, 2},
    {"iphone", 40, 3},
    {"iphone", 60, 2},
    {"iphone", 60, 3},
    {"ipad", 20, 1},
    {"ipad", 20, 2},
    {"ipad", 29, 1},
    {"ipad", 29, 2},
    {"ipad", 40, 1},
    {"ipad", 40, 2},
    {"ipad", 76, 1},
    {"ipad", 76, 2},
    {"ipad", 83.5, 2},
    {"ios-marketing", IconLayout::storeSide, 1},
}};

QVector<LayoutFile> plainFiles(const QString& folder, int platform)
{
    QVector<LayoutFile> files;
    for (const int side : IconSet::sides(platform))
        files.append(
            {folder + QLatin1Char('/') + IconSet::fileName(platform, side), LayoutFile::Icon, side, {}});
    files.append({folder + QLatin1Char('/') + IconSet::wholeFile(), LayoutFile::Icon, 0, {}});
    return files;
}

QString resourceFolder(const QString& folder, const char* density)
{
    return folder + QLatin1String("/res/mipmap-") + QLatin1String(density) + QLatin1Char('/');
}

// Beside the folder: what is in it becomes part of the package, and this one is for the store's page.
LayoutFile storeFile(const QString& folder)
{
    return {folder + QLatin1Char('-') + IconSet::wholeFile(), LayoutFile::Icon, 0, {}};
}

// A built package finds its icons by the paths that it was built with.
QVector<LayoutFile> replacingFiles(const QString& folder, const QVector<PackageIcon>& base)
{
    QVector<LayoutFile> files;
    for (const PackageIcon& icon : base)
        files.append({folder + QLatin1Char('/') + icon.path, LayoutFile::Icon, icon.side, {}});
    files.append(storeFile(folder));
    return files;
}

QVector<LayoutFile> resourceFiles(const QString& folder, const QString& name)
{
    QVector<LayoutFile> files;
    for (const Density& density : densities)
        files.append({resourceFolder(folder, density.name) + name + QLatin1String(".png"),
                      LayoutFile::Icon,
                      density.side,
                      {}});
    files.append(storeFile(folder));
    return files;
}

QVector<LayoutFile> adaptiveFiles(const QString& folder, const QString& name)
{
    QVector<LayoutFile> files = resourceFiles(folder, name);
    for (const Density& density : densities) {
        const int side = density.side * 108 / 48; // what a layer has of the icon's 48 units
        const QString path = resourceFolder(folder, density.name) + name;
        files.append({path + QLatin1String("_foreground.png"), LayoutFile::Foreground, side, {}});
        files.append({path + QLatin1String("_background.png"), LayoutFile::Background, side, {}});
    }
    const QString layers =
        QStringLiteral("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                       "<adaptive-icon xmlns:android=\"http://schemas.android.com/apk/res/android\">\n"
                       "  <background android:drawable=\"@mipmap/%1_background\"/>\n"
                       "  <foreground android:drawable=\"@mipmap/%1_foreground\"/>\n"
                       "</adaptive-icon>\n")
            .arg(name);
    files.append({resourceFolder(folder, "anydpi-v26") + name + QLatin1String(".xml"), LayoutFile::Text, 0,
                  layers.toUtf8()});
    return files;
}

QByteArray appIconContents()
{
    QJsonArray images;
    for (const SetEntry& entry : setEntries) {
        const QString points = QString::number(entry.points);
        images.append(QJsonObject{
            {QStringLiteral("filename"), IconSet::fileName(IconSet::Ios, entry.side())},
            {QStringLiteral("idiom"), QLatin1String(entry.idiom)},
            {QStringLiteral("scale"), QStringLiteral("%1x").arg(entry.scale)},
            {QStringLiteral("size"), QString(points + QLatin1Char('x') + points)},
        });
    }
    const QJsonObject info{{QStringLiteral("author"), QStringLiteral("quenzo")},
                           {QStringLiteral("version"), 1}};
    return QJsonDocument({{QStringLiteral("images"), images}, {QStringLiteral("info"), info}}).toJson();
}

QVector<LayoutFile> appIconFiles(const QString& folder, const QString& name)
{
    const QString set = folder + QLatin1Char('/') + name + QLatin1String(".appiconset/");
    QVector<int> sides;
    for (const SetEntry& entry : setEntries) {
        if (!sides.contains(entry.side()))
            sides.append(entry.side());
    }
    std::sort(sides.begin(), sides.end());
    QVector<LayoutFile> files;
    for (const int side : qAsConst(sides))
        files.append({set + IconSet::fileName(IconSet::Ios, side),
                      side == IconLayout::storeSide ? LayoutFile::OpaqueIcon : LayoutFile::Icon,
                      side,
                      {}});
    files.append({set + QLatin1String("Contents.json"), LayoutFile::Text, 0, appIconContents()});
    return files;
}

} // namespace

QStringList IconLayout::arrangementNames()
{
    return {QStringLiteral("plain"), QStringLiteral("android-res"), QStringLiteral("android-adaptive"),
            QStringLiteral("ios-appiconset")};
}

QString IconLayout::usualName() const
{
    return platform == IconSet::Android ? QStringLiteral("ic_launcher") : QStringLiteral("AppIcon");
}

bool IconLayout::takesName(const QString& wanted) const
{
    static const QRegularExpression resource(QStringLiteral("\\A[a-z][a-z0-9_]*\\z"));
    static const QRegularExpression file(QStringLiteral("\\A[^/\\x00-\\x1f]+\\z"));
    const QRegularExpression& form = platform == IconSet::Android ? resource : file;
    return wanted.toUtf8().size() <= longestName && form.match(wanted).hasMatch();
}

QVector<LayoutFile> IconLayout::filesOf(const QString& folder) const
{
    switch (arrangement) {
    case Plain:
        break;
    case AndroidRes:
        return base.isEmpty() ? resourceFiles(folder, name) : replacingFiles(folder, base);
    case AndroidAdaptive:
        return adaptiveFiles(folder, name);
    case IosAppIconSet:
        return appIconFiles(folder, name);
    }
    return plainFiles(folder, platform);
}

QString IconLayout::shownFile(const QString& folder) const
{
    constexpr int shownSide = 144; // or the next larger one, or the largest there is
    const QVector<LayoutFile> files = filesOf(folder);
    const LayoutFile* shown = &files.first();
    for (const LayoutFile& file : files) {
        if (file.content == LayoutFile::Icon && shown->side < shownSide && file.side > shown->side)
            shown = &file;
    }
    return shown->path;
}
