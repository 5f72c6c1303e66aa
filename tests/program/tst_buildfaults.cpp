// SPDX-License-Identifier: MIT
#include "archivescene.h"
#include "buildscene.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

// A world that is broken on purpose, and what a run makes of it.
class tst_BuildFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void missingMarkIsToldBeforeTheRun();
    void damagedSdkFailsItsChannelsAlone_data();
    void damagedSdkFailsItsChannelsAlone();
    void hostileSdkFailsItsChannelsAlone_data();
    void hostileSdkFailsItsChannelsAlone();
    void ownFilesThatAreNoneAreRefused_data();
    void ownFilesThatAreNoneAreRefused();
    void classesOfSeveralSdksGetTheNextNumbers();
    void iconThatCannotBeDrawnFailsItsChannelAlone();
    void limitOfFilesIsToldAndLeavesNoPart_data();
    void limitOfFilesIsToldAndLeavesNoPart();
    void fullDiskIsToldAndLeavesNoPart_data();
    void fullDiskIsToldAndLeavesNoPart();
    void lockedRecordsAreTold();
    void changedBaseEndsInAnError_data();
    void changedBaseEndsInAnError();
    void filesOfOthersStay();
    void stagesAreToldInAPipe();
    void verboseRunTellsItsStepsAlone();

private:
    using Outcomes = QMap<QString, QString>;
    static Outcomes plainAlone();
    bool addSdk(const QString& name, const QVector<SceneEntry>& entries);
    void expectNoPart(const QMap<QString, QByteArray>& undisturbed) const;
    std::unique_ptr<BuildScene> m_scene;
};

namespace {

const QString marks = QStringLiteral("marks/harbor");

SceneEntry entryOf(const QByteArray& name, const QByteArray& content)
{
    SceneEntry entry;
    entry.name = name;
    entry.content = content;
    return entry;
}

SceneEntry config(const char* id, const QList<QByteArray>& names)
{
    QByteArray files;
    for (const QByteArray& name : names)
        files += "<file>" + name + "</file>";
    return entryOf("config.xml",
                   QByteArray("<sdk id=\"") + id + "\" name=\"More\" version=\"1\"><files>" + files
                       + "</files></sdk>\n");
}

} // namespace

void tst_BuildFaults::init()
{
    m_scene = std::make_unique<BuildScene>();
    QVERIFY(m_scene->isValid());
}

tst_BuildFaults::Outcomes tst_BuildFaults::plainAlone()
{
    return {{QStringLiteral("plain"), QStringLiteral("built")},
            {QStringLiteral("harbor"), QStringLiteral("failed")},
            {QStringLiteral("meadow"), QStringLiteral("failed")}};
}

// Whatever stands under a final name has to be whole.
void tst_BuildFaults::expectNoPart(const QMap<QString, QByteArray>& undisturbed) const
{
    const auto left = m_scene->finished();
    for (auto file = left.cbegin(); file != left.cend(); ++file)
        QVERIFY2(undisturbed.value(file.key()) == file.value(), qPrintable(file.key()));
}

bool tst_BuildFaults::addSdk(const QString& name, const QVector<SceneEntry>& entries)
{
    SceneArchive archive;
    archive.entries = entries;
    QJsonObject sdks = m_scene->job.value(QStringLiteral("sdks")).toObject();
    sdks.insert(name, QJsonObject{{QStringLiteral("package"), QString(name + QStringLiteral(".zip"))}});
    m_scene->job.insert(QStringLiteral("sdks"), sdks);
    return m_scene->write(name + QStringLiteral(".zip"), archive.bytes());
}

void tst_BuildFaults::missingMarkIsToldBeforeTheRun()
{
    QVERIFY(QDir().rename(m_scene->path(marks), m_scene->path(QStringLiteral("away"))));
    const Ended ended = m_scene->run();
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("/channels/1/mark"), ended.error.constData());
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output"))));
    QVERIFY(QDir().rename(m_scene->path(QStringLiteral("away")), m_scene->path(marks)));
    QCOMPARE(m_scene->run().code, 0);
}

