// SPDX-License-Identifier: MIT
#include "window/log/logpage.h"

#include "logfolder.h"
#include "window/log/logfilter.h"
#include "window/log/logreader.h"

#include <quenzobase.h>

#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedLayout>
#include <QTableView>

#include <algorithm>

LogPage::LogPage(QWidget* parent)
    : Page(parent)
    , m_filter(new LogFilter(this))
    , m_searchLabel(new QLabel)
    , m_search(new QLineEdit)
    , m_kindLabel(new QLabel)
    , m_kinds(new QComboBox)
    , m_table(new QTableView)
    , m_empty(new QLabel)
    , m_stack(new QStackedLayout)
    , m_whole(new QPlainTextEdit)
    , m_file(new QLabel)
    , m_copy(new QPushButton)
    , m_clear(new QPushButton)
{
    auto* const column = new QVBoxLayout(this);
    column->addLayout(makeTop());
    makeTable();
    column->addLayout(m_stack, 3);
    m_whole->setObjectName(QStringLiteral("logEntry"));
    m_whole->setReadOnly(true);
    m_whole->setTabChangesFocus(true);
    m_whole->setMinimumHeight(fontMetrics().lineSpacing() * 4);
    column->addWidget(m_whole, 1);
    column->addLayout(makeBottom());
    LogPage::setTexts();
    followLog();
}

LogPage::~LogPage()
{
    m_readerThread.quit();
    m_readerThread.wait();
}

QLayout* LogPage::makeTop()
{
    auto* const row = new QHBoxLayout;
    m_search->setObjectName(QStringLiteral("logSearch"));
    m_search->setClearButtonEnabled(true);
    m_searchLabel->setBuddy(m_search);
    m_kinds->setObjectName(QStringLiteral("logKinds"));
    m_kinds->addItems({QString(), QString(), QString()});
    m_kindLabel->setBuddy(m_kinds);
    row->addWidget(m_searchLabel);
    row->addWidget(m_search, 1);
    row->addWidget(m_kindLabel);
    row->addWidget(m_kinds);
    connect(m_search, &QLineEdit::textChanged, this, &LogPage::filter);
    connect(m_kinds, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &LogPage::filter);
    return row;
}

void LogPage::makeTable()
{
    m_filter->setSourceModel(&m_model);
    m_table->setObjectName(QStringLiteral("log"));
    m_table->setModel(m_filter);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setTabKeyNavigation(false);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 4);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_empty->setObjectName(QStringLiteral("logEmpty"));
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_stack->addWidget(m_table);
    m_stack->addWidget(m_empty);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &LogPage::showCurrent);
}

QLayout* LogPage::makeBottom()
{
    auto* const row = new QHBoxLayout;
    m_file->setObjectName(QStringLiteral("logFile"));
    m_file->setWordWrap(true);
    m_file->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_copy->setObjectName(QStringLiteral("logCopy"));
    m_clear->setObjectName(QStringLiteral("logClear"));
    row->addWidget(m_file, 1);
    row->addWidget(m_copy);
    row->addWidget(m_clear);
    connect(m_copy, &QPushButton::clicked, this, &LogPage::copy);
    connect(m_clear, &QPushButton::clicked, this, [this] {
        m_model.clear();
        showCurrent();
        showWhetherEmpty();
    });
    return row;
}

void LogPage::followLog()
{
    auto* const reader =
        new LogReader(logFolder(QuenzoBase::getRunPath()) + QStringLiteral("/quenzotool.log"));
    reader->moveToThread(&m_readerThread);
    connect(&m_readerThread, &QThread::started, reader, &LogReader::start);
    connect(&m_readerThread, &QThread::finished, reader, &QObject::deleteLater);
    connect(reader, &LogReader::entriesRead, this, &LogPage::append);
    m_readerThread.start();
}

QString LogPage::title() const
{
    return tr("Log");
}

void LogPage::setTexts()
{
    m_searchLabel->setText(tr("&Search:"));
    m_kindLabel->setText(tr("S&how:"));
    m_kinds->setItemText(LogFilter::Everything, tr("Everything"));
    m_kinds->setItemText(LogFilter::ToolLog, tr("The tool's log"));
    m_kinds->setItemText(LogFilter::WarningsAndErrors, tr("Warnings and errors"));
    m_search->setAccessibleName(tr("Search in the log"));
    m_kinds->setAccessibleName(tr("Which entries are shown"));
    m_table->setAccessibleName(tr("Log"));
    m_whole->setAccessibleName(tr("The whole entry"));
    m_whole->setPlaceholderText(tr("Choose an entry to read all of it."));
    m_file->setText(
        tr("The file: %1").arg(logFolder(QuenzoBase::getRunPath()) + QStringLiteral("/quenzotool.log")));
    m_copy->setText(tr("&Copy"));
    m_copy->setToolTip(tr("Copies the chosen entries, or all that are shown"));
    m_clear->setText(tr("C&lear the view"));
    m_clear->setToolTip(tr("The file stays as it is"));
    m_model.retranslate();
    const QFontMetrics metrics = m_table->fontMetrics();
    m_table->setColumnWidth(LogModel::Time,
                            metrics.horizontalAdvance(QStringLiteral("0000-00-00 00:00:00.000"))
                                + metrics.height());
    int widest = 0;
    for (int kind = LogEntry::Tool; kind <= LogEntry::Error; ++kind)
        widest = qMax(widest, metrics.horizontalAdvance(LogModel::nameOf(kind)));
    m_table->setColumnWidth(LogModel::Kind, widest + metrics.height());
    showWhetherEmpty();
}

void LogPage::append(const QVector<LogEntry>& entries)
{
    const QScrollBar* const bar = m_table->verticalScrollBar();
    const bool isAtEnd = bar->value() == bar->maximum();
    m_model.append(entries);
    showWhetherEmpty();
    if (isAtEnd)
        m_table->scrollToBottom();
}

void LogPage::filter()
{
    m_filter->set(m_kinds->currentIndex(), m_search->text());
    showWhetherEmpty();
}

void LogPage::showWhetherEmpty()
{
    m_empty->setText(m_model.rowCount() == 0
                         ? tr("Nothing has been logged yet. What goes wrong during work is told here.")
                         : tr("No entry fits. Search for something else, or show everything."));
    const bool isEmpty = m_filter->rowCount() == 0;
    m_stack->setCurrentIndex(isEmpty ? 1 : 0);
    m_copy->setEnabled(!isEmpty);
    m_clear->setEnabled(m_model.rowCount() > 0);
}

void LogPage::showCurrent()
{
    m_whole->setPlainText(m_table->currentIndex().data(LogModel::TextRole).toString());
}

void LogPage::copy() const
{
    const QItemSelectionModel* const selection = m_table->selectionModel();
    QStringList lines;
    for (int row = 0; row < m_filter->rowCount(); ++row) {
        if (selection->hasSelection() && !selection->isRowSelected(row, {}))
            continue;
        const auto cell = [this, row](int column, int role) {
            return m_filter->index(row, column).data(role).toString();
        };
        lines.append(QStringLiteral("%1 %2: %3")
                         .arg(cell(LogModel::Time, Qt::DisplayRole), cell(LogModel::Kind, Qt::DisplayRole),
                              cell(LogModel::Text, LogModel::TextRole)));
    }
    QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}
