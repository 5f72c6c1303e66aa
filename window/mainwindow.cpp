// SPDX-License-Identifier: MIT
#include "window/mainwindow.h"

#include "window/devices/devicespage.h"
#include "window/log/logpage.h"
#include "window/page.h"
#include "window/start/startpage.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QListWidget>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QStackedWidget>

namespace {

const QString geometryKey = QStringLiteral("window/geometry");
const QString pageKey = QStringLiteral("window/page");
const QString languageKey = QStringLiteral("language");

} // namespace

MainWindow::MainWindow()
    : m_list(new QListWidget)
    , m_pages(new QStackedWidget)
    , m_fileMenu(menuBar()->addMenu(QString()))
    , m_viewMenu(menuBar()->addMenu(QString()))
    , m_languageMenu(m_viewMenu->addMenu(QString()))
    , m_quit(m_fileMenu->addAction(QString(), this, &QWidget::close))
    , m_languages(new QActionGroup(this))
{
    const QString chosen = QSettings().value(languageKey).toString();
    m_language.use(Language::all().contains(chosen) ? chosen
                                                    : Language::bestOf(QLocale::system().uiLanguages()));
    auto* const center = new QWidget;
    auto* const row = new QHBoxLayout(center);
    row->addWidget(m_list);
    row->addWidget(m_pages, 1);
    setCentralWidget(center);
    m_list->setObjectName(QStringLiteral("pages"));
    connect(m_list, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
    makeMenus();
    add(new StartPage);
    add(new DevicesPage);
    add(new LogPage);
    setTexts();
    restore();
}

void MainWindow::add(Page* page)
{
    m_pages->addWidget(page);
    m_list->addItem(page->title());
    connect(page, &Page::workChanged, this, &MainWindow::closeWhenWorkHasEnded);
}

void MainWindow::show(Page* page)
{
    m_list->setCurrentRow(m_pages->indexOf(page));
}

void MainWindow::makeMenus()
{
    m_quit->setShortcut(QKeySequence::Quit);
    for (const QString& code : Language::all()) {
        QAction* const action = m_languageMenu->addAction(Language::nameOf(code));
        action->setCheckable(true);
        action->setData(code);
        action->setChecked(code == m_language.code());
        m_languages->addAction(action);
    }
    connect(m_languages, &QActionGroup::triggered, this, [this](const QAction* action) {
        m_language.use(action->data().toString());
        QSettings().setValue(languageKey, m_language.code());
    });
}

void MainWindow::setTexts()
{
    setWindowTitle(tr("QuenzoTool"));
    m_fileMenu->setTitle(tr("&File"));
    m_quit->setText(tr("&Quit"));
    m_viewMenu->setTitle(tr("&View"));
    m_languageMenu->setTitle(tr("&Language"));
    m_list->setAccessibleName(tr("Pages"));
    for (int i = 0; i < m_pages->count(); ++i)
        m_list->item(i)->setText(static_cast<Page*>(m_pages->widget(i))->title());
    m_list->setFixedWidth(m_list->sizeHintForColumn(0) + m_list->fontMetrics().averageCharWidth() * 4);
}

void MainWindow::restore()
{
    const QSettings settings;
    if (!restoreGeometry(settings.value(geometryKey).toByteArray()))
        resize(1100, 720);
    m_list->setCurrentRow(qBound(0, settings.value(pageKey).toInt(), m_pages->count() - 1));
}

void MainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        setTexts();
    QMainWindow::changeEvent(event);
}

QStringList MainWindow::workAtHand() const
{
    QStringList work;
    for (int i = 0; i < m_pages->count(); ++i) {
        const QString text = static_cast<const Page*>(m_pages->widget(i))->workAtHand();
        if (!text.isEmpty())
            work.append(text);
    }
    return work;
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    const QStringList work = workAtHand();
    if (work.isEmpty()) {
        QSettings settings;
        settings.setValue(geometryKey, saveGeometry());
        settings.setValue(pageKey, m_pages->currentIndex());
        event->accept();
        return;
    }
    event->ignore();
    if (m_isClosing)
        return;
    QMessageBox question(QMessageBox::Question, tr("Work is going on"), work.join(QLatin1Char('\n')),
                         QMessageBox::NoButton, this);
    question.setInformativeText(tr("Closing stops it as soon as it can be stopped; what is finished stays."));
    const QPushButton* const stop = question.addButton(tr("Stop and close"), QMessageBox::DestructiveRole);
    question.addButton(tr("Go on working"), QMessageBox::RejectRole);
    question.exec();
    if (question.clickedButton() != stop)
        return;
    m_isClosing = true;
    for (int i = 0; i < m_pages->count(); ++i)
        static_cast<Page*>(m_pages->widget(i))->stopWork();
    closeWhenWorkHasEnded();
}

void MainWindow::closeWhenWorkHasEnded()
{
    if (m_isClosing && workAtHand().isEmpty())
        close();
}
