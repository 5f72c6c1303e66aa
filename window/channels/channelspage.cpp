// SPDX-License-Identifier: MIT
#include "window/channels/channelspage.h"

#include "window/channels/markpanel.h"
#include "window/channels/sdkdelegate.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QStackedLayout>
#include <QStandardPaths>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace {

const QString headerKey = QStringLiteral("channels/columns");
const QString splitterKey = QStringLiteral("channels/splitter");

} // namespace

ChannelsPage::ChannelsPage(JobDocument& document, QWidget* parent)
    : Page(parent)
    , m_document(document)
    , m_icons(QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QStringLiteral("/icons"))
    , m_table(document, m_icons, m_outcomes)
    , m_banner(new QLabel)
    , m_filter(new QLineEdit)
    , m_view(new QTableView)
    , m_add(action("addChannel", Qt::Key_Insert, &ChannelsPage::addChannel))
    , m_copy(action("copyChannels", QKeySequence(QStringLiteral("Ctrl+D")), &ChannelsPage::copyChannels))
    , m_remove(action("removeChannels", QKeySequence::Delete, &ChannelsPage::removeChannels))
    , m_up(action("moveUp", QKeySequence(QStringLiteral("Alt+Up")), &ChannelsPage::moveUp))
    , m_down(action("moveDown", QKeySequence(QStringLiteral("Alt+Down")), &ChannelsPage::moveDown))
    , m_empty(new QLabel)
    , m_count(new QLabel)
    , m_mark(new MarkPanel(document))
    , m_splitter(new QSplitter)
{
    auto* const column = new QVBoxLayout(this);
    column->addLayout(toolRow());
    column->addWidget(m_banner);
    m_splitter->addWidget(tableStack());
    m_splitter->addWidget(m_mark);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setChildrenCollapsible(false);
    column->addWidget(m_splitter, 1);
    column->addWidget(m_count);
    m_banner->setObjectName(QStringLiteral("channelsBanner"));
    m_banner->setTextFormat(Qt::PlainText);
    m_banner->setWordWrap(true);
    m_banner->hide();
    setUpTable();
    connectDocument();
    ChannelsPage::setTexts();
    begin();
    m_splitter->restoreState(QSettings().value(splitterKey).toByteArray());
    m_view->horizontalHeader()->restoreState(QSettings().value(headerKey).toByteArray());
}

ChannelsPage::~ChannelsPage()
{
    disconnect(m_view->selectionModel(), nullptr, this, nullptr); // which outlives the table
    QSettings settings;
    settings.setValue(splitterKey, m_splitter->saveState());
    settings.setValue(headerKey, m_view->horizontalHeader()->saveState());
}

QString ChannelsPage::title() const
{
    return tr("Channels");
}

QAction* ChannelsPage::action(const char* name, const QKeySequence& keys, void (ChannelsPage::*run)())
{
    auto* const action = new QAction(this);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_view->addAction(action);
    connect(action, &QAction::triggered, this, run);
    return action;
}

QLayout* ChannelsPage::toolRow()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(m_filter, 1);
    m_filter->setObjectName(QStringLiteral("channelFilter"));
    m_filter->setClearButtonEnabled(true);
    for (QAction* const action : {m_add, m_copy, m_remove, m_up, m_down}) {
        auto* const button = new QPushButton;
        button->setObjectName(action->objectName() + QStringLiteral("Button"));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, action, &QAction::trigger);
        m_buttons.append({button, action});
        row->addWidget(button);
    }
    return row;
}

QWidget* ChannelsPage::tableStack()
{
    auto* const stack = new QWidget;
    m_stack = new QStackedLayout(stack);
    m_stack->addWidget(m_view);
    m_stack->addWidget(m_empty);
    m_empty->setObjectName(QStringLiteral("channelsEmpty"));
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_empty->setMargin(fontMetrics().height());
    return stack;
}

void ChannelsPage::setUpTable()
{
    const int letter = fontMetrics().averageCharWidth();
    const int icon = fontMetrics().height() * 2;
    m_view->setObjectName(QStringLiteral("channels"));
    m_view->setModel(&m_table);
    m_view->setItemDelegateForColumn(ChannelTable::Sdks, new SdkDelegate(m_document, m_view));
    m_view->setIconSize({icon, icon});
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setShowGrid(false);
    m_view->setAlternatingRowColors(true);
    m_view->setTabKeyNavigation(false);
    m_view->setWordWrap(false);
    m_view->setSortingEnabled(true);
    m_view->verticalHeader()->hide();
    m_view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_view->verticalHeader()->setDefaultSectionSize(icon + letter);
    m_view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    QHeaderView* const header = m_view->horizontalHeader();
    header->setHighlightSections(false);
    header->setStretchLastSection(true);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    const std::array<int, 8> widths{6, 21, 11, 12, 14, 14, 9, 14};
    for (int column = 0; column < int(widths.size()); ++column)
        m_view->setColumnWidth(column, letter * widths.at(size_t(column)));
    m_view->sortByColumn(ChannelTable::Position, Qt::AscendingOrder);
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ChannelsPage::takeSelection);
    connect(&m_table, &QAbstractItemModel::modelAboutToBeReset, this, [this] { m_isArranging = true; });
    connect(&m_table, &QAbstractItemModel::modelReset, this, [this] {
        m_isArranging = false;
        choose(m_chosen);
    });
    connect(&m_table, &ChannelTable::refused, this, &ChannelsPage::tell);
    connect(m_filter, &QLineEdit::textChanged, &m_table, &ChannelTable::setFilter);
}

