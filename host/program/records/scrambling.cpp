// SPDX-License-Identifier: MIT
#include "records/scrambling.h"

#include "records/dbrequest.h"

#include <quenzotool.h>

#include <QCoreApplication>

namespace {

struct ScramblingTexts {
    Q_DECLARE_TR_FUNCTIONS(Scrambling)
};

bool comesBack(const QVariant& value)
{
    const QString text = value.toString();
    return !value.isNull() && QuenzoTool::ckDecode(QuenzoTool::ckEncode(text)) == text;
}

// Whether a column was named; the library writes null as an empty text, we leave it.
bool isScrambled(const DBRequest& request, const QString& column, const QVariant& value)
{
    return request.encodedColumns.contains(column, Qt::CaseInsensitive) && !value.isNull();
}

QString lossIn(const DBRequest& request, const QVariantMap& values, const QString& place)
{
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        if ((!request.encode && !isScrambled(request, value.key(), *value)) || comesBack(*value))
            continue;
        return ScramblingTexts::tr(
                   "%1, column '%2': '%3' could not be brought back once it is scrambled (null, "
                   "less than four bytes, or a zero byte); --lossy writes it all the same")
            .arg(place, value.key(), value->toString());
    }
    return {};
}

void scramble(const DBRequest& request, QVariantMap& values)
{
    for (auto value = values.begin(); value != values.end(); ++value) {
        if (isScrambled(request, value.key(), *value))
            *value = QuenzoTool::ckEncode(value->toString());
    }
}

} // namespace

QString Scrambling::loss(const DBRequest& request)
{
    QString found;
    for (int i = 0; i < request.rows.size() && found.isEmpty(); ++i)
        found = lossIn(request, request.rows.at(i).toMap(), ScramblingTexts::tr("row %1").arg(i + 1));
    // All short texts are scrambled to the same: such a condition would meet them all. Without columns an
    // update compares plainly, and a select unscrambles.
    const bool compares = request.command == DB_DELETE || !request.encode;
    if (found.isEmpty() && compares)
        found = lossIn(request, request.conditions, ScramblingTexts::tr("the condition"));
    return found;
}

void Scrambling::apply(DBRequest& request)
{
    for (QVariant& row : request.rows) {
        QVariantMap values = row.toMap();
        scramble(request, values);
        row = values;
    }
    scramble(request, request.conditions);
}
