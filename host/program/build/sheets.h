// SPDX-License-Identifier: MIT
#ifndef SHEETS_H
#define SHEETS_H

#include <QString>

class Console;
struct BuildOutcome;
struct Job;

/** Draws the contact sheets of a run's finished icons, one a platform, and notes them in its outcome. */
void drawSheets(const Job& job, BuildOutcome& build, const QString& folder, Console& console);

#endif
