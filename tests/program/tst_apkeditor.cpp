// SPDX-License-Identifier: MIT
#include "archivescene.h"
#include "quenzoprocess.h"

#include "build/apkeditor.h"
#include "build/zipformat.h"

#include <QDirIterator>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

// What packages get from their base, and what from the changes.
class tst_ApkEditor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void entriesOfTheBaseAreListed();
    void withoutChangesAPackageOfOursStaysAsItIs();
    void packagesEqualThoseOfTheScripts_data();
    void packagesEqualThoseOfTheScripts();
    void unchangedEntriesKeepTheirPackedBytes();
    void changedEntriesKeepMethodTimeAndRights();
    void newEntriesFollowByName();
    void equalContentIsTakenOver();
    void equalInputGivesEqualBytes();
    void packagesOfOneEditorEqualThoseOfSeveral();
    void storedEntriesBeginWhereAndroidMapsThem();
    void damageIsFoundWhereItIsLookedFor_data();
    void damageIsFoundWhereItIsLookedFor();
    void signaturesAreDropped_data();
    void signaturesAreDropped();
    void largeContentGetsItsSizesIntoTheHeader();
    void manyEntriesAndLongNumbersGoInTheLongForm();
    void aPackageIsReplacedAndKeepsItsRights();
    void otherProgramsTakeThePackage();

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    void write(const QByteArray& name, const QByteArray& content) const;
    QByteArray read(const char* name) const;
    QVector<ApkChange> filesBelow(const char* folder) const;
    void make(const char* base, const char* package, const QVector<ApkChange>& changes) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

QByteArray noise(int size)
{
    QRandomGenerator generator(7);
    QByteArray result(size, '\0');
    for (char& letter : result)
        letter = static_cast<char>(generator.generate());
    return result;
}

QString objectionToChanges(const QString& package, const QVector<ApkChange>& changes)
{
    ApkEditor editor;
    return editor.open(package) ? editor.objection(changes) : editor.error();
}

QStringList namesOf(const QStringList& lines)
{
    QStringList names;
    for (const QString& line : lines)
        names.append(line.section(QLatin1Char('\''), 1, 1));
    return names;
}

SceneArchive foreignBase()
{
    const QByteArray text(3000, 't');
    return {{{"AndroidManifest.xml", text, true, true, {}},
             {"META-INF/MANIFEST.MF", "old", false, false, {}},
             {"res/", "", false, false, {}},
             {"res/icon.png", noise(5001), false, false, {}},
             {"lib/arm64-v8a/libgame.so", noise(70001), false, true, {}},
             {"assets/text.txt", text + "more", true, false,
              [](SceneHeader& local, SceneHeader&) { local.extra = QByteArray(7, '\0'); }},
             {"assets/caf\xc3\xa9", "name", false, false, {}}},
            "#!/bin/sh\n",
            {},
            "a comment",
            false,
            {}};
}

} // namespace

void tst_ApkEditor::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QFile::copy(QStringLiteral(SAMPLE "/skyharbour.apk"), path("base.apk")));
    QVERIFY(QFile::setPermissions(path("base.apk"), QFile::ReadOwner | QFile::WriteOwner));
    write("foreign.apk", foreignBase().bytes());
}

void tst_ApkEditor::write(const QByteArray& name, const QByteArray& content) const
{
    const QString file = m_folder->filePath(QFile::decodeName(name));
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QFile target(file);
    QVERIFY(target.open(QIODevice::WriteOnly) && target.write(content) == content.size());
}

