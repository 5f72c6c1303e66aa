// SPDX-License-Identifier: MIT
#ifndef BUILDPLACES_H
#define BUILDPLACES_H

#include <QString>

/** Where a run puts what: in the making below the work folder, finished below the output folder. */
struct BuildPlaces {
    QString work; ///< of this process alone
    QString output;
    QString reports; ///< records and reports of this run: the output folder, or a slice's part of it

    QString sdk(const QString& name) const { return work + QStringLiteral("/sdks/") + name; }
    /** The icons of all channels for a platform, a folder a channel. */
    QString icons(const QString& platform) const { return work + QStringLiteral("/icons/") + platform; }
    /** The base's manifest as text, and what apktool keeps beside them. */
    QString decoded() const { return work + QStringLiteral("/decoded"); }
    QString decodingStore() const { return work + QStringLiteral("/decoding"); }
    QString channel(const QString& folder) const { return work + QStringLiteral("/channels/") + folder; }
    QString finished(const QString& folder) const { return output + QLatin1Char('/') + folder; }
    QString finishedPackage(const QString& folder) const
    {
        return finished(folder) + QLatin1Char('/') + folder + QStringLiteral(".apk");
    }
    QString records() const { return reports + QStringLiteral("/records.db"); }
};

#endif
