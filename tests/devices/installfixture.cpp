// SPDX-License-Identifier: MIT
#include "installfixture.h"

#include <QElapsedTimer>

void InstallFixture::init()
{
    m_log = std::make_unique<MessageLog>();
    ScriptedTools::write();
    m_folder = std::make_unique<QTemporaryDir>();
    m_apk = m_folder->filePath(QStringLiteral("game.apk"));
    QVERIFY(QFile(m_apk).open(QIODevice::WriteOnly));
}

void InstallFixture::cleanup()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const QStringList warnings = m_log->takeWarnings();
    m_log.reset();
    QCOMPARE(warnings, QStringList());
}

QVariantList InstallFixture::report(bool success, const char* information, const char* key)
{
    return {success, QString::fromUtf8(information), QString::fromUtf8(key)};
}

QStringList InstallFixture::installCalls(const QString& path, const QString& serial)
{
    return {QStringLiteral("adb <devices>"), QStringLiteral("aapt <d><badging><%1>").arg(path),
            QStringLiteral("adb %1<uninstall><org.example.game>").arg(serial),
            QStringLiteral("adb %1<install><-r><%2>").arg(serial, path)};
}

void InstallFixture::makeIdle(Flow& flow, const QSignalSpy& results)
{
    ScriptedTools::answer(QStringLiteral("uninstall"), "echo Success");
    const int before = results.count();
    const auto served = [&] {
        flow.UnInstall({});
        return QTest::qWaitFor([&] { return results.count() > before; }, 100);
    };
    QElapsedTimer timer;
    timer.start();
    while (!served())
        QVERIFY2(timer.elapsed() < 30000, "no task is served any more");
    QCOMPARE(results.count(), before + 1);
    QCOMPARE(results.last(), report(true, "Uninstall successful!"));
}
