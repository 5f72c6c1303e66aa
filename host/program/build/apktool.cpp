// SPDX-License-Identifier: MIT
#include "build/apktool.h"

#include "build/packagefacts.h"
#include "scripts/toolrun.h"

#include <quenzotool.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <utility>

namespace {

struct ApkToolText {
    Q_DECLARE_TR_FUNCTIONS(ApkTool)
};

// What aapt tells of a package stands in its manifest, but not in the text of the decoded one.
QStringList wordsOf(const PackageFacts& facts)
{
    QStringList words;
    for (const auto& [word, value] :
         {std::pair{"--version-code", facts.versionCode}, std::pair{"--version-name", facts.versionName},
          std::pair{"--min-sdk-version", facts.minSdk}, std::pair{"--target-sdk-version", facts.targetSdk},
          std::pair{"--max-sdk-version", facts.maxSdk}}) {
        if (!value.isEmpty())
            words << QLatin1String(word) << value;
    }
    return words;
}

} // namespace

ApkTool::ApkTool(const QString& store)
    : m_program(QStandardPaths::findExecutable(QStringLiteral("apktool")))
    , m_store(store)
{
}

Failure ApkTool::missing()
{
    return {Failure::NoTool,
            ApkToolText::tr("the program apktool is missing, and the job changes manifests"),
            {},
            ApkToolText::tr("on Debian \"apt-get install apktool\" brings it")};
}

QString ApkTool::decode(const QString& apk, const QString& folder, Console& console) const
{
    const QString doing = ApkToolText::tr("decoding the base");
    // The manifest alone: resources as text would become files under names that the base gives them, and
    // these may lead anywhere.
    const ToolRun run = runTool(console, m_program,
                                {QStringLiteral("d"), QStringLiteral("-f"), QStringLiteral("-s"),
                                 QStringLiteral("-r"), QStringLiteral("--force-manifest"),
                                 QStringLiteral("-p"), m_store, QStringLiteral("-o"), folder, apk},
                                doing);
    if (!run.succeeded) {
        const QString told = run.error + QLatin1Char('\n') + run.output;
        // It tells its course on lines that begin so.
        for (const QString& line : told.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            if (!line.startsWith(QLatin1String("I: ")) && !line.startsWith(QLatin1String("W: ")))
                return ApkToolText::tr("%1 failed: %2").arg(doing, line);
        }
        return ApkToolText::tr("%1 failed").arg(doing);
    }
    return QFileInfo::exists(folder + QStringLiteral("/AndroidManifest.xml"))
        ? QString()
        : ApkToolText::tr("apktool gave no manifest");
}

QString ApkTool::build(const QString& manifest, const QString& package, const QString& base,
                       const PackageFacts& facts, const QString& archive, Console& console) const
{
    QStringList words{QStringLiteral("package"), QStringLiteral("-f"),
                      QStringLiteral("-M"),      manifest,
                      QStringLiteral("-F"),      archive};
    for (const QString& framework : QDir(m_store).entryList({QStringLiteral("*.apk")}, QDir::Files))
        words << QStringLiteral("-I") << m_store + QLatin1Char('/') + framework;
    words << QStringLiteral("-I") << base << QStringLiteral("--rename-manifest-package") << package;
    const QString doing = ApkToolText::tr("building the manifest");
    const ToolRun run =
        runTool(console, QuenzoTool::getToolPath() + QStringLiteral("/aapt"), words + wordsOf(facts), doing);
    if (run.succeeded)
        return {};
    return ApkToolText::tr("%1 failed: %2").arg(doing, run.error.section(QLatin1Char('\n'), 0, 0));
}
