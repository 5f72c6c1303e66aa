// SPDX-License-Identifier: MIT
#include "scripts/scriptmessages.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <unistd.h>

namespace {

struct ScriptMessagesText {
    Q_DECLARE_TR_FUNCTIONS(ScriptMessages)
};

// docs/scripts.md lists the kinds.
Failure failureOf(const QString& kind, const QString& text)
{
    static const QHash<QString, Failure::Code> codes{
        {QStringLiteral("bad-input"), Failure::BadInput}, {QStringLiteral("not-found"), Failure::NotFound},
        {QStringLiteral("no-key"), Failure::NotFound},    {QStringLiteral("no-tool"), Failure::NoTool},
        {QStringLiteral("refused"), Failure::Refused},
    };
    Failure failure{codes.value(kind, Failure::Failed), text};
    if (kind == QLatin1String("no-key"))
        failure.hint = ScriptMessagesText::tr("\"quenzo key new\" makes one");
    return failure;
}

} // namespace

ScriptMessages::Told ScriptMessages::take()
{
    Told told;
    const int file = m_file.number();
    const qint64 end = file >= 0 ? lseek(file, 0, SEEK_END) : 0;
    QByteArray lines(int(end - m_taken), Qt::Uninitialized);
    if (lines.isEmpty() || pread(file, lines.data(), size_t(lines.size()), m_taken) != lines.size())
        return told;
    m_taken = end;
    const auto all = lines.split('\n');
    for (const QByteArray& line : all) {
        const QJsonObject message = QJsonDocument::fromJson(line).object();
        const QString warning = message.value(QLatin1String("warning")).toString();
        const QString failure = message.value(QLatin1String("failure")).toString();
        if (!warning.isEmpty())
            told.warnings.append(warning);
        if (!failure.isEmpty() && told.failure.message.isEmpty())
            told.failure = failureOf(message.value(QLatin1String("kind")).toString(), failure);
    }
    return told;
}
