// SPDX-License-Identifier: MIT
#include "window/build/buildpage.h"

#include "window/background.h"
#include "window/build/buildwords.h"
#include "window/build/progressdelegate.h"
#include "window/channels/jobdocument.h"
#include "window/rowtable.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStackedLayout>
#include <QTabWidget>
#include <QUrl>

namespace {

// By the letters of its font, so that it is as wide in any.
void setWidths(QTableView* table, const QVector<int>& letters)
{
    for (int i = 0; i < letters.size(); ++i)
        table->setColumnWidth(i, letters.at(i) * table->fontMetrics().averageCharWidth());
}

} // namespace

BuildPage::BuildPage(JobDocument& document, QWidget* parent)
    : Page(parent)
    , m_document(document)
    , m_model(document)
    , m_filtered(new QSortFilterProxyModel(this))
    , m_stack(new QStackedLayout(this))
    , m_work(new QWidget)
    , m_empty(new QLabel)
    , m_all(new QCheckBox)
    , m_force(new QCheckBox)
    , m_build(new QPushButton)
    , m_buildChosen(new QPushButton)
    , m_stop(new QPushButton)
    , m_progress(new QProgressBar)
    , m_timeLeft(new QLabel)
    , m_tabs(new QTabWidget)
    , m_channels(new QTableView)
    , m_messageLabel(new QLabel)
    , m_message(new QPlainTextEdit)
    , m_filterLabel(new QLabel)
    , m_filter(new QLineEdit)
    , m_messageTable(new QTableView)
    , m_report(new QTableView)
    , m_reportEmpty(new QLabel)
    , m_browse(new QPushButton)
    , m_banner(new QLabel)
{
    nameParts();
    layOut();
    connectParts();
    connectProcess();
    BuildPage::setTexts();
    showTicked();
}

void BuildPage::nameParts()
{
    m_empty->setObjectName(QStringLiteral("nothingToBuild"));
    m_all->setObjectName(QStringLiteral("allChannels"));
    m_force->setObjectName(QStringLiteral("buildUnchanged"));
    m_build->setObjectName(QStringLiteral("build"));
    m_buildChosen->setObjectName(QStringLiteral("buildChosen"));
    m_stop->setObjectName(QStringLiteral("stopBuild"));
    m_progress->setObjectName(QStringLiteral("buildProgress"));
    m_timeLeft->setObjectName(QStringLiteral("buildTimeLeft"));
    m_tabs->setObjectName(QStringLiteral("buildTabs"));
    m_channels->setObjectName(QStringLiteral("buildChannels"));
    m_message->setObjectName(QStringLiteral("wholeMessage"));
    m_filter->setObjectName(QStringLiteral("messageFilter"));
    m_messageTable->setObjectName(QStringLiteral("buildMessages"));
    m_report->setObjectName(QStringLiteral("report"));
    m_reportEmpty->setObjectName(QStringLiteral("noReport"));
    m_browse->setObjectName(QStringLiteral("openReport"));
    m_banner->setObjectName(QStringLiteral("buildOutcome"));
}

void BuildPage::layOut()
{
    for (QLabel* const text : {m_empty, m_reportEmpty, m_banner}) {
        text->setWordWrap(true);
        text->setTextFormat(Qt::PlainText);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    m_empty->setAlignment(Qt::AlignCenter);
    auto* const column = new QVBoxLayout(m_work);
    column->addLayout(makeTop());
    auto* const line = new QHBoxLayout;
    line->addWidget(m_progress, 1);
    line->addWidget(m_timeLeft);
    column->addLayout(line);
    column->addWidget(m_banner);
    column->addWidget(m_tabs, 1);
    m_tabs->addTab(makeChannels(), QString());
    m_tabs->addTab(makeMessages(), QString());
    m_tabs->addTab(makeReport(), QString());
    m_progress->hide();
    m_banner->hide();
    m_stack->addWidget(m_empty);
    m_stack->addWidget(m_work);
}

QLayout* BuildPage::makeTop()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(m_all);
    row->addWidget(m_force);
    row->addStretch(1);
    row->addWidget(m_build);
    row->addWidget(m_buildChosen);
    row->addWidget(m_stop);
    return row;
}

