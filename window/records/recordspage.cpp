// SPDX-License-Identifier: MIT
#include "window/records/recordspage.h"

#include "records/rowformat.h"
#include "wholesave.h"
#include "window/background.h"
#include "window/channels/jobdocument.h"
#include "window/records/recordsbase.h"
#include "window/records/rowmodel.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>
#include <QToolButton>

#include <utility>

RecordsPage::RecordsPage(const JobDocument& document, QWidget* parent)
    : Page(parent)
    , m_document(document)
    , m_base(new RecordsBase(this))
    , m_model(new RowModel(this))
    , m_fileLabel(new QLabel)
    , m_file(new QLineEdit)
    , m_choose(new QPushButton)
    , m_reload(new QPushButton)
    , m_tableLabel(new QLabel)
    , m_table(new QComboBox)
    , m_filterLabel(new QLabel)
    , m_filter(new QLineEdit)
    , m_scrambled(new QToolButton)
    , m_columns(new QMenu(this))
    , m_save(new QPushButton)
    , m_fault(new QLabel)
    , m_empty(new QLabel)
    , m_view(new QTableView)
    , m_shown(new QStackedWidget)
    , m_count(new QLabel)
{
    auto* const column = new QVBoxLayout(this);
    column->addWidget(makeChoice());
    column->addWidget(makeFilter());
    column->addWidget(m_fault);
    column->addWidget(m_shown, 1);
    column->addWidget(m_count);
    m_fault->setWordWrap(true);
    m_fault->hide();
    m_empty->setWordWrap(true);
    m_empty->setAlignment(Qt::AlignCenter);
    m_shown->addWidget(m_empty);
    m_shown->addWidget(m_view);
    m_view->setObjectName(QStringLiteral("rows"));
    m_view->setModel(m_model);
    m_view->setAlternatingRowColors(true);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setTabKeyNavigation(false);
    m_view->setSortingEnabled(true);
    m_view->sortByColumn(-1, Qt::AscendingOrder);
    connect(m_base, &RecordsBase::tablesRead, this, &RecordsPage::offerTables);
    connect(m_base, &RecordsBase::rowsRead, this, [this](const Rows& rows, const QStringList& columns) {
        if (openNext())
            return;
        m_model->setRows(rows, columns);
        offerColumns();
    });
    connect(m_model, &RowModel::settled, this, &RecordsPage::tell);
    connect(&document, &JobDocument::opened, this, &RecordsPage::showRecordsOfJob);
    RecordsPage::setTexts();
}

// A job that was never built has none, and whoever looks at another file goes on doing so.
void RecordsPage::showRecordsOfJob()
{
    const QString file = m_document.outputPath() + QStringLiteral("/records.db");
    if (QFileInfo::exists(file))
        open(file);
}

// The first build of an open job has made them meanwhile.
void RecordsPage::showEvent(QShowEvent* event)
{
    Page::showEvent(event);
    if (m_document.isOpen() && m_base->file().isEmpty())
        showRecordsOfJob();
}

QWidget* RecordsPage::makeChoice()
{
    auto* const choice = new QWidget;
    auto* const row = new QHBoxLayout(choice);
    row->setContentsMargins({});
    row->addWidget(m_fileLabel);
    row->addWidget(m_file, 1);
    row->addWidget(m_choose);
    row->addWidget(m_reload);
    m_fileLabel->setBuddy(m_file);
    m_file->setObjectName(QStringLiteral("recordsFile"));
    m_choose->setObjectName(QStringLiteral("chooseRecords"));
    m_reload->setObjectName(QStringLiteral("reloadRecords"));
    connect(m_file, &QLineEdit::returnPressed, this, &RecordsPage::reload);
    connect(m_choose, &QPushButton::clicked, this, &RecordsPage::choose);
    connect(m_reload, &QPushButton::clicked, this, &RecordsPage::reload);
    return choice;
}

QWidget* RecordsPage::makeFilter()
{
    auto* const filter = new QWidget;
    auto* const row = new QHBoxLayout(filter);
    row->setContentsMargins({});
    row->addWidget(m_tableLabel);
    row->addWidget(m_table);
    row->addWidget(m_filterLabel);
    row->addWidget(m_filter, 1);
    row->addWidget(m_scrambled);
    row->addWidget(m_save);
    m_tableLabel->setBuddy(m_table);
    m_filterLabel->setBuddy(m_filter);
    m_table->setObjectName(QStringLiteral("table"));
    m_table->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_filter->setObjectName(QStringLiteral("rowFilter"));
    m_filter->setClearButtonEnabled(true);
    m_scrambled->setObjectName(QStringLiteral("scrambledColumns"));
    m_scrambled->setPopupMode(QToolButton::InstantPopup);
    m_scrambled->setFocusPolicy(Qt::StrongFocus);
    m_scrambled->setMenu(m_columns);
    m_save->setObjectName(QStringLiteral("saveRows"));
    connect(m_table, QOverload<int>::of(&QComboBox::activated), this,
            [this] { m_base->read(m_table->currentText()); });
    connect(m_filter, &QLineEdit::textChanged, m_model, &RowModel::setFilter);
    connect(m_columns, &QMenu::triggered, this, [this](const QAction* action) {
        m_model->setPlain(action->data().toString(), action->isChecked());
    });
    connect(m_save, &QPushButton::clicked, this, &RecordsPage::save);
    return filter;
}

