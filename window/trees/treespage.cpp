// SPDX-License-Identifier: MIT
#include "window/trees/treespage.h"

#include "console/figures.h"
#include "window/background.h"
#include "window/rowtable.h"
#include "window/trees/treelookmodel.h"
#include "window/trees/treework.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>

TreesPage::TreesPage(QWidget* parent)
    : Page(parent)
    , m_operate(new QComboBox)
    , m_operateLabel(new QLabel)
    , m_source(new QLineEdit)
    , m_sourceLabel(new QLabel)
    , m_chooseSource(new QPushButton)
    , m_target(new QLineEdit)
    , m_targetLabel(new QLabel)
    , m_chooseTarget(new QPushButton)
    , m_left(new QLineEdit)
    , m_leftLabel(new QLabel)
    , m_lookButton(new QPushButton)
    , m_startButton(new QPushButton)
    , m_stopButton(new QPushButton)
    , m_progress(new QProgressBar)
    , m_told(new QLabel)
    , m_empty(new QLabel)
    , m_view(new QTableView)
    , m_shown(new QStackedWidget)
    , m_model(new TreeLookModel(this))
    , m_work(new TreeWork(this))
{
    auto* const column = new QVBoxLayout(this);
    column->addLayout(makeForm());
    column->addLayout(makeButtons());
    column->addWidget(m_told);
    column->addWidget(m_shown, 1);
    m_told->setObjectName(QStringLiteral("toldOfTrees"));
    m_told->setWordWrap(true);
    m_empty->setWordWrap(true);
    m_empty->setAlignment(Qt::AlignCenter);
    m_shown->addWidget(m_empty);
    m_shown->addWidget(m_view);
    m_view->setObjectName(QStringLiteral("treeFiles"));
    prepareRows(m_view, m_model);
    connect(m_work, &TreeWork::ended, this, &TreesPage::end);
    connect(m_work, &TreeWork::progressed, this, [this](qint64 done, qint64 all) {
        constexpr int parts = 1000;
        m_progress->setRange(0, all > 0 ? parts : 0);
        m_progress->setValue(all > 0 ? int(qMin(done, all) * parts / all) : 0);
    });
    TreesPage::setTexts();
}

QLayout* TreesPage::makeForm()
{
    auto* const form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_operate->addItem({}, OPERATE_COPY);
    m_operate->addItem({}, OPERATE_CUT);
    m_operate->addItem({}, OPERATE_CUT_OUTPUT);
    m_operate->setObjectName(QStringLiteral("treeOperation"));
    m_source->setObjectName(QStringLiteral("treeSource"));
    m_target->setObjectName(QStringLiteral("treeTarget"));
    m_left->setObjectName(QStringLiteral("treeNamesThatStay"));
    m_chooseSource->setObjectName(QStringLiteral("chooseTreeSource"));
    m_chooseTarget->setObjectName(QStringLiteral("chooseTreeTarget"));
    form->addRow(m_operateLabel, m_operate);
    form->addRow(m_sourceLabel, withButton(m_source, m_chooseSource));
    form->addRow(m_targetLabel, withButton(m_target, m_chooseTarget));
    form->addRow(m_leftLabel, m_left);
    m_operateLabel->setBuddy(m_operate);
    m_sourceLabel->setBuddy(m_source);
    m_targetLabel->setBuddy(m_target);
    m_leftLabel->setBuddy(m_left);
    connect(m_operate, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &TreesPage::enable);
    for (const QLineEdit* const line : {m_source, m_target, m_left})
        connect(line, &QLineEdit::textChanged, this, &TreesPage::enable);
    connect(m_chooseSource, &QPushButton::clicked, this, [this] { choose(m_source); });
    connect(m_chooseTarget, &QPushButton::clicked, this, [this] { choose(m_target); });
    return form;
}

QLayout* TreesPage::withButton(QLineEdit* folder, QPushButton* button)
{
    auto* const row = new QHBoxLayout;
    row->addWidget(folder, 1);
    row->addWidget(button);
    return row;
}

QLayout* TreesPage::makeButtons()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(m_lookButton);
    row->addWidget(m_startButton);
    row->addWidget(m_progress, 1);
    row->addWidget(m_stopButton);
    m_lookButton->setObjectName(QStringLiteral("lookAtTrees"));
    m_startButton->setObjectName(QStringLiteral("startTrees"));
    m_stopButton->setObjectName(QStringLiteral("stopTrees"));
    m_progress->setRange(0, 1);
    connect(m_lookButton, &QPushButton::clicked, this, &TreesPage::look);
    connect(m_startButton, &QPushButton::clicked, this, &TreesPage::start);
    connect(m_stopButton, &QPushButton::clicked, this, &TreesPage::stopWork);
    return row;
}

QString TreesPage::title() const
{
    return tr("Folders");
}

QString TreesPage::workAtHand() const
{
    if (!m_work->isRunning())
        return {};
    const QString text =
        m_look.wish.operate == OPERATE_COPY ? tr("'%1' is being copied.") : tr("'%1' is being moved.");
    return text.arg(m_look.wish.source);
}

void TreesPage::stopWork()
{
    m_work->stop();
    if (m_work->isRunning())
        tell(tr("Stopping behind the file at hand…"));
    enable();
}

