// SPDX-License-Identifier: MIT
#include "window/channels/orderedjson.h"

#include "jsonplace.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QSharedData>

struct OrderedJson::Content : QSharedData {
    QVector<Item> items;
    QByteArray first; // the blanks before the first item, whichever it is
    QByteArray usual; // those before every other new one
    QByteArray colon = ": ";
    QByteArray last; // those before the closing bracket
    QByteArray ahead; // those around the whole text, when it is the root
    QByteArray behind;
};

namespace {

bool isBlank(char letter)
{
    return letter == ' ' || letter == '\n' || letter == '\r' || letter == '\t';
}

QString decoded(const QByteArray& quoted)
{
    return quoted.contains('\\') ? QJsonDocument::fromJson('[' + quoted + ']').array().at(0).toString()
                                 : QString::fromUtf8(quoted.constData() + 1, quoted.size() - 2);
}

QByteArray encoded(const QString& text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

} // namespace

// Takes a text apart that Qt's parser has found sound.
class OrderedJson::Reader {
public:
    explicit Reader(const QByteArray& text)
        : m_text(text)
    {
    }

    OrderedJson root()
    {
        const QByteArray ahead = blanks(m_text.startsWith("\xEF\xBB\xBF") ? 3 : 0);
        OrderedJson root = value();
        root.m_content->ahead = ahead;
        root.m_content->behind = blanks();
        return root;
    }

private:
    char letter() const { return m_text.at(m_at); }

    // Few different ones there are, and many of each.
    QByteArray kept(const QByteArray& part) { return *m_parts.insert(part); }

    QByteArray blanks(int known = 0)
    {
        const int start = m_at;
        m_at += known;
        while (m_at < m_text.size() && isBlank(letter()))
            ++m_at;
        return kept(m_text.mid(start, m_at - start));
    }

    QByteArray quoted()
    {
        const int start = m_at;
        for (++m_at; letter() != '"'; ++m_at) {
            if (letter() == '\\')
                ++m_at;
        }
        ++m_at;
        return m_text.mid(start, m_at - start);
    }

    OrderedJson leaf()
    {
        const int start = m_at;
        while (!isBlank(letter()) && letter() != ',' && letter() != ']' && letter() != '}')
            ++m_at;
        const QByteArray written = kept(m_text.mid(start, m_at - start));
        const bool isNumber = written.at(0) == '-' || (written.at(0) >= '0' && written.at(0) <= '9');
        return OrderedJson(isNumber ? Number : Word, written);
    }

    OrderedJson value()
    {
        if (letter() == '"')
            return OrderedJson(Text, quoted());
        return letter() == '{' || letter() == '[' ? container() : leaf();
    }

    void readKey(Item& item, Content& content)
    {
        item.writtenKey = kept(quoted());
        item.key = m_keys.value(item.writtenKey);
        if (item.key.isNull())
            item.key = *m_keys.insert(item.writtenKey, decoded(item.writtenKey));
        const int start = m_at;
        while (isBlank(letter()) || letter() == ':')
            ++m_at;
        content.colon = kept(m_text.mid(start, m_at - start));
        item.writtenKey = kept(item.writtenKey + content.colon);
    }

    OrderedJson container()
    {
        OrderedJson made(letter() == '{' ? Object : Array);
        Content& content = *made.m_content;
        ++m_at;
        content.first = blanks();
        while (letter() != '}' && letter() != ']') {
            Item item;
            if (!content.items.isEmpty())
                item.before = content.usual = blanks();
            if (made.m_kind == Object)
                readKey(item, content);
            item.value = value();
            item.after = blanks();
            if (letter() == ',')
                ++m_at;
            else
                content.last.swap(item.after);
            content.items.append(item);
        }
        ++m_at;
        if (content.items.isEmpty())
            content.last.swap(content.first);
        if (content.items.size() < 2)
            content.usual = content.first.contains('\n') ? content.first : QByteArray(" ");
        return made;
    }