QByteArray tst_ApkEditor::read(const char* name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

QVector<ApkChange> tst_ApkEditor::filesBelow(const char* folder) const
{
    QVector<ApkChange> changes;
    QDirIterator files(path(folder), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        changes.append({QFile::encodeName(QDir(path(folder)).relativeFilePath(file)), file, {}});
    }
    return changes;
}

void tst_ApkEditor::make(const char* base, const char* package, const QVector<ApkChange>& changes) const
{
    ApkEditor editor;
    QVERIFY2(editor.open(path(base)), qPrintable(editor.error()));
    QVERIFY2(editor.write(path(package), changes), qPrintable(editor.error()));
    QCOMPARE(editor.error(), QString());
    QCOMPARE(ApkEditor::objectionTo(path(package)), QString());
}

void tst_ApkEditor::entriesOfTheBaseAreListed()
{
    ApkEditor editor;
    QCOMPARE(editor.entries().size(), 0);
    QVERIFY2(editor.open(path("foreign.apk")), qPrintable(editor.error()));
    QCOMPARE(editor.entries().size(), 7);
    const ApkEntry& manifest = editor.entries().first();
    QCOMPARE(manifest.name, QByteArray("AndroidManifest.xml"));
    QCOMPARE(manifest.method, quint16(8));
    QCOMPARE(manifest.size, 3000);
    QVERIFY2(manifest.packed > 0 && manifest.packed < 100, qPrintable(QString::number(manifest.packed)));
    QCOMPARE(editor.entries().last().name, QByteArray("assets/caf\xc3\xa9"));
    QVERIFY(editor.open(path("base.apk")));
    QCOMPARE(editor.entries().size(), 12);
    QVERIFY(!editor.open(path("absent.apk")));
    QCOMPARE(editor.entries().size(), 0);
    QVERIFY(!editor.write(path("out.apk"), {}));
    QVERIFY2(editor.error().endsWith(QLatin1String("no base is open")), qPrintable(editor.error()));
}

void tst_ApkEditor::withoutChangesAPackageOfOursStaysAsItIs()
{
    make("base.apk", "out.apk", {});
    QVERIFY(read("out.apk") == read("base.apk"));
}

void tst_ApkEditor::packagesEqualThoseOfTheScripts_data()
{
    QTest::addColumn<QByteArray>("base");
    for (const char* base : {"base.apk", "foreign.apk"})
        QTest::newRow(base) << QByteArray(base);
}

void tst_ApkEditor::packagesEqualThoseOfTheScripts()
{
    QFETCH(const QByteArray, base);
    write("over/assets/channel.json", "{\"channel\": 1}\n");
    write("over/assets/text.txt", "other text, other text, other text");
    write("over/assets/large.txt", QByteArray(8500000, 'l') + noise(300000).toBase64());
    write("over/assets/empty.txt", "");
    write("over/assets/.png", "a hidden file is no picture, no picture");
    write("over/assets/ARCHIVE.ZIP", "stored whatever its case, whatever its case");
    write("over/assets/\xe6\xb8\xaf.json", "{}");
    write("over/lib/x86_64/libskyharbour.so", noise(20001));
    write("over/lib/armeabi-v7a/libsdk.so", noise(300001));
    write("over/res/icon.png", noise(4321));
    write("over/META-INF/CERT.RSA", "dropped");
    write("over/META-INF/services/kept", "kept");
    make(base.constData(), "out.apk", filesBelow("over"));

    const Ended packed =
        QuenzoProcess({QStringLiteral("pack"), QStringLiteral("over"), QStringLiteral("scripts.apk"),
                       QStringLiteral("--onto"), QString::fromLatin1(base)},
                      m_folder->path())
            .end();
    QCOMPARE(packed.code, 0);
    QCOMPARE(judged(path("out.apk")), judged(path("scripts.apk")));
    QVERIFY(read("out.apk") == read("scripts.apk"));
}

void tst_ApkEditor::unchangedEntriesKeepTheirPackedBytes()
{
    // Packed by another zlib level, so that nobody could pack them anew to the same bytes.
    const QByteArray content = noise(9000).toHex();
    const QByteArray packed = qCompress(content, 1).mid(6).chopped(4);
    SceneArchive base = foreignBase();
    base.entries.append({"assets/level1", content, true, false, {}, 1});
    write("level1.apk", base.bytes());
    ApkEditor editor;
    QVERIFY2(editor.open(path("level1.apk")), qPrintable(editor.error()));
    QVERIFY2(editor.write(path("out.apk"), {{"res/icon.png", {}, "new"}}), qPrintable(editor.error()));
    QVERIFY(read("out.apk").contains(packed));
    qint64 expected = 0;
    for (const ApkEntry& entry : editor.entries()) {
        if (entry.name != "res/icon.png" && entry.name != "META-INF/MANIFEST.MF")
            expected += entry.packed;
    }
    QCOMPARE(editor.takenOver(), expected);
}

void tst_ApkEditor::changedEntriesKeepMethodTimeAndRights()
{
    make("foreign.apk", "out.apk",
         {{"assets/text.txt", {}, "changed"},
          {"res/icon.png", {}, "changed"},
          {"AndroidManifest.xml", {}, ""}});
    const QStringList lines = judged(path("out.apk"));
    QVERIFY2(lines.contains(QLatin1String("'assets/text.txt' 8 0 2025 100640 7")),
             qPrintable(lines.join(QLatin1Char('\n'))));
    QVERIFY2(lines.contains(QLatin1String("'res/icon.png' 0 0 2025 100640 7")),
             qPrintable(lines.join(QLatin1Char('\n'))));
    QVERIFY2(lines.contains(QLatin1String("'AndroidManifest.xml' 0 0 2025 100640 0")),
             qPrintable(lines.join(QLatin1Char('\n'))));
}

void tst_ApkEditor::newEntriesFollowByName()
{
    make("foreign.apk", "out.apk",
         {{"z.txt", {}, "deflated, deflated"},
          {"B/", {}, {}},
          {"a.png", {}, "stored"},
          {"res/icon.png", {}, "changed"},
          {"\xe6\xb8\xaf", {}, "name"},
          {"\xff", {}, "no UTF-8"}});
    QStringList lines = judged(path("out.apk"));
    QCOMPARE(namesOf(lines.mid(0, 4)),
             QStringList({QStringLiteral("AndroidManifest.xml"), QStringLiteral("res/"),
                          QStringLiteral("res/icon.png"), QStringLiteral("lib/arm64-v8a/libgame.so")}));
    QCOMPARE(
        lines.mid(6),
        QStringList({QStringLiteral("'B/' 0 0 1980 40755 0"), QStringLiteral("'a.png' 0 0 1980 100644 6"),
                     QStringLiteral("'z.txt' 8 0 1980 100644 18"),
                     QStringLiteral("'\\u6e2f' 8 2048 1980 100644 4"),
                     QStringLiteral("'\\xa0' 8 0 1980 100644 8")}));
}

void tst_ApkEditor::equalContentIsTakenOver()
{
    ApkEditor editor;
    QVERIFY(editor.open(path("foreign.apk")));
    QVERIFY(editor.write(path("one.apk"), {}));
    const qint64 all = editor.takenOver();
    write("text", QByteArray(3000, 't'));
    QVERIFY(editor.write(path("two.apk"),
                         {{"AndroidManifest.xml", path("text"), {}}, {"res/icon.png", {}, noise(5001)}}));
    QCOMPARE(editor.takenOver(), all);
    QVERIFY(read("one.apk") == read("two.apk"));
    QVERIFY(editor.write(path("two.apk"), {{"AndroidManifest.xml", {}, QByteArray(3000, 'u')}}));
    QVERIFY(editor.takenOver() < all);
}

void tst_ApkEditor::equalInputGivesEqualBytes()
{
    QVector<ApkChange> changes;
    for (int i = 0; i < 30; ++i)
        changes.append({"assets/" + QByteArray::number(i), {}, noise(i * 40).toHex()});
    make("foreign.apk", "one.apk", changes);
    std::reverse(changes.begin(), changes.end());
    write("elsewhere/other.apk", foreignBase().bytes());
    make("elsewhere/other.apk", "two.apk", changes);
    QVERIFY(read("one.apk") == read("two.apk"));
}

void tst_ApkEditor::packagesOfOneEditorEqualThoseOfSeveral()
{
    const QByteArray text = noise(40000).toHex();
    ApkEditor editor;
    QVERIFY(editor.open(path("foreign.apk")));
    for (const char* last : {"a", "a", "b"}) {
        const QVector<ApkChange> changes{
            {"assets/text.txt", {}, text + last}, {"assets/new", {}, text}, {"new", {}, text}};
        QVERIFY2(editor.write(path("one.apk"), changes), qPrintable(editor.error()));
        make("foreign.apk", "two.apk", changes);
        QVERIFY(read("one.apk") == read("two.apk"));
    }
}

void tst_ApkEditor::storedEntriesBeginWhereAndroidMapsThem()
{
    for (int length = 1; length < 9; ++length) {
        make(
            "foreign.apk", "out.apk",
            {{"AndroidManifest.xml", {}, QByteArray(length, 'x')}, {"lib/x86/libnew.so", {}, noise(length)}});
        const QStringList lines = judged(path("out.apk"));
        QVERIFY2(lines.size() == 7, qPrintable(lines.join(QLatin1Char('\n'))));
        const QString zipalign = QStringLiteral(ZIPALIGN);
        if (!zipalign.endsWith(QLatin1String("NOTFOUND"))) {
            const QByteArray printed = printedBy(
                zipalign, {QStringLiteral("-c"), QStringLiteral("-p"), QStringLiteral("4"), path("out.apk")});
            QVERIFY2(printed.startsWith("0\n"), printed.constData());
        }
    }
    write("unaligned.apk", foreignBase().bytes());
    const QString objection = ApkEditor::objectionTo(path("unaligned.apk"));
    QVERIFY2(objection.endsWith(QLatin1String(" is not aligned")), qPrintable(objection));
}

void tst_ApkEditor::damageIsFoundWhereItIsLookedFor_data()
{
    QTest::addColumn<QByteArray>("damaged");
    QTest::addColumn<bool>("isChanged");
    QTest::newRow("replaced entry") << QByteArray("lib/arm64-v8a/libgame.so") << true;
    QTest::newRow("new entry") << QByteArray("lib/x86/libnew.so") << true;
    QTest::newRow("entry of the base") << QByteArray("res/icon.png") << false;
}

void tst_ApkEditor::damageIsFoundWhereItIsLookedFor()
{
    QFETCH(const QByteArray, damaged);
    QFETCH(const bool, isChanged);
    const QVector<ApkChange> changes{{"lib/arm64-v8a/libgame.so", {}, noise(50000)},
                                     {"lib/x86/libnew.so", {}, noise(30000)},
                                     {"META-INF/OLD.SF", {}, "dropped"}};
    make("foreign.apk", "out.apk", changes);
    QCOMPARE(objectionToChanges(path("out.apk"), changes), QString());

    QByteArray package = read("out.apk");
    const int padding = damaged.endsWith(".so") ? 1 << 14 : 4; // at most
    const int place = package.indexOf(damaged) + damaged.size() + padding + 1000;
    package[place] = static_cast<char>(~package.at(place));
    write("out.apk", package);
    const QString whole = ApkEditor::objectionTo(path("out.apk"));
    QVERIFY2(whole.contains(QString::fromLatin1(damaged)), qPrintable(whole));
    QCOMPARE(objectionToChanges(path("out.apk"), changes), isChanged ? whole : QString());
}

void tst_ApkEditor::signaturesAreDropped_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<bool>("isSigned");
    QTest::newRow("nothing") << QByteArray("assets/x") << QByteArray() << false;
    QTest::newRow("manifest") << QByteArray("META-INF/MANIFEST.MF") << QByteArray() << false;
    QTest::newRow("signature") << QByteArray("META-INF/CERT.SF") << QByteArray() << true;
    QTest::newRow("key") << QByteArray("meta-inf/cert.rsa") << QByteArray() << true;
    QTest::newRow("key below") << QByteArray("META-INF/x/CERT.RSA") << QByteArray() << false;
    QTest::newRow("block") << QByteArray("assets/x") << QByteArray(noise(4000) + "APK Sig Block 42") << true;
}

