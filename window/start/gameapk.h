// SPDX-License-Identifier: MIT
#ifndef GAMEAPK_H
#define GAMEAPK_H

#include <QByteArray>
#include <QString>

/** What a game's APK tells of itself, for a new job. */
struct GameApk {
    QString path; ///< absolute
    QString name; ///< for people; empty where the package tells none
    QString package; ///< "com.quenzo.skyharbour"
    QByteArray icon; ///< its largest picture, a PNG file; empty where it has none
    QString fault; ///< why it cannot be read, as a sentence; empty when it can

    /** Asks aapt, which takes its time: not for the window's thread. */
    static GameApk read(const QString& path);
};

#endif
