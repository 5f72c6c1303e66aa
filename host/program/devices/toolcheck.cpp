// SPDX-License-Identifier: MIT
#include "devices/toolcheck.h"

#include "console/diagnostics.h"

#include <quenzotool.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

struct ToolCheck {
    Q_DECLARE_TR_FUNCTIONS(ToolCheck)
};

} // namespace

QString toolProblem(const QString& name)
{
    const QString path = QDir::cleanPath(QuenzoTool::getToolPath() + QLatin1Char('/') + name);
    const QFileInfo file(path);
    if (!file.isFile() || !file.isExecutable())
        return ToolCheck::tr("the program %1 is missing: there is no %2 that can be run").arg(name, path);

    // The library limits its time and its output, and has a cause for everything but success.
    QString output;
    QString error;
    Diagnostics::takeAll();
    const bool ended =
        QuenzoTool::runCmdWaitFinish(QStringLiteral("\"%1\" version").arg(path), output, error);
    const QString cause = Diagnostics::take();
    if (ended && cause.isEmpty())
        return {};
    const QString ownWords = ended ? error.trimmed() : QString();
    return ToolCheck::tr("the program %1 does not work: %2").arg(path, ownWords.isEmpty() ? cause : ownWords);
}
