// SPDX-License-Identifier: MIT
#include "console/failure.h"

namespace {

QString nameOf(Failure::Code code)
{
    switch (code) {
    case Failure::Usage:
        return QStringLiteral("usage");
    case Failure::NotFound:
        return QStringLiteral("not-found");
    case Failure::Refused:
        return QStringLiteral("refused");
    case Failure::Declined:
        return QStringLiteral("declined");
    case Failure::BadInput:
        return QStringLiteral("bad-input");
    case Failure::NoTool:
        return QStringLiteral("no-tool");
    case Failure::NoDevice:
        return QStringLiteral("no-device");
    case Failure::TimedOut:
        return QStringLiteral("timed-out");
    case Failure::Interrupted:
        return QStringLiteral("interrupted");
    case Failure::Failed:
        break;
    }
    return QStringLiteral("failed");
}

QJsonValue textOrNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

} // namespace

QStringList Failure::lines() const
{
    return QStringList(hint.isEmpty() ? message : QStringLiteral("%1 (%2)").arg(message, hint)) + causes;
}

QJsonObject Failure::json() const
{
    return {{QStringLiteral("code"), nameOf(code)},
            {QStringLiteral("message"), message},
            {QStringLiteral("cause"), textOrNull(causes.join(QLatin1Char('\n')))},
            {QStringLiteral("hint"), textOrNull(hint)}};
}
