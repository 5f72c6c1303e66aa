// SPDX-License-Identifier: MIT
#include "window/mainwindow.h"

#include "window/build/buildpage.h"
#include "window/channels/channelspage.h"
#include "window/devices/devicespage.h"
#include "window/log/logpage.h"
#include "window/page.h"
#include "window/records/recordspage.h"
#include "window/start/jobfiles.h"
#include "window/start/jobmenus.h"
#include "window/start/startpage.h"
#include "window/trees/treespage.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QStackedWidget>
#include <QStyle>
#include <QToolButton>
#include <QUrl>

namespace {

const QString geometryKey = QStringLiteral("window/geometry");
const QString pageKey = QStringLiteral("window/page");
const QString languageKey = QStringLiteral("language");

} // namespace

MainWindow::MainWindow()
    : m_files(new JobFiles(m_document, this))
    , m_list(new QListWidget)
    , m_pages(new QStackedWidget)
    , m_banner(new QFrame)
    , m_bannerText(new QLabel)
    , m_bannerClose(new QToolButton)
    , m_menus(new JobMenus(m_document, *m_files, this))
    , m_viewMenu(menuBar()->addMenu(QString()))
    , m_languageMenu(m_viewMenu->addMenu(QString()))
    , m_helpMenu(menuBar()->addMenu(QString()))
    , m_about(m_helpMenu->addAction(QString(), this, &MainWindow::tellAbout))
    , m_languages(new QActionGroup(this))
{
    const QString chosen = QSettings().value(languageKey).toString();
    m_language.use(Language::all().contains(chosen) ? chosen
                                                    : Language::bestOf(QLocale::system().uiLanguages()));
    auto* const center = new QWidget;
    auto* const row = new QHBoxLayout(center);
    row->addWidget(m_list);
    auto* const column = new QVBoxLayout;
    column->addLayout(makeBanner());
    column->addWidget(m_pages, 1);
    row->addLayout(column, 1);
    setCentralWidget(center);
    setAcceptDrops(true);
    m_list->setObjectName(QStringLiteral("pages"));
    connect(m_list, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
    makeMenus();
    add(new StartPage(m_document, *m_files));
    auto* const channels = new ChannelsPage(m_document);
    add(channels);
    auto* const build = new BuildPage(m_document);
    add(build);
    connect(channels, &ChannelsPage::chosenChanged, build,
            [channels, build] { build->setChosen(channels->chosen()); });
    add(new DevicesPage(m_document));
    add(new RecordsPage(m_document));
    add(new TreesPage);
    add(new LogPage);
    setTexts();
    restore();
    connect(m_files, &JobFiles::told, this, &MainWindow::tell);
    connect(&m_document, &JobDocument::opened, this, &MainWindow::showTitle);
    connect(&m_document, &JobDocument::closed, this, &MainWindow::showTitle);
    connect(&m_document, &JobDocument::savedAs, this, &MainWindow::showTitle);
    connect(m_document.undoStack(), &QUndoStack::cleanChanged, this,
            [this](bool isClean) { setWindowModified(!isClean); });
}

// The pages go before the document that they read, and the stack of edits tells of its own end, too.
MainWindow::~MainWindow()
{
    delete takeCentralWidget();
    m_document.undoStack()->disconnect();
}

QLayout* MainWindow::makeBanner()
{
    auto* const row = new QHBoxLayout(m_banner);
    m_banner->setObjectName(QStringLiteral("banner"));
    m_banner->setFrameShape(QFrame::StyledPanel);
    m_bannerText->setObjectName(QStringLiteral("bannerText"));
    m_bannerText->setWordWrap(true);
    m_bannerText->setTextFormat(Qt::PlainText);
    m_bannerText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_bannerClose->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    m_bannerClose->setAutoRaise(true);
    m_bannerClose->setFocusPolicy(Qt::StrongFocus);
    row->addWidget(m_bannerText, 1);
    row->addWidget(m_bannerClose);
    connect(m_bannerClose, &QToolButton::clicked, m_banner, &QWidget::hide);
    m_banner->hide();
    auto* const outer = new QVBoxLayout;
    outer->addWidget(m_banner);
    return outer;
}

void MainWindow::tell(const QString& sentence)
{
    m_bannerText->setText(sentence);
    m_banner->setVisible(!sentence.isEmpty());
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

// Whoever hands it over may wait until this returns, and there may be questions.
void MainWindow::take(const QString& path)
{
    QMetaObject::invokeMethod(m_files, "take", Qt::QueuedConnection, Q_ARG(QString, path));
}

void MainWindow::makeMenus()
{
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
    showTitle();
    m_menus->setTexts();
    m_viewMenu->setTitle(tr("&View"));
    m_languageMenu->setTitle(tr("&Language"));
    m_helpMenu->setTitle(tr("&Help"));
    m_about->setText(tr("&About QuenzoTool"));
    m_bannerClose->setAccessibleName(tr("Hide this message"));
    m_bannerClose->setToolTip(m_bannerClose->accessibleName());
    m_list->setAccessibleName(tr("Pages"));
    for (int i = 0; i < m_pages->count(); ++i)
        m_list->item(i)->setText(static_cast<Page*>(m_pages->widget(i))->title());
    m_list->setSpacing(m_list->fontMetrics().lineSpacing() / 4);
    m_list->setFixedWidth(m_list->sizeHintForColumn(0) + m_list->fontMetrics().averageCharWidth() * 5);
}

void MainWindow::showTitle()
{
    const QFileInfo job(m_document.path());
    setWindowTitle(m_document.isOpen()
                       ? tr("%1[*] in %2 - QuenzoTool").arg(job.fileName(), job.dir().dirName())
                       : tr("QuenzoTool"));
    setWindowModified(m_document.isModified());
}

void MainWindow::tellAbout()
{
    QMessageBox::about(this, tr("About QuenzoTool"),
                       tr("QuenzoTool %1: builds the packages of a mobile game for its channels. The program "
                          "quenzo does the same from the command line.")
                           .arg(QStringLiteral(QUENZO_VERSION)));
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls() && event->mimeData()->urls().constFirst().isLocalFile())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    const QString path = event->mimeData()->urls().constFirst().toLocalFile();
    event->acceptProposedAction();
    take(path);
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
    if (work.isEmpty())
        setClosing(false);
    if (work.isEmpty() && m_files->mayLeave([this] { close(); })) {
        QSettings settings;
        settings.setValue(geometryKey, saveGeometry());
        settings.setValue(pageKey, m_pages->currentIndex());
        event->accept();
        return;
    }
    event->ignore();
    if (work.isEmpty() || m_isClosing || !askToStop(work))
        return;
    setClosing(true);
    for (int i = 0; i < m_pages->count(); ++i)
        static_cast<Page*>(m_pages->widget(i))->stopWork();
    closeWhenWorkHasEnded();
}

// What is being done can still be watched, and nothing new begins.
void MainWindow::setClosing(bool isClosing)
{
    if (isClosing == m_isClosing)
        return;
    m_isClosing = isClosing;
    m_pages->setEnabled(!isClosing);
    menuBar()->setEnabled(!isClosing);
    setAcceptDrops(!isClosing);
    tell(isClosing ? tr("The window closes as soon as the work at hand can be ended.") : QString());
}

bool MainWindow::askToStop(const QStringList& work)
{
    QMessageBox question(QMessageBox::Question, tr("Work is going on"), work.join(QLatin1Char('\n')),
                         QMessageBox::NoButton, this);
    question.setInformativeText(tr("Closing stops it as soon as it can be stopped; what is finished stays."));
    const QPushButton* const stop = question.addButton(tr("&Stop and close"), QMessageBox::DestructiveRole);
    QPushButton* const stay = question.addButton(tr("&Go on working"), QMessageBox::RejectRole);
    question.setDefaultButton(stay);
    question.setEscapeButton(stay);
    question.exec();
    return question.clickedButton() == stop;
}

void MainWindow::closeWhenWorkHasEnded()
{
    if (m_isClosing && workAtHand().isEmpty())
        close();
}
