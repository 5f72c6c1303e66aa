// SPDX-License-Identifier: MIT
#include "archivescene.h"

#include "build/apkeditor.h"
#include "build/zipnames.h"

#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <random>

// Which archives are taken for a base, and which are not: nobody vouches for them.
class tst_ApkEditorBases : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void oddButSoundArchivesAreBases_data();
    void oddButSoundArchivesAreBases();
    void damagedAndHostileArchivesAreRefused_data();
    void damagedAndHostileArchivesAreRefused();
    void whatIsNoFileIsRefused_data();
    void whatIsNoFileIsRefused();
    void placesBehindFourGigabytesAreFound();
    void bombsAreRefused();
    void cutArchivesAreRefused();
    void damagedContentIsFoundByTheCheck_data();
    void damagedContentIsFoundByTheCheck();
    void namesThatLeadElsewhereAreRefused_data();
    void namesThatLeadElsewhereAreRefused();
    void mutatedArchivesDoNoHarm();

private:
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    void write(const char* name, const QByteArray& content) const;
    QStringList files() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

using Lie = std::function<void(SceneHeader& local, SceneHeader& central)>;

// Some of everything.
SceneArchive plain()
{
    return {{{"AndroidManifest.xml", QByteArray(900, 'm'), true, false, {}, -1},
             {"assets/", "", false, false, {}, -1},
             {"assets/a.txt", "deflated, deflated, deflated", true, true, {}, -1},
             {"lib/x86/liba.so", QByteArray(1000, 'l'), false, false, {}, -1},
             {"res/icon.png", "stored", false, false, {}, -1}},
            {},
            {},
            {},
            false,
            {}};
}

// The last entry told otherwise than it is.
QByteArray lyingAbout(const Lie& lie)
{
    SceneArchive archive = plain();
    archive.entries.last().lie = lie;
    return archive.bytes();
}

QByteArray withEnd(const std::function<void(SceneEnd&)>& lie)
{
    SceneArchive archive = plain();
    archive.lie = lie;
    return archive.bytes();
}

QByteArray longField(const QVector<quint64>& values)
{
    QByteArray field("\1\0", 2);
    field.append(static_cast<char>(values.size() * 8)).append('\0');
    for (const quint64 value : values) {
        for (int shift = 0; shift < 64; shift += 8)
            field.append(static_cast<char>(value >> shift));
    }
    return field;
}

} // namespace

void tst_ApkEditorBases::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_ApkEditorBases::write(const char* name, const QByteArray& content) const
{
    QFile target(path(name));
    QVERIFY(target.open(QIODevice::WriteOnly) && target.write(content) == content.size());
}

