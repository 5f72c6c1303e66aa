// SPDX-License-Identifier: MIT
#include "devicefixture.h"

#include "terminal.h"

#include <QtTest>

void DeviceFixture::initTestCase()
{
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/quenzo");
    QFile::remove(program);
    QVERIFY(QFile::copy(QStringLiteral(QUENZO_PROGRAM), program));
    qunsetenv("ANDROID_SERIAL");
}

void DeviceFixture::init()
{
    ScriptedTools::write();
    m_folder = std::make_unique<QTemporaryDir>();
    m_apk = m_folder->filePath(QStringLiteral("my game.apk"));
    QVERIFY(QFile(m_apk).open(QIODevice::WriteOnly));
}

void DeviceFixture::prepare(QuenzoProcess& process)
{
    process.setProgram(QCoreApplication::applicationDirPath() + QStringLiteral("/quenzo"));
}

Ended DeviceFixture::quenzo(const QStringList& arguments)
{
    QuenzoProcess process(arguments);
    prepare(process);
    return process.end();
}

Ended DeviceFixture::confirmed(const QStringList& arguments)
{
    return quenzo(arguments + QStringList{QStringLiteral("--yes")});
}

void DeviceFixture::start(QuenzoProcess& process, const Terminal& terminal)
{
    prepare(process);
    process.setStandardInputFile(terminal.path());
    process.setStandardErrorFile(terminal.path());
    process.start();
    QVERIFY(process.waitForStarted(timeLimitMs));
}
