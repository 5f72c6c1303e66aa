// SPDX-License-Identifier: MIT
#include "messagelog.h"
#include "runroot.h"
#include "scriptedtools.h"
#include "window/channels/jobdocument.h"
#include "window/devices/devicelist.h"
#include "window/devices/devicespage.h"
#include "window/mainwindow.h"

#include <QtTest>

#include <QAbstractButton>
#include <QComboBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QTableView>

Q_DECLARE_METATYPE(Device)

// Generous: other work may load the machine.
#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 60000)
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, 60000)

// The page with scripted programs in the tool folder.
class tst_DevicesPage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void listIsRead_data();
    void listIsRead();
    void statesAreToldInWords();
    void listIsReadOnRequestAlone();
    void emptyListSaysWhatToDo();
    void failureOfAdbSaysWhatToDo_data();
    void failureOfAdbSaysWhatToDo();
    void keyRefreshesTheList();
    void installAsksAndTellsItsEnd();
    void escapeChangesNothing();
    void refusalIsExplained();
    void uninstallNamesWhatGoes();
    void severalDevicesAskWhichOne();
    void selectedDeviceIsNotAskedFor();
    void deviceThatIsNotReadySaysWhatToDo();
    void unusableApkSaysWhatToDo_data();
    void unusableApkSaysWhatToDo();
    void droppedApkIsTaken();
    void packageOfTheOpenJobIsTaken();
    void windowAnswersWhileToolsWait();

private:
    template <typename T> T* part(const char* name) const
    {
        return m_window->findChild<T*>(QLatin1String(name));
    }
    void openPage(bool refreshes = true);
    QString cell(int row, int column) const;
    void typeApk(const QString& path) const;
    void click(const char* button) const;
    QMessageBox* question() const;
    void answer(const QString& button) const;
    QString message() const { return part<QLabel>("deviceMessage")->text(); }
    static QStringList changes();

    QTemporaryDir m_settings;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
    QString m_apk;
};