QWidget* BuildPage::makeChannels()
{
    prepareRows(m_channels, &m_model);
    m_channels->setItemDelegateForColumn(BuildModel::ProgressColumn, new ProgressDelegate(m_channels));
    setWidths(m_channels, {28, 20, 20});
    m_message->setReadOnly(true);
    m_message->setTabChangesFocus(true);
    m_messageLabel->setBuddy(m_message);
    auto* const part = new QWidget;
    auto* const column = new QVBoxLayout(part);
    column->addWidget(m_channels, 3);
    column->addWidget(m_messageLabel);
    column->addWidget(m_message, 1);
    return part;
}

QWidget* BuildPage::makeMessages()
{
    m_filtered->setSourceModel(&m_messages);
    m_filtered->setFilterKeyColumn(BuildMessages::FolderColumn);
    m_filtered->setFilterCaseSensitivity(Qt::CaseInsensitive);
    prepareRows(m_messageTable, m_filtered);
    setWidths(m_messageTable, {20});
    m_filterLabel->setBuddy(m_filter);
    m_filter->setClearButtonEnabled(true);
    auto* const part = new QWidget;
    auto* const column = new QVBoxLayout(part);
    auto* const row = new QHBoxLayout;
    row->addWidget(m_filterLabel);
    row->addWidget(m_filter, 1);
    column->addLayout(row);
    column->addWidget(m_messageTable, 1);
    return part;
}

QWidget* BuildPage::makeReport()
{
    prepareRows(m_report, &m_reportRows);
    setWidths(m_report, {24, 14, 36, 12, 10});
    auto* const part = new QWidget;
    auto* const column = new QVBoxLayout(part);
    auto* const row = new QHBoxLayout;
    row->addWidget(m_reportEmpty, 1);
    row->addWidget(m_browse);
    column->addLayout(row);
    column->addWidget(m_report, 1);
    return part;
}

void BuildPage::connectParts()
{
    connect(m_build, &QPushButton::clicked, this, &BuildPage::begin);
    connect(m_buildChosen, &QPushButton::clicked, this, &BuildPage::beginChosen);
    connect(m_stop, &QPushButton::clicked, this, &BuildPage::stopWork);
    // It follows the channels' own boxes, too: only a person's click is an order.
    connect(m_all, &QCheckBox::clicked, this, [this] {
        const bool all = m_all->checkState() != Qt::Unchecked;
        m_model.chooseAll(all);
    });
    connect(&m_model, &BuildModel::chosenChanged, this, &BuildPage::showTicked);
    connect(m_channels->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &BuildPage::showWholeMessage);
    connect(&m_model, &BuildModel::dataChanged, this, &BuildPage::showWholeMessage);
    connect(&m_model, &BuildModel::modelReset, this, &BuildPage::showWholeMessage);
    connect(m_filter, &QLineEdit::textChanged, m_filtered, &QSortFilterProxyModel::setFilterFixedString);
    connect(m_browse, &QPushButton::clicked, this, [this] {
        QDesktopServices::openUrl(
            QUrl::fromLocalFile(m_document.outputPath() + QStringLiteral("/report.html")));
    });
    const auto forget = [this] {
        m_messages.clear();
        m_banner->hide();
        readReport();
    };
    connect(&m_document, &JobDocument::opened, this, forget);
    connect(&m_document, &JobDocument::closed, this, forget);
}

void BuildPage::connectProcess()
{
    connect(&m_process, &BuildProcess::stepBegan, this, [this](const QString& folder, const QString& step) {
        m_model.showStep(folder, step);
        m_messages.add(folder, BuildWords::step(step));
    });
    connect(&m_process, &BuildProcess::channelEnded, this,
            [this](const QString& folder, const QString& outcome, const QString& message) {
                m_model.showEnd(folder, outcome, message);
                const QString text = BuildWords::outcome(outcome);
                m_messages.add(folder, message.isEmpty() ? text : tr("%1: %2").arg(text, message));
            });
    connect(&m_process, &BuildProcess::said, this, [this](const QString& line) { m_messages.add({}, line); });
    connect(&m_process, &BuildProcess::progressed, this, &BuildPage::showProgress);
    connect(&m_process, &BuildProcess::ended, this, &BuildPage::finish);
}

