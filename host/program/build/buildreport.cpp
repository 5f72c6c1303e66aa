// SPDX-License-Identifier: MIT
#include "build/buildreport.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QSaveFile>

namespace {

struct Reports {
    Q_DECLARE_TR_FUNCTIONS(Reports)
};

QString writeWhole(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit())
        return {};
    return Reports::tr("the report %1 cannot be written: %2").arg(path, file.errorString());
}

} // namespace

QString BuildReport::write(const BuildOutcome& build, const QString& folder)
{
    const QString fault = writeWhole(folder + QStringLiteral("/report.json"),
                                     QJsonDocument(toJson(build)).toJson(QJsonDocument::Indented));
    return fault.isEmpty() ? writeWhole(folder + QStringLiteral("/report.html"), toHtml(build)) : fault;
}
