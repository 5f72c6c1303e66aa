// SPDX-License-Identifier: MIT
#include "adbfixture.h"
#include "tickwatch.h"
#include "window/mainwindow.h"

#include <QAbstractButton>
#include <QCryptographicHash>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTableView>

// The page with the system's adb and emulated devices.
class tst_DevicesAdb : public AdbFixture {
    Q_OBJECT

private Q_SLOTS:
    void apkReachesTheDevice_data();
    void apkReachesTheDevice();

private:
    QTemporaryDir m_settings;
};

void tst_DevicesAdb::apkReachesTheDevice_data()
{
    QTest::addColumn<DeviceEmulator::Kind>("kind");
    QTest::newRow("streamed") << DeviceEmulator::Streaming;
    QTest::newRow("pushed") << DeviceEmulator::Pushing;
}

void tst_DevicesAdb::apkReachesTheDevice()
{
    QFETCH(const DeviceEmulator::Kind, kind);
    QCoreApplication::setOrganizationName(QStringLiteral("quenzo"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    QSettings().setValue(QStringLiteral("language"), QStringLiteral("en"));
    useTool(true);
    DeviceEmulator device(kind);
    QVERIFY(m_adb->connectTo(device));
    DeviceEmulator stranger(DeviceEmulator::Unauthorized);
    QVERIFY(m_adb->connectTo(stranger, QStringLiteral("unauthorized")));

    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto* const pages = window.findChild<QListWidget*>(QStringLiteral("pages"));
    const auto page = pages->findItems(QStringLiteral("Devices"), Qt::MatchExactly);
    QTest::mouseClick(pages->viewport(), Qt::LeftButton, {},
                      pages->visualItemRect(page.constFirst()).center());
    QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("refreshDevices")), Qt::LeftButton);
    const auto* const table = window.findChild<QTableView*>(QStringLiteral("devices"));
    TRY_COMPARE(table->model()->rowCount(), 2);
    const TickWatch watch;
    QTest::keyClicks(window.findChild<QLineEdit*>(QStringLiteral("apk")), m_apk);
    QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("install")), Qt::LeftButton);
    TRY_VERIFY(window.findChild<QMessageBox*>());
    const auto* const question = window.findChild<QMessageBox*>();
    QVERIFY2(question->text().contains(package) && question->text().contains(device.serial()),
             qPrintable(question->text()));
    for (QAbstractButton* const button : question->buttons()) {
        if (question->buttonRole(button) == QMessageBox::DestructiveRole) {
            QTest::mouseClick(button, Qt::LeftButton);
            break;
        }
    }
    TRY_COMPARE(window.findChild<QLabel*>(QStringLiteral("deviceMessage"))->text(),
                device.serial() + QStringLiteral(": Installation is complete!"));
    qInfo("%s", watch.figures().constData());
    QVERIFY2(watch.isWithin(), watch.figures());
    QFile apk(m_apk);
    QVERIFY(apk.open(QIODevice::ReadOnly));
    QCOMPARE(device.receivedHash(), QCryptographicHash::hash(apk.readAll(), QCryptographicHash::Sha1));
    // Of the platform without a screen, and of one without a window manager.
    for (const QString& warning : m_log->takeWarnings())
        QVERIFY2(warning.contains(QStringLiteral("propagateSizeHints"))
                     || warning.contains(QStringLiteral("(SetInputFocus)")),
                 qPrintable(warning));
}

QTEST_MAIN(tst_DevicesAdb)
#include "tst_devicesadb.moc"
