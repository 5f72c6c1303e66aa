// SPDX-License-Identifier: MIT
#include "window/start/startpage.h"

#include "window/background.h"
#include "window/channels/jobdocument.h"
#include "window/start/jobfiles.h"
#include "window/start/recentjobs.h"

#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace {

constexpr int pathRole = Qt::UserRole;

QString lineOf(const JobFault& fault)
{
    return fault.place.isEmpty() ? fault.text : fault.place + QStringLiteral(": ") + fault.text;
}

} // namespace

StartPage::StartPage(JobDocument& document, JobFiles& files, QWidget* parent)
    : Page(parent)
    , m_document(document)
    , m_files(files)
    , m_welcome(new QLabel)
    , m_open(new QPushButton)
    , m_apk(new QPushButton)
    , m_sample(new QPushButton)
    , m_recentLabel(new QLabel)
    , m_recent(new QListWidget)
    , m_noRecent(new QLabel)
    , m_recentStack(new QStackedLayout)
    , m_job(new QLabel)
    , m_faults(new QPlainTextEdit)
{
    auto* const column = new QVBoxLayout(this);
    m_welcome->setWordWrap(true);
    column->addWidget(m_welcome);
    column->addLayout(makeButtons());
    makeRecent(column);
    makeJob(column);
    connect(&files, &JobFiles::recentChanged, this, &StartPage::showRecent);
    connect(&document, &JobDocument::opened, this, &StartPage::checkJob);
    connect(&document, &JobDocument::closed, this, &StartPage::showJob);
    connect(&document, &JobDocument::savedAs, this, &StartPage::checkJob);
    connect(document.undoStack(), &QUndoStack::cleanChanged, this, &StartPage::checkJob);
    StartPage::setTexts();
}

QLayout* StartPage::makeButtons()
{
    auto* const row = new QHBoxLayout;
    m_open->setObjectName(QStringLiteral("startOpen"));
    m_apk->setObjectName(QStringLiteral("startApk"));
    m_sample->setObjectName(QStringLiteral("startSample"));
    for (QPushButton* const button : {m_open, m_apk, m_sample})
        row->addWidget(button);
    row->addStretch(1);
    connect(m_open, &QPushButton::clicked, &m_files, &JobFiles::chooseJob);
    connect(m_apk, &QPushButton::clicked, &m_files, &JobFiles::chooseApk);
    connect(m_sample, &QPushButton::clicked, &m_files, &JobFiles::makeSample);
    return row;
}

void StartPage::makeRecent(QVBoxLayout* column)
{
    m_recent->setObjectName(QStringLiteral("recentJobs"));
    m_recent->setTextElideMode(Qt::ElideMiddle);
    m_recent->installEventFilter(this);
    m_recentLabel->setBuddy(m_recent);
    m_noRecent->setWordWrap(true);
    m_noRecent->setAlignment(Qt::AlignCenter);
    m_recentStack->addWidget(m_recent);
    m_recentStack->addWidget(m_noRecent);
    column->addWidget(m_recentLabel);
    column->addLayout(m_recentStack, 1);
    connect(m_recent, &QListWidget::itemActivated, this, &StartPage::openCurrent);
}

void StartPage::makeJob(QVBoxLayout* column)
{
    m_job->setObjectName(QStringLiteral("jobState"));
    m_job->setWordWrap(true);
    m_job->setTextFormat(Qt::PlainText);
    m_faults->setObjectName(QStringLiteral("jobFaults"));
    m_faults->setReadOnly(true);
    m_faults->setTabChangesFocus(true);
    column->addWidget(m_job);
    column->addWidget(m_faults, 1);
}

QString StartPage::title() const
{
    return tr("Start");
}

