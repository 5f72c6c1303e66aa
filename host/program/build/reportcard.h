// SPDX-License-Identifier: MIT
#ifndef REPORTCARD_H
#define REPORTCARD_H

#include "build/buildoutcome.h"

#include <QPair>
#include <QString>
#include <QVector>

/** Parts of the report's page. What they return is markup; only text() and what calls it make it of texts. */
namespace ReportMarkup {

/** A text as it may stand between tags and within an attribute's quotation marks. */
QString text(const QString& text);

/** A path, which may be broken behind its separators. */
QString path(const QString& path);

/** The class of what looks like an outcome: "good", "bad", "idle". */
QString lookOf(ChannelOutcome::Outcome outcome);

/** The class of a step's colour. */
QString colourOf(const QString& step);

/** A bar of steps and their milliseconds, which also says them. */
QString bar(const QVector<QPair<QString, qint64>>& steps);

/** An element of the list of channels. */
QString card(const ChannelOutcome& channel);

} // namespace ReportMarkup

#endif
