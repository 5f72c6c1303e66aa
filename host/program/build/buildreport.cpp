// SPDX-License-Identifier: MIT
#include "build/buildreport.h"

#include "wholesave.h"

#include <QCoreApplication>
#include <QJsonDocument>

namespace {

struct Reports {
    Q_DECLARE_TR_FUNCTIONS(Reports)
};

QString told(const QString& path, const QString& fault)
{
    return fault.isEmpty() ? QString() : Reports::tr("the report %1 cannot be written: %2").arg(path, fault);
}

} // namespace

QString BuildReport::write(const BuildOutcome& build, const QString& folder)
{
    const QString json = folder + QStringLiteral("/report.json");
    const QString fault = saveWhole(json, QJsonDocument(toJson(build)).toJson(QJsonDocument::Indented));
    if (!fault.isEmpty())
        return told(json, fault);
    const QString html = folder + QStringLiteral("/report.html");
    WholeSave page(html);
    putHtml(build, [&page](const QString& part) { page.write(part.toUtf8()); });
    return told(html, page.finish());
}
