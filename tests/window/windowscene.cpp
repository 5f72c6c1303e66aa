// SPDX-License-Identifier: MIT
#include "windowscene.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSettings>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>

void WindowScene::prepare(const QTemporaryDir& folder)
{
    qputenv("XDG_CACHE_HOME", QFile::encodeName(folder.filePath(QStringLiteral("cache"))));
    QCoreApplication::setOrganizationName(QStringLiteral("quenzo"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    QSettings().clear();
    QSettings().setValue(QStringLiteral("language"), QStringLiteral("en"));
}

bool WindowScene::linkProgram()
{
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/quenzo");
    QFile::remove(program);
    return QFile::link(QStringLiteral(QUENZO_PROGRAM), program);
}

QString WindowScene::show()
{
    m_window.show();
    m_window.activateWindow();
    return QTest::qWaitForWindowActive(&m_window) ? QString()
                                                  : QStringLiteral("the window does not become active");
}

QString WindowScene::open(const QString& job)
{
    m_window.take(job);
    const QString title = QFileInfo(job).fileName();
    const bool isDone = QTest::qWaitFor([&] { return m_window.windowTitle().startsWith(title); }, 60000);
    return isDone ? QString() : label("bannerText");
}

QString WindowScene::label(const char* name) const
{
    return part<QLabel>(name)->text();
}

QString WindowScene::cell(const char* table, int row, int column) const
{
    return part<QTableView>(table)->model()->index(row, column).data().toString();
}

void WindowScene::goTo(const QString& page) const
{
    auto* const pages = part<QListWidget>("pages");
    const QList<QListWidgetItem*> found = pages->findItems(page, Qt::MatchExactly);
    if (found.isEmpty())
        qFatal("no page %s", qUtf8Printable(page));
    QTest::mouseClick(pages->viewport(), Qt::LeftButton, {},
                      pages->visualItemRect(found.constFirst()).center());
}

void WindowScene::click(const char* button) const
{
    QTest::mouseClick(part<QAbstractButton>(button), Qt::LeftButton);
}

void WindowScene::clickCell(const char* table, int row, int column) const
{
    auto* const view = part<QTableView>(table);
    const QModelIndex index = view->model()->index(row, column);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
}

void WindowScene::clickTab(const char* tabs, int tab) const
{
    QTabBar* const bar = part<QTabWidget>(tabs)->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(tab).center());
}

void WindowScene::type(const char* field, const QString& text) const
{
    auto* const line = part<QLineEdit>(field);
    QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(line, text);
}

void WindowScene::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    m_window.activateWindow(); // nobody else does so when a question has gone
    if (QTest::qWaitForWindowActive(&m_window))
        QTest::keyClick(&m_window, key, modifiers);
}

void WindowScene::drag(const QWidget* widget, const QPointF& from, const QPointF& to)
{
    QWindow* const frame = m_window.windowHandle();
    const auto place = [&](const QPointF& at) { return widget->mapTo(&m_window, at.toPoint()); };
    QTest::mousePress(frame, Qt::LeftButton, Qt::NoModifier, place(from));
    for (const int step : {1, 2, 3, 4}) {
        QTest::mouseMove(frame, place(from + (to - from) * step / 4));
        QCoreApplication::processEvents();
    }
    QTest::mouseRelease(frame, Qt::LeftButton, Qt::NoModifier, place(to));
    QCoreApplication::processEvents();
}
