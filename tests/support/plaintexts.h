// SPDX-License-Identifier: MIT
#ifndef PLAINTEXTS_H
#define PLAINTEXTS_H

#include <QMap>
#include <QString>

/**
 * The text helpers letter by letter, as they were first written down: slow, and what every result is held
 * against.
 */
namespace PlainTexts {

inline QString cut(const QString& text, int count, const QString& suffix)
{
    if (text.toLocal8Bit().size() <= count)
        return text;
    const int room = count - suffix.toLocal8Bit().size();
    if (room <= 0)
        return text;
    for (int i = 0; i < count; ++i) {
        const int bytes = text.left(i).toLocal8Bit().size();
        if (bytes == room - 1 || bytes == room)
            return text.left(i) + suffix;
    }
    return {};
}

inline QString escaped(QString text)
{
    for (int i = 9; i < text.size(); ++i) {
        if (text.at(i).isSpace() && text.at(i - 1) != QLatin1Char('\\')) {
            text = text.left(i) + QLatin1Char('\\') + text.mid(i);
            ++i;
        }
    }
    return text;
}

inline QMap<QString, QString> params(const QString& url)
{
    QMap<QString, QString> params;
    const int query = url.indexOf(QLatin1Char('?'));
    if (query < 0)
        return params;
    QString rest = url.mid(query + 1);
    int equals = rest.indexOf(QLatin1Char('='));
    while (equals != -1) {
        const int ampersand = rest.indexOf(QLatin1Char('&'));
        const QString key = rest.left(equals);
        QString value = rest.mid(equals + 1);
        if (ampersand != -1) {
            value = rest.mid(equals + 1, ampersand - equals - 1);
            rest = rest.mid(ampersand + 1);
        } else {
            rest.clear();
        }
        params[key] = value;
        equals = rest.indexOf(QLatin1Char('='));
    }
    return params;
}

} // namespace PlainTexts

#endif