QStringList tst_ApkEditorBases::files() const
{
    return QDir(m_folder->path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void tst_ApkEditorBases::oddButSoundArchivesAreBases_data()
{
    QTest::addColumn<QByteArray>("archive");
    const auto row = [](const char* title, const std::function<void(SceneArchive&)>& change) {
        SceneArchive archive = plain();
        change(archive);
        QTest::newRow(title) << archive.bytes();
    };
    row("plain", [](SceneArchive&) {});
    row("comment", [](SceneArchive& archive) { archive.comment = QByteArray(65535, 'c'); });
    row("bytes in front", [](SceneArchive& archive) { archive.before = QByteArray(5001, 'b'); });
    row("long records", [](SceneArchive& archive) { archive.isLong = true; });
    row("long records, bytes in front", [](SceneArchive& archive) {
        archive.isLong = true;
        archive.before = "front";
    });
    row("numbers in the long records alone", [](SceneArchive& archive) {
        archive.isLong = true;
        archive.lie = [](SceneEnd& end) { end = {0, 0xffff, 0xffff, 0xffffffff, 0xffffffff, 0}; };
    });
    row("sizes in long fields", [](SceneArchive& archive) {
        archive.entries.last().lie = [](SceneHeader& local, SceneHeader& central) {
            local.extra = central.extra =
                QByteArray("\7\7\0\0", 4) + longField({central.size, central.packed});
            local.size = local.packed = central.size = central.packed = 0xffffffff;
        };
    });
    row("place in a long field", [](SceneArchive& archive) {
        archive.entries.last().lie = [](SceneHeader&, SceneHeader& central) {
            central.extra = longField({central.offset});
            central.offset = 0xffffffff;
        };
    });
    row("padding that is no field", [](SceneArchive& archive) {
        archive.entries.last().lie = [](SceneHeader& local, SceneHeader&) {
            local.extra = QByteArray(3, '\0');
        };
    });
    row("sizes behind and in front", [](SceneArchive& archive) {
        archive.entries[2].lie = [](SceneHeader& local, SceneHeader& central) { local = central; };
    });
    row("all sizes behind", [](SceneArchive& archive) {
        for (SceneEntry& entry : archive.entries)
            entry.hasSizesBehind = true;
    });
    row("rights of DOS", [](SceneArchive& archive) {
        archive.entries.last().lie = [](SceneHeader&, SceneHeader& central) { central.attributes = 0x20; };
    });
    row("empty entries", [](SceneArchive& archive) {
        archive.entries.append({"e/deflated", "", true, false, {}, -1});
        archive.entries.append({"e/stored", "", false, false, {}, -1});
    });
}

void tst_ApkEditorBases::oddButSoundArchivesAreBases()
{
    QFETCH(const QByteArray, archive);
    write("base.apk", archive);
    ApkEditor editor;
    QVERIFY2(editor.open(path("base.apk")), qPrintable(editor.error()));
    QVERIFY2(editor.write(path("out.apk"), {{"assets/new", {}, "new"}, {"res/icon.png", {}, "other"}}),
             qPrintable(editor.error()));
    QCOMPARE(ApkEditor::objectionTo(path("out.apk")), QString());
    const QStringList lines = judged(path("out.apk"));
    QVERIFY2(lines.size() == editor.entries().size() + 1, qPrintable(lines.join(QLatin1Char('\n'))));
    QVERIFY2(lines.contains(QLatin1String("'assets/a.txt' 8 0 2025 100640 28")),
             qPrintable(lines.join(QLatin1Char('\n'))));
}

void tst_ApkEditorBases::damagedAndHostileArchivesAreRefused_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* text, const QByteArray& archive) {
        QTest::addRow("%s, %d bytes", text, archive.size()) << archive << QString::fromLatin1(text);
    };
    const auto named = [](const QByteArray& name) {
        SceneArchive archive = plain();
        archive.entries.append({name, "", false, false, {}, -1});
        return archive.bytes();
    };
    row("this is not a zip archive", "");
    row("this is not a zip archive", QByteArray(100000, 'x'));
    row("this is not a zip archive", "PK\5\6");
    row("something behind its end", plain().bytes() + 'x');
    row("one part of several", withEnd([](SceneEnd& end) { end.disk = 1; }));
    row("one part of several", withEnd([](SceneEnd& end) { end.countHere = 4; }));
    row("not complete", withEnd([](SceneEnd& end) { end.count = end.countHere = 6; }));
    row("not complete", withEnd([](SceneEnd& end) { end.count = end.countHere = 4; }));
    row("not complete", withEnd([](SceneEnd& end) { end.size += 1; }));
    row("not complete", withEnd([](SceneEnd& end) { end.size = 100; }));
    row("not complete", withEnd([](SceneEnd& end) { end.offset += 1; }));
    row("directory of more than", withEnd([](SceneEnd& end) { end.size = 0x7fffffff; }));
    SceneArchive longOne = plain();
    longOne.isLong = true;
    longOne.lie = [](SceneEnd& end) { end.count = end.countHere = 3; };
    row("not complete", longOne.bytes());
    row("not complete", longOne.bytes().replace("PK\6\6", "PK\6\5"));
    longOne.lie = [](SceneEnd& end) { end.offset -= 1; };
    row("not complete", longOne.bytes());
    row("there twice", named("res/icon.png"));
    row("there twice", named("res/icon.png/"));
    row("lies in a file", named("res/icon.png/x"));
    for (const char* name : {"../x", "a/../../x", "/etc/x", "C:x", "a\\x", "a//x", "./x", ""})
        row("not a plain path", named(name));
    row("not a plain path", named(QByteArray("a\0b", 3)));
    row("not a plain path", named(QByteArray("d/").repeated(101) + "x"));
    row("no local header", lyingAbout([](SceneHeader& local, SceneHeader&) { local.name = "res/icoN.png"; }));
    row("no local header", lyingAbout([](SceneHeader& local, SceneHeader&) { local.name += "x"; }));
    row("no local header", lyingAbout([](SceneHeader&, SceneHeader& central) { central.offset += 1; }));
    row("headers disagree", lyingAbout([](SceneHeader& local, SceneHeader&) { local.method = 8; }));
    row("headers disagree", lyingAbout([](SceneHeader& local, SceneHeader&) { local.flags = 1; }));
    row("headers disagree", lyingAbout([](SceneHeader& local, SceneHeader&) { local.size += 1; }));
    row("headers disagree", lyingAbout([](SceneHeader& local, SceneHeader&) { local.packed = 0; }));
    row("headers disagree", lyingAbout([](SceneHeader& local, SceneHeader&) { local.crc += 1; }));
    row("headers disagree",
        lyingAbout([](SceneHeader& local, SceneHeader&) { local.size = local.packed = 0xffffffff; }));
    row("not complete",
        lyingAbout([](SceneHeader&, SceneHeader& central) { central.size = central.packed = 0xffffffff; }));
    row("not complete", lyingAbout([](SceneHeader&, SceneHeader& central) {
            central.size = 0xffffffff;
            central.extra = longField({Q_UINT64_C(0xfffffffffffffff0)});
        }));
    row("not complete", lyingAbout([](SceneHeader&, SceneHeader& central) { central.offset = 0x7fffffff; }));
    row("not complete", lyingAbout([](SceneHeader&, SceneHeader& central) { central.disk = 1; }));
    row("is encrypted",
        lyingAbout([](SceneHeader& local, SceneHeader& central) { local.flags = central.flags = 1; }));
    row("unknown method 12",
        lyingAbout([](SceneHeader& local, SceneHeader& central) { local.method = central.method = 12; }));
    row("a link or a device",
        lyingAbout([](SceneHeader&, SceneHeader& central) { central.attributes = 0120777U << 16; }));
    row("another size than its own",
        lyingAbout([](SceneHeader& local, SceneHeader& central) { local.size = central.size = 7; }));
    row("cut off", lyingAbout([](SceneHeader& local, SceneHeader& central) {
            local.size = central.size = local.packed = central.packed = 50000;
        }));
    SceneArchive folder = plain();
    folder.entries[1].content = "content";
    row("folder 'assets/' has content", folder.bytes());
    SceneArchive shared = plain();
    shared.entries[3].lie = [](SceneHeader& local, SceneHeader& central) {
        local.size = local.packed = central.size = central.packed = 1010;
    };
    row("shares bytes", shared.bytes());
    row("unpacks to more than", lyingAbout([](SceneHeader& local, SceneHeader& central) {
            local.method = central.method = 8;
            local.flags = central.flags = 8;
            local.size = 0;
            central.size = 0xfffffff0;
        }));
}

