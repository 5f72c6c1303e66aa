// SPDX-License-Identifier: MIT
#ifndef ICONLAYOUT_H
#define ICONLAYOUT_H

#include "icons/iconset.h"
#include "icons/packageicons.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

/** One file that a channel gets. */
struct LayoutFile {
    enum Content : int {
        Icon, ///< the channel's icon
        OpaqueIcon, ///< the same on white, without an alpha channel
        Foreground, ///< the same inside the circle that every launcher shows
        Background, ///< the second picture, over the whole layer
        Text,
    };
    QString path; ///< below the output folder
    Content content = Icon;
    int side = 0; ///< in pixels; 0 for the icon in its own size, and for a text
    QByteArray text;
};

/** Where the icons go, and which there are: as the library writes them, or as packages take them. */
struct IconLayout {
    enum Arrangement : int { Plain, AndroidRes, AndroidAdaptive, IosAppIconSet };

    static constexpr int storeSide = 1024; ///< of the picture that goes to the iOS store

    Arrangement arrangement = Plain;
    int platform = IconSet::Android;
    QString name; ///< of the icon in the package; Plain has none
    QVector<PackageIcon> base; ///< for AndroidRes: those of the package that these replace, if there is one

    /** The words for the arrangements, each at its number. */
    static QStringList arrangementNames();
    /** What packages usually call their icon. */
    QString usualName() const;
    /** Whether a package can have an icon of this name. */
    bool takesName(const QString& wanted) const;

    /** The files of the channel with this folder. */
    QVector<LayoutFile> filesOf(const QString& folder) const;
    /** That of the files by which people see what a channel gets. */
    QString shownFile(const QString& folder) const;
};

#endif
