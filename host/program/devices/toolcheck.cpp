// SPDX-License-Identifier: MIT
#include "devices/toolcheck.h"

#include <quenzotool.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace {

struct ToolCheck {
    Q_DECLARE_TR_FUNCTIONS(ToolCheck)
};

} // namespace

QString toolProblem(const QString& name)
{
    constexpr int timeLimitMs = 10000;
    const QString path = QDir::cleanPath(QuenzoTool::getToolPath() + QLatin1Char('/') + name);
    const QFileInfo file(path);
    if (!file.isFile() || !file.isExecutable())
        return ToolCheck::tr("the program %1 is missing: there is no %2 that can be run").arg(name, path);

    QProcess program;
    program.start(path, {QStringLiteral("version")});
    const bool ended = program.waitForFinished(timeLimitMs);
    if (ended && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0)
        return {};
    QString reason = QString::fromUtf8(program.readAllStandardError()).trimmed();
    if (reason.isEmpty())
        reason =
            ended ? ToolCheck::tr("it ended with code %1").arg(program.exitCode()) : program.errorString();
    program.kill();
    program.waitForFinished();
    return ToolCheck::tr("the program %1 does not work: %2").arg(path, reason);
}
