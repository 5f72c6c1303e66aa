// SPDX-License-Identifier: MIT
#include "window/start/gameapk.h"

#include "build/archivefile.h"
#include "build/jobinputs.h"
#include "build/zipcontent.h"
#include "build/zipdirectory.h"
#include "icons/packageicons.h"

#include <quenzotool.h>

#include <QCoreApplication>
#include <QImage>
#include <QRegularExpression>

#include <algorithm>

namespace {

struct Apk {
    Q_DECLARE_TR_FUNCTIONS(GameApk)
};

constexpr qint64 largestIcon = 16 << 20;

QString captured(const QString& badging, const QString& pattern)
{
    const QRegularExpression line(pattern, QRegularExpression::MultilineOption);
    return line.match(badging).captured(1);
}

QByteArray contentOf(const QString& apk, const QString& entry)
{
    ArchiveFile archive;
    ZipDirectory directory;
    if (!archive.open(apk) || !directory.read(archive).isEmpty())
        return {};
    const auto found = std::find_if(directory.entries.cbegin(), directory.entries.cend(),
                                    [&entry](const ZipEntry& each) { return each.name == entry.toUtf8(); });
    if (found == directory.entries.cend() || found->size > largestIcon)
        return {};
    ZipContent content(archive, *found);
    QByteArray bytes;
    for (QByteArray block = content.next(); !block.isEmpty(); block = content.next())
        bytes += block;
    return content.error().isEmpty() ? bytes : QByteArray();
}

QByteArray iconOf(const QString& apk, const QString& badging)
{
    const QVector<PackageIcon> pictures = parseBadging(badging).pictures;
    const auto largest =
        std::max_element(pictures.cbegin(), pictures.cend(),
                         [](const PackageIcon& a, const PackageIcon& b) { return a.side < b.side; });
    if (largest == pictures.cend())
        return {};
    const QByteArray png = contentOf(apk, largest->path);
    return QImage::fromData(png, "PNG").isNull() ? QByteArray() : png;
}

} // namespace

GameApk GameApk::read(const QString& path)
{
    GameApk apk;
    apk.path = path;
    const QString objection = JobInputs::faultOfArchive(path);
    if (!objection.isEmpty()) {
        apk.fault = Apk::tr("The new job %1.").arg(objection);
        return apk;
    }
    QString quoted = path;
    quoted.replace(QLatin1Char('"'), QLatin1String(R"(""")")); // as a command line spells it
    QString badging;
    QString error;
    QuenzoTool::runCmdWaitFinish(
        QStringLiteral("\"%1/aapt\" dump badging \"%2\"").arg(QuenzoTool::getToolPath(), quoted), badging,
        error);
    apk.package = captured(badging, QStringLiteral("^package: name='([^']+)'"));
    if (apk.package.isEmpty()) {
        apk.fault = Apk::tr("aapt cannot read %1: is it a whole APK? %2")
                        .arg(path, error.section(QLatin1Char('\n'), 0, 0));
        return apk;
    }
    apk.name = captured(badging, QStringLiteral("^application-label:'(.*)'\\r?$"));
    apk.icon = iconOf(path, badging);
    return apk;
}