void tst_ApkEditorBases::damagedAndHostileArchivesAreRefused()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const QString, text);
    write("base.apk", archive);
    ApkEditor editor;
    const bool opened = editor.open(path("base.apk"));
    QVERIFY2(editor.error().contains(text), qPrintable(editor.error()));
    QVERIFY(!opened);
    QVERIFY2(editor.error().startsWith(path("base.apk")), qPrintable(editor.error()));
    QVERIFY2(!editor.error().contains(QLatin1Char('\n')), qPrintable(editor.error()));
    QCOMPARE(ApkEditor::objectionTo(path("base.apk")), editor.error());
    QVERIFY(!editor.write(path("out.apk"), {}));
    QCOMPARE(files(), QStringList(QStringLiteral("base.apk")));
}

void tst_ApkEditorBases::whatIsNoFileIsRefused_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << QStringLiteral("absent.apk") << QStringLiteral("No such file");
    QTest::newRow("folder") << QStringLiteral(".") << QStringLiteral("not a regular file");
    QTest::newRow("pipe") << QStringLiteral("pipe") << QStringLiteral("not a regular file");
}

void tst_ApkEditorBases::whatIsNoFileIsRefused()
{
    QFETCH(const QString, file);
    QFETCH(const QString, text);
    QCOMPARE(printedBy(QStringLiteral("mkfifo"), {path("pipe")}), QByteArray("0\n"));
    ApkEditor editor;
    QVERIFY(!editor.open(m_folder->filePath(file)));
    QVERIFY2(editor.error().contains(text), qPrintable(editor.error()));
}

