// SPDX-License-Identifier: MIT
#ifndef TOOLCHECK_H
#define TOOLCHECK_H

#include <QString>

/**
 * Why a program of the tool folder cannot be used; empty when it can. The library does not tell a missing
 * program from one that has nothing to say.
 */
QString toolProblem(const QString& name);

#endif