void tst_DevicesPage::initTestCase()
{
    QVERIFY(m_settings.isValid());
    QCoreApplication::setOrganizationName(QStringLiteral("quenzo"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    QSettings().setValue(QStringLiteral("language"), QStringLiteral("en"));
}

void tst_DevicesPage::init()
{
    ScriptedTools::write();
    m_folder = std::make_unique<QTemporaryDir>();
    m_apk = m_folder->filePath(QStringLiteral("my game.apk"));
    QVERIFY(QFile(m_apk).open(QIODevice::WriteOnly));
}

void tst_DevicesPage::cleanup()
{
    m_window.reset();
}

void tst_DevicesPage::openPage(bool refreshes)
{
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    m_window->activateWindow(); // which keys need; on a screen without a window manager nobody else does it
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    auto* const pages = part<QListWidget>("pages");
    const QList<QListWidgetItem*> found = pages->findItems(QStringLiteral("Devices"), Qt::MatchExactly);
    QCOMPARE(found.size(), 1);
    QTest::mouseClick(pages->viewport(), Qt::LeftButton, {},
                      pages->visualItemRect(found.constFirst()).center());
    TRY_VERIFY(part<QPushButton>("refreshDevices")->isVisible());
    if (!refreshes)
        return;
    click("refreshDevices");
    TRY_VERIFY(part<QPushButton>("refreshDevices")->isEnabled()); // the list has been read
}

QString tst_DevicesPage::cell(int row, int column) const
{
    const QAbstractItemModel* const model = part<QTableView>("devices")->model();
    return model->index(row, column).data().toString();
}

void tst_DevicesPage::typeApk(const QString& path) const
{
    part<QLineEdit>("apk")->setFocus();
    QTest::keyClick(part<QLineEdit>("apk"), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(part<QLineEdit>("apk"), path);
}

void tst_DevicesPage::click(const char* button) const
{
    QTest::mouseClick(part<QPushButton>(button), Qt::LeftButton);
}

QMessageBox* tst_DevicesPage::question() const
{
    return part<QMessageBox>("deviceQuestion");
}

void tst_DevicesPage::answer(const QString& button) const
{
    for (QAbstractButton* const one : question()->buttons()) {
        if (one->text().remove(QLatin1Char('&')) == button) {
            QTest::mouseClick(one, Qt::LeftButton);
            return;
        }
    }
    QFAIL(qPrintable(QStringLiteral("the question has no button ") + button));
}

// What was done to devices.
QStringList tst_DevicesPage::changes()
{
    return ScriptedTools::calls().filter(QStringLiteral("install"));
}

void tst_DevicesPage::listIsRead_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QVector<Device>>("devices");
    const QString heading = QStringLiteral("List of devices attached\n");
    QTest::newRow("none") << heading + QLatin1Char('\n') << QVector<Device>();
    QTest::newRow("no list") << QStringLiteral("a\tdevice\n") << QVector<Device>();
    QTest::newRow("every state") << heading + QStringLiteral("a\tdevice\nb c\tunauthorized\r\n\n")
                                 << QVector<Device>{{QStringLiteral("a"), QStringLiteral("device")},
                                                    {QStringLiteral("b c"), QStringLiteral("unauthorized")}};
    QTest::newRow("server that starts")
        << QStringLiteral("* daemon not running; starting\tnow\n") + heading + QStringLiteral("a\toffline\n")
        << QVector<Device>{{QStringLiteral("a"), QStringLiteral("offline")}};
    QTest::newRow("no serial") << heading + QStringLiteral("\tdevice\n") << QVector<Device>();
}

void tst_DevicesPage::listIsRead()
{
    QFETCH(const QString, output);
    QTEST(DeviceList::parse(output), "devices");
}

void tst_DevicesPage::statesAreToldInWords()
{
    ScriptedTools::attach(
        {QStringLiteral("a"), QStringLiteral("b\tunauthorized"), QStringLiteral("c\toffline"),
         QStringLiteral("d\tno permissions (user in plugdev group); see [http://x/device.html]"),
         QStringLiteral("e\tnever heard")});
    openPage();
    QTRY_COMPARE(part<QTableView>("devices")->model()->rowCount(), 5);
    QVERIFY(part<QTableView>("devices")->isVisible());
    const QVector<QStringList> expected{
        {QStringLiteral("a"), QStringLiteral("ready"), QString()},
        {QStringLiteral("b"), QStringLiteral("not authorized"),
         QStringLiteral("Unlock it, and allow debugging by this computer.")},
        {QStringLiteral("c"), QStringLiteral("does not answer"),
         QStringLiteral("Unplug it and plug it in again; if that does not help, restart it.")},
        {QStringLiteral("d"), QStringLiteral("not accessible to you"),
         QStringLiteral("Have yourself added to the group plugdev, log in anew, and plug it in again.")},
        {QStringLiteral("e"), QStringLiteral("never heard"),
         QStringLiteral("Restart the device and refresh the list.")}};
    for (int row = 0; row < expected.size(); ++row)
        QCOMPARE((QStringList{cell(row, 0), cell(row, 1), cell(row, 2)}), expected.at(row));
}

// The first question starts a server, which goes on when the window has closed.
void tst_DevicesPage::listIsReadOnRequestAlone()
{
    ScriptedTools::attach({QStringLiteral("a")});
    openPage(false);
    QVERIFY2(part<QLabel>("noDevices")->text().startsWith(QStringLiteral("Refresh the list to see")),
             qPrintable(part<QLabel>("noDevices")->text()));
    typeApk(m_apk);
    click("install");
    QCOMPARE(message(), QStringLiteral("Refresh the list of devices first."));
    QCOMPARE(ScriptedTools::calls(), QStringList());
    click("refreshDevices");
    TRY_COMPARE(cell(0, 0), QStringLiteral("a"));
}

void tst_DevicesPage::emptyListSaysWhatToDo()
{
    openPage();
    QVERIFY(part<QLabel>("noDevices")->isVisible());
    QVERIFY2(
        part<QLabel>("noDevices")->text().startsWith(QStringLiteral("No device is attached. Connect one")),
        qPrintable(part<QLabel>("noDevices")->text()));
    typeApk(m_apk);
    click("install");
    QVERIFY2(message().startsWith(QStringLiteral("No device is ready.")), qPrintable(message()));
}

void tst_DevicesPage::failureOfAdbSaysWhatToDo_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("text");
    QTest::newRow("failure") << QByteArray("echo 'cannot bind' >&2; exit 1")
                             << QStringLiteral("adb cannot list the devices. cannot bind");
    QTest::newRow("crash") << QByteArray("kill -9 $$")
                           << QStringLiteral(
                                  "adb cannot list the devices. Unplug the devices and refresh the list.");
}

void tst_DevicesPage::failureOfAdbSaysWhatToDo()
{
    QFETCH(const QByteArray, script);
    QFETCH(const QString, text);
    ScriptedTools::answer(QStringLiteral("devices"), script);
    openPage();
    QTRY_COMPARE(part<QLabel>("noDevices")->text(), text);
    QVERIFY(QFile::remove(RunRoot::path() + QStringLiteral("/tool/mac/adb")));
    click("refreshDevices");
    TRY_VERIFY(
        part<QLabel>("noDevices")->text().startsWith(QStringLiteral("The program adb cannot be started.")));
}

void tst_DevicesPage::keyRefreshesTheList()
{
    openPage();
    ScriptedTools::attach({QStringLiteral("a")});
    QTest::keyClick(m_window.get(), Qt::Key_F5);
    TRY_COMPARE(cell(0, 0), QStringLiteral("a"));
}

void tst_DevicesPage::installAsksAndTellsItsEnd()
{
    ScriptedTools::attach({QStringLiteral("b c")});
    openPage();
    typeApk(m_apk);
    click("install");
    TRY_VERIFY(question());
    QCOMPARE(question()->text(),
             QStringLiteral("Remove org.example.game and its data from b c before the install?"));
    QCOMPARE(changes(), QStringList());
    answer(QStringLiteral("Remove and install"));
    TRY_COMPARE(message(), QStringLiteral("b c: Installation is complete!"));
    QCOMPARE(changes(),
             QStringList({QStringLiteral("adb <uninstall><org.example.game>"),
                          QStringLiteral("adb <install><-r><%1>").arg(m_apk)}));
    TRY_VERIFY(part<QPushButton>("install")->isEnabled());
}

void tst_DevicesPage::escapeChangesNothing()
{
    ScriptedTools::attach({QStringLiteral("a")});
    openPage();
    typeApk(m_apk);
    QTest::keyClick(part<QLineEdit>("apk"), Qt::Key_Return);
    TRY_VERIFY(question());
    QTest::keyClick(question(), Qt::Key_Escape);
    TRY_VERIFY(!question());
    QVERIFY(part<QPushButton>("install")->isEnabled());
    QCOMPARE(changes(), QStringList());
}

void tst_DevicesPage::refusalIsExplained()
{
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(QStringLiteral("install"),
                          "echo Performing; echo 'Failure [INSTALL_FAILED_OLDER_SDK]'");
    openPage();
    typeApk(m_apk);
    click("install");
    TRY_VERIFY(question());
    answer(QStringLiteral("Remove and install"));
    TRY_COMPARE(message(),
                QStringLiteral("a: Installation failed! The device's Android is older than the APK demands. "
                               "(INSTALL_FAILED_OLDER_SDK)"));
}

void tst_DevicesPage::uninstallNamesWhatGoes()
{
    ScriptedTools::attach({QStringLiteral("a")});
    openPage();
    typeApk(m_apk);
    click("uninstall");
    TRY_VERIFY(question());
    QCOMPARE(question()->text(), QStringLiteral("Remove org.example.game and its data from a?"));
    answer(QStringLiteral("Remove"));
    TRY_COMPARE(message(), QStringLiteral("a: Uninstall successful!"));
    QCOMPARE(changes(), QStringList(QStringLiteral("adb <uninstall><org.example.game>")));
}

void tst_DevicesPage::severalDevicesAskWhichOne()
{
    ScriptedTools::attach({QStringLiteral("a"), QStringLiteral("off\toffline"), QStringLiteral("b c")});
    openPage();
    typeApk(m_apk);
    click("uninstall");
    TRY_VERIFY(part<QInputDialog>("chooseDevice"));
    auto* const choice = part<QInputDialog>("chooseDevice");
    QCOMPARE(choice->comboBoxItems(), QStringList({QStringLiteral("a"), QStringLiteral("b c")}));
    QTest::keyClick(choice->focusWidget(), Qt::Key_Down);
    QTest::keyClick(choice, Qt::Key_Return);
    TRY_VERIFY(question());
    QCOMPARE(question()->text(), QStringLiteral("Remove org.example.game and its data from b c?"));
    answer(QStringLiteral("Remove"));
    TRY_COMPARE(message(), QStringLiteral("b c: Uninstall successful!"));
    QCOMPARE(changes(), QStringList(QStringLiteral("adb <-s><b c><uninstall><org.example.game>")));
}

void tst_DevicesPage::selectedDeviceIsNotAskedFor()
{
    ScriptedTools::attach({QStringLiteral("a"), QStringLiteral("b")});
    openPage();
    auto* const table = part<QTableView>("devices");
    const QRect row = table->visualRect(table->model()->index(1, 0));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, row.center());
    typeApk(m_apk);
    click("uninstall");
    TRY_VERIFY(question());
    QCOMPARE(question()->text(), QStringLiteral("Remove org.example.game and its data from b?"));
}

