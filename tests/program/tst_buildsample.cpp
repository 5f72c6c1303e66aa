// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

// The six channels of the sample, as "quenzo init" writes them, before programs that share no code with us.
class tst_BuildSample : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyPackageIsSound_data();
    void everyPackageIsSound();
    void everySignedPackageIsSound();

private:
    Ended quenzo(const QByteArray& words) const;
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString judge(const QString& program, const QStringList& words) const;
    bool sign() const;

    QTemporaryDir m_folder;
};

namespace {

const QStringList channels{QStringLiteral("harbor"),   QStringLiteral("meadow"), QStringLiteral("nimbus"),
                           QStringLiteral("official"), QStringLiteral("quartz"), QStringLiteral("tideway")};
const QStringList unzip{QStringLiteral("-tq")};
const QStringList zipalign{QStringLiteral("-c"), QStringLiteral("-p"), QStringLiteral("4")};
const QStringList aapt{QStringLiteral("dump"), QStringLiteral("badging")};

bool isMissing(const QString& program)
{
    return QStandardPaths::findExecutable(program).isEmpty();
}

} // namespace

Ended tst_BuildSample::quenzo(const QByteArray& words) const
{
    QuenzoProcess process(QuenzoProcess::words(words.constData()), m_folder.path());
    process.setVariable("XDG_DATA_HOME", path(QStringLiteral("data")));
    for (const char* name : {"QUENZO_KEY", "SLURM_ARRAY_TASK_ID", "JOB_COMPLETION_INDEX", "CI_NODE_INDEX"})
        process.setVariable(name, {});
    return process.end();
}

void tst_BuildSample::initTestCase()
{
    const Ended begun = quenzo("init job");
    QVERIFY2(begun.code == 0, begun.error.constData());
    const Ended built = quenzo("build job/job.json --json");
    QVERIFY2(built.code == 0, built.error.constData());
    QStringList folders;
    const QJsonObject report = built.result().value(QStringLiteral("report")).toObject();
    for (const QJsonValue& channel : report.value(QStringLiteral("channels")).toArray())
        folders.append(channel.toObject().value(QStringLiteral("folder")).toString());
    folders.sort();
    QCOMPARE(folders, channels);
}

// What a program has against the package of any channel.
QString tst_BuildSample::judge(const QString& program, const QStringList& words) const
{
    QString objections;
    for (const QString& channel : channels) {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program,
                      words + QStringList(path(QStringLiteral("job/output/%1/%1.apk").arg(channel))));
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit
            || process.exitCode() != 0)
            objections +=
                QStringLiteral("%1, %2: %3\n").arg(program, channel, QString::fromUtf8(process.readAll()));
    }
    return objections;
}

void tst_BuildSample::everyPackageIsSound_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::newRow("unzip") << unzip;
    QTest::newRow("zipalign") << zipalign;
    QTest::newRow("aapt") << aapt;
}

void tst_BuildSample::everyPackageIsSound()
{
    const QString program = QString::fromLatin1(QTest::currentDataTag());
    if (isMissing(program))
        QSKIP(qPrintable(program + QStringLiteral(" is not installed (group android)")));
    QFETCH(const QStringList, words);
    QCOMPARE(judge(program, words), QString());
}

// Has the job name a new key.
bool tst_BuildSample::sign() const
{
    QProcess keytool;
    keytool.setWorkingDirectory(path(QStringLiteral("job")));
    keytool.start(QStringLiteral("keytool"),
                  QStringLiteral("-genkeypair -keystore release.p12 -storetype PKCS12 -storepass secret1 "
                                 "-alias release -keyalg RSA -keysize 2048 -validity 10000 -dname CN=Test")
                      .split(QLatin1Char(' ')));
    QFile password(path(QStringLiteral("job/password")));
    QFile file(path(QStringLiteral("job/job.json")));
    if (!keytool.waitForFinished(60000) || keytool.exitCode() != 0 || !password.open(QIODevice::WriteOnly)
        || password.write("secret1\n") < 0 || !file.open(QIODevice::ReadWrite))
        return false;
    QJsonObject job = QJsonDocument::fromJson(file.readAll()).object();
    job.insert(QStringLiteral("signing"),
               QJsonObject{{QStringLiteral("keystore"), QStringLiteral("release.p12")},
                           {QStringLiteral("password"),
                            QJsonObject{{QStringLiteral("file"), QStringLiteral("password")}}}});
    return file.resize(0) && file.seek(0) && file.write(QJsonDocument(job).toJson()) > 0;
}

void tst_BuildSample::everySignedPackageIsSound()
{
    for (const char* const program : {"apksigner", "keytool", "zipalign"}) {
        if (isMissing(QLatin1String(program)))
            QSKIP(qPrintable(QLatin1String(program) + QStringLiteral(" is not installed (group android)")));
    }
    QVERIFY(sign());
    const Ended built = quenzo("build job/job.json --jobs 2 --json");
    QVERIFY2(built.code == 0, QByteArray(built.error + built.output).constData());
    QCOMPARE(judge(QStringLiteral("apksigner"), {QStringLiteral("verify")}), QString());
    QCOMPARE(judge(QStringLiteral("zipalign"), zipalign), QString());
    QCOMPARE(judge(QStringLiteral("unzip"), unzip), QString());
    QCOMPARE(judge(QStringLiteral("aapt"), aapt), QString());
}

QTEST_GUILESS_MAIN(tst_BuildSample)
#include "tst_buildsample.moc"
