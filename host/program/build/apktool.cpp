// SPDX-License-Identifier: MIT
#include "build/apktool.h"

#include "scripts/toolrun.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

struct ApkToolText {
    Q_DECLARE_TR_FUNCTIONS(ApkTool)
};

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

QString ApkTool::run(const QStringList& words, const QString& doing, Console& console) const
{
    const ToolRun run = runTool(
        console, m_program,
        words.mid(0, 1) + QStringList{QStringLiteral("-f"), QStringLiteral("-p"), m_store} + words.mid(1),
        doing);
    if (run.succeeded)
        return {};
    const QString told = run.error + QLatin1Char('\n') + run.output;
    const QStringList lines = told.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    // It tells its course on lines that begin so.
    for (const QString& line : lines) {
        if (!line.startsWith(QLatin1String("I: ")) && !line.startsWith(QLatin1String("W: ")))
            return ApkToolText::tr("%1 failed: %2").arg(doing, line);
    }
    return ApkToolText::tr("%1 failed").arg(doing);
}

QString ApkTool::decode(const QString& apk, const QString& folder, Console& console) const
{
    const QString fault = run({QStringLiteral("d"), QStringLiteral("-s"), QStringLiteral("-o"), folder, apk},
                              ApkToolText::tr("decoding the base"), console);
    // The manifest needs neither; without them the copies are small.
    for (const char* const part : {"assets", "lib", "unknown", "original", "kotlin", "META-INF"})
        QDir(folder + QLatin1Char('/') + QLatin1String(part)).removeRecursively();
    if (fault.isEmpty() && !QFileInfo::exists(folder + QStringLiteral("/AndroidManifest.xml")))
        return ApkToolText::tr("apktool gave no manifest");
    return fault;
}

QString ApkTool::build(const QString& folder, Console& console) const
{
    const QString fault =
        run({QStringLiteral("b"), QStringLiteral("-o"), folder + QStringLiteral("-built.apk"), folder},
            ApkToolText::tr("building the manifest"), console);
    if (fault.isEmpty() && !QFileInfo::exists(manifestIn(folder)))
        return ApkToolText::tr("apktool built no manifest");
    return fault;
}
