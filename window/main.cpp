// SPDX-License-Identifier: MIT
#include "window/mainwindow.h"

#include <QApplication>
#include <QDir>
#include <QLoggingCategory>

int main(int argc, char* argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("quenzo"));
    QApplication::setApplicationName(QStringLiteral("quenzo-window"));
    QApplication::setDesktopFileName(QStringLiteral("quenzo-window")); // which has the icon
    // Why an operation failed; rules of the person's own go before these.
    QLoggingCategory::setFilterRules(QStringLiteral("quenzo.*.info=true\nquenzo.*.warning=true"));
    MainWindow window;
    window.show();
    const QStringList files = QApplication::arguments().mid(1);
    if (!files.isEmpty())
        window.take(QDir::current().absoluteFilePath(files.constFirst()));
    return QApplication::exec();
}