void ChannelsPage::connectDocument()
{
    connect(&m_document, &JobDocument::opened, this, &ChannelsPage::begin);
    connect(&m_document, &JobDocument::closed, this, &ChannelsPage::begin);
    connect(&m_document, &JobDocument::savedAs, this, &ChannelsPage::begin);
    connect(&m_document, &JobDocument::channelsPlaced, this, [this](const QVector<int>& rows) {
        tell({});
        choose(rows);
    });
    connect(&m_document, &JobDocument::channelsChanged, this, [this] { tell({}); });
    connect(&m_icons, &ChannelIcons::picturesChanged, m_mark, &MarkPanel::readPictures);
}

void ChannelsPage::begin()
{
    tell({});
    m_icons.setPictures(m_document.masterPath(), m_document.marksPath());
    m_outcomes.setOutput(m_document.isOpen() ? m_document.outputPath() : QString());
    choose(m_document.channelCount() > 0 ? QVector<int>{0} : QVector<int>());
}

void ChannelsPage::tell(const QString& sentence)
{
    m_banner->setText(sentence);
    m_banner->setVisible(!sentence.isEmpty());
}

void ChannelsPage::takeSelection()
{
    if (m_isArranging)
        return;
    m_chosen.clear();
    for (const QItemSelectionRange& range : m_view->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            m_chosen.append(m_table.channelOf(row));
    }
    std::sort(m_chosen.begin(), m_chosen.end());
    m_mark->setRows(m_chosen);
    refresh();
    Q_EMIT chosenChanged();
}

void ChannelsPage::choose(const QVector<int>& channels)
{
    QVector<int> rows;
    for (const int channel : channels) {
        if (m_table.rowOf(channel) >= 0)
            rows.append(m_table.rowOf(channel));
    }
    std::sort(rows.begin(), rows.end());
    QItemSelection selection;
    for (int i = 0, end = 0; i < rows.size(); i = end) {
        for (end = i + 1; end < rows.size() && rows.at(end) == rows.at(end - 1) + 1;)
            ++end;
        selection.append(QItemSelectionRange(m_table.index(rows.at(i), 0),
                                             m_table.index(rows.at(end - 1), ChannelTable::ColumnCount - 1)));
    }
    if (!rows.isEmpty())
        m_view->selectionModel()->setCurrentIndex(m_table.index(rows.first(), ChannelTable::Name),
                                                  QItemSelectionModel::NoUpdate);
    m_view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    takeSelection();
}

void ChannelsPage::addChannel()
{
    m_filter->clear();
    const int last = m_chosen.isEmpty() ? m_document.channelCount() : m_chosen.last() + 1;
    const int row = m_table.rowOf(m_document.addChannel(last));
    m_view->setFocus();
    m_view->edit(m_table.index(row, ChannelTable::Folder));
}

void ChannelsPage::copyChannels()
{
    m_document.copyChannels(m_chosen);
}

void ChannelsPage::removeChannels()
{
    const int next = m_chosen.isEmpty() ? 0 : m_chosen.first();
    m_document.removeChannels(m_chosen);
    if (m_document.channelCount() > 0)
        choose({qMin(next, m_document.channelCount() - 1)});
}

void ChannelsPage::moveUp()
{
    m_document.moveChannels(m_chosen, m_chosen.first() - 1);
}

void ChannelsPage::moveDown()
{
    m_document.moveChannels(m_chosen, m_chosen.first() + 1);
}

void ChannelsPage::refresh()
{
    const int count = m_document.channelCount();
    const int chosenCount = m_chosen.size();
    const bool isMovable = chosenCount > 0 && !m_table.isFiltered() && m_table.isInJobOrder();
    m_add->setEnabled(m_document.isOpen());
    m_filter->setEnabled(m_document.isOpen());
    m_copy->setEnabled(chosenCount > 0);
    m_remove->setEnabled(chosenCount > 0);
    m_up->setEnabled(isMovable && m_chosen.first() > 0);
    m_down->setEnabled(isMovable && m_chosen.last() < count - 1);
    for (const auto& button : qAsConst(m_buttons))
        button.first->setEnabled(button.second->isEnabled());
    m_stack->setCurrentIndex(m_table.rowCount() > 0 ? 0 : 1);
    if (!m_document.isOpen())
        m_empty->setText(
            tr("No job is open. Open one from the File menu, or drop its file on the start page."));
    else if (count == 0)
        m_empty->setText(tr("This job has no channels yet. Press Add to make the first one."));
    else
        m_empty->setText(tr("No channel has this text. Clear the filter to see all of them."));
    m_count->setText(
        !m_document.isOpen()
            ? QString()
            : tr("Channels: %1, shown: %2, chosen: %3").arg(count).arg(m_table.rowCount()).arg(chosenCount));
}

void ChannelsPage::setTexts()
{
    const auto setAction = [](QAction* action, const QString& text, const QString& tip) {
        action->setText(text);
        action->setToolTip(
            QStringLiteral("%1 (%2)").arg(tip, action->shortcut().toString(QKeySequence::NativeText)));
    };
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter of the channels"));
    m_view->setAccessibleName(tr("Channels of the job"));
    setAction(m_add, tr("&Add"), tr("Add a channel behind the chosen ones"));
    setAction(m_copy, tr("&Copy"), tr("Copy the chosen channels"));
    setAction(m_remove, tr("&Remove"), tr("Remove the chosen channels from the job"));
    setAction(m_up, tr("Move &up"), tr("Move the chosen channels up in the job"));
    setAction(m_down, tr("Move do&wn"), tr("Move the chosen channels down in the job"));
    for (const auto& button : qAsConst(m_buttons)) {
        button.first->setText(button.second->text());
        button.first->setToolTip(button.second->toolTip());
    }
    m_table.translate();
    refresh();
}

void ChannelsPage::showEvent(QShowEvent* event)
{
    m_outcomes.read();
    Page::showEvent(event);
}
