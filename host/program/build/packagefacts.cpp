// SPDX-License-Identifier: MIT
#include "build/packagefacts.h"

#include "scripts/toolrun.h"

#include <quenzotool.h>

#include <QCoreApplication>
#include <QRegularExpression>

namespace {

struct Facts {
    Q_DECLARE_TR_FUNCTIONS(PackageFacts)
};

// The value of a line that has nothing else.
QString valueOf(const QString& badging, const QString& key)
{
    const QRegularExpression line(QStringLiteral("^%1:'([^']*)'").arg(key),
                                  QRegularExpression::MultilineOption);
    return line.match(badging).captured(1);
}

} // namespace

bool PackageFacts::read(const QString& apk, Console& console, PackageFacts& facts, QString& fault)
{
    const ToolRun run =
        runTool(console, QuenzoTool::getToolPath() + QStringLiteral("/aapt"),
                {QStringLiteral("dump"), QStringLiteral("badging"), apk}, Facts::tr("reading the manifest"));
    static const QRegularExpression form(
        QStringLiteral("^package: name='([^']+)' versionCode='([^']*)' versionName='([^']*)'"));
    const QRegularExpressionMatch match = form.match(run.output);
    if (!match.hasMatch()) {
        fault = Facts::tr("aapt cannot read the package '%1': %2")
                    .arg(apk, run.error.section(QLatin1Char('\n'), 0, 0));
        return false;
    }
    facts = {match.captured(1),
             match.captured(3),
             match.captured(2),
             valueOf(run.output, QStringLiteral("sdkVersion")),
             valueOf(run.output, QStringLiteral("targetSdkVersion")),
             valueOf(run.output, QStringLiteral("maxSdkVersion")),
             parseBadging(run.output)};
    return true;
}
