// SPDX-License-Identifier: MIT
#ifndef SHEETS_H
#define SHEETS_H

#include <QString>

class Console;
struct BuildOutcome;
struct Job;

/** Draws the contact sheets of a run's finished icons, by platform, 200 icons each, and notes them in its
 * outcome. */
void drawSheets(const Job& job, BuildOutcome& build, const QString& folder, Console& console);

#endif
