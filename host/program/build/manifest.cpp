// SPDX-License-Identifier: MIT
#include "build/manifest.h"

#include <QCoreApplication>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

struct ManifestText {
    Q_DECLARE_TR_FUNCTIONS(Manifest)
};

const QLatin1String applicationElement("application");
const QLatin1String manifestElement("manifest");
const QLatin1String nameAttribute("android:name");
const QLatin1String packageAttribute("package");
constexpr int deepest = 64; // elements in one another; a manifest has six

// The element at which the reader stands, with all in it.
XmlElement readElement(QXmlStreamReader& reader, int depth = 0)
{
    XmlElement element;
    element.name = reader.name().toString();
    for (const QXmlStreamAttribute& attribute : reader.attributes())
        element.attributes.append({attribute.qualifiedName().toString(), attribute.value().toString()});
    if (depth > deepest)
        reader.raiseError(ManifestText::tr("it is nested too deep"));
    while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::EndElement) {
        if (reader.isStartElement())
            element.children.append(readElement(reader, depth + 1));
    }
    return element;
}

bool readRoot(const QByteArray& text, XmlElement& root, QString& error)
{
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false); // names stay with their prefixes
    if (reader.readNextStartElement())
        root = readElement(reader);
    if (reader.hasError())
        error = reader.errorString();
    return !reader.hasError();
}

void writeElement(QXmlStreamWriter& writer, const XmlElement& element)
{
    writer.writeStartElement(element.name);
    for (const XmlElement::Attribute& attribute : element.attributes)
        writer.writeAttribute(attribute.name, attribute.value);
    for (const XmlElement& child : element.children)
        writeElement(writer, child);
    writer.writeEndElement();
}

bool equal(const XmlElement& one, const XmlElement& other)
{
    const auto has = [](const XmlElement& element, const XmlElement::Attribute& attribute) {
        return element.value(attribute.name) == attribute.value;
    };
    return one.name == other.name && one.attributes.size() == other.attributes.size()
        && one.children.size() == other.children.size()
        && std::all_of(one.attributes.cbegin(), one.attributes.cend(),
                       [&](const XmlElement::Attribute& attribute) { return has(other, attribute); })
        && std::equal(one.children.cbegin(), one.children.cend(), other.children.cbegin(), equal);
}

void replaceAll(XmlElement& element, const QString& before, const QString& after)
{
    for (XmlElement::Attribute& attribute : element.attributes)
        attribute.value.replace(before, after);
    for (XmlElement& child : element.children)
        replaceAll(child, before, after);
}

// A class named without its package belongs to the manifest's, which is another one from now on.
void nameInFull(XmlElement& element, const QString& package)
{
    static const QStringList owners{QStringLiteral("application"),    QStringLiteral("activity"),
                                    QStringLiteral("activity-alias"), QStringLiteral("service"),
                                    QStringLiteral("receiver"),       QStringLiteral("provider"),
                                    QStringLiteral("instrumentation")};
    static const QStringList classes{QString(nameAttribute), QStringLiteral("android:backupAgent"),
                                     QStringLiteral("android:targetActivity"),
                                     QStringLiteral("android:parentActivityName"),
                                     QStringLiteral("android:manageSpaceActivity")};
    for (XmlElement::Attribute& attribute : element.attributes) {
        if (!owners.contains(element.name) || !classes.contains(attribute.name))
            continue;
        if (attribute.value.startsWith(QLatin1Char('.')))
            attribute.value.prepend(package);
        else if (!attribute.value.contains(QLatin1Char('.')))
            attribute.value.prepend(package + QLatin1Char('.'));
    }
    for (XmlElement& child : element.children)
        nameInFull(child, package);
}

// Two packages on one device may not declare the same permission either, wherever it is named.
void renameValue(XmlElement& element, const QString& before, const QString& after)
{
    for (XmlElement::Attribute& attribute : element.attributes) {
        if (attribute.value == before)
            attribute.value = after;
    }
    for (XmlElement& child : element.children)
        renameValue(child, before, after);
}

