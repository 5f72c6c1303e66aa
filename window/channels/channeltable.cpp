// SPDX-License-Identifier: MIT
#include "window/channels/channeltable.h"

#include "window/channels/channelicons.h"
#include "window/channels/channeloutcomes.h"

#include <QPixmap>

#include <algorithm>

namespace {

// In the place of an icon that is being made, so that texts stay where they are.
QIcon blankIcon()
{
    QPixmap blank(1, 1);
    blank.fill(Qt::transparent);
    return {blank.scaled(96, 96)};
}

} // namespace

ChannelTable::ChannelTable(JobDocument& document, ChannelIcons& icons, const ChannelOutcomes& outcomes,
                           QObject* parent)
    : QAbstractTableModel(parent)
    , m_document(document)
    , m_icons(icons)
    , m_outcomes(outcomes)
{
    connect(&document, &JobDocument::opened, this, &ChannelTable::begin);
    connect(&document, &JobDocument::closed, this, &ChannelTable::begin);
    connect(&document, &JobDocument::channelsPlaced, this, &ChannelTable::begin);
    connect(&document, &JobDocument::channelsChanged, this, &ChannelTable::update);
    const auto repaint = [this](Column column) {
        if (!m_channels.isEmpty())
            Q_EMIT dataChanged(index(0, column), index(m_channels.size() - 1, column));
    };
    connect(&icons, &ChannelIcons::changed, this, [repaint] { repaint(Name); });
    connect(&outcomes, &ChannelOutcomes::changed, this, [repaint] { repaint(Outcome); });
    begin();
}

int ChannelTable::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_channels.size();
}

int ChannelTable::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

const ChannelTable::Row& ChannelTable::row(int channel) const
{
    Row& row = m_texts[channel];
    if (!row.isKnown)
        row = {m_document.nameOf(channel), m_document.folderOf(channel),
               m_document.sdksOf(channel).join(QStringLiteral(", ")), m_document.packageOf(channel), true};
    return row;
}

QString ChannelTable::outcomeText(int channel) const
{
    const ChannelOutcomes::Last* const last = m_outcomes.of(row(channel).folder);
    if (!last)
        return {};
    switch (last->outcome) {
    case ChannelOutcome::Built:
        return tr("Built");
    case ChannelOutcome::Unchanged:
        return tr("Unchanged");
    case ChannelOutcome::Failed:
        return tr("Failed");
    case ChannelOutcome::NotReached:
        return tr("Not reached");
    }
    return {};
}

QString ChannelTable::text(int channel, int column) const
{
    switch (column) {
    case Position:
        return QString::number(channel + 1);
    case Name:
        return row(channel).name;
    case Folder:
        return row(channel).folder;
    case Sdks:
        return row(channel).sdks;
    case Package:
        return row(channel).package;
    case Number:
        return m_document.numberOf(channel);
    case Files:
        return m_document.filesOf(channel);
    case Encrypted:
        return m_document.isEncrypted(channel) ? tr("Yes") : tr("No");
    default:
        return outcomeText(channel);
    }
}

QVariant ChannelTable::data(const QModelIndex& index, int role) const
{
    static const QIcon blank = blankIcon();
    const int channel = m_channels.at(index.row());
    if (role == Qt::EditRole && index.column() == Sdks)
        return m_document.sdksOf(channel);
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return text(channel, index.column());
    if (role == Qt::CheckStateRole && index.column() == Encrypted)
        return m_document.isEncrypted(channel) ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::TextAlignmentRole && (index.column() == Position || index.column() == Number))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::DecorationRole && index.column() == Name) {
        const QIcon icon = m_icons.iconOf(m_document.markOf(channel), m_document.placeOf(channel));
        return icon.isNull() ? blank : icon;
    }
    if (role == Qt::ToolTipRole && index.column() == Outcome) {
        const ChannelOutcomes::Last* const last = m_outcomes.of(row(channel).folder);
        return last ? last->message : QString();
    }
    return role == Qt::ToolTipRole ? text(channel, index.column()) : QVariant();
}

QVariant ChannelTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Position:
        return tr("No.");
    case Name:
        return tr("Channel");
    case Folder:
        return tr("Folder");
    case Sdks:
        return tr("SDKs");
    case Package:
        return tr("Package name");
    case Number:
        return tr("Number");
    case Files:
        return tr("Files");
    case Encrypted:
        return tr("Encrypted");
    default:
        return tr("Last outcome");
    }
}

