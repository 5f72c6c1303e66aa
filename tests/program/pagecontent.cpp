// SPDX-License-Identifier: MIT
#include "pagecontent.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

PageContent PageContent::of(const QByteArray& page)
{
    QString markup = QString::fromUtf8(page);
    markup.remove(QStringLiteral("<!DOCTYPE html>"));
    markup.replace(QRegularExpression(QStringLiteral("<(meta|img|wbr)([^<>]*)>")),
                   QStringLiteral("<\\1\\2/>"));
    markup.replace(QStringLiteral("<details open>"), QStringLiteral("<details open=\"\">"));
    PageContent content;
    QXmlStreamReader reader(markup);
    bool isStyle = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            content.elements.append(reader.name().toString());
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                content.attributes.append({attribute.name().toString(), attribute.value().toString()});
            isStyle = reader.name() == QLatin1String("style");
        } else if (reader.isEndElement()) {
            isStyle = false;
        } else if (reader.isCharacters()) {
            (isStyle ? content.style : content.text) += reader.text();
        }
    }
    if (reader.hasError())
        content.fault = QStringLiteral("line %1: %2").arg(reader.lineNumber()).arg(reader.errorString());
    return content;
}

QStringList PageContent::valuesOf(const QString& attribute) const
{
    QStringList values;
    for (const auto& each : attributes) {
        if (each.first == attribute)
            values.append(each.second);
    }
    return values;
}