// Two packages on one device may not serve the same authority.
void renameAuthorities(XmlElement& element, const QString& before, const QString& after)
{
    const QString authorities = element.value(QStringLiteral("android:authorities"));
    if (element.name == QLatin1String("provider") && !authorities.isEmpty()) {
        QStringList names = authorities.split(QLatin1Char(';'));
        for (QString& name : names) {
            if (name == before || name.startsWith(before + QLatin1Char('.')))
                name.replace(0, before.size(), after);
        }
        element.set(QStringLiteral("android:authorities"), names.join(QLatin1Char(';')));
    }
    for (XmlElement& child : element.children)
        renameAuthorities(child, before, after);
}

} // namespace

QString XmlElement::value(const QString& attribute) const
{
    const auto found = std::find_if(attributes.cbegin(), attributes.cend(),
                                    [&attribute](const Attribute& one) { return one.name == attribute; });
    return found == attributes.cend() ? QString() : found->value;
}

void XmlElement::set(const QString& attribute, const QString& value)
{
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [&attribute](const Attribute& one) { return one.name == attribute; });
    if (found == attributes.end())
        attributes.append({attribute, value});
    else
        found->value = value;
}

XmlElement* XmlElement::child(const QString& childName)
{
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&childName](const XmlElement& one) { return one.name == childName; });
    return found == children.end() ? nullptr : &*found;
}

bool Manifest::read(const QByteArray& text)
{
    m_root = {};
    QString error;
    if (!readRoot(text, m_root, error))
        m_error = ManifestText::tr("the decoded manifest cannot be read: %1").arg(error);
    else if (m_root.name != manifestElement || package().isEmpty()
             || m_root.child(applicationElement) == nullptr)
        m_error = ManifestText::tr("the decoded manifest has no application with a package's name");
    return m_error.isEmpty();
}

QString Manifest::package() const
{
    return m_root.value(packageAttribute);
}

void Manifest::setPackage(const QString& package)
{
    m_root.set(packageAttribute, package);
}

void Manifest::rename(const QString& package)
{
    const QString before = this->package();
    nameInFull(m_root, before);
    renameAuthorities(m_root, before, package);
    QStringList permissions;
    for (const XmlElement& child : qAsConst(m_root.children)) {
        const QString name = child.value(nameAttribute);
        if (child.name == QLatin1String("permission") && name.startsWith(before + QLatin1Char('.')))
            permissions.append(name);
    }
    for (const QString& permission : qAsConst(permissions))
        renameValue(m_root, permission, package + permission.mid(before.size()));
    setPackage(package);
}

bool Manifest::hasFragment(const QByteArray& config)
{
    XmlElement root;
    QString error;
    return readRoot(config, root, error) && root.child(manifestElement) != nullptr;
}

bool Manifest::add(const QString& sdk, const QByteArray& config)
{
    XmlElement root;
    QString error;
    if (!readRoot(config, root, error)) {
        m_error = ManifestText::tr("the config.xml of the SDK '%1' cannot be read: %2").arg(sdk, error);
        return false;
    }
    const XmlElement* const fragment = root.child(manifestElement);
    XmlElement* const application = m_root.child(applicationElement);
    if (fragment == nullptr || application == nullptr) // read() refuses a manifest without one
        return fragment == nullptr;
    XmlElement wanted = *fragment;
    replaceAll(wanted, QStringLiteral("${applicationId}"), package());
    for (const XmlElement& child : qAsConst(wanted.children)) {
        const bool isApplication = child.name == applicationElement;
        XmlElement& into = isApplication ? *application : m_root;
        const QVector<XmlElement> elements = isApplication ? child.children : QVector<XmlElement>{child};
        for (const XmlElement& element : elements) {
            if (!merge(sdk, into, element))
                return false;
        }
    }
    return true;
}

// What is there with the same content is not repeated; the same name with another content is a clash.
bool Manifest::merge(const QString& sdk, XmlElement& into, const XmlElement& fragment)
{
    const QString name = fragment.value(nameAttribute);
    for (const XmlElement& one : qAsConst(into.children)) {
        if (equal(one, fragment))
            return true;
        if (one.name == fragment.name && !name.isEmpty() && one.value(nameAttribute) == name) {
            m_error = ManifestText::tr("the SDK '%1' wants another %2 '%3' than the manifest has")
                          .arg(sdk, fragment.name, name);
            return false;
        }
    }
    into.children.append(fragment);
    return true;
}

QByteArray Manifest::text() const
{
    QByteArray text;
    QXmlStreamWriter writer(&text);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writeElement(writer, m_root);
    writer.writeEndDocument();
    return text;
}
