// SPDX-License-Identifier: MIT
#include "jsonschema.h"

#include <QFile>
#include <QJsonDocument>

namespace {

constexpr int timeLimitMs = 60000;

} // namespace

JsonSchema::JsonSchema(const QString& name, const QString& definition)
    : m_path(QStringLiteral(SOURCE_DIR "/docs/") + name)
    , m_definition(definition)
{
}

JsonSchema::~JsonSchema()
{
    m_validator.closeWriteChannel();
    if (m_validator.state() != QProcess::NotRunning && !m_validator.waitForFinished(timeLimitMs))
        m_validator.kill();
}

QJsonObject JsonSchema::object() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

QByteArray JsonSchema::verdictOn(const QByteArray& json)
{
    if (m_validator.state() == QProcess::NotRunning && !start())
        return "no verdict: " + m_validator.readAllStandardError();
    m_validator.write(json.trimmed() + '\n');
    return answer();
}

bool JsonSchema::start()
{
    QStringList arguments{QStringLiteral(SOURCE_DIR "/tests/support/validate.py"), m_path};
    if (!m_definition.isEmpty())
        arguments.append(m_definition);
    m_validator.start(QStringLiteral(PYTHON3), arguments);
    return answer() == "ready";
}

QByteArray JsonSchema::answer()
{
    while (!m_validator.canReadLine()) {
        if (!m_validator.waitForReadyRead(timeLimitMs))
            return "no verdict: " + m_validator.readAllStandardError();
    }
    return m_validator.readLine().trimmed();
}
