// SPDX-License-Identifier: MIT
#include "archivescene.h"
#include "faultycalls.h"

#include "build/apkeditor.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>
#include <sys/resource.h>
#include <unistd.h>

// Packages come whole or not at all, whatever the disk, the kernel and other people do meanwhile.
class tst_ApkEditorFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void failingCallsLeaveThePackageAsItWas_data();
    void failingCallsLeaveThePackageAsItWas();
    void aLimitOfTheSystemIsTold();
    void copiesThatTheKernelRefusesAreMadeOtherwise_data();
    void copiesThatTheKernelRefusesAreMadeOtherwise();
    void basesOnAnotherFileSystemAreCopied();
    void neighboursAreCopiedByOneCall();
    void fileSystemsWithoutNamelessFilesDo();
    void aBaseThatChangesGivesNoPackage_data();
    void aBaseThatChangesGivesNoPackage();
    void contentThatCannotBeReadIsTold_data();
    void contentThatCannotBeReadIsTold();
    void whatIsNoFileIsNotReplaced_data();
    void whatIsNoFileIsNotReplaced();

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    void write(const QString& file, const QByteArray& content) const;
    QByteArray read(const char* name) const;
    QStringList files() const;
    QVector<ApkChange> changes() const;
    QByteArray expected() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

using Action = std::function<void(const QString& base)>;

// Larger than what goes through a buffer at once, in entries that change nothing about each other's places.
QByteArray baseBytes()
{
    SceneArchive archive;
    for (int i = 0; i < 8; ++i)
        archive.entries.append({"assets/" + QByteArray::number(i) + ".ogg",
                                QByteArray(200000, static_cast<char>(i)),
                                false,
                                false,
                                {},
                                -1});
    archive.entries.append({"assets/last.txt", "text", false, false, {}, -1});
    return archive.bytes();
}

} // namespace

void tst_ApkEditorFailures::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    write(path("foreign.apk"), baseBytes());
    // With the headers that we write ourselves.
    ApkEditor editor;
    QVERIFY(editor.open(path("foreign.apk")) && editor.write(path("base.apk"), {}));
    QVERIFY(QFile::remove(path("foreign.apk")));
    write(path("out.apk"), "the package before");
}

void tst_ApkEditorFailures::cleanup()
{
    FaultyCalls::heal();
}

void tst_ApkEditorFailures::write(const QString& file, const QByteArray& content) const
{
    QFile target(file);
    QVERIFY(target.open(QIODevice::WriteOnly) && target.write(content) == content.size());
}

