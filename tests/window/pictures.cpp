// SPDX-License-Identifier: MIT
#include "build/jobtemplate.h"
#include "window/mainwindow.h"
#include "window/page.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

namespace {

QPalette darkPalette()
{
    QPalette palette(QColor(53, 56, 60), QColor(43, 46, 50));
    palette.setColor(QPalette::Base, QColor(32, 34, 37));
    palette.setColor(QPalette::AlternateBase, QColor(40, 43, 47));
    palette.setColor(QPalette::Text, QColor(230, 232, 235));
    palette.setColor(QPalette::WindowText, QColor(230, 232, 235));
    palette.setColor(QPalette::ButtonText, QColor(230, 232, 235));
    palette.setColor(QPalette::PlaceholderText, QColor(160, 165, 172));
    palette.setColor(QPalette::ToolTipBase, QColor(32, 34, 37));
    palette.setColor(QPalette::ToolTipText, QColor(230, 232, 235));
    palette.setColor(QPalette::Highlight, QColor(42, 110, 160));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(110, 180, 235));
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(140, 145, 152));
    return palette;
}

void settle(int milliseconds)
{
    QTest::qWait(milliseconds);
    QThreadPool::globalInstance()->waitForDone();
    QTest::qWait(milliseconds);
}

bool save(MainWindow& window, const QString& path)
{
    const QImage picture = window.screen()->grabWindow(window.winId()).toImage();
    return picture.convertToFormat(QImage::Format_RGB888).save(path, "PNG", 0); // as small as it goes
}

// A person who has built the job and looks at a channel with a mark.
void use(MainWindow& window, const QList<Page*>& pages)
{
    for (Page* const page : pages) {
        window.show(page);
        settle(200);
        if (auto* const build = page->findChild<QPushButton*>(QStringLiteral("build"))) {
            QTest::mouseClick(build, Qt::LeftButton);
            const auto* const outcome = page->findChild<QLabel*>(QStringLiteral("buildOutcome"));
            if (!QTest::qWaitFor([outcome] { return outcome->isVisible(); }, 120000))
                qFatal("no build");
            page->findChild<QTabWidget*>(QStringLiteral("buildTabs"))->setCurrentIndex(0);
        }
        if (auto* const channels = page->findChild<QTableView*>(QStringLiteral("channels")))
            channels->selectRow(1);
    }
}

bool savePages(const QString& home, const QString& folder, const QString& ending)
{
    QDir(home).removeRecursively();
    const QString fault = JobTemplate::write(home, {});
    if (!fault.isEmpty())
        qFatal("no pictures: %s", qUtf8Printable(fault));
    MainWindow window;
    window.resize(1100, 720);
    window.show();
    window.take(home + QStringLiteral("/job.json"));
    settle(1500);
    const auto pages = window.findChildren<Page*>();
    use(window, pages);
    bool isDone = true;
    for (Page* const page : pages) {
        window.show(page);
        settle(600);
        QString name = QString::fromLatin1(page->metaObject()->className()).toLower();
        name.chop(int(qstrlen("page")));
        isDone = save(window, folder + QLatin1Char('/') + name + ending) && isDone;
        if (auto* const tabs = page->findChild<QTabWidget*>(QStringLiteral("buildTabs"))) {
            tabs->setCurrentIndex(2);
            settle(200);
            isDone = save(window, folder + QStringLiteral("/report") + ending) && isDone;
        }
    }
    return isDone;
}

} // namespace

// Draws every page in both languages and palettes: quenzo-window-pictures FOLDER
int main(int argc, char* argv[])
{
    QTemporaryDir settings;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("quenzo"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
    const QString folder = QApplication::arguments().value(1);
    const QString home = QDir::tempPath() + QStringLiteral("/sky-harbour");
    if (!QDir().mkpath(folder))
        qFatal("no pictures: no folder");
    const QPalette light = QApplication::style()->standardPalette();
    bool isDone = true;
    for (const QString& language : {QStringLiteral("en"), QStringLiteral("zh_CN")}) {
        QSettings().setValue(QStringLiteral("language"), language);
        QApplication::setPalette(light);
        isDone = savePages(home, folder, QStringLiteral("-%1.png").arg(language)) && isDone;
        QApplication::setPalette(darkPalette());
        isDone = savePages(home, folder, QStringLiteral("-%1-dark.png").arg(language)) && isDone;
    }
    QDir(home).removeRecursively();
    return isDone ? 0 : 1;
}