// The bytes between are none that a disk has to keep.
void tst_ApkEditorBases::placesBehindFourGigabytesAreFound()
{
    constexpr qint64 gap = (Q_INT64_C(4) << 30) + 12345;
    SceneArchive archive = plain();
    archive.isLong = true;
    const QByteArray bytes = archive.bytes();
    const int first = bytes.indexOf("PK\3\4", 4);
    // All but the first entry lie behind the gap.
    for (int i = 1; i < archive.entries.size(); ++i) {
        archive.entries[i].lie = [](SceneHeader&, SceneHeader& central) {
            central.extra = longField({central.offset + static_cast<quint64>(gap)});
            central.offset = 0xffffffff;
        };
    }
    archive.lie = [](SceneEnd& end) { end.offset = 0xffffffff; };
    QByteArray moved = archive.bytes();
    const int record = moved.lastIndexOf("PK\6\6");
    const qint64 start = qFromLittleEndian<qint64>(moved.constData() + record + 48) + gap;
    qToLittleEndian(start, moved.data() + record + 48);

    QFile file(path("base.apk"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write(moved.left(first)) == first && file.seek(first + gap));
    QVERIFY(file.write(moved.mid(first)) == moved.size() - first);
    file.close();
    ApkEditor editor;
    QVERIFY2(editor.open(path("base.apk")), qPrintable(editor.error()));
    QVERIFY2(editor.write(path("out.apk"), {{"res/icon.png", {}, "other"}}), qPrintable(editor.error()));
    const QStringList lines = judged(path("out.apk"));
    QVERIFY2(lines.contains(QLatin1String("'res/icon.png' 0 0 2025 100640 5")),
             qPrintable(lines.join(QLatin1Char('\n'))));
    QCOMPARE(lines.size(), 5);
}

void tst_ApkEditorBases::bombsAreRefused()
{
    SceneArchive bomb = plain();
    bomb.entries.append({"assets/zeros", QByteArray(70 << 20, '\0'), true, false, {}, -1});
    write("base.apk", bomb.bytes());
    ApkEditor editor;
    QVERIFY(!editor.open(path("base.apk")));
    QVERIFY2(editor.error().contains(QLatin1String("more than 200 times its size")),
             qPrintable(editor.error()));
    // Nor are they made.
    write("plain.apk", plain().bytes());
    QVERIFY(editor.open(path("plain.apk")));
    QVERIFY(!editor.write(path("out.apk"), {{"assets/zeros", {}, bomb.entries.last().content}}));
    QVERIFY2(editor.error().endsWith(QLatin1String("more than can be unpacked again")),
             qPrintable(editor.error()));
    QCOMPARE(files(), QStringList({QStringLiteral("base.apk"), QStringLiteral("plain.apk")}));
}

void tst_ApkEditorBases::cutArchivesAreRefused()
{
    const QByteArray whole = plain().bytes();
    write("base.apk", whole);
    for (int length = whole.size() - 1; length >= 0; --length) {
        QVERIFY(QFile::resize(path("base.apk"), length));
        ApkEditor editor;
        QVERIFY2(!editor.open(path("base.apk")), qPrintable(QString::number(length)));
        QVERIFY2(editor.error().startsWith(path("base.apk")), qPrintable(editor.error()));
    }
}

void tst_ApkEditorBases::damagedContentIsFoundByTheCheck_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* text, const char* name, const Lie& lie) {
        SceneArchive archive = plain();
        archive.entries.append({"assets/text", "\xff\xff\xff no stream of deflate", false, false, {}, -1});
        for (SceneEntry& entry : archive.entries) {
            if (entry.name == name)
                entry.lie = lie;
        }
        QTest::addRow("%s in %s", text, name)
            << archive.bytes() << QStringLiteral("'%1': it %2").arg(QLatin1String(name), QLatin1String(text));
    };
    const auto crc = [](SceneHeader& local, SceneHeader& central) { local.crc = ++central.crc; };
    row("is damaged (size or checksum)", "res/icon.png", crc);
    row("is damaged (size or checksum)", "AndroidManifest.xml", crc);
    row("is damaged (size or checksum)", "AndroidManifest.xml",
        [](SceneHeader& local, SceneHeader& central) { local.size = ++central.size; });
    row("unpacks to more than it declares", "AndroidManifest.xml",
        [](SceneHeader& local, SceneHeader& central) { local.size = --central.size; });
    row("is damaged or cut off", "AndroidManifest.xml",
        [](SceneHeader& local, SceneHeader& central) { local.packed = --central.packed; });
    row("is damaged or cut off", "assets/text",
        [](SceneHeader& local, SceneHeader& central) { local.method = central.method = 8; });
}

void tst_ApkEditorBases::damagedContentIsFoundByTheCheck()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const QString, text);
    write("base.apk", archive);
    const QString objection = ApkEditor::objectionTo(path("base.apk"));
    QVERIFY2(objection.contains(text), qPrintable(objection));
    // It is taken over unread, and found again in what was made of it.
    ApkEditor editor;
    QVERIFY2(editor.open(path("base.apk")), qPrintable(editor.error()));
    QVERIFY2(editor.write(path("out.apk"), {}), qPrintable(editor.error()));
    QVERIFY(ApkEditor::objectionTo(path("out.apk")).contains(text));
}

