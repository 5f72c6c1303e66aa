// SPDX-License-Identifier: MIT
#ifndef ICONPICTURES_H
#define ICONPICTURES_H

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

/** Pictures for the tests of icons, and the plain way of making them. */
namespace IconPictures {

/** A picture with gradients, edges and grain, the same in each run; with @p alpha its corners are
 * transparent. */
QImage photograph(int width, int height, bool alpha = false);

/** A translucent disc in a square of @p side pixels. */
QImage mark(int side, const QColor& colour);

/** The icon with the mark as drawn by a painter; a picture that painters refuse is made paintable first. */
QImage marked(QImage icon, const QImage& mark, int x, int y);

/** The content of the PNG file that QImage::save writes. Qt's @p quality changes nothing but its size and the
 * time it takes: 100 is the quickest. */
QByteArray savedByQt(const QImage& image, int quality = -1);

/** The chunks of a PNG file but for the picture's data, in order, each as type and data. */
QList<QPair<QByteArray, QByteArray>> chunksBesideData(const QByteArray& png);

/** What pngcheck finds fault with in these files; empty when it is content. */
QString faultsOf(const QStringList& paths);

} // namespace IconPictures

#endif
