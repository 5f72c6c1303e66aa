// SPDX-License-Identifier: MIT
#ifndef PICTUREFAULT_H
#define PICTUREFAULT_H

#include <QString>

/** Why a picture cannot be used; empty when it can. */
namespace PictureFault {

/** A clause: "it is not a regular file". */
QString ofIcon(const QString& path);

/** A sentence that names the picture. */
QString ofMark(const QString& path);

} // namespace PictureFault

#endif
