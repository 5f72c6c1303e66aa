// SPDX-License-Identifier: MIT
#ifndef JOBMENUS_H
#define JOBMENUS_H

#include <QObject>

class JobDocument;
class JobFiles;
QT_BEGIN_NAMESPACE
class QAction;
class QMainWindow;
class QMenu;
QT_END_NAMESPACE

/** The menus File and Edit: the job as a whole, and its edits. */
class JobMenus : public QObject {
    Q_OBJECT

public:
    JobMenus(JobDocument& document, JobFiles& files, QMainWindow* window);

    void setTexts();

private:
    void makeFileMenu(QMainWindow* window);
    void makeEditMenu();
    void setEditTexts();
    void enable();
    void fillRecent();

    JobDocument& m_document;
    JobFiles& m_files;
    QMenu* m_file;
    QMenu* m_recent;
    QMenu* m_edit;
    QAction* m_open = nullptr;
    QAction* m_newFromApk = nullptr;
    QAction* m_sample = nullptr;
    QAction* m_save = nullptr;
    QAction* m_saveAs = nullptr;
    QAction* m_close = nullptr;
    QAction* m_quit = nullptr;
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
};

#endif
