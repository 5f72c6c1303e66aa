// SPDX-License-Identifier: MIT
#include "window/mainwindow.h"

#include <QApplication>
#include <QLoggingCategory>

int main(int argc, char* argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("quenzo"));
    QApplication::setApplicationName(QStringLiteral("quenzo-window"));
    // Why an operation failed; rules of the person's own go before these.
    QLoggingCategory::setFilterRules(QStringLiteral("quenzo.*.info=true\nquenzo.*.warning=true"));
    MainWindow window;
    window.show();
    return QApplication::exec();
}
