// SPDX-License-Identifier: MIT
#ifndef BUILDREPORT_H
#define BUILDREPORT_H

#include "build/buildoutcome.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

/** The report of a run, in the three forms that people and machines read. */
namespace BuildReport {

/** As an object that fromJson() takes back; paths below the output folder are relative to it. */
QJsonObject toJson(const BuildOutcome& build);
/** False for what is no such object. */
bool fromJson(const QJsonObject& object, BuildOutcome& build);

/** One page without anything from elsewhere: pictures are in it. */
QByteArray toHtml(const BuildOutcome& build);

/** A table for a terminal of so many columns: channel, outcome, package, size, time. */
QStringList toTable(const BuildOutcome& build, int columns);

/** Writes report.json and report.html into a folder, each whole or not at all; the cause of a failure, or an
 * empty text. */
QString write(const BuildOutcome& build, const QString& folder);

} // namespace BuildReport

#endif