QString RecordsPage::title() const
{
    return tr("Records");
}

QString RecordsPage::workAtHand() const
{
    return m_saving.isEmpty() ? QString() : tr("'%1' is being written.").arg(m_saving);
}

void RecordsPage::setTexts()
{
    m_fileLabel->setText(tr("Records &file:"));
    m_choose->setText(tr("&Choose…"));
    m_reload->setText(tr("Read a&gain"));
    m_tableLabel->setText(tr("&Table:"));
    m_table->setAccessibleName(tr("Table"));
    m_filterLabel->setText(tr("Sh&ow:"));
    m_filter->setPlaceholderText(tr("rows that contain this"));
    m_scrambled->setText(tr("Scrambled columns"));
    m_scrambled->setToolTip(tr("Choose the columns whose scrambled texts are shown as they were."));
    m_save->setText(tr("&Export as CSV…"));
    m_view->setAccessibleName(tr("Rows of the table"));
    m_empty->setText(tr("Choose a records file: every job keeps one, records.db, in its output folder."));
    tell();
}

void RecordsPage::choose()
{
    const QString file = QFileDialog::getOpenFileName(this, tr("Choose a records file"), m_file->text(),
                                                      tr("Records (*.db);;All files (*)"));
    if (!file.isEmpty())
        open(file);
}

void RecordsPage::reload()
{
    open(m_file->text());
}

void RecordsPage::open(const QString& file)
{
    if (file.isEmpty())
        return;
    m_file->setText(file);
    if (m_base->isBusy()) {
        m_next = file;
        return;
    }
    complain(m_base->open(file));
    if (m_base->file().isEmpty()) {
        m_table->clear();
        m_model->setRows(std::make_shared<const QVariantList>(), {});
    }
    tell();
}

// The file that was asked for while another was still read.
bool RecordsPage::openNext()
{
    if (m_next.isEmpty() || m_base->isBusy())
        return false;
    open(std::exchange(m_next, {}));
    return true;
}

void RecordsPage::offerTables(const QStringList& tables)
{
    if (openNext())
        return;
    const QString former = m_table->currentText();
    m_table->clear();
    m_table->addItems(tables);
    m_table->setCurrentIndex(qMax(0, tables.indexOf(former)));
    if (tables.isEmpty())
        m_model->setRows(std::make_shared<const QVariantList>(), {});
    else
        m_base->read(m_table->currentText());
}

void RecordsPage::offerColumns()
{
    m_columns->clear();
    for (const QString& column : m_model->view().columns) {
        QString text = column;
        QAction* const action = m_columns->addAction(text.replace(QLatin1Char('&'), QLatin1String("&&")));
        action->setCheckable(true);
        action->setChecked(m_model->view().plain.contains(column));
        action->setData(column);
    }
}

void RecordsPage::complain(const QString& fault)
{
    m_fault->setText(fault);
    m_fault->setVisible(!fault.isEmpty());
}

// Tells what is seen, and offers what can be done with it.
void RecordsPage::tell()
{
    const bool isOpen = !m_base->file().isEmpty();
    const bool hasRows = !m_model->view().columns.isEmpty();
    m_shown->setCurrentWidget(isOpen && hasRows ? static_cast<QWidget*>(m_view) : m_empty);
    m_reload->setEnabled(!m_file->text().isEmpty());
    m_table->setEnabled(isOpen);
    m_filter->setEnabled(hasRows);
    m_scrambled->setEnabled(hasRows);
    m_save->setEnabled(m_saving.isEmpty() && !m_model->seen().isEmpty());
    m_count->setText(hasRows ? tr("%1 of %2 rows")
                                   .arg(locale().toString(m_model->seen().size()),
                                        locale().toString(m_model->rows()->size()))
                             : QString());
}

void RecordsPage::save()
{
    const QString file = QFileDialog::getSaveFileName(this, tr("Export as CSV"),
                                                      m_table->currentText() + QStringLiteral(".csv"),
                                                      tr("CSV files (*.csv);;All files (*)"));
    if (file.isEmpty())
        return;
    m_saving = file;
    tell();
    Q_EMIT workChanged();
    const auto write = [file, rows = m_model->rows(), view = m_model->view(), seen = m_model->seen()] {
        const QStringList lines = RowFormat::csv(view.taken(*rows, seen));
        return saveWhole(file, lines.join(QLatin1Char('\n')).toUtf8() + '\n');
    };
    inBackground(this, write, [this](const QString& fault) {
        complain(fault.isEmpty() ? QString() : tr("'%1' was not written: %2").arg(m_saving, fault));
        m_saving.clear();
        tell();
        Q_EMIT workChanged();
    });
}
