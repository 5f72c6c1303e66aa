// SPDX-License-Identifier: MIT
#include "buildscene.h"
#include "devicefixture.h"

#include <QtTest>

// A channel's package that goes to a device behind the run.
class tst_BuildInstall : public DeviceFixture {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void builtPackageIsInstalled();
    void refusedPackageStaysBuilt();
    void otherChannelsFailureIsNoReason();
    void failedChannelIsNotInstalled();
    void channelThatIsNotChosenIsNotInstalled();

private:
    Ended install(const QString& channel, const QByteArray& words = {}) const;
    static QStringList installs() { return ScriptedTools::calls().filter(QStringLiteral("<install>")); }
    QString package(const QString& channel) const
    {
        return m_scene->path(QStringLiteral("output/%1/%1.apk").arg(channel));
    }
    std::unique_ptr<BuildScene> m_scene;
};

void tst_BuildInstall::init()
{
    DeviceFixture::init();
    ScriptedTools::attach({QStringLiteral("a")});
    for (const char* const question : {"d", "dump"}) // these packages are real
        ScriptedTools::answer(QLatin1String(question), "exec aapt \"$@\"");
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
    // Without what scripts would do: this copy of the program has none.
    for (const char* const key : {"icons", "sdks"})
        m_scene->job.remove(QLatin1String(key));
    m_scene->job.insert(QStringLiteral("channels"),
                        QJsonArray{QJsonObject{{QStringLiteral("folder"), QStringLiteral("plain")}},
                                   QJsonObject{{QStringLiteral("folder"), QStringLiteral("own")},
                                               {QStringLiteral("files"), QStringLiteral("own")}}});
}

Ended tst_BuildInstall::install(const QString& channel, const QByteArray& words) const
{
    const auto process = m_scene->process(words + " --yes --install " + channel.toUtf8());
    prepare(*process);
    return process->end();
}

void tst_BuildInstall::builtPackageIsInstalled()
{
    const Ended ended = install(QStringLiteral("own"));
    QVERIFY2(ended.code == 0, ended.error.constData());
    QVERIFY2(ended.output.endsWith("Installation is complete!\n"), ended.output.constData());
    QCOMPARE(installs().size(), 1);
    QVERIFY2(installs().first().contains(package(QStringLiteral("own"))), qPrintable(installs().first()));
}

void tst_BuildInstall::refusedPackageStaysBuilt()
{
    ScriptedTools::answer(QStringLiteral("install"), "echo P; echo 'Failure [INSTALL_FAILED_OLDER_SDK]'");
    const Ended ended = install(QStringLiteral("own"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("INSTALL_FAILED_OLDER_SDK"), ended.error.constData());
    QVERIFY(QFileInfo::exists(package(QStringLiteral("own"))));
    QVERIFY(QFileInfo::exists(package(QStringLiteral("plain"))));
}

void tst_BuildInstall::otherChannelsFailureIsNoReason()
{
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}"));
    const Ended ended = install(QStringLiteral("plain"));
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("channel 'own' failed: "), ended.error.constData());
    QCOMPARE(installs().size(), 1);
    QVERIFY2(installs().first().contains(package(QStringLiteral("plain"))), qPrintable(installs().first()));
}

void tst_BuildInstall::failedChannelIsNotInstalled()
{
    QCOMPARE(install(QStringLiteral("own")).code, 0);
    ScriptedTools::forgetCalls();
    QVERIFY(m_scene->write(QStringLiteral("own/assets/channel.json"), "{}"));
    QCOMPARE(install(QStringLiteral("own")).code, 1);
    QCOMPARE(installs(), QStringList());
}

// What lies there is of an earlier run.
void tst_BuildInstall::channelThatIsNotChosenIsNotInstalled()
{
    QCOMPARE(install(QStringLiteral("own")).code, 0);
    ScriptedTools::forgetCalls();
    const Ended ended = install(QStringLiteral("own"), "--only plain");
    QCOMPARE(ended.code, 2);
    QVERIFY2(ended.error.contains("--install: there is no channel 'own' to be built"),
             ended.error.constData());
    QCOMPARE(installs(), QStringList());
}

QTEST_GUILESS_MAIN(tst_BuildInstall)
#include "tst_buildinstall.moc"
