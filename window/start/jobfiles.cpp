// SPDX-License-Identifier: MIT
#include "window/start/jobfiles.h"

#include "build/jobtemplate.h"
#include "wholesave.h"
#include "window/background.h"
#include "window/channels/jobdocument.h"
#include "window/start/gameapk.h"
#include "window/start/newjobdialog.h"
#include "window/start/recentjobs.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

namespace {

const QString jobEnding = QStringLiteral(".json");

// Writes the job and, where the APK has one, its icon beside it. Returns what failed.
QString writeJob(const QString& folder, const GameApk& apk)
{
    JobTemplate::OwnFiles own;
    own.base = apk.path;
    own.game = apk.name;
    const QString icon = folder + QStringLiteral("/icon.png");
    if (!apk.icon.isEmpty())
        own.icon = icon;
    const QString fault = JobTemplate::write(folder, own);
    return fault.isEmpty() && !apk.icon.isEmpty() ? saveWhole(icon, apk.icon) : fault;
}

} // namespace

JobFiles::JobFiles(JobDocument& document, QWidget* window)
    : QObject(window)
    , m_document(document)
    , m_window(window)
{
}

bool JobFiles::mayLeave(const std::function<void()>& again)
{
    if (m_document.isSaving()) {
        m_document.whenSaved(again);
        return false;
    }
    if (!m_document.isModified())
        return true;
    QMessageBox question(QMessageBox::Question, tr("Edits are not saved"),
                         tr("The job %1 has edits that are not saved.").arg(m_document.path()),
                         QMessageBox::NoButton, m_window);
    const QPushButton* const saved = question.addButton(tr("&Save"), QMessageBox::AcceptRole);
    const QPushButton* const dropped =
        question.addButton(tr("&Drop the edits"), QMessageBox::DestructiveRole);
    QPushButton* const stay = question.addButton(tr("&Go on editing"), QMessageBox::RejectRole);
    question.setEscapeButton(stay);
    question.exec();
    if (question.clickedButton() == saved) {
        m_document.save(this, [this, again](const QString& fault) {
            if (finish(fault))
                again();
        });
    }
    return question.clickedButton() == dropped;
}

void JobFiles::take(const QString& path)
{
    if (path.endsWith(QLatin1String(".apk"), Qt::CaseInsensitive))
        makeFrom(path);
    else if (path.endsWith(jobEnding, Qt::CaseInsensitive))
        open(path);
    else
        Q_EMIT told(tr("%1 is neither a job, which ends in .json, nor an APK.").arg(path));
}

bool JobFiles::finish(const QString& fault)
{
    Q_EMIT told(fault);
    if (!fault.isEmpty())
        return false;
    RecentJobs::add(m_document.path());
    Q_EMIT recentChanged();
    return true;
}

void JobFiles::open(const QString& path)
{
    const int order = ++m_order;
    m_window->setCursor(Qt::BusyCursor);
    inBackground(
        this, [path] { return JobContent::read(path); },
        [this, order](const JobContent& job) {
            if (order != m_order)
                return; // another one has been asked for meanwhile
            m_window->unsetCursor();
            if (job.fault.isEmpty())
                begin(job);
            else
                Q_EMIT told(job.fault);
        });
}

void JobFiles::begin(const JobContent& job)
{
    if (!mayLeave([this, job] { begin(job); }))
        return;
    m_document.open(job);
    finish({});
}

void JobFiles::chooseJob()
{
    const QString folder = QFileInfo(RecentJobs::all().value(0)).path();
    const QString path =
        QFileDialog::getOpenFileName(m_window, tr("Open a job"), folder, tr("Jobs (*.json)"));
    if (!path.isEmpty())
        open(path);
}

void JobFiles::chooseApk()
{
    const QString path = QFileDialog::getOpenFileName(m_window, tr("The game's APK"), QDir::homePath(),
                                                      tr("Android packages (*.apk)"));
    if (!path.isEmpty())
        makeFrom(path);
}

void JobFiles::makeFrom(const QString& apk)
{
    inBackground(
        this, [apk] { return GameApk::read(apk); },
        [this](const GameApk& read) {
            if (read.fault.isEmpty())
                make(read);
            else
                Q_EMIT told(read.fault);
        });
}

void JobFiles::makeSample()
{
    make({});
}

void JobFiles::make(const GameApk& apk)
{
    NewJobDialog dialog(apk, m_window);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QString folder = dialog.folder();
    inBackground(
        this, [folder, apk] { return writeJob(folder, apk); },
        [this, folder](const QString& fault) {
            if (fault.isEmpty())
                open(folder + QStringLiteral("/job.json"));
            else
                Q_EMIT told(tr("The job cannot be made: %1.").arg(fault));
        });
}

void JobFiles::save()
{
    m_document.save(this, [this](const QString& fault) { finish(fault); });
}

void JobFiles::saveAs()
{
    QString path =
        QFileDialog::getSaveFileName(m_window, tr("Save the job as"), m_document.path(), tr("Jobs (*.json)"));
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += jobEnding;
    m_document.saveAs(path, this, [this](const QString& fault) { finish(fault); });
}

void JobFiles::close()
{
    if (mayLeave([this] { close(); }))
        m_document.close();
}

void JobFiles::forget(const QString& path)
{
    RecentJobs::remove(path);
    Q_EMIT recentChanged();
}
