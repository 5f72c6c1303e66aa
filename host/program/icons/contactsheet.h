// SPDX-License-Identifier: MIT
#ifndef CONTACTSHEET_H
#define CONTACTSHEET_H

#include <QImage>
#include <QString>
#include <QVector>

/** One picture of a contact sheet. */
struct SheetEntry {
    QString name;
    QString path; ///< the picture's file; a cross stands for one that cannot be read
};

/**
 * Draws pictures in rows, each over its name, so that many are checked at a glance.
 *
 * Texts need a QGuiApplication; on the platform "offscreen" it touches no display.
 */
QImage drawContactSheet(const QString& title, const QVector<SheetEntry>& entries);

/** The letters of a text that no font has; boxes stand for them on a sheet. */
QString lettersWithoutFont(const QString& text);

/** Whether there is a font; without one a sheet has neither title nor names. */
bool canWriteOnSheets();

#endif