void tst_DevicesPage::deviceThatIsNotReadySaysWhatToDo()
{
    ScriptedTools::attach({QStringLiteral("b\tunauthorized")});
    openPage();
    typeApk(m_apk);
    click("install");
    QCOMPARE(message(), QStringLiteral("b is not ready. Unlock it, and allow debugging by this computer."));
    QCOMPARE(changes(), QStringList());
}

void tst_DevicesPage::unusableApkSaysWhatToDo_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("badging");
    QTest::addColumn<QString>("text");
    const QString game = QStringLiteral("my game.apk");
    QTest::newRow("none") << QString() << QByteArray(":") << QStringLiteral("Choose an APK first.");
    QTest::newRow("no file") << QStringLiteral("none.apk") << QByteArray(":")
                             << QStringLiteral("There is no file ");
    QTest::newRow("quotation mark") << QStringLiteral("a\"b.apk") << QByteArray(":")
                                    << QStringLiteral("A path with a quotation mark");
    QTest::newRow("no APK") << game << QByteArray("exit 1") << QStringLiteral("No package name is found in ");
    QTest::newRow("two words") << game << QByteArray("printf \"package: name='a.b c.d'\"")
                               << QStringLiteral("\"a.b c.d\" cannot be the name of a package.");
}

void tst_DevicesPage::unusableApkSaysWhatToDo()
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, badging);
    QFETCH(const QString, text);
    if (name.contains(QLatin1Char('"')))
        QVERIFY(QFile(m_folder->filePath(name)).open(QIODevice::WriteOnly));
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(QStringLiteral("d"), badging);
    openPage();
    if (!name.isEmpty())
        typeApk(m_folder->filePath(name));
    click("install");
    TRY_VERIFY(message().startsWith(text));
    QVERIFY(!question());
    QCOMPARE(changes(), QStringList());
}

