// SPDX-License-Identifier: MIT
#ifndef MAINWINDOW_H
#define MAINWINDOW_H

#include "window/channels/jobdocument.h"
#include "window/language.h"

#include <QMainWindow>

class JobFiles;
class JobMenus;
class Page;
QT_BEGIN_NAMESPACE
class QActionGroup;
class QFrame;
class QLabel;
class QListWidget;
class QMenu;
class QStackedWidget;
class QToolButton;
QT_END_NAMESPACE

/** The window: the list of pages on the left, the page at hand on the right. */
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    /** Shows a page in the place of the one at hand. */
    void show(Page* page);
    using QMainWindow::show;

    /** A file that a person hands over: a job, or an APK for a new one. */
    void take(const QString& path);

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QLayout* makeBanner();
    void add(Page* page);
    void makeMenus();
    void setTexts();
    void showTitle();
    void tell(const QString& sentence);
    void tellAbout();
    void restore();
    void setClosing(bool isClosing);
    bool askToStop(const QStringList& work);
    void closeWhenWorkHasEnded();
    QStringList workAtHand() const;

    Language m_language;
    JobDocument m_document; ///< before the pages, which read it
    JobFiles* m_files;
    QListWidget* m_list;
    QStackedWidget* m_pages;
    QFrame* m_banner; ///< what went wrong last
    QLabel* m_bannerText;
    QToolButton* m_bannerClose;
    JobMenus* m_menus;
    QMenu* m_viewMenu;
    QMenu* m_languageMenu;
    QMenu* m_helpMenu;
    QAction* m_about;
    QActionGroup* m_languages;
    bool m_isClosing = false; ///< as soon as no work is at hand
};

#endif
