// SPDX-License-Identifier: MIT
#ifndef REPORTSTYLE_H
#define REPORTSTYLE_H

/** How the report's page looks: system fonts, light and dark, from a phone's width on. */
extern const char* const reportStyle;

#endif
