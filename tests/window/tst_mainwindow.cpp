// SPDX-License-Identifier: MIT
#include "window/mainwindow.h"

#include <QtTest>

#include <QMenuBar>
#include <QSettings>

class tst_MainWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void languageChangesAtOnce();
    void choiceOfLanguageIsKept();
    void bestLanguage_data();
    void bestLanguage();

private:
    QTemporaryDir m_settings;
};

void tst_MainWindow::initTestCase()
{
    QVERIFY(m_settings.isValid());
    QCoreApplication::setOrganizationName(QStringLiteral("quenzo"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    QLocale::setDefault(QLocale::c());
}

void tst_MainWindow::init()
{
    QSettings().clear();
    QSettings().setValue(QStringLiteral("language"), QStringLiteral("en"));
}

namespace {

QAction* languageAction(const MainWindow& window, const QString& code)
{
    for (QAction* action : window.findChildren<QAction*>()) {
        if (action->data() == code)
            return action;
    }
    return nullptr;
}

} // namespace

void tst_MainWindow::languageChangesAtOnce()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QAction* const file = window.menuBar()->actions().constFirst();
    QCOMPARE(file->text(), QStringLiteral("&File"));
    QAction* const chinese = languageAction(window, QStringLiteral("zh_CN"));
    QVERIFY2(chinese, "the menu offers no Chinese");
    chinese->trigger();
    QTRY_COMPARE(file->text(), QStringLiteral("文件(&F)"));
}

void tst_MainWindow::choiceOfLanguageIsKept()
{
    {
        MainWindow window;
        languageAction(window, QStringLiteral("zh_CN"))->trigger();
    }
    const MainWindow window;
    QCOMPARE(window.menuBar()->actions().constFirst()->text(), QStringLiteral("文件(&F)"));
}

void tst_MainWindow::bestLanguage_data()
{
    QTest::addColumn<QStringList>("wanted");
    QTest::addColumn<QString>("best");
    const QString english = QStringLiteral("en");
    const QString chinese = QStringLiteral("zh_CN");
    QTest::newRow("none") << QStringList() << english;
    QTest::newRow("Chinese of China") << QStringList{QStringLiteral("zh-CN")} << chinese;
    QTest::newRow("Chinese, simplified") << QStringList{QStringLiteral("zh-Hans-SG")} << chinese;
    QTest::newRow("Chinese, traditional") << QStringList{QStringLiteral("zh-TW")} << english;
    QTest::newRow("English before Chinese")
        << QStringList{QStringLiteral("en-GB"), QStringLiteral("zh-CN")} << english;
    QTest::newRow("another before Chinese")
        << QStringList{QStringLiteral("de-DE"), QStringLiteral("zh-CN")} << chinese;
}

void tst_MainWindow::bestLanguage()
{
    QFETCH(QStringList, wanted);
    QTEST(Language::bestOf(wanted), "best");
}

QTEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
