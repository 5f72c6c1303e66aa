// SPDX-License-Identifier: MIT
#include "window/build/reportmodel.h"

#include "build/buildreport.h"
#include "build/outcomejson.h"
#include "window/build/buildwords.h"

#include <QFile>
#include <QJsonDocument>
#include <QLocale>

namespace {

QString timeOf(const ChannelOutcome& channel)
{
    if (channel.steps.isEmpty())
        return {};
    const qint64 time = channel.steps.constFirst().start.msecsTo(channel.steps.constLast().end);
    return ReportModel::tr("%1 s").arg(double(time) / 1000, 0, 'f', 1);
}

QString notesOf(const ChannelOutcome& channel)
{
    QStringList texts = channel.notes;
    if (!channel.message.isEmpty())
        texts.prepend(channel.message);
    return texts.join(QLatin1Char('\n'));
}

// Figures stand below each other, and their heads above them.
QVariant alignmentOf(int column)
{
    const bool isFigure = column == ReportModel::SizeColumn || column == ReportModel::TimeColumn;
    return int((isFigure ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

} // namespace

BuildOutcome ReportModel::read(const QString& file)
{
    BuildOutcome build;
    QFile report(file);
    if (report.open(QIODevice::ReadOnly))
        BuildReport::fromJson(QJsonDocument::fromJson(report.readAll()).object(), build);
    return build;
}

void ReportModel::show(const BuildOutcome& build)
{
    beginResetModel();
    m_build = build;
    endResetModel();
}

int ReportModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_build.channels.size();
}

int ReportModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ReportModel::data(const QModelIndex& index, int role) const
{
    if (role == Qt::TextAlignmentRole)
        return alignmentOf(index.column());
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    const ChannelOutcome& channel = m_build.channels.at(index.row());
    switch (index.column()) {
    case NameColumn:
        return channel.name;
    case OutcomeColumn:
        return BuildWords::outcome(OutcomeJson::word(channel.outcome));
    case PackageColumn:
        return channel.packageName;
    case SizeColumn:
        return channel.size > 0 ? QLocale().formattedDataSize(channel.size) : QString();
    case TimeColumn:
        return timeOf(channel);
    default:
        return role == Qt::ToolTipRole ? notesOf(channel) : BuildWords::firstSentence(notesOf(channel));
    }
}

QVariant ReportModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
        return alignmentOf(section);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case NameColumn:
        return tr("Channel");
    case OutcomeColumn:
        return tr("Outcome");
    case PackageColumn:
        return tr("Package");
    case SizeColumn:
        return tr("Size");
    case TimeColumn:
        return tr("Time");
    default:
        return tr("Notes");
    }
}

void ReportModel::setTexts()
{
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}
