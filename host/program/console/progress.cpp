// SPDX-License-Identifier: MIT
#include "console/progress.h"

#include <QCoreApplication>
#include <QLocale>

namespace {

struct ProgressText {
    Q_DECLARE_TR_FUNCTIONS(Progress)
};

QString figures(const Progress& progress)
{
    const QLocale locale;
    const QString done = locale.toString(progress.done);
    const QString total = locale.toString(progress.total);
    const bool known = progress.total >= 0;
    switch (progress.unit) {
    case Progress::Files:
        return known ? ProgressText::tr("%1 of %2 files").arg(done, total)
                     : ProgressText::tr("%1 files").arg(done);
    case Progress::Bytes:
        return known ? ProgressText::tr("%1 of %2 bytes").arg(done, total)
                     : ProgressText::tr("%1 bytes").arg(done);
    case Progress::Rows:
        return known ? ProgressText::tr("%1 of %2 rows").arg(done, total)
                     : ProgressText::tr("%1 rows").arg(done);
    case Progress::None:
        break;
    }
    return {};
}

QString bar(const Progress& progress)
{
    constexpr int width = 30;
    if (progress.unit == Progress::None || progress.total < 0 || !progress.more.isEmpty())
        return {};
    const qint64 most = qMax<qint64>(1, progress.total);
    const int filled =
        progress.total == 0 ? width : int(qBound<qint64>(0, progress.done, most) * width / most);
    return QLatin1Char('[') + QString(filled, QLatin1Char('#')) + QString(width - filled, QLatin1Char('.'))
        + QLatin1Char(']');
}

QJsonValue unitName(Progress::Unit unit)
{
    switch (unit) {
    case Progress::Files:
        return QStringLiteral("files");
    case Progress::Bytes:
        return QStringLiteral("bytes");
    case Progress::Rows:
        return QStringLiteral("rows");
    case Progress::None:
        break;
    }
    return QJsonValue::Null;
}

} // namespace

QString Progress::text() const
{
    QStringList parts{doing, bar(*this), figures(*this), more};
    parts.removeAll({});
    return parts.join(QLatin1Char(' '));
}

QJsonObject Progress::json() const
{
    const bool counts = unit != None;
    return {{QStringLiteral("doing"), doing},
            {QStringLiteral("unit"), unitName(unit)},
            {QStringLiteral("done"), counts ? QJsonValue(done) : QJsonValue()},
            {QStringLiteral("total"), counts && total >= 0 ? QJsonValue(total) : QJsonValue()}};
}