void tst_ApkEditor::signaturesAreDropped()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QByteArray, block);
    QFETCH(const bool, isSigned);
    SceneArchive base{
        {{"a", "content", false, false, {}}, {name, "content", false, false, {}}}, {}, block, {}, false, {}};
    write("signed.apk", base.bytes());
    ApkEditor editor;
    QVERIFY2(editor.open(path("signed.apk")), qPrintable(editor.error()));
    QCOMPARE(editor.isSigned(), isSigned);
    QVERIFY2(editor.write(path("out.apk"), {{"META-INF/NEW.EC", {}, "dropped"}}), qPrintable(editor.error()));
    QVERIFY(!read("out.apk").contains("APK Sig Block"));
    const bool stays = name.startsWith("assets") || name.contains("/x/");
    QCOMPARE(judged(path("out.apk")).size(), stays ? 2 : 1);
}

void tst_ApkEditor::largeContentGetsItsSizesIntoTheHeader()
{
    write("large.txt", noise(4500000).toHex());
    make("foreign.apk", "out.apk",
         {{"assets/large.txt", path("large.txt"), {}}, {"assets/large.png", path("large.txt"), {}}});
    const QStringList lines = judged(path("out.apk"));
    QVERIFY2(lines.contains(QLatin1String("'assets/large.txt' 8 0 1980 100644 9000000")),
             qPrintable(lines.join(QLatin1Char('\n'))));
    QVERIFY2(lines.contains(QLatin1String("'assets/large.png' 0 0 1980 100644 9000000")),
             qPrintable(lines.join(QLatin1Char('\n'))));
    QCOMPARE(printedBy(QStringLiteral(UNZIP), {QStringLiteral("-tq"), path("out.apk")}).left(2),
             QByteArray("0\n"));
}

