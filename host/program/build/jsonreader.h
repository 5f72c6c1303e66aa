// SPDX-License-Identifier: MIT
#ifndef JSONREADER_H
#define JSONREADER_H

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <array>
#include <limits>

/** Takes values out of an object, and remembers whether each was there in its shape. */
class JsonReader {
public:
    JsonReader(const QJsonValue& value, bool& isSound)
        : m_object(value.toObject())
        , m_isSound(isSound)
    {
        require(value.isObject());
    }

    QJsonValue value(const char* key) const { return m_object.value(QLatin1String(key)); }

    QString text(const char* key) const
    {
        require(value(key).isString());
        return value(key).toString();
    }

    bool flag(const char* key) const
    {
        require(value(key).isBool());
        return value(key).toBool();
    }

    qint64 number(const char* key, qint64 least = 0, qint64 most = qint64(1) << 53) const
    {
        const double number = value(key).toDouble(-1);
        const bool fits = number >= double(least) && number <= double(most);
        require(fits && double(qint64(number)) == number);
        return fits ? qint64(number) : least;
    }

    int count(const char* key, int least = 0) const
    {
        return int(number(key, least, std::numeric_limits<int>::max()));
    }

    QDateTime time(const char* key) const
    {
        if (value(key).isNull())
            return {};
        const QDateTime time = QDateTime::fromString(text(key), Qt::ISODateWithMs);
        require(time.isValid());
        return time.toUTC();
    }

    QStringList texts(const char* key) const
    {
        QStringList texts;
        for (const QJsonValue text : array(key)) {
            require(text.isString());
            texts.append(text.toString());
        }
        return texts;
    }

    QJsonArray array(const char* key) const
    {
        require(value(key).isArray());
        return value(key).toArray();
    }

    /** The number of one of these words. */
    template <size_t Count> int choice(const char* key, const std::array<const char*, Count>& words) const
    {
        const QString word = text(key);
        for (size_t i = 0; i < Count; ++i) {
            if (word == QLatin1String(words.at(i)))
                return int(i);
        }
        require(false);
        return 0;
    }

private:
    void require(bool holds) const { m_isSound = m_isSound && holds; }

    const QJsonObject m_object;
    bool& m_isSound;
};

#endif