void tst_ApkEditorBases::namesThatLeadElsewhereAreRefused_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    for (const char* name : {"../x", "/x", "a/../x", "a//x", "", "a\\x", "c:/x", "."})
        QTest::newRow(name) << QByteArray(name) << QStringLiteral("is not a plain path");
    QTest::newRow("too long") << QByteArray(65536, 'n') << QStringLiteral("is not a plain path");
    QTest::newRow("below a file") << QByteArray("res/icon.png/x") << QStringLiteral("lies in a file");
    QTest::newRow("a folder as a file") << QByteArray("assets") << QStringLiteral("is there twice");
    QTest::newRow("above entries") << QByteArray("lib/x86") << QStringLiteral("lies in a file");
    QTest::newRow("folder") << QByteArray("new/") << QStringLiteral("has content");
}

void tst_ApkEditorBases::namesThatLeadElsewhereAreRefused()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QString, text);
    write("base.apk", plain().bytes());
    ApkEditor editor;
    QVERIFY2(editor.open(path("base.apk")), qPrintable(editor.error()));
    QVERIFY(!editor.write(path("out.apk"), {{name, {}, "content"}}));
    QVERIFY2(editor.error().contains(text), qPrintable(editor.error()));
    QVERIFY(!editor.write(path("out.apk"), {{"twice", {}, "a"}, {"twice", {}, "b"}}));
    QVERIFY2(editor.error().contains(QLatin1String("'twice' is wanted twice")), qPrintable(editor.error()));
    QCOMPARE(files(), QStringList(QStringLiteral("base.apk")));
}

// 2,000 archives that differ from a sound one here and there; the numbers come out the same in every run.
void tst_ApkEditorBases::mutatedArchivesDoNoHarm()
{
    SceneArchive archive = plain();
    archive.comment = "comment";
    const QByteArray sound = archive.bytes();
    archive.isLong = true;
    const QByteArray soundLong = archive.bytes();
    std::mt19937 random(20);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    int opened = 0;
    int written = 0;
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes = round % 3 == 0 ? soundLong : sound;
        for (int times = 1 + below(4); times > 0; --times) {
            // Most of what matters is behind the contents.
            const int at =
                below(2) == 0 ? below(bytes.size()) : bytes.size() - 1 - below(qMin(bytes.size(), 500));
            switch (below(5)) {
            case 0:
                bytes[at] = static_cast<char>(below(256));
                break;
            case 1:
                bytes[at] = static_cast<char>(bytes.at(at) ^ 1 << below(8));
                break;
            case 2:
                bytes[at] = below(2) == 0 ? '\xff' : '\0';
                break;
            case 3:
                bytes.remove(at, 1 + below(30));
                break;
            default:
                bytes.insert(at, bytes.mid(below(bytes.size()), below(60)));
                break;
            }
            if (bytes.isEmpty())
                bytes = "x";
        }
        write("base.apk", bytes);
        ApkEditor editor;
        const QString objection = ApkEditor::objectionTo(path("base.apk"));
        if (!editor.open(path("base.apk"))) {
            QCOMPARE(editor.error(), objection);
            QVERIFY2(objection.startsWith(path("base.apk")) && !objection.contains(QLatin1Char('\n')),
                     qPrintable(objection));
            continue;
        }
        ++opened;
        QVector<QByteArray> names;
        for (const ApkEntry& entry : editor.entries())
            names.append(entry.name);
        QCOMPARE(ZipNames::objectionTo(names), QString());
        if (editor.write(path("out.apk"), {{"AndroidManifest.xml", {}, "changed"}, {"new", {}, "new"}})) {
            ++written;
            ApkEditor again;
            QVERIFY2(again.open(path("out.apk")),
                     qPrintable(QStringLiteral("round %1: %2").arg(round).arg(again.error())));
            QVERIFY(again.entries().size() <= editor.entries().size() + 2);
            QVERIFY(QFile::remove(path("out.apk")));
        }
        QCOMPARE(files(), QStringList(QStringLiteral("base.apk")));
    }
    // Neither always nor never, or the mutations would try nothing.
    QVERIFY2(opened > 100 && opened < 1900 && written > 50,
             qPrintable(QStringLiteral("%1, %2").arg(opened).arg(written)));
}

QTEST_GUILESS_MAIN(tst_ApkEditorBases)
#include "tst_apkeditorbases.moc"