void tst_BuildFaults::damagedSdkFailsItsChannelsAlone_data()
{
    QTest::addColumn<bool>("isCut");
    QTest::newRow("cut off") << true;
    QTest::newRow("a byte is another one") << false;
}

void tst_BuildFaults::damagedSdkFailsItsChannelsAlone()
{
    QFETCH(const bool, isCut);
    QCOMPARE(m_scene->run().code, 0);
    const auto undisturbed = m_scene->finished();
    const QByteArray whole = m_scene->read(QStringLiteral("pay.zip"));
    QByteArray damaged = whole.left(isCut ? whole.size() / 2 : whole.size());
    if (!isCut)
        damaged[60] = static_cast<char>(~damaged.at(60));
    QVERIFY(m_scene->write(QStringLiteral("pay.zip"), damaged));
    const Ended ended = m_scene->run("--json --force");
    QCOMPARE(ended.code, 1);
    QCOMPARE(BuildScene::outcomes(ended), plainAlone());
    const QString message =
        BuildScene::reportOf(ended, QStringLiteral("harbor")).value(QStringLiteral("message")).toString();
    QVERIFY2(message.startsWith(QStringLiteral("the SDK 'pay' cannot be imported: ")), qPrintable(message));
    QVERIFY(!QFileInfo::exists(m_scene->path(QStringLiteral("output/harbor"))));
    QVERIFY(m_scene->write(QStringLiteral("pay.zip"), whole));
    QCOMPARE(m_scene->run().code, 0);
    QVERIFY(m_scene->finished() == undisturbed);
}

void tst_BuildFaults::hostileSdkFailsItsChannelsAlone_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isLink");
    QTest::newRow("name that leads out") << QByteArray("../escaped.txt") << false;
    QTest::newRow("name that leads far out") << QByteArray("assets/../../../escaped.txt") << false;
    QTest::newRow("absolute name") << QByteArray("/tmp/escaped.txt") << false;
    QTest::newRow("link") << QByteArray("assets/link.json") << true;
}