Qt::ItemFlags ChannelTable::flags(const QModelIndex& index) const
{
    const int column = index.column();
    const bool isEditable = column == Name || column == Folder || column == Package || column == Number
        || column == Files
        || (column == Sdks && !(m_document.sdkNames() + m_document.sdksOf(channelOf(index.row()))).isEmpty());
    const Qt::ItemFlags own = column == Encrypted ? Qt::ItemIsUserCheckable
        : isEditable                              ? Qt::ItemIsEditable
                                                  : Qt::NoItemFlags;
    return QAbstractTableModel::flags(index) | own;
}

QString ChannelTable::objectionTo(int channel, int column, const QString& text) const
{
    if (column == Folder)
        return m_document.objectionToFolder(channel, text);
    if (column == Number)
        return m_document.objectionToNumber(text);
    return column == Package ? m_document.objectionToPackage(text) : QString();
}

bool ChannelTable::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const int channel = m_channels.at(index.row());
    if (role == Qt::CheckStateRole && index.column() == Encrypted) {
        m_document.setEncrypted({channel}, value.toInt() == Qt::Checked);
        return true;
    }
    if (role != Qt::EditRole)
        return false;
    return index.column() == Sdks ? setSdks(channel, value.toStringList())
                                  : setText(channel, index.column(), value.toString().trimmed());
}

bool ChannelTable::setSdks(int channel, const QStringList& sdks)
{
    if (sdks == m_document.sdksOf(channel))
        return true;
    const QString objection = m_document.objectionToSdks(sdks);
    Q_EMIT refused(objection);
    if (objection.isEmpty())
        m_document.setSdks({channel}, sdks);
    return objection.isEmpty();
}

bool ChannelTable::setText(int channel, int column, const QString& given)
{
    if (given == text(channel, column))
        return true;
    const QString objection = objectionTo(channel, column, given);
    Q_EMIT refused(objection);
    if (!objection.isEmpty())
        return false;
    if (column == Name)
        m_document.setName(channel, given);
    else if (column == Folder)
        m_document.setFolder(channel, given);
    else if (column == Number)
        m_document.setNumber(channel, given);
    else if (column == Files)
        m_document.setFiles(channel, given);
    else
        m_document.setPackage(channel, given);
    return true;
}

void ChannelTable::sort(int column, Qt::SortOrder order)
{
    m_column = column;
    m_order = order;
    arrange();
}

void ChannelTable::setFilter(const QString& text)
{
    m_filter = text.trimmed();
    arrange();
}

bool ChannelTable::matches(int channel) const
{
    if (m_filter.isEmpty())
        return true;
    for (const int column : {Name, Folder, Sdks, Package, Outcome, Number}) {
        if (text(channel, column).contains(m_filter, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

QString ChannelTable::sortKey(int channel) const
{
    const QString key = text(channel, m_column);
    return m_column == Number ? key.rightJustified(9, QLatin1Char('0')) : key.toCaseFolded();
}

// The keys are folded once, and not with each of the many comparisons.
void ChannelTable::sortChannels()
{
    QVector<QString> keys(m_texts.size());
    for (const int channel : qAsConst(m_channels))
        keys[channel] = sortKey(channel);
    const QString* const key = keys.constData();
    std::sort(m_channels.begin(), m_channels.end(), [key](int a, int b) {
        const int order = key[a].compare(key[b]);
        return order != 0 ? order < 0 : a < b; // of equal ones the first in the job comes first
    });
}

void ChannelTable::arrange()
{
    beginResetModel();
    m_channels.clear();
    m_channels.reserve(m_texts.size());
    for (int channel = 0; channel < m_texts.size(); ++channel) {
        if (matches(channel))
            m_channels.append(channel);
    }
    if (m_column != Position)
        sortChannels();
    if (m_order == Qt::DescendingOrder)
        std::reverse(m_channels.begin(), m_channels.end());
    m_rows.fill(-1, m_texts.size());
    for (int i = 0; i < m_channels.size(); ++i)
        m_rows[m_channels.at(i)] = i;
    endResetModel();
}

void ChannelTable::begin()
{
    m_texts = QVector<Row>(m_document.channelCount());
    arrange();
}

void ChannelTable::update(const QVector<int>& channels)
{
    for (const int channel : channels) {
        m_texts[channel].isKnown = false;
        const int shown = rowOf(channel);
        if (shown >= 0 && channels.size() == 1)
            Q_EMIT dataChanged(index(shown, 0), index(shown, ColumnCount - 1));
    }
    if (channels.size() > 1 && !m_channels.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(m_channels.size() - 1, ColumnCount - 1));
}

void ChannelTable::translate()
{
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
    if (!m_channels.isEmpty())
        Q_EMIT dataChanged(index(0, Outcome), index(m_channels.size() - 1, Outcome));
}
