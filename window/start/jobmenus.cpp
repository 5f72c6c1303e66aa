// SPDX-License-Identifier: MIT
#include "window/start/jobmenus.h"

#include "window/channels/jobdocument.h"
#include "window/start/jobfiles.h"
#include "window/start/recentjobs.h"

#include <QDir>
#include <QMainWindow>
#include <QMenuBar>

JobMenus::JobMenus(JobDocument& document, JobFiles& files, QMainWindow* window)
    : QObject(window)
    , m_document(document)
    , m_files(files)
    , m_file(window->menuBar()->addMenu(QString()))
    , m_recent(new QMenu(m_file))
    , m_edit(window->menuBar()->addMenu(QString()))
{
    makeFileMenu(window);
    makeEditMenu();
    connect(&files, &JobFiles::recentChanged, this, &JobMenus::fillRecent);
    connect(&document, &JobDocument::opened, this, &JobMenus::enable);
    connect(&document, &JobDocument::closed, this, &JobMenus::enable);
    fillRecent();
    enable();
}

void JobMenus::makeFileMenu(QMainWindow* window)
{
    m_open = m_file->addAction(QString(), &m_files, &JobFiles::chooseJob);
    m_open->setShortcut(QKeySequence::Open);
    m_file->addMenu(m_recent);
    m_newFromApk = m_file->addAction(QString(), &m_files, &JobFiles::chooseApk);
    m_newFromApk->setShortcut(QKeySequence::New);
    m_sample = m_file->addAction(QString(), &m_files, &JobFiles::makeSample);
    m_file->addSeparator();
    m_save = m_file->addAction(QString(), &m_files, &JobFiles::save);
    m_save->setShortcut(QKeySequence::Save);
    m_save->setObjectName(QStringLiteral("save"));
    m_saveAs = m_file->addAction(QString(), &m_files, &JobFiles::saveAs);
    m_saveAs->setShortcut(QKeySequence(int(Qt::CTRL) | int(Qt::SHIFT) | int(Qt::Key_S)));
    m_close = m_file->addAction(QString(), &m_files, &JobFiles::close);
    m_close->setShortcut(QKeySequence(int(Qt::CTRL) | int(Qt::Key_W)));
    m_file->addSeparator();
    m_quit = m_file->addAction(QString(), window, &QWidget::close);
    m_quit->setShortcut(QKeySequence(int(Qt::CTRL) | int(Qt::Key_Q)));
}

void JobMenus::makeEditMenu()
{
    QUndoStack* const stack = m_document.undoStack();
    m_undo = m_edit->addAction(QString(), stack, &QUndoStack::undo);
    m_undo->setShortcut(QKeySequence::Undo);
    m_undo->setObjectName(QStringLiteral("undo"));
    m_redo = m_edit->addAction(QString(), stack, &QUndoStack::redo);
    m_redo->setShortcut(QKeySequence(int(Qt::CTRL) | int(Qt::SHIFT) | int(Qt::Key_Z)));
    m_redo->setObjectName(QStringLiteral("redo"));
    connect(stack, &QUndoStack::indexChanged, this, &JobMenus::setEditTexts);
    connect(stack, &QUndoStack::cleanChanged, this, &JobMenus::enable);
}

void JobMenus::setTexts()
{
    m_file->setTitle(tr("&File"));
    m_open->setText(tr("&Open a job…"));
    m_recent->setTitle(tr("&Recent jobs"));
    m_newFromApk->setText(tr("&New job from an APK…"));
    m_sample->setText(tr("New job from the sa&mple…"));
    m_save->setText(tr("&Save"));
    m_saveAs->setText(tr("Save &as…"));
    m_close->setText(tr("&Close the job"));
    m_quit->setText(tr("&Quit"));
    m_edit->setTitle(tr("&Edit"));
    setEditTexts();
}

void JobMenus::setEditTexts()
{
    const QUndoStack* const stack = m_document.undoStack();
    m_undo->setText(stack->canUndo() ? tr("&Undo: %1").arg(stack->undoText()) : tr("&Undo"));
    m_redo->setText(stack->canRedo() ? tr("&Redo: %1").arg(stack->redoText()) : tr("&Redo"));
    m_undo->setEnabled(stack->canUndo());
    m_redo->setEnabled(stack->canRedo());
}

void JobMenus::enable()
{
    m_save->setEnabled(m_document.isOpen() && m_document.isModified());
    m_saveAs->setEnabled(m_document.isOpen());
    m_close->setEnabled(m_document.isOpen());
    setEditTexts();
}

void JobMenus::fillRecent()
{
    m_recent->clear();
    const QStringList paths = RecentJobs::all();
    for (const QString& path : paths) {
        QString shown = QDir::toNativeSeparators(path);
        shown.replace(QLatin1Char('&'), QLatin1String("&&"));
        m_recent->addAction(shown, this, [this, path] { m_files.open(path); });
    }
    m_recent->setEnabled(!paths.isEmpty());
}
