// SPDX-License-Identifier: MIT
#ifndef MANIFEST_H
#define MANIFEST_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

/** An element of an XML file: manifests have no text between their elements. */
struct XmlElement {
    struct Attribute {
        QString name; ///< with its prefix
        QString value;
    };
    QString name;
    QVector<Attribute> attributes;
    QVector<XmlElement> children;

    QString value(const QString& attribute) const;
    void set(const QString& attribute, const QString& value);
    XmlElement* child(const QString& childName);
};

/** A package's manifest as text, which SDKs add to and which may get another package's name. */
class Manifest {
public:
    /** Reads a decoded AndroidManifest.xml; false with error(). */
    bool read(const QByteArray& text);

    /** Gives the package another name; classes and authorities that go by the old one are named in full. */
    void rename(const QString& package);

    /**
     * Adds what an SDK wants.
     *
     * @param config the SDK's config.xml, whose element "manifest" holds elements for the manifest, and in an
     * element "application" those for the application; ${applicationId} stands for the package
     * @return false with error() when it cannot be read, or clashes with what is there
     */
    bool add(const QString& sdk, const QByteArray& config);

    QByteArray text() const;
    QString package() const;
    void setPackage(const QString& package);
    const QString& error() const { return m_error; }

    /** Whether an SDK wants anything of manifests. */
    static bool hasFragment(const QByteArray& config);

private:
    bool merge(const QString& sdk, XmlElement& into, const XmlElement& fragment);

    XmlElement m_root;
    QString m_error;
};

#endif
