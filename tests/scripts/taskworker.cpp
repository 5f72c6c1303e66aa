// SPDX-License-Identifier: MIT
#include "taskworker.h"

#include "runroot.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

// The scripts record what they were called with, and answer what the file "answer" holds.
const QByteArray recorder = R"(# -*- coding: utf-8 -*-
import json, os
here = os.path.dirname(os.path.abspath(__file__))
def record(name, all):
    with open(os.path.join(here, 'calls.json'), 'a') as calls:
        calls.write(json.dumps([os.path.basename(__file__).split('.')[0], name, list(all),
                                [type(each).__name__ for each in all]]) + '\n')
    with open(os.path.join(here, 'answer')) as answer:
        return eval(answer.read())
)";

QByteArray scriptWith(const QList<QByteArray>& functions)
{
    QByteArray text = recorder;
    for (const QByteArray& function : functions)
        text += "def " + function + "(*all): return record('" + function + "', all)\n";
    return text;
}

} // namespace

void writeRecordingScripts()
{
    RunRoot::write(QStringLiteral("Script/pytoolForQt.py"), scriptWith({"zip", "unZip", "importSDK"}));
    RunRoot::write(QStringLiteral("Script/encrypt.py"), scriptWith({"encryptApk"}));
    RunRoot::write(QStringLiteral("Script/start.py"), scriptWith({"export_develop_info"}));
    RunRoot::write(QStringLiteral("Script/tool.py"), scriptWith({"run"}));
    setAnswer("0");
    takeCalls();
}

void setAnswer(const QByteArray& expression)
{
    RunRoot::write(QStringLiteral("Script/answer"), expression);
}

QStringList takeCalls()
{
    QFile file(RunRoot::path() + QStringLiteral("/Script/calls.json"));
    QStringList calls;
    if (!file.open(QIODevice::ReadOnly))
        return calls;
    while (!file.atEnd()) {
        const QJsonArray call = QJsonDocument::fromJson(file.readLine()).array();
        const auto words = [&call](int at) {
            QStringList texts;
            for (const QVariant& value : call.at(at).toArray().toVariantList())
                texts.append(value.toString());
            return texts.join(QLatin1Char(','));
        };
        calls.append(QStringLiteral("%1.%2(%3): %4")
                         .arg(call.at(0).toString(), call.at(1).toString(), words(2), words(3)));
    }
    file.close();
    file.remove();
    return calls;
}

QVariantMap params(const QList<QPair<const char*, QVariant>>& pairs)
{
    QVariantMap map;
    for (const auto& pair : pairs)
        map.insert(QLatin1String(pair.first), pair.second);
    return map;
}

QVariant text(const char* latin)
{
    return QString::fromUtf8(latin);
}

Worker::Worker()
{
    connect(
        this, &PythonToolThread::onTaskFinsih, this,
        [this](int type, QVariantMap* map, bool success) {
            emissions.push_back({type, map, map != nullptr ? *map : QVariantMap(), success, bExecTask(),
                                 QThread::currentThread()});
        },
        Qt::DirectConnection);
}

QString Worker::perform(int operation, const QVariantMap& params)
{
    emissions.clear();
    takeCalls();
    if (!StartOperate(static_cast<PYTHON_TOOL_OPERATE>(operation), params) || !bExecTask())
        return QStringLiteral("refused");
    if (!startAndWait() || bExecTask())
        return QStringLiteral("still busy");
    return takeCalls().join(QLatin1Char(';'));
}