void TreesPage::setTexts()
{
    m_operateLabel->setText(tr("&What to do:"));
    m_operate->setItemText(0, tr("Copy"));
    m_operate->setItemText(1, tr("Move"));
    m_operate->setItemText(2, tr("Move what is finished to an output folder"));
    m_sourceLabel->setText(tr("&From the folder:"));
    m_targetLabel->setText(tr("&To the folder:"));
    m_leftLabel->setText(tr("&Names that stay:"));
    m_left->setPlaceholderText(tr("Log, build"));
    m_chooseSource->setText(tr("&Choose…"));
    m_chooseSource->setAccessibleName(tr("Choose the folder to take from"));
    m_chooseTarget->setText(tr("C&hoose…"));
    m_chooseTarget->setAccessibleName(tr("Choose the folder to bring to"));
    m_lookButton->setText(tr("&Look first"));
    m_startButton->setText(tr("&Start"));
    m_stopButton->setText(tr("Sto&p"));
    m_progress->setAccessibleName(tr("How much has arrived"));
    m_view->setAccessibleName(tr("Files, and what happens to each"));
    m_empty->setText(
        tr("Name two folders and look first: here is then what would go, what would be replaced, "
           "and what would stay. Nothing is touched before you start."));
    if (!m_work->isRunning() && !m_hasEnded)
        tellLook();
    enable();
}

TreeWish TreesPage::wish() const
{
    TreeWish wish;
    wish.operate = THREAD_OPERATE(m_operate->currentData().toInt());
    wish.source = m_source->text();
    wish.target = m_target->text();
    if (wish.operate != OPERATE_CUT_OUTPUT)
        return wish;
    const QStringList names = m_left->text().split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& name : names)
        wish.left.append(name.trimmed());
    return wish;
}

void TreesPage::choose(QLineEdit* folder)
{
    const QString chosen = QFileDialog::getExistingDirectory(this, tr("Choose a folder"), folder->text());
    if (!chosen.isEmpty())
        folder->setText(chosen);
}

void TreesPage::look()
{
    m_isLooking = true;
    tell(tr("Looking…"));
    enable();
    inBackground(
        this, [wish = wish()] { return TreeLook::at(wish); },
        [this](const TreeLook& found) { present(found); });
}

void TreesPage::present(const TreeLook& look)
{
    m_isLooking = false;
    m_hasEnded = false;
    m_look = look;
    m_model->show(look.entries);
    m_view->resizeColumnToContents(0);
    m_progress->setRange(0, 1);
    m_progress->setValue(0);
    tellLook();
    enable();
}

void TreesPage::tellLook()
{
    if (!m_look.objection.isEmpty()) {
        tell(m_look.objection);
        return;
    }
    if (m_look.wish.source.isEmpty())
        return;
    const QString text = m_look.wish.operate == OPERATE_COPY
        ? tr("%1 files (%2) would be copied; %3 replace a file.")
        : tr("%1 files (%2) would be moved; %3 replace a file.");
    tell(text.arg(locale().toString(m_look.goes.files), sizeText(m_look.goes.bytes),
                  locale().toString(m_look.replaced)));
}

void TreesPage::start()
{
    m_work->start(m_look.wish);
    tell(workAtHand());
    enable();
    Q_EMIT workChanged();
}

void TreesPage::end(bool done)
{
    m_hasEnded = true;
    m_model->show({});
    m_progress->setRange(0, 1);
    m_progress->setValue(done ? 1 : 0);
    if (done)
        tell(tr("Done: %1 files (%2) are in '%3'.")
                 .arg(locale().toString(m_look.goes.files), sizeText(m_look.goes.bytes), m_look.wish.target));
    else if (m_work->isStopping())
        tell(tr("Stopped. What had arrived is in '%1', the rest is in '%2'; look and start again to go on.")
                 .arg(m_look.wish.target, m_look.wish.source));
    else
        tell(tr("Not everything has come to '%1'; the rest is in '%2'. The page Log says what stood in the "
                "way.")
                 .arg(m_look.wish.target, m_look.wish.source));
    enable();
    Q_EMIT workChanged();
}

// Starting needs a look at what is asked for now.
void TreesPage::enable()
{
    const bool isIdle = !m_work->isRunning() && !m_isLooking;
    const TreeWish asked = wish();
    const bool isLookedAt = m_look.objection.isEmpty() && m_look.wish == asked && !asked.source.isEmpty();
    for (QWidget* const field :
         std::initializer_list<QWidget*>{m_operate, m_source, m_target, m_chooseSource, m_chooseTarget})
        field->setEnabled(isIdle);
    m_left->setEnabled(isIdle && asked.operate == OPERATE_CUT_OUTPUT);
    m_lookButton->setEnabled(isIdle && !asked.source.isEmpty() && !asked.target.isEmpty());
    m_startButton->setEnabled(isIdle && isLookedAt && !m_hasEnded);
    m_stopButton->setEnabled(m_work->isRunning() && !m_work->isStopping());
    m_shown->setCurrentWidget(m_model->rowCount() > 0 ? static_cast<QWidget*>(m_view) : m_empty);
}

void TreesPage::tell(const QString& text)
{
    m_told->setText(text);
}
