// SPDX-License-Identifier: MIT
#include "jsonplace.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QVector>

namespace {

struct Place {
    Q_DECLARE_TR_FUNCTIONS(JsonPlace)
};

// An object or an array whose end has not been reached.
struct Open {
    QString pointer;
    bool isObject = false;
    bool expectsKey = false;
    QString key;
    QSet<QString> keys;
    int index = 0;
};

// Takes a text apart as far as its keys need it.
class KeyReader {
public:
    explicit KeyReader(const QByteArray& text)
        : m_text(text)
    {
    }

    QStringList repeated()
    {
        for (; m_at < m_text.size(); ++m_at)
            take(m_text.at(m_at));
        return m_repeated;
    }

private:
    void take(char letter)
    {
        if (letter == '{' || letter == '[')
            open(letter == '{');
        else if ((letter == '}' || letter == ']') && !m_open.isEmpty())
            m_open.removeLast();
        else if (letter == ',' && !m_open.isEmpty())
            pass(m_open.last());
        else if (letter == '"')
            takeText();
    }

    void open(bool isObject)
    {
        Open next;
        next.pointer = m_open.isEmpty() ? QString() : pointerIn(m_open.last());
        next.isObject = next.expectsKey = isObject;
        m_open.append(next);
    }

    static void pass(Open& value)
    {
        value.expectsKey = value.isObject;
        ++value.index;
    }

    static QString pointerIn(const Open& value)
    {
        return value.isObject ? JsonPlace::below(value.pointer, value.key)
                              : JsonPlace::below(value.pointer, value.index);
    }

    static QString textOf(const QByteArray& quoted)
    {
        return quoted.contains('\\') ? QJsonDocument::fromJson('[' + quoted + ']').array().at(0).toString()
                                     : QString::fromUtf8(quoted.mid(1, quoted.size() - 2));
    }

    void takeText()
    {
        const int start = m_at;
        for (++m_at; m_at < m_text.size() && m_text.at(m_at) != '"'; ++m_at) {
            if (m_text.at(m_at) == '\\')
                ++m_at;
        }
        if (m_open.isEmpty() || !m_open.last().expectsKey)
            return;
        Open& object = m_open.last();
        object.key = textOf(m_text.mid(start, m_at - start + 1));
        object.expectsKey = false;
        if (object.keys.contains(object.key))
            m_repeated.append(pointerIn(object));
        object.keys.insert(object.key);
    }

    const QByteArray& m_text;
    int m_at = 0;
    QVector<Open> m_open;
    QStringList m_repeated;
};

} // namespace

QString JsonPlace::lineAndColumn(const QByteArray& text, int offset)
{
    const QByteArray before = text.left(offset);
    const int line = before.count('\n') + 1;
    const int column = offset - before.lastIndexOf('\n');
    return Place::tr("line %1, column %2").arg(line).arg(column);
}

QString JsonPlace::below(const QString& pointer, const QString& key)
{
    QString token = key;
    token.replace(QLatin1Char('~'), QLatin1String("~0")).replace(QLatin1Char('/'), QLatin1String("~1"));
    return pointer + QLatin1Char('/') + token;
}

QString JsonPlace::below(const QString& pointer, int index)
{
    return pointer + QLatin1Char('/') + QString::number(index);
}

QStringList JsonPlace::repeatedKeys(const QByteArray& text)
{
    return KeyReader(text).repeated();
}