void tst_BuildFaults::hostileSdkFailsItsChannelsAlone()
{
    QFETCH(const QByteArray, name);
    QFETCH(const bool, isLink);
    SceneEntry hostile =
        entryOf(name, isLink ? m_scene->path(QStringLiteral("secret")).toUtf8() : QByteArray("x"));
    if (isLink)
        hostile.lie = [](SceneHeader&, SceneHeader& central) { central.attributes = 0120777U << 16; };
    QVERIFY(m_scene->write(QStringLiteral("secret"), "of the machine"));
    QVERIFY(addSdk(QStringLiteral("pay"), {config("7", {name}), hostile}));
    const Ended ended = m_scene->run("--json");
    QCOMPARE(ended.code, 1);
    QCOMPARE(BuildScene::outcomes(ended), plainAlone());
    const QString message =
        BuildScene::reportOf(ended, QStringLiteral("harbor")).value(QStringLiteral("message")).toString();
    QVERIFY2(message.contains(QString::fromUtf8(name)), qPrintable(message));
    QDirIterator all(m_scene->path({}), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (all.hasNext())
        QVERIFY2(!all.next().endsWith(QStringLiteral("escaped.txt")), qPrintable(all.filePath()));
}

void tst_BuildFaults::ownFilesThatAreNoneAreRefused_data()
{
    QTest::addColumn<bool>("isPipe");
    QTest::newRow("link") << false;
    QTest::newRow("pipe") << true;
}

// A link could bring any file of the machine into a package, and a pipe would be waited for.
void tst_BuildFaults::ownFilesThatAreNoneAreRefused()
{
    QFETCH(const bool, isPipe);
    const QString own = m_scene->path(QStringLiteral("own/assets/other"));
    QCOMPARE(m_scene->run().code, 0);
    if (isPipe)
        QCOMPARE(mkfifo(QFile::encodeName(own).constData(), 0600), 0);
    else
        QVERIFY(QFile::link(m_scene->path(QStringLiteral("job.json")), own));
    const Ended ended = m_scene->run("--json");
    QVERIFY2(ended.code == 1, ended.error.constData());
    QCOMPARE(
        BuildScene::reportOf(ended, QStringLiteral("meadow")).value(QStringLiteral("message")).toString(),
        QStringLiteral("'%1' is neither a file nor a folder").arg(own));
    QCOMPARE(BuildScene::outcomes(ended).value(QStringLiteral("plain")), QStringLiteral("unchanged"));
}

void tst_BuildFaults::classesOfSeveralSdksGetTheNextNumbers()
{
    QVERIFY(addSdk(QStringLiteral("one"),
                   {config("1", {"classes.dex", "classes2.dex"}), entryOf("classes.dex", "dex one"),
                    entryOf("classes2.dex", "dex one, second")}));
    QVERIFY(addSdk(QStringLiteral("two"), {config("2", {"classes.dex"}), entryOf("classes.dex", "dex two")}));
    QJsonObject channel = m_scene->channel(0);
    channel.insert(QStringLiteral("sdks"), QJsonArray{QStringLiteral("one"), QStringLiteral("two")});
    m_scene->setChannel(0, channel);
    const Ended ended = m_scene->run("--json");
    QVERIFY2(ended.code == 0, QByteArray(ended.error + ended.output).constData());
    const QString plain = QStringLiteral("plain"); // its base brings no classes
    QCOMPARE(m_scene->entry(plain, QStringLiteral("classes.dex")), QByteArray("dex one"));
    QCOMPARE(m_scene->entry(plain, QStringLiteral("classes2.dex")), QByteArray("dex one, second"));
    QCOMPARE(m_scene->entry(plain, QStringLiteral("classes3.dex")), QByteArray("dex two"));
}

void tst_BuildFaults::iconThatCannotBeDrawnFailsItsChannelAlone()
{
    QJsonObject channel = m_scene->channel(1);
    const QString folder(248, QLatin1Char('n')); // leaves no room in a name for what the icon's file adds
    channel.insert(QStringLiteral("folder"), folder);
    m_scene->setChannel(1, channel);
    const Ended ended = m_scene->run("--json");
    QVERIFY2(ended.code == 1, QByteArray(ended.error + ended.output).constData());
    QCOMPARE(BuildScene::outcomes(ended),
             (Outcomes{{QStringLiteral("plain"), QStringLiteral("built")},
                       {folder, QStringLiteral("failed")},
                       {QStringLiteral("meadow"), QStringLiteral("built")}}));
    const QString message = BuildScene::reportOf(ended, folder).value(QStringLiteral("message")).toString();
    QVERIFY2(message.startsWith(QStringLiteral("the icon '%1").arg(m_scene->path(QStringLiteral("work")))),
             qPrintable(message));
}

void tst_BuildFaults::limitOfFilesIsToldAndLeavesNoPart_data()
{
    QTest::addColumn<int>("bytes");
    for (const int bytes : {100, 50000, 100000})
        QTest::newRow(qPrintable(QStringLiteral("%1 bytes").arg(bytes))) << bytes;
}

void tst_BuildFaults::limitOfFilesIsToldAndLeavesNoPart()
{
    QFETCH(const int, bytes);
    QCOMPARE(m_scene->run().code, 0);
    const auto undisturbed = m_scene->finished();
    QVERIFY(QDir(m_scene->path(QStringLiteral("output"))).removeRecursively());
    const auto process = m_scene->process();
    process->before = [bytes] {
        const rlimit small{static_cast<rlim_t>(bytes), static_cast<rlim_t>(bytes)};
        setrlimit(RLIMIT_FSIZE, &small);
    };
    const Ended ended = process->end();
    QVERIFY2(ended.code == 1, QByteArray(ended.error + ended.output).constData());
    QVERIFY2(ended.error.contains(m_scene->path({}).toUtf8()), ended.error.constData());
    expectNoPart(undisturbed);
    const Ended again = m_scene->run();
    QVERIFY2(again.code == 0, again.error.constData());
    QVERIFY(m_scene->finished() == undisturbed);
}

void tst_BuildFaults::fullDiskIsToldAndLeavesNoPart_data()
{
    QTest::addColumn<QString>("small");
    QTest::addColumn<bool>("hasIcons");
    QTest::addColumn<int>("kilobytes");
    for (const int kilobytes : {16, 120, 400})
        QTest::addRow("icons, %dk", kilobytes) << QStringLiteral("work") << true << kilobytes;
    for (const int kilobytes : {16, 40})
        QTest::addRow("packages, %dk", kilobytes) << QStringLiteral("work") << false << kilobytes;
    for (const int kilobytes : {8, 80, 200})
        QTest::addRow("output, %dk", kilobytes) << QStringLiteral("output") << false << kilobytes;
}

void tst_BuildFaults::fullDiskIsToldAndLeavesNoPart()
{
    QFETCH(const QString, small);
    QFETCH(const bool, hasIcons);
    QFETCH(const int, kilobytes);
    if (!hasIcons)
        m_scene->job.remove(QStringLiteral("icons"));
    for (int i = 1; i < 3 && !hasIcons; ++i) {
        QJsonObject channel = m_scene->channel(i);
        channel.remove(QStringLiteral("mark"));
        channel.remove(QStringLiteral("corner"));
        m_scene->setChannel(i, channel);
    }
    const Ended first = m_scene->run();
    QVERIFY2(first.code == 0, first.error.constData());
    const auto undisturbed = m_scene->finished();
    QVERIFY(QDir(m_scene->path(QStringLiteral("output"))).removeRecursively());
    QVERIFY(QDir(m_scene->path(QStringLiteral("work"))).removeRecursively());
    QVERIFY(QDir().mkdir(m_scene->path(small)));
    const QByteArray disk = QFile::encodeName(m_scene->path(small));
    const QByteArray options = "size=" + QByteArray::number(kilobytes) + "k";
    if (mount("none", disk.constData(), "tmpfs", 0, options.constData()) != 0)
        QSKIP("only root can mount a small file system");
    const auto leave = qScopeGuard([&disk] { umount2(disk.constData(), MNT_DETACH); });
    const Ended ended = m_scene->run("--json");
    const QByteArray said = ended.error + ended.output;
    QVERIFY2(ended.code == 1, said.constData());
    QVERIFY2(said.contains("No space left on device") || said.contains("disk is full"), said.constData());
    QVERIFY2(said.contains(disk), said.constData());
    expectNoPart(undisturbed);
    QCOMPARE(mount("none", disk.constData(), "tmpfs", MS_REMOUNT, "size=64m"), 0);
    const Ended again = m_scene->run();
    QVERIFY2(again.code == 0, again.error.constData());
    QVERIFY(m_scene->finished() == undisturbed);
}

void tst_BuildFaults::lockedRecordsAreTold()
{
    QCOMPARE(m_scene->run().code, 0);
    const auto undisturbed = m_scene->finished();
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        other.setDatabaseName(m_scene->path(QStringLiteral("output/records.db")));
        QVERIFY2(other.open(), qPrintable(other.lastError().text()));
        QSqlQuery query(other);
        QVERIFY(query.exec(QStringLiteral("BEGIN EXCLUSIVE")));
        const Ended ended = m_scene->run("--force");
        QCOMPARE(ended.code, 1);
        QVERIFY2(ended.error.contains("records.db' are locked by another program"), ended.error.constData());
        QVERIFY(m_scene->finished() == undisturbed);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
    QCOMPARE(m_scene->run("--force").code, 0);
}

void tst_BuildFaults::changedBaseEndsInAnError_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::addColumn<QByteArray>("moment");
    QTest::newRow("before the channels") << QByteArray() << QByteArray("--version");
    QTest::newRow("before the processes") << QByteArray("--jobs 2") << QByteArray("--version");
    QTest::newRow("among the channels") << QByteArray() << QByteArray("sign");
}

