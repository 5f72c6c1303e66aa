// SPDX-License-Identifier: MIT
#ifndef ICONSET_H
#define ICONSET_H

#include <QString>
#include <QStringList>
#include <QVector>

/** The names that the library's icons and marks have: sizes, corners, files. */
namespace IconSet {

enum Platform : int { Android = 0, Ios = 1 };
enum Corner : int { LeftTop = 0, LeftBottom = 1, RightTop = 2, RightBottom = 3, Default = 4 };

/** The words for the corners, each at its number; the last one is that of Default. */
QStringList cornerNames();

bool isRight(int corner);
bool isBottom(int corner);

/** The file of a mark's picture for a corner, in the mark's folder. */
QString cornerFile(int corner);

/** The sizes that the library writes, in pixels. */
QVector<int> sides(int platform);

/** The names of the files that the library writes for each channel. */
QStringList fileNames(int platform);

/** The name of the file of one size, in pixels. */
QString fileName(int platform, int side);

/** That of the marked icon in its own size. */
QString wholeFile();

} // namespace IconSet

#endif
