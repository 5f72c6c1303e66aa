// SPDX-License-Identifier: MIT
#ifndef SCRAMBLING_H
#define SCRAMBLING_H

#include <QString>

struct DBRequest;

/** The scrambling of values that a request writes, or compares with. */
namespace Scrambling {

/** Which value would not come back as it was, with its row and column; empty when all would. */
QString loss(const DBRequest& request);

/** Scrambles the values of the columns that were named; all of them are the library's matter. */
void apply(DBRequest& request);

} // namespace Scrambling

#endif
