// SPDX-License-Identifier: MIT
#ifndef MARKPICTURES_H
#define MARKPICTURES_H

#include <QImage>
#include <QStringList>

#include <array>

/** What the preview of a mark shows: the game's icon, and the mark's picture for each corner. */
struct MarkPictures {
    QImage icon; ///< not larger than a screen needs
    QSize iconSize; ///< of the file, in pixels
    std::array<QImage, 4> marks; ///< by corner; null where there is none
    QStringList names; ///< of all marks that there are
    QString fault; ///< why the icon cannot be shown; a sentence

    /** Reads them; takes its time. @param mark empty for none */
    static MarkPictures read(const QString& master, const QString& marks, const QString& mark);
};

#endif
