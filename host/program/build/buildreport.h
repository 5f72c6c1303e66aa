// SPDX-License-Identifier: MIT
#ifndef BUILDREPORT_H
#define BUILDREPORT_H

#include "build/buildoutcome.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>

/** The report of a run, in the three forms that people and machines read. */
namespace BuildReport {

/** As an object that fromJson() takes back, of docs/report.schema.json; paths below the output folder are
 * relative to it. */
QJsonObject toJson(const BuildOutcome& build);
/** False for what is no such object. Keys of a later version's are passed over. */
bool fromJson(const QJsonObject& object, BuildOutcome& build);

/**
 * Makes one run of the reports of a job's slices, with the channels in the job's order. Of several reports of
 * one slice the latest counts; where a job was divided anew, only the slices of the latest division.
 *
 * @param reportFiles the slices' report.json; from OUTPUT/slices/I-of-N they find their output folder
 * wherever it is mounted now
 * @param[out] build what there is, even where something is missing
 * @param[out] fault a sentence that names missing slices and reports that cannot be used
 * @return whether every slice is there, and each channel once
 */
bool collect(const QStringList& reportFiles, BuildOutcome& build, QString& fault);

/** Takes a page's parts, one after the other. */
using Sink = std::function<void(const QString& part)>;

/** One page without anything from elsewhere: pictures are in it. */
void putHtml(const BuildOutcome& build, const Sink& put);
QByteArray toHtml(const BuildOutcome& build);

/** A table for a terminal of so many columns: channel, outcome, package, size, time. */
QStringList toTable(const BuildOutcome& build, int columns);

/** Writes report.json and report.html into a folder, each whole or not at all; the cause of a failure, or an
 * empty text. */
QString write(const BuildOutcome& build, const QString& folder);

} // namespace BuildReport

#endif
