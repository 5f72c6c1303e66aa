// SPDX-License-Identifier: MIT
#include "build/jobtemplate.h"
#include "window/mainwindow.h"
#include "window/page.h"

#include <QApplication>
#include <QDir>
#include <QScreen>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>
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

bool savePages(const QString& job, const QString& folder, const QString& ending)
{
    MainWindow window;
    window.resize(1100, 720);
    window.show();
    window.take(job);
    settle(1500);
    const auto pages = window.findChildren<Page*>();
    bool isDone = true;
    for (Page* const page : pages) {
        window.show(page);
        settle(600);
        QString name = QString::fromLatin1(page->metaObject()->className()).toLower();
        name.chop(int(qstrlen("page")));
        isDone = save(window, folder + QLatin1Char('/') + name + ending) && isDone;
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
    QDir(home).removeRecursively();
    const QString fault = JobTemplate::write(home, {});
    if (!fault.isEmpty() || !QDir().mkpath(folder))
        qFatal("no pictures: %s", qUtf8Printable(fault));
    const QPalette light = QApplication::style()->standardPalette();
    bool isDone = true;
    for (const QString& language : {QStringLiteral("en"), QStringLiteral("zh_CN")}) {
        QSettings().setValue(QStringLiteral("language"), language);
        QApplication::setPalette(light);
        isDone =
            savePages(home + QStringLiteral("/job.json"), folder, QStringLiteral("-%1.png").arg(language))
            && isDone;
        QApplication::setPalette(darkPalette());
        isDone = savePages(home + QStringLiteral("/job.json"), folder,
                           QStringLiteral("-%1-dark.png").arg(language))
            && isDone;
    }
    QDir(home).removeRecursively();
    return isDone ? 0 : 1;
}
