// SPDX-License-Identifier: MIT
#ifndef PACKAGEFACTS_H
#define PACKAGEFACTS_H

#include "icons/packageicons.h"

#include <QString>

class Console;

/** What aapt tells of a package. */
struct PackageFacts {
    QString name; ///< "com.quenzo.skyharbour"
    QString versionName;
    QString versionCode;
    QString minSdk; ///< empty where the package names none, like the next two
    QString targetSdk;
    QString maxSdk;
    PackageIcons icons;

    /** Reads them; false with a fault in one sentence. */
    static bool read(const QString& apk, Console& console, PackageFacts& facts, QString& fault);
};

#endif