void tst_BuildFaults::changedBaseEndsInAnError()
{
    QFETCH(const QByteArray, words);
    QFETCH(const QByteArray, moment);
    // In the place of apksigner: signs nothing, finds everything well, and exchanges the base at its moment.
    QVERIFY(m_scene->write(
        QStringLiteral("tools/apksigner"),
        "#!/bin/sh\n[ \"$1\" = " + moment
            + " ] && cp other.apk base.apk\n"
              "while [ $# -gt 1 ]; do case $1 in --in) in=$2;; --out) out=$2;; esac; shift; done\n"
              "[ -n \"$out\" ] && cp \"$in\" \"$out\"\n"
              "echo certificate SHA-256 digest: 00\n"));
    QVERIFY(QFile::setPermissions(m_scene->path(QStringLiteral("tools/apksigner")),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(m_scene->write(QStringLiteral("release.p12"), "key")
            && m_scene->write(QStringLiteral("password"), "x"));
    m_scene->job.insert(QStringLiteral("signing"),
                        QJsonObject{{QStringLiteral("keystore"), QStringLiteral("release.p12")},
                                    {QStringLiteral("password"),
                                     QJsonObject{{QStringLiteral("file"), QStringLiteral("password")}}}});
    QVERIFY(
        QFile::copy(m_scene->path(QStringLiteral("base.apk")), m_scene->path(QStringLiteral("other.apk"))));
    const auto process = m_scene->process(words);
    process->setVariable("PATH", m_scene->path(QStringLiteral("tools:")) + qEnvironmentVariable("PATH"));
    const Ended ended = process->end();
    QCOMPARE(ended.code, 1);
    QVERIFY2(ended.error.contains("changed "), ended.error.constData());
    for (const QString& channel : {QStringLiteral("harbor"), QStringLiteral("meadow")})
        QVERIFY2(!QFileInfo::exists(m_scene->path(QStringLiteral("output/") + channel)),
                 ended.error.constData());
}

void tst_BuildFaults::filesOfOthersStay()
{
    const QStringList foreign{QStringLiteral("output/notes.txt"), QStringLiteral("output/other/other.apk"),
                              QStringLiteral("output/plain/notes.txt"),
                              QStringLiteral("output/plain/kept/file")};
    for (const QString& file : foreign)
        QVERIFY(m_scene->write(file, "of somebody else"));
    QCOMPARE(m_scene->run().code, 0);
    QCOMPARE(m_scene->run("--force").code, 0);
    QVERIFY(m_scene->write(QStringLiteral("base.apk"), "PK\3\4 damaged"));
    QCOMPARE(m_scene->run().code, 1);
    for (const QString& file : foreign)
        QCOMPARE(m_scene->read(file), QByteArray("of somebody else"));
}

void tst_BuildFaults::stagesAreToldInAPipe()
{
    const Ended built = m_scene->run();
    QVERIFY2(built.error.startsWith("quenzo: plain: built, "), built.error.constData());
    QCOMPARE(built.error.count('\n'), 3);
    QVERIFY(!built.error.contains('\033'));
    QVERIFY2(m_scene->run().error.startsWith("quenzo: plain: unchanged\n"), "the second run");
    QCOMPARE(m_scene->run("--quiet").error, QByteArray());
    QCOMPARE(m_scene->run("--json").error, QByteArray());
}

void tst_BuildFaults::verboseRunTellsItsStepsAlone()
{
    const Ended ended = m_scene->run("--verbose");
    QCOMPARE(ended.code, 0);
    const QList<QByteArray> lines = ended.error.trimmed().split('\n');
    QCOMPARE(lines.first(), QByteArray("quenzo: plain: clear"));
    for (const QByteArray& line : lines)
        QVERIFY2(line.contains("plain: ") || line.contains("harbor: ") || line.contains("meadow: "),
                 line.constData());
}

QTEST_GUILESS_MAIN(tst_BuildFaults)
#include "tst_buildfaults.moc"
