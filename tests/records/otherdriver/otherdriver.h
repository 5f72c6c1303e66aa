// SPDX-License-Identifier: MIT
#ifndef OTHERDRIVER_H
#define OTHERDRIVER_H

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QSqlDriver;
QT_END_NAMESPACE

/** A driver with a SQLite of its own built in, of the very version that the library has. */
Q_DECL_EXPORT QSqlDriver* makeOtherDriver();

#endif