void tst_DevicesPage::droppedApkIsTaken()
{
    openPage();
    QWidget* const page = part<QPushButton>("install")->parentWidget();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(m_apk)});
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QVERIFY(QCoreApplication::sendEvent(page, &enter));
    QVERIFY(enter.isAccepted());
    QDropEvent drop({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(page, &drop);
    QCOMPARE(part<QLineEdit>("apk")->text(), m_apk);
}

void tst_DevicesPage::packageOfTheOpenJobIsTaken()
{
    QFile job(m_folder->filePath(QStringLiteral("job.json")));
    QVERIFY(job.open(QIODevice::WriteOnly));
    job.write(
        R"({"game": "G", "base": "game.apk", "channels": [{"folder": "a"}, {"folder": "b", "name": "Bee"}]})");
    job.close();
    JobDocument document;
    DevicesPage page(document);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    auto* const choice = page.findChild<QComboBox*>(QStringLiteral("jobPackage"));
    QVERIFY(!choice->isEnabled());
    QString fault;
    QVERIFY2(document.open(job.fileName(), fault), qPrintable(fault));
    QVERIFY(choice->isEnabled());
    choice->setFocus();
    QTest::keyClick(choice, Qt::Key_Down);
    QTest::keyClick(choice, Qt::Key_Down);
    QCOMPARE(choice->currentText(), QStringLiteral("Bee"));
    const QString package = m_folder->filePath(QStringLiteral("output/b/b.apk"));
    QCOMPARE(page.findChild<QLineEdit*>(QStringLiteral("apk"))->text(), package);
    QTest::mouseClick(page.findChild<QPushButton*>(QStringLiteral("install")), Qt::LeftButton);
    QCOMPARE(page.findChild<QLabel*>(QStringLiteral("deviceMessage"))->text(),
             QStringLiteral("There is no file %1. Build its channel, or choose another APK.").arg(package));
}

void tst_DevicesPage::windowAnswersWhileToolsWait()
{
    ScriptedTools::attach({QStringLiteral("a")});
    ScriptedTools::answer(
        QStringLiteral("d"),
        "read line <\"$dir/gate\"; echo \"package: name='org.example.game' versionCode='1'\"");
    ScriptedTools::answer(QStringLiteral("uninstall"), "read line <\"$dir/gate\"; echo Success");
    openPage();
    typeApk(m_apk);
    click("install");
    QVERIFY(!part<QPushButton>("install")->isEnabled());
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&ticks] { ++ticks; });
    timer.start(1);
    TRY_VERIFY(ticks > 20);
    QVERIFY(!question()); // the name has still to be read
    ScriptedTools::openGate();
    TRY_VERIFY(question());
    // The flow reads the name once more.
    ScriptedTools::answer(QStringLiteral("d"), "echo \"package: name='org.example.game' versionCode='1'\"");
    answer(QStringLiteral("Remove and install"));
    ticks = 0;
    TRY_VERIFY(ticks > 20);
    QCOMPARE(message(), QStringLiteral("An APK is being installed on a."));
    ScriptedTools::openGate();
    TRY_COMPARE(message(), QStringLiteral("a: Installation is complete!"));
}

QTEST_MAIN(tst_DevicesPage)
#include "tst_devicespage.moc"
