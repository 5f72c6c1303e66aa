// SPDX-License-Identifier: MIT
#include "scripts/assetencryption.h"

#include <pythonforqt.h>
#include <quenzobase.h>

#include <QCoreApplication>
#include <QFile>

namespace {

struct AssetEncryption {
    Q_DECLARE_TR_FUNCTIONS(AssetEncryption)
};

void takeAnswer(PythonForQt& python, ScriptOutcome& outcome)
{
    const int answer = python.getResultAsInt();
    outcome.succeeded = answer == 0;
    outcome.values.insert(QStringLiteral("result"), answer);
}

} // namespace

void useKey(const QString& file)
{
    qputenv("QUENZO_KEY", QFile::encodeName(file)); // the interpreter reads it when it starts
}

ScriptOutcome callOnAssets(Console& console, const QString& function, const QString& apk,
                           const QStringList& excluded, const QString& doing)
{
    ScriptCall call{
        QStringLiteral("encrypt.py"), function, {QuenzoBase::getRunPath(), apk, QString::fromLatin1("")}};
    for (const QString& pattern : excluded)
        call.arguments.append(pattern);
    return runCall(console, call, doing, takeAnswer);
}

ScriptOutcome encryptAssets(Console& console, const QString& apk, const QStringList& excluded)
{
    const QString doing = AssetEncryption::tr("encrypting");
    // The library's task knows no exceptions.
    return excluded.isEmpty()
        ? runTask(console, PYTHON_TOOL_ENCRYPT, {{QStringLiteral("apkfile"), apk}}, doing)
        : callOnAssets(console, QStringLiteral("encryptApk"), apk, excluded, doing);
}
