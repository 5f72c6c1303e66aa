// SPDX-License-Identifier: MIT
#ifndef ORDEREDJSON_H
#define ORDEREDJSON_H

#include <QByteArray>
#include <QSharedDataPointer>
#include <QString>
#include <QStringList>
#include <QVector>

/**
 * A value of a JSON text that keeps how it was written: the order of keys, the numbers' digits, the escapes
 * of texts and the blanks between all of them. What nobody has changed is written as it stood, byte for byte;
 * what is new is laid out like its neighbours.
 *
 * @code
 * OrderedJson job = OrderedJson::parse(content, fault);
 * job.member("channels").items()[0].set("name", OrderedJson::text("Harbor"), {"folder"});
 * file.write(job.toUtf8());
 * @endcode
 *
 * A value class, shared implicitly; copies are cheap.
 */
class OrderedJson {
public:
    enum Kind : int { Nothing, Object, Array, Text, Number, Word };
    struct Item;

    OrderedJson();
    ~OrderedJson();
    OrderedJson(const OrderedJson& other);
    OrderedJson& operator=(const OrderedJson& other);
    OrderedJson(OrderedJson&& other) noexcept;
    OrderedJson& operator=(OrderedJson&& other) noexcept;

    /**
     * Reads a whole text.
     *
     * @param[out] fault why it is no JSON, with the place: a clause; empty when it is
     */
    static OrderedJson parse(const QByteArray& content, QString& fault);

    static OrderedJson object();
    static OrderedJson text(const QString& text);
    static OrderedJson number(int number);
    static OrderedJson null();
    static OrderedJson flag(bool isTrue);
    static OrderedJson texts(const QStringList& texts); ///< an array on one line

    /** Whether it is written byte for byte as the other one. */
    bool operator==(const OrderedJson& other) const;
    bool operator!=(const OrderedJson& other) const { return !(*this == other); }
    /** Whether neither has been set since one was copied from the other: equal at a glance. */
    bool isCopyOf(const OrderedJson& other) const;

    /** An empty object or array that lays out its items as this one does. */
    OrderedJson emptied() const;

    Kind kind() const { return m_kind; }
    bool isNull() const { return m_kind == Word && m_written == "null"; }
    bool isTrue() const { return m_kind == Word && m_written == "true"; }
    QString toText() const; ///< empty for what is no text
    QByteArray written() const { return m_written; } ///< a text, a number or a word as it stands

    /** Of an object or an array; empty for other values. */
    const QVector<Item>& items() const&;
    QVector<Item>& items() &;
    QVector<Item> items() &&;

    /** The index of a key among the items; -1 when an object has it not. */
    int indexOf(const QString& key) const;
    OrderedJson member(const QString& key) const; ///< Nothing when there is none
    QStringList toTexts() const; ///< those of an array

    /** Gives an object's key a value, as the last item behind those keys where it is new. */
    void set(const QString& key, const OrderedJson& value, const QStringList& before = {});
    void remove(const QString& key);

    QByteArray toUtf8() const;

private:
    class Reader;
    struct Content;

    explicit OrderedJson(Kind kind, const QByteArray& written = {});
    void write(QByteArray& out) const;

    Kind m_kind = Nothing;
    QByteArray m_written;
    QSharedDataPointer<Content> m_content; // of objects and arrays
};

/** What an object or an array holds, with the blanks around it. */
struct OrderedJson::Item {
    QString key; ///< of an object's item
    OrderedJson value;
    QByteArray writtenKey; ///< with its quotation marks and the colon behind; empty for a new one
    QByteArray before; ///< the blanks before it; null for a new one, and for the first one of the text
    QByteArray after; ///< those before the comma behind it
};

Q_DECLARE_TYPEINFO(OrderedJson, Q_MOVABLE_TYPE);
Q_DECLARE_TYPEINFO(OrderedJson::Item, Q_MOVABLE_TYPE);

#endif