QByteArray tst_ApkEditorFailures::read(const char* name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

QStringList tst_ApkEditorFailures::files() const
{
    return QDir(m_folder->path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QVector<ApkChange> tst_ApkEditorFailures::changes() const
{
    return {{"assets/last.txt", {}, "other text"}, {"assets/new.ogg", {}, QByteArray(300000, 'n')}};
}

// The package that nothing disturbs.
QByteArray tst_ApkEditorFailures::expected() const
{
    ApkEditor editor;
    const bool written = editor.open(path("base.apk")) && editor.write(path("expected.apk"), changes());
    const QByteArray bytes = read("expected.apk");
    return written && QFile::remove(path("expected.apk")) ? bytes : QByteArray("not written");
}

void tst_ApkEditorFailures::failingCallsLeaveThePackageAsItWas_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("n");
    QTest::addColumn<int>("error");
    const auto row = [](const char* title, FaultyCalls::Call call, int n, int error) {
        QTest::addRow("%s, %s", title, std::strerror(error)) << static_cast<int>(call) << n << error;
    };
    row("first write", FaultyCalls::Writing, 1, ENOSPC);
    row("second write", FaultyCalls::Writing, 2, EDQUOT);
    row("third write", FaultyCalls::Writing, 3, EIO);
    row("copy", FaultyCalls::Copying, 1, ENOSPC);
    row("copy", FaultyCalls::Copying, 1, EIO);
    row("copy", FaultyCalls::Copying, 1, EFBIG);
    row("naming", FaultyCalls::Linking, 1, ENOSPC);
    row("rights", FaultyCalls::ChangingMode, 1, EROFS);
    row("opening", FaultyCalls::OpeningUnnamed, 1, EACCES);
}

void tst_ApkEditorFailures::failingCallsLeaveThePackageAsItWas()
{
    QFETCH(const int, call);
    QFETCH(const int, n);
    QFETCH(const int, error);
    for (const bool unnamed : {true, false}) {
        if (!unnamed && (call == FaultyCalls::Linking || call == FaultyCalls::OpeningUnnamed))
            continue; // such calls are not made then
        ApkEditor editor;
        QVERIFY(editor.open(path("base.apk")));
        FaultyCalls::allowUnnamedFiles(unnamed);
        FaultyCalls::failFromNth(static_cast<FaultyCalls::Call>(call), n, error);
        QVERIFY(!editor.write(path("out.apk"), changes()));
        QVERIFY(FaultyCalls::wasHit());
        FaultyCalls::heal();
        QCOMPARE(editor.error(),
                 QStringLiteral("cannot write %1: %2").arg(path("out.apk"), qt_error_string(error)));
        QCOMPARE(read("out.apk"), QByteArray("the package before"));
        QCOMPARE(files(), QStringList({QStringLiteral("base.apk"), QStringLiteral("out.apk")}));
    }
    ApkEditor editor;
    QVERIFY(editor.open(path("base.apk")) && editor.write(path("out.apk"), changes()));
    QVERIFY(read("out.apk") == expected());
}

void tst_ApkEditorFailures::aLimitOfTheSystemIsTold()
{
    ApkEditor editor;
    QVERIFY(editor.open(path("base.apk")));
    struct rlimit before { };
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    for (const rlim_t most : {rlim_t(1), rlim_t(1000000), rlim_t(1700000)}) {
        const struct rlimit limit {
            most, before.rlim_max
        };
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const bool written = editor.write(path("out.apk"), changes());
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
        QVERIFY(!written);
        QCOMPARE(editor.error(),
                 QStringLiteral("cannot write %1: %2").arg(path("out.apk"), qt_error_string(EFBIG)));
        QCOMPARE(read("out.apk"), QByteArray("the package before"));
        QCOMPARE(files(), QStringList({QStringLiteral("base.apk"), QStringLiteral("out.apk")}));
    }
    std::signal(SIGXFSZ, handler);
}

void tst_ApkEditorFailures::copiesThatTheKernelRefusesAreMadeOtherwise_data()
{
    QTest::addColumn<int>("error");
    for (const int error : {EXDEV, EINVAL, ENOSYS, EOPNOTSUPP, EPERM, ETXTBSY, FaultyCalls::nothingDone})
        QTest::newRow(error == 0 ? "nothing copied" : std::strerror(error)) << error;
}

void tst_ApkEditorFailures::copiesThatTheKernelRefusesAreMadeOtherwise()
{
    QFETCH(const int, error);
    const QByteArray whole = expected();
    ApkEditor editor;
    QVERIFY(editor.open(path("base.apk")));
    FaultyCalls::failFromNth(FaultyCalls::Copying, 1, error);
    QVERIFY2(editor.write(path("out.apk"), changes()), qPrintable(editor.error()));
    QVERIFY(FaultyCalls::wasHit());
    QVERIFY(read("out.apk") == whole);
}

void tst_ApkEditorFailures::basesOnAnotherFileSystemAreCopied()
{
    // Where the system has none in memory it is the same one, and the copy another.
    const QString memory = QStringLiteral("/dev/shm");
    const QTemporaryDir elsewhere(QFileInfo(memory).isWritable()
                                      ? memory + QLatin1String("/quenzo-XXXXXX")
                                      : QDir::tempPath() + QLatin1String("/quenzo-XXXXXX"));
    const QString base = elsewhere.filePath(QStringLiteral("base.apk"));
    QVERIFY(QFile::copy(path("base.apk"), base));
    ApkEditor editor;
    QVERIFY2(editor.open(base), qPrintable(editor.error()));
    QVERIFY2(editor.write(path("out.apk"), changes()), qPrintable(editor.error()));
    QVERIFY(read("out.apk") == expected());
}

void tst_ApkEditorFailures::neighboursAreCopiedByOneCall()
{
    ApkEditor editor;
    QVERIFY(editor.open(path("base.apk")));
    FaultyCalls::startCounting();
    QVERIFY(editor.write(path("out.apk"), changes()));
    QCOMPARE(FaultyCalls::count(FaultyCalls::Copying), 1);
    QVERIFY(editor.takenOver() == 8 * 200000);
}

void tst_ApkEditorFailures::fileSystemsWithoutNamelessFilesDo()
{
    const QByteArray whole = expected();
    ApkEditor editor;
    QVERIFY(editor.open(path("base.apk")));
    FaultyCalls::allowUnnamedFiles(false);
    QVERIFY2(editor.write(path("out.apk"), changes()), qPrintable(editor.error()));
    QVERIFY(read("out.apk") == whole);
    QCOMPARE(files(), QStringList({QStringLiteral("base.apk"), QStringLiteral("out.apk")}));
}

void tst_ApkEditorFailures::aBaseThatChangesGivesNoPackage_data()
{
    QTest::addColumn<int>("change");
    int number = 0;
    for (const char* title : {"longer", "touched", "replaced", "removed", "shorter"})
        QTest::newRow(title) << number++;
}

void tst_ApkEditorFailures::aBaseThatChangesGivesNoPackage()
{
    QFETCH(const int, change);
    const QString base = path("base.apk");
    const QVector<std::function<bool()>> actions{
        [&] {
            QFile file(base);
            return file.open(QIODevice::Append) && file.write("x") == 1;
        },
        [&] {
            QFile file(base);
            return file.open(QIODevice::ReadWrite)
                && file.setFileTime(QDateTime::fromSecsSinceEpoch(1000000000),
                                    QFileDevice::FileModificationTime);
        },
        [&] {
            return QFile::copy(base, path("other.apk"))
                && ::rename(qPrintable(path("other.apk")), qPrintable(base)) == 0;
        },
        [&] { return QFile::remove(base); },
        [&] { return QFile::resize(base, 70000); },
    };
    ApkEditor editor;
    QVERIFY(editor.open(base));
    bool done = false;
    FaultyCalls::actBeforeNth(FaultyCalls::Copying, 1, [&] { done = actions.at(change)(); });
    QVERIFY(!editor.write(path("out.apk"), changes()));
    QVERIFY(done);
    const QString shorter = QStringLiteral("cannot read %1: it became shorter").arg(base);
    QVERIFY2(
        editor.error() == shorter
            || editor.error()
                == QStringLiteral("%1: %2 changed while packages were made of it").arg(path("out.apk"), base),
        qPrintable(editor.error()));
    QCOMPARE(read("out.apk"), QByteArray("the package before"));
    QVERIFY2(files().size() <= 2, qPrintable(files().join(QLatin1Char(' '))));
    // Nor does any later one of the same base.
    QVERIFY(!editor.write(path("out.apk"), {}));
}

void tst_ApkEditorFailures::contentThatCannotBeReadIsTold_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << QStringLiteral("absent") << QStringLiteral("No such file or directory");
    QTest::newRow("folder") << QStringLiteral(".") << QStringLiteral("this is not a regular file");
    QTest::newRow("pipe") << QStringLiteral("pipe") << QStringLiteral("this is not a regular file");
}

void tst_ApkEditorFailures::contentThatCannotBeReadIsTold()
{
    QFETCH(const QString, file);
    QFETCH(const QString, text);
    QCOMPARE(printedBy(QStringLiteral("mkfifo"), {path("pipe")}), QByteArray("0\n"));
    const QString content = m_folder->filePath(file);
    for (const char* name : {"assets/0.ogg", "assets/new.txt"}) {
        ApkEditor editor;
        QVERIFY(editor.open(path("base.apk")));
        QVERIFY(!editor.write(path("out.apk"), {{name, content, {}}}));
        QCOMPARE(editor.error(),
                 QStringLiteral("%1: cannot read %2 for '%3': %4")
                     .arg(path("out.apk"), content, QLatin1String(name), text));
        QCOMPARE(read("out.apk"), QByteArray("the package before"));
    }
    QCOMPARE(files(),
             QStringList({QStringLiteral("base.apk"), QStringLiteral("out.apk"), QStringLiteral("pipe")}));
}

void tst_ApkEditorFailures::whatIsNoFileIsNotReplaced_data()
{
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("text");
    const QString inTheWay = QStringLiteral("a folder, link or device is in the way");
    QTest::newRow("folder") << QStringLiteral("folder") << inTheWay;
    QTest::newRow("link") << QStringLiteral("link") << inTheWay;
    QTest::newRow("pipe") << QStringLiteral("pipe") << inTheWay;
    QTest::newRow("no folder") << QStringLiteral("absent/out.apk")
                               << QStringLiteral("No such file or directory");
    QTest::newRow("file as folder") << QStringLiteral("base.apk/out.apk")
                                    << QStringLiteral("Not a directory");
}

void tst_ApkEditorFailures::whatIsNoFileIsNotReplaced()
{
    QFETCH(const QString, package);
    QFETCH(const QString, text);
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("folder")));
    QVERIFY(QFile::link(path("base.apk"), path("link")));
    QCOMPARE(printedBy(QStringLiteral("mkfifo"), {path("pipe")}), QByteArray("0\n"));
    const QStringList before = files();
    const QByteArray base = read("base.apk");
    ApkEditor editor;
    QVERIFY(editor.open(path("base.apk")));
    QVERIFY(!editor.write(m_folder->filePath(package), changes()));
    QVERIFY2(editor.error().contains(text) && editor.error().contains(package), qPrintable(editor.error()));
    QCOMPARE(files(), before);
    QVERIFY(read("base.apk") == base);
}

QTEST_GUILESS_MAIN(tst_ApkEditorFailures)
#include "tst_apkeditorfailures.moc"