QString BuildPage::title() const
{
    return tr("Build");
}

QString BuildPage::workAtHand() const
{
    return m_process.isRunning() ? tr("The packages of %1 are being built.").arg(m_document.game())
                                 : QString();
}

void BuildPage::stopWork()
{
    m_process.stop();
    showControls();
}

void BuildPage::setTexts()
{
    m_empty->setText(tr("No job is open. Open one, or begin a new one, on the start page."));
    m_all->setText(tr("&All channels"));
    m_force->setText(tr("&Unchanged ones, too"));
    m_build->setText(tr("&Build"));
    m_buildChosen->setToolTip(tr("Builds the channels that are chosen on the page Channels, and no others"));
    m_stop->setText(tr("S&top"));
    m_progress->setAccessibleName(tr("Progress of the build"));
    m_timeLeft->setAccessibleName(tr("Time left"));
    m_banner->setAccessibleName(tr("Outcome of the build"));
    m_tabs->setAccessibleName(tr("Channels, messages, report"));
    m_tabs->setTabText(0, tr("&Channels"));
    m_tabs->setTabText(1, tr("&Messages"));
    m_tabs->setTabText(2, tr("&Report"));
    m_channels->setAccessibleName(tr("Channels"));
    m_messageLabel->setText(tr("&Whole message of the channel:"));
    m_message->setAccessibleName(tr("Whole message of the channel"));
    m_filterLabel->setText(tr("&Only of the channel:"));
    m_filter->setAccessibleName(tr("Only of the channel"));
    m_messageTable->setAccessibleName(tr("Messages"));
    m_report->setAccessibleName(tr("Report"));
    m_browse->setText(tr("Open in the bro&wser"));
    m_reportEmpty->setText(
        tr("The report of the last build. What is cut off shows in full under the pointer."));
    m_model.setTexts();
    m_messages.setTexts();
    m_reportRows.setTexts();
    showControls();
}

void BuildPage::showControls()
{
    const bool isRunning = m_process.isRunning();
    m_stack->setCurrentWidget(m_document.isOpen() ? static_cast<QWidget*>(m_work) : m_empty);
    m_build->setEnabled(!isRunning);
    m_buildChosen->setEnabled(!isRunning && !m_chosen.isEmpty());
    m_buildChosen->setText(tr("Build cho&sen: %1").arg(m_chosen.size()));
    m_stop->setEnabled(isRunning && !m_process.isStopping());
    m_progress->setVisible(isRunning);
    m_timeLeft->setVisible(isRunning);
    if (m_process.isStopping() && isRunning)
        m_timeLeft->setText(tr("Stopping behind the step at hand"));
    const bool hasReport = m_reportRows.rowCount() > 0;
    m_browse->setEnabled(hasReport);
    if (!hasReport)
        m_reportEmpty->setText(tr("There is no report yet. Build the channels."));
}

void BuildPage::showTicked()
{
    const int chosen = m_model.chosen().size();
    m_all->setTristate(chosen > 0 && chosen < m_model.rowCount());
    m_all->setCheckState(chosen == 0                       ? Qt::Unchecked
                             : chosen < m_model.rowCount() ? Qt::PartiallyChecked
                                                           : Qt::Checked);
    showControls();
}

void BuildPage::showWholeMessage()
{
    const QModelIndex current = m_channels->currentIndex();
    const QString text = current.isValid() ? current.data(BuildModel::MessageRole).toString() : QString();
    if (text != m_message->toPlainText())
        m_message->setPlainText(text);
}

void BuildPage::setChosen(const QVector<int>& rows)
{
    m_chosen = rows;
    showControls();
}

void BuildPage::beginChosen()
{
    QStringList folders;
    for (const int row : qAsConst(m_chosen))
        folders.append(m_document.folderOf(row));
    m_model.choose(folders);
    begin();
}

