// SPDX-License-Identifier: MIT
#include "window/build/buildmodel.h"

#include "window/build/buildwords.h"
#include "window/channels/jobdocument.h"

#include <algorithm>

BuildModel::BuildModel(JobDocument& document, QObject* parent)
    : QAbstractTableModel(parent)
    , m_document(document)
{
    connectDocument();
}

void BuildModel::connectDocument()
{
    const auto reset = [this] {
        beginResetModel();
        m_left.clear();
        m_states.clear();
        m_rows.clear();
        endResetModel();
        Q_EMIT chosenChanged();
    };
    connect(&m_document, &JobDocument::opened, this, reset);
    connect(&m_document, &JobDocument::closed, this, reset);
    connect(&m_document, &JobDocument::channelsToBeInserted, this,
            [this](int first, int last) { beginInsertRows({}, first, last); });
    connect(&m_document, &JobDocument::channelsToBeRemoved, this,
            [this](int first, int last) { beginRemoveRows({}, first, last); });
    connect(&m_document, &JobDocument::channelsInserted, this, [this] {
        m_rows.clear();
        endInsertRows();
    });
    connect(&m_document, &JobDocument::channelsRemoved, this, [this] {
        m_rows.clear();
        endRemoveRows();
    });
    connect(&m_document, &JobDocument::channelsPlaced, this, &BuildModel::chosenChanged); // after all of them
    connect(&m_document, &JobDocument::channelsChanged, this, [this](const QVector<int>& rows) {
        m_rows.clear();
        const auto ends =
            std::minmax_element(rows.cbegin(), rows.cend()); // once for all: there may be thousands
        if (!rows.isEmpty())
            Q_EMIT dataChanged(index(*ends.first, 0), index(*ends.second, ColumnCount - 1));
    });
}

int BuildModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_document.channelCount();
}

int BuildModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant BuildModel::data(const QModelIndex& index, int role) const
{
    const QString folder = m_document.folderOf(index.row());
    const int column = index.column();
    if (column == NameColumn && role == Qt::DisplayRole)
        return m_document.nameOf(index.row());
    if (column == NameColumn && role == Qt::CheckStateRole)
        return m_left.contains(folder) ? Qt::Unchecked : Qt::Checked;
    if (column == FolderColumn && role == Qt::DisplayRole)
        return folder;
    const State state = m_states.value(folder);
    if (role == PercentRole)
        return percentOf(state);
    if (role == MessageRole || (role == Qt::ToolTipRole && column == ResultColumn))
        return state.message.isEmpty() ? resultOf(state) : state.message;
    if (role == Qt::DisplayRole && column == ResultColumn)
        return resultOf(state);
    if (role == Qt::AccessibleTextRole && column == ProgressColumn)
        return percentOf(state) < 0 ? QString() : tr("%1 %").arg(percentOf(state));
    return {};
}

bool BuildModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || index.column() != NameColumn)
        return false;
    const QString folder = m_document.folderOf(index.row());
    if (value.toInt() == Qt::Checked)
        m_left.remove(folder);
    else
        m_left.insert(folder);
    Q_EMIT dataChanged(index, index, {Qt::CheckStateRole});
    Q_EMIT chosenChanged();
    return true;
}

Qt::ItemFlags BuildModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == NameColumn ? flags | Qt::ItemIsUserCheckable : flags;
}

QVariant BuildModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case NameColumn:
        return tr("Channel");
    case FolderColumn:
        return tr("Folder");
    case ProgressColumn:
        return tr("Progress");
    default:
        return tr("Result");
    }
}

QStringList BuildModel::allFolders() const
{
    QStringList folders;
    for (int row = 0; row < m_document.channelCount(); ++row)
        folders.append(m_document.folderOf(row));
    return folders;
}

QStringList BuildModel::chosen() const
{
    QStringList folders;
    for (const QString& folder : allFolders()) {
        if (!m_left.contains(folder))
            folders.append(folder);
    }
    return folders;
}

void BuildModel::chooseAll(bool all)
{
    choose(all ? allFolders() : QStringList());
}

void BuildModel::choose(const QStringList& folders)
{
    const QStringList all = allFolders();
    m_left = QSet<QString>(all.cbegin(), all.cend());
    for (const QString& folder : folders)
        m_left.remove(folder);
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, NameColumn), index(rowCount() - 1, NameColumn), {Qt::CheckStateRole});
    Q_EMIT chosenChanged();
}

void BuildModel::begin()
{
    m_states.clear();
    for (const QString& folder : chosen())
        m_states.insert(folder, {true, {}, {}, {}});
    setTexts();
}

void BuildModel::showStep(const QString& folder, const QString& step)
{
    m_states[folder] = {false, step, {}, {}};
    showRow(folder);
}

void BuildModel::showEnd(const QString& folder, const QString& outcome, const QString& message)
{
    m_states[folder] = {false, {}, outcome, message};
    showRow(folder);
}

void BuildModel::end()
{
    for (State& state : m_states) {
        if (state.outcome.isEmpty())
            state = {false, {}, QStringLiteral("not reached"), {}};
    }
    setTexts();
}

int BuildModel::countOf(const QString& outcome) const
{
    return int(std::count_if(m_states.cbegin(), m_states.cend(),
                             [&outcome](const State& state) { return state.outcome == outcome; }));
}

void BuildModel::setTexts()
{
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

int BuildModel::rowOf(const QString& folder)
{
    if (m_rows.isEmpty()) {
        for (int row = 0; row < m_document.channelCount(); ++row)
            m_rows.insert(m_document.folderOf(row), row);
    }
    return m_rows.value(folder, -1);
}

void BuildModel::showRow(const QString& folder)
{
    const int row = rowOf(folder);
    if (row >= 0)
        Q_EMIT dataChanged(index(row, ProgressColumn), index(row, ResultColumn));
}

QString BuildModel::resultOf(const State& state) const
{
    if (state.isWaiting)
        return tr("waiting");
    if (!state.step.isEmpty())
        return BuildWords::step(state.step);
    if (state.outcome == QLatin1String("failed"))
        return tr("failed: %1").arg(BuildWords::firstSentence(state.message));
    return BuildWords::outcome(state.outcome);
}

// -1 where there is nothing to show.
int BuildModel::percentOf(const State& state)
{
    if (state.isWaiting)
        return 0;
    if (!state.step.isEmpty())
        return BuildWords::percentBefore(state.step);
    const bool isDone =
        state.outcome == QLatin1String("built") || state.outcome == QLatin1String("unchanged");
    return isDone ? 100 : -1;
}
