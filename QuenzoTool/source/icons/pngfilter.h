// SPDX-License-Identifier: MIT
#ifndef PNGFILTER_H
#define PNGFILTER_H

#include <vector>

class QImage;

/**
 * The rows of a picture as a PNG file holds them before they are deflated: each in the one of its five
 * filtered forms that is nearest to zero, behind that form's number.
 *
 * @param picture rows of whole bytes
 * @param pixel bytes a pixel
 */
std::vector<unsigned char> filteredPngRows(const QImage& picture, int pixel);

#endif
