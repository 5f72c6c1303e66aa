// SPDX-License-Identifier: MIT
#ifndef MAINWINDOW_H
#define MAINWINDOW_H

#include "window/channels/jobdocument.h"
#include "window/language.h"

#include <QMainWindow>

class Page;
QT_BEGIN_NAMESPACE
class QActionGroup;
class QListWidget;
class QMenu;
class QStackedWidget;
QT_END_NAMESPACE

/** The window: the list of pages on the left, the page at hand on the right. */
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow();

    /** Shows a page in the place of the one at hand. */
    void show(Page* page);
    using QMainWindow::show;

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void add(Page* page);
    void makeMenus();
    void setTexts();
    void restore();
    void closeWhenWorkHasEnded();
    QStringList workAtHand() const;

    Language m_language;
    JobDocument m_document; ///< before the pages, which read it
    QListWidget* m_list;
    QStackedWidget* m_pages;
    QMenu* m_fileMenu;
    QMenu* m_viewMenu;
    QMenu* m_languageMenu;
    QAction* m_quit;
    QActionGroup* m_languages;
    bool m_isClosing = false; ///< as soon as no work is at hand
};

#endif
