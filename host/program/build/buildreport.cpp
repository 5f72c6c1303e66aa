// SPDX-License-Identifier: MIT
#include "build/buildreport.h"

#include "wholesave.h"

#include <QCoreApplication>
#include <QJsonDocument>

namespace {

struct Reports {
    Q_DECLARE_TR_FUNCTIONS(Reports)
};

QString writeWhole(const QString& path, const QByteArray& content)
{
    const QString fault = saveWhole(path, content);
    return fault.isEmpty() ? QString() : Reports::tr("the report %1 cannot be written: %2").arg(path, fault);
}

} // namespace

QString BuildReport::write(const BuildOutcome& build, const QString& folder)
{
    const QString fault = writeWhole(folder + QStringLiteral("/report.json"),
                                     QJsonDocument(toJson(build)).toJson(QJsonDocument::Indented));
    return fault.isEmpty() ? writeWhole(folder + QStringLiteral("/report.html"), toHtml(build)) : fault;
}
