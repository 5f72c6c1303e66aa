// SPDX-License-Identifier: MIT
#include "icons/packageicons.h"

#include <quenzotool.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>

namespace {

struct Package {
    Q_DECLARE_TR_FUNCTIONS(PackageIcons)
};

constexpr int plainDensity = 160;
constexpr int plainSide = 48;
constexpr int highestDensity = 640; // above it stand the numbers for "any" and "none"

// The density that a resource folder is for; 0 when its name tells none.
int densityOf(const QString& path)
{
    static const QMap<QString, int> densities{
        {QStringLiteral("ldpi"), 120},   {QStringLiteral("mdpi"), 160},  {QStringLiteral("tvdpi"), 213},
        {QStringLiteral("hdpi"), 240},   {QStringLiteral("xhdpi"), 320}, {QStringLiteral("xxhdpi"), 480},
        {QStringLiteral("xxxhdpi"), 640}};
    for (const QString& word : QFileInfo(path).path().split(QRegularExpression(QStringLiteral("[-/]")))) {
        if (densities.contains(word))
            return densities.value(word);
    }
    return 0;
}

// A package may name anything; only what lies below a folder can be put into one.
bool isInside(const QString& path)
{
    return QDir::isRelativePath(path) && QDir::cleanPath(path) == path && path != QLatin1String("..")
        && !path.startsWith(QLatin1String("../"));
}

} // namespace

PackageIcons parseBadging(const QString& badging)
{
    static const QRegularExpression line(QStringLiteral("^application-icon-(\\d+):'(.+)'\\r?$"),
                                         QRegularExpression::MultilineOption);
    PackageIcons icons;
    QMap<QString, int> listed; // path to the highest density that it is listed for
    for (auto matches = line.globalMatch(badging); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const QString path = match.captured(2);
        const int density = match.captured(1).toInt();
        const bool isPicture = path.endsWith(QLatin1String(".png"), Qt::CaseInsensitive) && isInside(path);
        if (isPicture)
            listed[path] = qMax(listed.value(path), density <= highestDensity ? density : 0);
        else if (!icons.others.contains(path))
            icons.others.append(path);
    }
    for (auto icon = listed.cbegin(); icon != listed.cend(); ++icon) {
        const int own = densityOf(icon.key());
        const int density = own > 0 ? own : icon.value() > 0 ? icon.value() : plainDensity;
        icons.pictures.append({icon.key(), qMax(1, density * plainSide / plainDensity)});
    }
    return icons;
}

PackageIcons iconsOfPackage(const QString& apk, QString& fault)
{
    if (!QFileInfo(apk).isFile()) {
        fault = Package::tr("the package '%1' is no file").arg(apk);
        return {};
    }
    QString path = QFileInfo(apk).absoluteFilePath();
    path.replace(QLatin1Char('"'), QLatin1String(R"(""")")); // as a command line spells it
    QString badging;
    QString error;
    const bool ended = QuenzoTool::runCmdWaitFinish(
        QStringLiteral("\"%1/aapt\" dump badging \"%2\"").arg(QuenzoTool::getToolPath(), path), badging,
        error);
    PackageIcons icons = parseBadging(badging);
    if (!ended || !badging.startsWith(QLatin1String("package:")))
        fault = Package::tr("aapt cannot read the package '%1'").arg(apk);
    else if (icons.pictures.isEmpty())
        fault = Package::tr("the package '%1' has no icon that is a PNG file").arg(apk);
    return icons;
}
