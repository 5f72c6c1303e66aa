// SPDX-License-Identifier: MIT
#include "devicefixture.h"
#include "runroot.h"

#include <QtTest>

// Which device install and uninstall take where nobody is asked.
class tst_DeviceChoice : public DeviceFixture {
    Q_OBJECT

private Q_SLOTS:
    void severalDevicesInAPipeAreListed();
    void namedDeviceIsTaken();
    void serialIsHandedOverAsOneWord_data();
    void serialIsHandedOverAsOneWord();
    void serialWithAQuotationMarkIsRefused();
    void otherDeviceThanTheOnlyOneIsRefused();
    void serialOfTheEnvironmentIsTheDefault();
    void onlyDeviceIsFixedForAdb();
};

void tst_DeviceChoice::severalDevicesInAPipeAreListed()
{
    ScriptedTools::attach({QStringLiteral("a"), QStringLiteral("b c")});
    for (const char* command : {"install", "uninstall"}) {
        const Ended run = confirmed({QLatin1String(command), m_apk});
        QCOMPARE(run.code, 1);
        QCOMPARE(
            run.error,
            QByteArray("quenzo: several devices are ready (choose one by -s SERIAL)\n  1  a\n  2  b c\n"));
    }
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("install")), QStringList());
}

void tst_DeviceChoice::namedDeviceIsTaken()
{
    const QString serial = QStringLiteral("10.0.0.1:5555");
    ScriptedTools::attach({QStringLiteral("a"), serial});
    const Ended run = confirmed({QStringLiteral("install"), m_apk, QStringLiteral("--device"), serial});
    QCOMPARE(run.code, 0);
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("install")),
             QStringList({QStringLiteral("adb <-s><10.0.0.1:5555><uninstall><org.example.game>"),
                          QStringLiteral("adb <-s><10.0.0.1:5555><install><-r><%1>").arg(m_apk)}));
}

void tst_DeviceChoice::serialIsHandedOverAsOneWord_data()
{
    QTest::addColumn<QString>("serial");
    QTest::newRow("blanks") << QStringLiteral("my (2) phone");
    QTest::newRow("no-break blank") << QStringLiteral("my\u00a0phone");
    QTest::newRow("vertical blank") << QStringLiteral("my\vphone");
    QTest::newRow("line separator") << QStringLiteral("my\u2028phone");
    QTest::newRow("leading dash") << QStringLiteral("-k");
    QTest::newRow("shell's own characters") << QStringLiteral("a;$(b)`c`'d'&*");
}

void tst_DeviceChoice::serialIsHandedOverAsOneWord()
{
    QFETCH(const QString, serial);
    ScriptedTools::attach({QStringLiteral("a"), serial});
    const Ended run = confirmed({QStringLiteral("uninstall"), m_apk, QStringLiteral("--device=") + serial});
    QVERIFY2(run.code == 0, run.error.constData());
    QCOMPARE(ScriptedTools::calls().last(),
             QStringLiteral("adb <-s><%1><uninstall><org.example.game>").arg(serial));
}

void tst_DeviceChoice::serialWithAQuotationMarkIsRefused()
{
    const QString serial = QStringLiteral("my\" \"phone");
    ScriptedTools::attach({QStringLiteral("a"), serial});
    for (const char* command : {"install", "uninstall"}) {
        const Ended run = confirmed({QLatin1String(command), m_apk, QStringLiteral("--device"), serial});
        QCOMPARE(run.code, 1);
        QVERIFY2(run.error.startsWith("quenzo: my\" \"phone: a serial with"), run.error.constData());
    }
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("install")), QStringList());
}

void tst_DeviceChoice::otherDeviceThanTheOnlyOneIsRefused()
{
    ScriptedTools::attach({QStringLiteral("a")});
    const Ended run =
        confirmed({QStringLiteral("install"), m_apk, QStringLiteral("--device"), QStringLiteral("b")});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.error, QByteArray("quenzo: the device b is not ready. Ready:\n  1  a\n"));
    ScriptedTools::attach({});
    QCOMPARE(confirmed({QStringLiteral("install"), m_apk}).error,
             QByteArray("quenzo: no device is ready (connect one, unlock it and allow debugging)\n"));
    QCOMPARE(ScriptedTools::calls().filter(QStringLiteral("install")), QStringList());
}

void tst_DeviceChoice::serialOfTheEnvironmentIsTheDefault()
{
    ScriptedTools::attach({QStringLiteral("a"), QStringLiteral("b")});
    qputenv("ANDROID_SERIAL", "b");
    const int code = confirmed({QStringLiteral("uninstall"), m_apk}).code;
    qunsetenv("ANDROID_SERIAL");
    QCOMPARE(code, 0);
    QCOMPARE(ScriptedTools::calls().last(), QStringLiteral("adb <-s><b><uninstall><org.example.game>"));
}

void tst_DeviceChoice::onlyDeviceIsFixedForAdb()
{
    ScriptedTools::attach({QStringLiteral("a b")});
    ScriptedTools::answer(QStringLiteral("uninstall"),
                          R"(echo "$ANDROID_SERIAL" >"$dir/serial"; echo Success)");
    QCOMPARE(confirmed({QStringLiteral("uninstall"), m_apk}).code, 0);
    QFile serial(RunRoot::path() + QStringLiteral("/tool/mac/serial"));
    QVERIFY(serial.open(QIODevice::ReadOnly));
    QCOMPARE(serial.readAll(), QByteArray("a b\n"));
    QCOMPARE(ScriptedTools::calls().last(), QStringLiteral("adb <uninstall><org.example.game>"));
}

QTEST_GUILESS_MAIN(tst_DeviceChoice)
#include "tst_devicechoice.moc"
