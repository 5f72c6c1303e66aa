// SPDX-License-Identifier: MIT
#ifndef FIGURES_H
#define FIGURES_H

#include <QString>
#include <QStringList>
#include <QVector>

/** A number of bytes as people read it everywhere in the program: "999 bytes", "40.5 kB", "1.2 GB". */
QString sizeText(qint64 bytes);

/** A stretch of time: "5 s", "2 min 5 s", "1 h 10 min". */
QString durationText(qint64 seconds);

/** How many columns of a terminal a text takes; some letters take two, and some none. */
int columnsOf(const QString& text);

/** Rows of equally many cells as lines, with columns as wide as what is in them. */
QStringList tabulated(const QVector<QStringList>& rows);

#endif