void BuildPage::begin()
{
    if (m_model.chosen().isEmpty()) {
        m_banner->setText(tr("Choose at least one channel."));
        m_banner->show();
    } else if (m_document.isModified()) {
        askToSave();
    } else {
        run();
    }
}

void BuildPage::askToSave()
{
    delete m_question;
    m_question = new QMessageBox(QMessageBox::Question, QString(), tr("Save the job before the build?"),
                                 QMessageBox::Cancel, this);
    m_question->setObjectName(QStringLiteral("saveBeforeBuild"));
    m_question->setAttribute(Qt::WA_DeleteOnClose);
    m_question->setInformativeText(tr("A build reads the job's file, which lacks your latest edits."));
    QPushButton* const save = m_question->addButton(tr("&Save and build"), QMessageBox::AcceptRole);
    m_question->setDefaultButton(save);
    connect(m_question, &QMessageBox::buttonClicked, this, [this, save](const QAbstractButton* button) {
        if (button != save)
            return;
        m_document.save(this, [this](const QString& fault) {
            if (fault.isEmpty()) {
                run();
                return;
            }
            m_banner->setText(fault);
            m_banner->show();
        });
    });
    m_question->open();
}

void BuildPage::run()
{
    const QStringList chosen = m_model.chosen();
    m_messages.clear();
    m_model.begin();
    m_elapsed.invalidate();
    m_banner->hide();
    showProgress(tr("beginning"), -1, -1);
    const bool isWhole = chosen.size() == m_model.rowCount();
    m_process.start({m_document.path(), isWhole ? QStringList() : chosen, m_force->isChecked()});
    showControls();
    Q_EMIT workChanged();
}

void BuildPage::showProgress(const QString& doing, int done, int total)
{
    m_progress->setRange(0, total > 0 ? total : 0); // without an end it shows that something is done
    m_progress->setValue(qMax(0, done));
    if (m_process.isStopping() && m_process.isRunning())
        return;
    if (total <= 0) {
        m_timeLeft->setText(doing);
        return;
    }
    if (!m_elapsed.isValid())
        m_elapsed.start();
    QString text = tr("%1 of %2 channels").arg(done).arg(total);
    if (done > 0 && done < total)
        text += tr(", %1").arg(BuildWords::timeLeft(m_elapsed.elapsed() / 1000 * (total - done) / done));
    m_timeLeft->setText(text);
}

QString BuildPage::outcomeText(bool succeeded) const
{
    const int built = m_model.countOf(QStringLiteral("built"));
    const int unchanged = m_model.countOf(QStringLiteral("unchanged"));
    const int failed = m_model.countOf(QStringLiteral("failed"));
    QString done = tr("Built: %1, unchanged: %2.").arg(built).arg(unchanged);
    if (m_process.isStopping())
        return tr("Stopped. %1 The next build goes on with the rest.").arg(done);
    if (failed > 0)
        return tr("Failed: %1. %2 Choose a failed channel to see why.").arg(failed).arg(done);
    if (succeeded)
        return done;
    return tr("The build did not come to its end. The messages tell why.");
}

void BuildPage::finish(bool succeeded, const QString& fault)
{
    m_model.end();
    m_banner->setText(fault.isEmpty() ? outcomeText(succeeded) : fault);
    m_banner->show();
    if (!succeeded && m_model.countOf(QStringLiteral("failed")) == 0 && !m_process.isStopping())
        m_tabs->setCurrentIndex(1);
    readReport();
    showControls();
    Q_EMIT workChanged();
}

// On another thread: the report of a large job is long.
void BuildPage::readReport()
{
    const QString file = m_document.outputPath() + QStringLiteral("/report.json");
    inBackground(
        this, [file] { return ReportModel::read(file); },
        [this, file](const BuildOutcome& build) {
            if (file != m_document.outputPath() + QStringLiteral("/report.json"))
                return; // another job has been opened meanwhile
            m_reportRows.show(build);
            setTexts();
        });
}
