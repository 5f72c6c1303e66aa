// SPDX-License-Identifier: MIT
#ifndef DATABASEFILE_H
#define DATABASEFILE_H

#include <QString>
#include <QVariant>

/**
 * The first column of what a statement yields on a connection of the test's own, made for it; a statement
 * that fails ends the test program.
 */
QVariantList askDatabase(const QString& file, const QString& sql);

#endif
