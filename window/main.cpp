// SPDX-License-Identifier: MIT
#include "window/mainwindow.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("quenzo"));
    QApplication::setApplicationName(QStringLiteral("quenzo-window"));
    MainWindow window;
    window.show();
    return QApplication::exec();
}
