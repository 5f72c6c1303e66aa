// SPDX-License-Identifier: MIT
#ifndef EXECUTABLEPATH_H
#define EXECUTABLEPATH_H

#include <QString>

/** The running executable: absolute path, links resolved, forward slashes. Needs no application object. */
QString executablePath();

#endif