void StartPage::setTexts()
{
    m_welcome->setText(tr("Open a job, or drop one here: a job names a game, its base APK and the channels "
                          "whose packages are wanted."));
    m_open->setText(tr("&Open a job…"));
    m_apk->setText(tr("&New job from an APK…"));
    m_sample->setText(tr("&Try the sample…"));
    m_recentLabel->setText(tr("&Recent jobs:"));
    m_recent->setAccessibleName(tr("Recent jobs"));
    m_recent->setToolTip(tr("Enter opens a job; Delete takes it off this list and leaves its files alone."));
    m_noRecent->setText(tr("No jobs yet. Open one, begin one with your game's APK, or try the sample."));
    m_faults->setAccessibleName(tr("What is wrong with the job"));
    showRecent();
    showJob();
}

void StartPage::showRecent()
{
    const QStringList paths = RecentJobs::all();
    m_recent->clear();
    for (const QString& path : paths) {
        auto* const item = new QListWidgetItem(QDir::toNativeSeparators(path), m_recent);
        item->setData(pathRole, path);
    }
    m_recentStack->setCurrentIndex(paths.isEmpty() ? 1 : 0);
    inBackground(
        this,
        [paths] {
            QStringList missing;
            for (const QString& path : paths) {
                if (!QFileInfo::exists(path))
                    missing.append(path);
            }
            return missing;
        },
        [this](const QStringList& missing) { markMissing(missing); });
}

void StartPage::markMissing(const QStringList& missing)
{
    for (int row = 0; row < m_recent->count(); ++row) {
        QListWidgetItem* const item = m_recent->item(row);
        const QString path = item->data(pathRole).toString();
        if (missing.contains(path))
            item->setText(tr("%1 (not there)").arg(QDir::toNativeSeparators(path)));
    }
}

void StartPage::openCurrent()
{
    m_files.open(m_recent->currentItem()->data(pathRole).toString());
}

bool StartPage::eventFilter(QObject* watched, QEvent* event)
{
    const QListWidgetItem* const current = m_recent->currentItem();
    if (watched == m_recent && event->type() == QEvent::KeyPress && current != nullptr
        && static_cast<const QKeyEvent*>(event)->matches(QKeySequence::Delete)) {
        m_files.forget(current->data(pathRole).toString());
        return true;
    }
    return Page::eventFilter(watched, event);
}

// What is on the disk is looked at: edits are checked as soon as they are saved.
void StartPage::checkJob()
{
    m_soundness = Soundness::Unknown;
    showJob();
    if (!m_document.isOpen() || m_document.isModified())
        return;
    const QString path = m_document.path();
    inBackground(
        this,
        [path] {
            QVector<JobFault> faults;
            JobFile::read(path, faults);
            return faults;
        },
        [this, path](const QVector<JobFault>& faults) {
            if (path == m_document.path() && !m_document.isModified())
                showFaults(faults);
        });
}

void StartPage::showFaults(const QVector<JobFault>& faults)
{
    QStringList lines;
    for (const JobFault& fault : faults)
        lines.append(lineOf(fault));
    m_faults->setPlainText(lines.join(QLatin1Char('\n')));
    m_soundness = faults.isEmpty() ? Soundness::Sound : Soundness::Faulty;
    showJob();
}

void StartPage::showJob()
{
    m_faults->setVisible(m_document.isOpen() && m_soundness == Soundness::Faulty);
    m_job->setVisible(m_document.isOpen());
    if (!m_document.isOpen())
        return;
    const QString game = m_document.game();
    const QString path = m_document.path();
    if (m_soundness == Soundness::Faulty)
        m_job->setText(
            tr("%1 cannot be built yet. What is wrong in %2, each with its place:").arg(game, path));
    else if (m_soundness == Soundness::Sound)
        m_job->setText(tr("%1 is open and can be built: %2").arg(game, path));
    else if (m_document.isModified())
        m_job->setText(tr("%1 has edits that are not saved: %2").arg(game, path));
    else
        m_job->setText(tr("%1 is being looked through: %2").arg(game, path));
}