    const QByteArray& m_text;
    int m_at = 0;
    QSet<QByteArray> m_parts;
    QHash<QByteArray, QString> m_keys;
};

OrderedJson::OrderedJson() = default;
OrderedJson::~OrderedJson() = default;
OrderedJson::OrderedJson(const OrderedJson& other) = default;
OrderedJson& OrderedJson::operator=(const OrderedJson& other) = default;
OrderedJson::OrderedJson(OrderedJson&& other) noexcept = default;
OrderedJson& OrderedJson::operator=(OrderedJson&& other) noexcept = default;

OrderedJson::OrderedJson(Kind kind, const QByteArray& written)
    : m_kind(kind)
    , m_written(written)
    , m_content(kind == Object || kind == Array ? new Content : nullptr)
{
}

OrderedJson OrderedJson::parse(const QByteArray& content, QString& fault)
{
    QJsonParseError error;
    QJsonDocument::fromJson(content, &error);
    if (error.error == QJsonParseError::NoError) {
        fault.clear();
        return Reader(content).root();
    }
    fault =
        QStringLiteral("%1 (%2)").arg(error.errorString(), JsonPlace::lineAndColumn(content, error.offset));
    return {};
}

OrderedJson OrderedJson::object()
{
    OrderedJson object(Object);
    object.m_content->usual = " ";
    return object;
}

OrderedJson OrderedJson::text(const QString& text)
{
    return OrderedJson(Text, encoded(text));
}

OrderedJson OrderedJson::number(int number)
{
    return OrderedJson(Number, QByteArray::number(number));
}

OrderedJson OrderedJson::null()
{
    return OrderedJson(Word, "null");
}

OrderedJson OrderedJson::flag(bool isTrue)
{
    return OrderedJson(Word, isTrue ? "true" : "false");
}

OrderedJson OrderedJson::texts(const QStringList& texts)
{
    OrderedJson array(Array);
    array.m_content->usual = " ";
    for (const QString& text : texts) {
        Item item;
        item.value = OrderedJson::text(text);
        array.items().append(item);
    }
    return array;
}

bool OrderedJson::operator==(const OrderedJson& other) const
{
    return isCopyOf(other) || toUtf8() == other.toUtf8();
}

bool OrderedJson::isCopyOf(const OrderedJson& other) const
{
    return m_kind == other.m_kind && m_written == other.m_written
        && m_content.constData() == other.m_content.constData();
}

OrderedJson OrderedJson::emptied() const
{
    OrderedJson empty = *this;
    if (empty.m_content)
        empty.m_content->items.clear();
    return empty;
}

QString OrderedJson::toText() const
{
    return m_kind == Text ? decoded(m_written) : QString();
}

const QVector<OrderedJson::Item>& OrderedJson::items() const&
{
    static const QVector<Item> none;
    return m_content ? m_content->items : none;
}

QVector<OrderedJson::Item>& OrderedJson::items() &
{
    Q_ASSERT(m_content);
    return m_content->items;
}

QVector<OrderedJson::Item> OrderedJson::items() &&
{
    return m_content ? qAsConst(m_content)->items : QVector<Item>();
}

int OrderedJson::indexOf(const QString& key) const
{
    const QVector<Item>& all = items();
    for (int i = 0; m_kind == Object && i < all.size(); ++i) {
        if (all.at(i).key == key)
            return i;
    }
    return -1;
}

OrderedJson OrderedJson::member(const QString& key) const
{
    const int index = indexOf(key);
    return index < 0 ? OrderedJson() : items().at(index).value;
}

QStringList OrderedJson::toTexts() const
{
    QStringList texts;
    for (const Item& item : items())
        texts.append(item.value.toText());
    return texts;
}

void OrderedJson::set(const QString& key, const OrderedJson& value, const QStringList& before)
{
    const int index = indexOf(key);
    if (index >= 0) {
        items()[index].value = value;
        return;
    }
    int place = items().size();
    for (int i = 0; i < items().size(); ++i) {
        if (before.contains(items().at(i).key))
            place = i + 1;
    }
    Item item;
    item.key = key;
    item.value = value;
    items().insert(place, item);
}

void OrderedJson::remove(const QString& key)
{
    const int index = indexOf(key);
    if (index >= 0)
        items().remove(index);
}

QByteArray OrderedJson::toUtf8() const
{
    QByteArray out;
    write(out);
    return m_content ? QByteArray(m_content->ahead + out + m_content->behind) : out;
}

void OrderedJson::write(QByteArray& out) const
{
    if (!m_content) {
        out += m_written;
        return;
    }
    out += m_kind == Object ? '{' : '[';
    const QVector<Item>& all = m_content->items;
    for (int i = 0; i < all.size(); ++i) {
        const Item& item = all.at(i);
        if (i > 0)
            out += ',';
        out += i == 0 ? m_content->first : item.before.isNull() ? m_content->usual : item.before;
        if (m_kind == Object)
            out += item.writtenKey.isEmpty() ? QByteArray(encoded(item.key) + m_content->colon)
                                             : item.writtenKey;
        item.value.write(out);
        out += item.after;
    }
    out += m_content->last;
    out += m_kind == Object ? '}' : ']';
}
