// SPDX-License-Identifier: MIT
#ifndef PACKAGEPARTS_H
#define PACKAGEPARTS_H

#include "build/apkeditor.h"

#include <QMap>
#include <QStringList>

/**
 * Gathers what a channel's package has besides its base, or in the place of it. Every part says where it
 * comes from; two SDKs that bring the same entry with other contents are an error, and the channel's own
 * files go over everything.
 */
class PackageParts {
public:
    explicit PackageParts(const QVector<ApkEntry>& base);

    /** What the build has made: files that lie below a folder as they do in the package. */
    bool addMade(const QString& folder, const QStringList& paths);

    /** What packages take of an imported SDK: assets/, lib/ and its classes, which get the next free numbers.
     */
    bool addSdk(const QString& name, const QString& folder);

    /** A channel's own files. */
    bool addFiles(const QString& folder);

    /** An entry that the build writes. */
    bool addContent(const QByteArray& name, const QByteArray& content);

    QVector<ApkChange> changes() const;

    int replaced() const; ///< entries of the base that are
    int added() const;

    /** What is worth a look: parts of SDKs that no package takes, entries of the base that an SDK replaces.
     */
    const QStringList& notes() const { return m_notes; }

    /** Why the last call was false, in one sentence. */
    const QString& error() const { return m_error; }

private:
    enum Origin { Made, Sdk, Files, Build };
    struct Part {
        ApkChange change;
        Origin origin;
        QString from; ///< the SDK's name
    };

    bool add(const Part& part);
    bool fail(const QString& error);
    bool addClasses(const QString& name, const QString& folder, const QStringList& files);

    QMap<QByteArray, ApkEntry> m_base;
    QMap<QByteArray, Part> m_parts;
    QStringList m_notes;
    QString m_error;
    int m_classes = 0; ///< how many classesN.dex there are
};

#endif
