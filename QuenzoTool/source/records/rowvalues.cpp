// SPDX-License-Identifier: MIT
#include "records/rowvalues.h"

#include "quenzotool.h"

QVariant converted(const QVariant& value, Conversion conversion)
{
    return conversion == Conversion::Encode ? QuenzoTool::ckEncode(value.toString()) : value;
}

RowPattern::RowPattern(const QStringList& names)
{
    QMap<QString, int> last;
    for (int i = 0; i < names.size(); ++i)
        last.insert(names.at(i), i);
    for (auto name = last.cbegin(); name != last.cend(); ++name) {
        row.insert(name.key(), QVariant());
        indexes.append(name.value());
    }
}