void tst_ApkEditor::manyEntriesAndLongNumbersGoInTheLongForm()
{
    QVector<ApkChange> changes;
    for (int i = 0; i < 66000; ++i)
        changes.append({"n/" + QByteArray::number(i), {}, {}});
    make("foreign.apk", "many.apk", changes);
    QCOMPARE(judged(path("many.apk")).size(), 66006);
    // And such an archive is a base, too.
    make("many.apk", "again.apk", {});
    QVERIFY(read("again.apk") == read("many.apk"));

    ZipEntry far;
    far.name = "far";
    far.size = far.packed = Q_INT64_C(5) << 30;
    far.header = Q_INT64_C(6) << 30;
    far.isLong = true;
    QCOMPARE(ZipFormat::localHeader(far).mid(33).toHex(),
             QByteArray("010010000000004001000000"
                        "0000004001000000"));
    QCOMPARE(ZipFormat::centralHeader(far).mid(49).toHex(),
             QByteArray("010018000000004001000000"
                        "0000004001000000"
                        "0000008001000000"));
    QCOMPARE(ZipFormat::endRecords(1, far.header, far.header + 100).size(), 56 + 20 + 22);
}

void tst_ApkEditor::aPackageIsReplacedAndKeepsItsRights()
{
    write("out.apk", "something else");
    const QFile::Permissions rights = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(path("out.apk"), rights));
    make("base.apk", "out.apk", {});
    QVERIFY(read("out.apk") == read("base.apk"));
    constexpr int ownerGroupOthers = 0x7077;
    QCOMPARE(QFile::permissions(path("out.apk")) & ownerGroupOthers, rights);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(),
             3);
}

void tst_ApkEditor::otherProgramsTakeThePackage()
{
    make("base.apk", "out.apk",
         {{"res/drawable-mdpi-v4/icon.png", {}, noise(777)}, {"assets/channel.json", {}, "{}"}});
    const QByteArray badging =
        printedBy(QStringLiteral(AAPT), {QStringLiteral("dump"), QStringLiteral("badging"), path("out.apk")});
    QVERIFY2(badging.startsWith("0\npackage: name='"), badging.constData());
    const QByteArray tested = printedBy(QStringLiteral(UNZIP), {QStringLiteral("-tq"), path("out.apk")});
    QVERIFY2(tested.startsWith("0\nNo errors"), tested.constData());
}

QTEST_GUILESS_MAIN(tst_ApkEditor)
#include "tst_apkeditor.moc"
