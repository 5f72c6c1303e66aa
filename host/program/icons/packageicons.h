// SPDX-License-Identifier: MIT
#ifndef PACKAGEICONS_H
#define PACKAGEICONS_H

#include <QString>
#include <QStringList>
#include <QVector>

/** A picture that a built package shows as its icon. */
struct PackageIcon {
    QString path; ///< in the package
    int side = 0; ///< what its density asks for, in pixels
};

/** What a built package shows as its icon. */
struct PackageIcons {
    QVector<PackageIcon> pictures; ///< PNG files, each once
    QStringList others; ///< what is none, like a description of layers
};

/** Reads them out of what aapt tells of a package. */
PackageIcons parseBadging(const QString& badging);

/** @param[out] fault why the package cannot be used; empty when it can */
PackageIcons iconsOfPackage(const QString& apk, QString& fault);

#endif
