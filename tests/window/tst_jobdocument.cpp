// SPDX-License-Identifier: MIT
#include "window/channels/jobdocument.h"

#include "build/jobtemplate.h"
#include "saving.h"

#include <QtTest>

#include <functional>

class tst_JobDocument : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void sampleIsReadAsARunReadsIt();
    void refusalLeavesTheOpenJobAlone_data();
    void refusalLeavesTheOpenJobAlone();
    void editWritesWhatItChangesAlone_data();
    void editWritesWhatItChangesAlone();
    void undoLeavesNoTrace();
    void placeHasTheDefaultsApplied_data();
    void placeHasTheDefaultsApplied();
    void continuedEditsAreOneStep();
    void defaultsAreTakenAway();
    void editThatChangesNothingIsNoStep();
    void arrangementTellsItsRows();
    void copiesGetFoldersOfTheirOwn();
    void objections_data();
    void objections();
    void foreignChangeIsNotOverwritten();
    void savedJobIsUnmodified();
    void editDuringTheSaveIsUnsaved();
    void savesFollowEachOther();
    void jobInAnotherFolderFindsItsFiles();
    void undoneEditInAnotherFolderFindsItsFiles();

private:
    QString write(const QByteArray& content) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

using Edit = std::function<void(JobDocument& document)>;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray jobOf(const QByteArray& defaults, const QByteArray& channels)
{
    return "{\n  \"future\": [1.50],\n  \"defaults\": {" + defaults
        + "},\n  \"sdks\": {\"//\": \"c\", \"pay\": "
          "{}, \"ads\": {}},\n  \"channels\": [\n    "
        + channels + "\n  ]\n}\n";
}

QStringList foldersOf(const JobDocument& document)
{
    QStringList folders;
    for (int row = 0; row < document.channelCount(); ++row)
        folders.append(document.folderOf(row));
    return folders;
}

MarkPlace placeAt(int corner, std::optional<int> x = {}, std::optional<int> y = {})
{
    return {corner, x, y};
}

} // namespace

Q_DECLARE_METATYPE(Edit)
Q_DECLARE_METATYPE(MarkPlace)

void tst_JobDocument::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

QString tst_JobDocument::write(const QByteArray& content) const
{
    QString path = m_folder->filePath(QStringLiteral("job.json"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qWarning("the job cannot be written");
    return path;
}

void tst_JobDocument::sampleIsReadAsARunReadsIt()
{
    const QString folder = m_folder->filePath(QStringLiteral("sample"));
    QCOMPARE(JobTemplate::write(folder, {}), QString());
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(folder + QStringLiteral("/job.json"), fault), qPrintable(fault));
    QCOMPARE(document.content(), contentOf(document.path()));
    QCOMPARE(document.game(), QStringLiteral("Sky Harbour"));
    QCOMPARE(document.masterPath(), folder + QStringLiteral("/icon.png"));
    QCOMPARE(document.marksPath(), folder + QStringLiteral("/marks"));
    QCOMPARE(document.outputPath(), folder + QStringLiteral("/output"));
    QCOMPARE(document.sdkNames(), QStringList{QStringLiteral("harbourpay")});
    QCOMPARE(document.channelCount(), 6);
    QCOMPARE(document.nameOf(0), QStringLiteral("Official site"));
    QCOMPARE(document.markOf(0), QString());
    QCOMPARE(document.sdksOf(0), QStringList{QStringLiteral("harbourpay")});
    QCOMPARE(document.folderOf(4), QStringLiteral("quartz"));
    QCOMPARE(document.markOf(4), QStringLiteral("quartz"));
    QVERIFY2(document.placeOf(4) == placeAt(0, 6, -6), "another place than the file's");
}

void tst_JobDocument::refusalLeavesTheOpenJobAlone_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("word");
    QTest::newRow("no JSON") << QByteArray("{\"channels\": [}") << QStringLiteral("line 1");
    QTest::newRow("array") << QByteArray("[]") << QStringLiteral("channels");
    QTest::newRow("no channels") << QByteArray("{}") << QStringLiteral("channels");
    QTest::newRow("a text among the channels")
        << QByteArray(R"({"channels": [{}, "a"]})") << QStringLiteral("channels");
    QTest::newRow("twice") << QByteArray(R"({"channels": [], "channels": []})") << QStringLiteral("twice");
}

void tst_JobDocument::refusalLeavesTheOpenJobAlone()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, word);
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf({}, R"({"folder": "a"})")), fault), qPrintable(fault));
    const QSignalSpy opened(&document, &JobDocument::opened);
    const QSignalSpy closed(&document, &JobDocument::closed);
    const QString other = m_folder->filePath(QStringLiteral("other.json"));
    QFile file(other);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QVERIFY2(!document.open(other, fault), "it was opened");
    QVERIFY2(fault.contains(other) && fault.contains(word), qPrintable(fault));
    QVERIFY2(!document.open(m_folder->filePath(QStringLiteral("none.json")), fault),
             "a missing one was opened");
    QCOMPARE(foldersOf(document), QStringList{QStringLiteral("a")});
    QCOMPARE(opened.size() + closed.size(), 0);
}

void tst_JobDocument::editWritesWhatItChangesAlone_data()
{
    QTest::addColumn<QByteArray>("channels");
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QByteArray>("edited");
    const QByteArray two = R"({"folder":"a", "//": "c", "new": 1.0}, {"folder":"b", "corner": 3})";
    QTest::newRow("name") << two << Edit([](JobDocument& job) { job.setName(0, QStringLiteral("A")); })
                          << QByteArray(R"({"folder":"a", "//": "c", "name": "A", "new": 1.0}, )"
                                        R"({"folder":"b", "corner": 3})");
    QTest::newRow("name as the folder") << QByteArray(R"({"folder": "a", "name": "A"})")
                                        << Edit([](JobDocument& job) { job.setName(0, QStringLiteral("a")); })
                                        << QByteArray(R"({"folder": "a"})");
    QTest::newRow("same corner, said as a number")
        << two << Edit([](JobDocument& job) { job.setPlace({1}, placeAt(3, 5, {})); })
        << QByteArray(R"({"folder":"a", "//": "c", "new": 1.0}, {"folder":"b", "corner": 3, "x": 5})");
    QTest::newRow("place in both")
        << two << Edit([](JobDocument& job) {
               job.setPlace({0, 1}, placeAt(0, 5, -7));
           })
        << QByteArray(R"({"folder":"a", "//": "c", "corner": "left-top", "x": 5, "y": -7, "new": 1.0}, )"
                      R"({"folder":"b", "corner": "left-top", "x": 5, "y": -7})");
    QTest::newRow("no place") << two << Edit([](JobDocument& job) {
        job.removePlace({0, 1});
    }) << QByteArray(R"({"folder":"a", "//": "c", "new": 1.0}, {"folder":"b"})");
    QTest::newRow("SDKs") << two << Edit([](JobDocument& job) {
        job.setSdks({1}, {QStringLiteral("pay"), QStringLiteral("ads")});
    })
                          << QByteArray(R"({"folder":"a", "//": "c", "new": 1.0}, )"
                                        R"({"folder":"b", "corner": 3, "sdks": ["pay", "ads"]})");
    QTest::newRow("number") << two << Edit([](JobDocument& job) { job.setNumber(0, QStringLiteral("7")); })
                            << QByteArray(R"({"folder":"a", "//": "c", "number": 7, "new": 1.0}, )"
                                          R"({"folder":"b", "corner": 3})");
    QTest::newRow("number that is a text") << QByteArray(R"({"number": "7"})") << Edit([](JobDocument& job) {
        job.setNumber(0, QStringLiteral("8"));
    }) << QByteArray(R"({"number": "8"})");
    QTest::newRow("number with zeros") << QByteArray(R"({"number": 7})") << Edit([](JobDocument& job) {
        job.setNumber(0, QStringLiteral("007"));
    }) << QByteArray(R"({"number": "007"})");
    QTest::newRow("no number") << QByteArray(R"({"folder": "a", "number": 7})")
                               << Edit([](JobDocument& job) { job.setNumber(0, {}); })
                               << QByteArray(R"({"folder": "a"})");
    QTest::newRow("files") << QByteArray(R"({"folder": "a"})")
                           << Edit([](JobDocument& job) { job.setFiles(0, QStringLiteral("over/a")); })
                           << QByteArray(R"({"folder": "a", "files": "over/a"})");
    QTest::newRow("no files") << QByteArray(R"({"folder": "a", "files": "over/a"})")
                              << Edit([](JobDocument& job) { job.setFiles(0, {}); })
                              << QByteArray(R"({"folder": "a"})");
    QTest::newRow("encryption in both")
        << QByteArray(R"({"folder": "a", "encrypt": true}, {"folder": "b"})") << Edit([](JobDocument& job) {
               job.setEncrypted({0, 1}, true);
           })
        << QByteArray(R"({"folder": "a", "encrypt": true}, {"folder": "b", "encrypt": true})");
    QTest::newRow("no encryption") << QByteArray(R"({"folder": "a", "encrypt": true})")
                                   << Edit([](JobDocument& job) { job.setEncrypted({0}, false); })
                                   << QByteArray(R"({"folder": "a"})");
    QTest::newRow("removal of the first") << two << Edit([](JobDocument& job) { job.removeChannels({0}); })
                                          << QByteArray(R"({"folder":"b", "corner": 3})");
    QTest::newRow("move") << two << Edit([](JobDocument& job) { job.moveChannels({1}, 0); })
                          << QByteArray(R"({"folder":"b", "corner": 3}, )"
                                        R"({"folder":"a", "//": "c", "new": 1.0})");
    QTest::newRow("addition") << two << Edit([](JobDocument& job) { job.addChannel(2); })
                              << QByteArray(two + R"(, {"folder": "channel"})");
}

void tst_JobDocument::editWritesWhatItChangesAlone()
{
    QFETCH(QByteArray, channels);
    QFETCH(Edit, edit);
    QFETCH(QByteArray, edited);
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf({}, channels)), fault), qPrintable(fault));
    edit(document);
    QCOMPARE(saveAndWait(document), QString());
    QCOMPARE(contentOf(document.path()), jobOf({}, edited));
    QCOMPARE(document.undoStack()->count(), 1);
    document.undoStack()->undo();
    QCOMPARE(saveAndWait(document), QString());
    QCOMPARE(contentOf(document.path()), jobOf({}, channels));
}

void tst_JobDocument::undoLeavesNoTrace()
{
    JobDocument document;
    QString fault;
    const QByteArray content = jobOf(
        {}, "{\"folder\": \"a\"},\n\n {\"folder\" :\"b\"} ,{\n\"folder\": \"c\"},\n    {\"folder\": \"d\"}");
    QVERIFY2(document.open(write(content), fault), qPrintable(fault));
    document.moveChannels({0, 2}, 2);
    QCOMPARE(foldersOf(document).join(QLatin1Char(' ')), QStringLiteral("b d a c"));
    document.setPlace({0, 3}, placeAt(1));
    document.removeChannels({0, 2});
    document.addChannel(0);
    document.copyChannels({0, 1});
    document.setFolder(0, QStringLiteral("e"));
    document.removeChannels({0, 1, 2, 3, 4});
    QCOMPARE(document.channelCount(), 0);
    document.addChannel(0);
    const QByteArray end = document.content();
    QCOMPARE(document.undoStack()->count(), 8);
    document.undoStack()->setIndex(0);
    QCOMPARE(document.content(), content);
    document.undoStack()->setIndex(8);
    QCOMPARE(document.content(), end);
    document.undoStack()->setIndex(0);
    QCOMPARE(document.content(), content);
    QVERIFY2(!document.isModified(), "it counts as modified");
}

void tst_JobDocument::placeHasTheDefaultsApplied_data()
{
    QTest::addColumn<QByteArray>("defaults");
    QTest::addColumn<QByteArray>("channel");
    QTest::addColumn<MarkPlace>("place");
    const QByteArray defaults = R"("corner": "left-top", "x": 1, "y": -2)";
    QTest::newRow("nothing said") << QByteArray() << QByteArray() << placeAt(3);
    QTest::newRow("the defaults'") << defaults << QByteArray() << placeAt(0, 1, -2);
    QTest::newRow("one number of its own") << defaults << QByteArray(R"("x": 9)") << placeAt(0, 9, -2);
    QTest::newRow("flush all the same") << defaults << QByteArray(R"("y": null)") << placeAt(0, 1, {});
    QTest::newRow("a corner of its own") << defaults << QByteArray(R"("corner": 2)") << placeAt(2);
    QTest::newRow("corner default") << defaults << QByteArray(R"("corner": "default")") << placeAt(0, 1, -2);
}

void tst_JobDocument::placeHasTheDefaultsApplied()
{
    QFETCH(QByteArray, defaults);
    QFETCH(QByteArray, channel);
    QFETCH(MarkPlace, place);
    JobDocument document;
    QString fault;
    const QByteArray comma = channel.isEmpty() ? "" : ", ";
    QVERIFY2(document.open(write(jobOf(defaults, R"({"folder": "a")" + comma + channel + "}")), fault),
             qPrintable(fault));
    const MarkPlace read = document.placeOf(0);
    QCOMPARE(read.corner, place.corner);
    QCOMPARE(read.x, place.x);
    QCOMPARE(read.y, place.y);
}

void tst_JobDocument::continuedEditsAreOneStep()
{
    JobDocument document;
    QString fault;
    const QByteArray content = jobOf({}, R"({"folder": "a"}, {"folder": "b"})");
    QVERIFY2(document.open(write(content), fault), qPrintable(fault));
    for (const int x : {1, 2, 3})
        document.setPlace({0}, placeAt(3, x), JobDocument::Continued);
    QCOMPARE(document.undoStack()->count(), 1);
    document.setPlace({1}, placeAt(3, 4), JobDocument::Continued);
    QCOMPARE(document.undoStack()->count(), 2);
    document.setPlace({1}, placeAt(3, 5));
    QCOMPARE(document.undoStack()->count(), 3);
    document.setPlace({1}, placeAt(3, 6), JobDocument::Continued);
    QCOMPARE(document.undoStack()->count(), 4); // what was whole stays so
    document.undoStack()->setIndex(1);
    QVERIFY2(document.placeOf(0) == placeAt(3, 3), "the first channel's place is not the last one said");
    document.undoStack()->undo();
    QCOMPARE(document.content(), content);
}

void tst_JobDocument::defaultsAreTakenAway()
{
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf(R"("files": "over", "encrypt": true)", R"({"folder": "a"})")), fault),
             qPrintable(fault));
    QCOMPARE(document.filesOf(0), QStringLiteral("over"));
    QVERIFY2(document.isEncrypted(0), "the defaults' encryption is lost");
    document.setFiles(0, {});
    document.setEncrypted({0}, false);
    QCOMPARE(document.filesOf(0), QString());
    QVERIFY2(!document.isEncrypted(0), "it is still encrypted");
    QVERIFY2(document.content().contains(R"({"folder": "a", "files": null, "encrypt": false})"),
             document.content().constData());
    document.setEncrypted({0}, true);
    QVERIFY2(document.content().contains(R"({"folder": "a", "files": null})"),
             document.content().constData());
}

void tst_JobDocument::editThatChangesNothingIsNoStep()
{
    JobDocument document;
    QString fault;
    QVERIFY2(
        document.open(write(jobOf(R"("mark": "m", "sdks": ["pay"])", R"({"folder": "a", "x": 1.0})")), fault),
        qPrintable(fault));
    document.setFolder(0, QStringLiteral("a"));
    document.setName(0, QStringLiteral("a"));
    document.setMark({0}, QStringLiteral("m"));
    document.setSdks({0}, {QStringLiteral("pay")});
    document.setPlace({0}, document.placeOf(0));
    document.setNumber(0, {});
    document.setFiles(0, {});
    document.setEncrypted({0}, false);
    document.moveChannels({0}, 0);
    QCOMPARE(document.undoStack()->count(), 0);
    document.setMark({0}, {}); // which the defaults would otherwise give it
    QCOMPARE(document.markOf(0), QString());
    QCOMPARE(document.undoStack()->count(), 1);
}

void tst_JobDocument::arrangementTellsItsRows()
{
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf({}, R"({"folder": "a"}, {"folder": "b"}, {"folder": "c"})")), fault),
             qPrintable(fault));
    const QSignalSpy inserted(&document, &JobDocument::channelsInserted);
    const QSignalSpy removed(&document, &JobDocument::channelsRemoved);
    document.removeChannels({2, 0});
    QCOMPARE(removed.size(), 2); // two runs of rows, the last one first
    QCOMPARE(removed.at(0), (QVariantList{2, 2}));
    QCOMPARE(removed.at(1), (QVariantList{0, 0}));
    document.undoStack()->undo();
    QCOMPARE(inserted.size(), 2);
    QCOMPARE(inserted.at(0), (QVariantList{0, 0}));
    QCOMPARE(inserted.at(1), (QVariantList{2, 2}));
    QCOMPARE(foldersOf(document).join(QLatin1Char(' ')), QStringLiteral("a b c"));
}

void tst_JobDocument::copiesGetFoldersOfTheirOwn()
{
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf({}, R"({"folder": "a", "mark": "m"}, {"folder": "A-2"})")), fault),
             qPrintable(fault));
    document.copyChannels({0});
    document.copyChannels({0});
    QCOMPARE(foldersOf(document).join(QLatin1Char(' ')), QStringLiteral("a a-4 a-3 A-2"));
    QCOMPARE(document.markOf(1), QStringLiteral("m"));
}

void tst_JobDocument::objections_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("isFine");
    QTest::newRow("its own") << QStringLiteral("a") << true;
    QTest::newRow("a new one") << QStringLiteral("new") << true;
    QTest::newRow("its own, large letters") << QStringLiteral("A") << true;
    QTest::newRow("another's, large letters") << QStringLiteral("B") << false;
    QTest::newRow("none") << QString() << false;
    QTest::newRow("two folders") << QStringLiteral("a/b") << false;
    QTest::newRow("the run's") << QStringLiteral("slices") << false;
}

void tst_JobDocument::objections()
{
    QFETCH(QString, folder);
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf({}, R"({"folder": "a"}, {"folder": "b"})")), fault),
             qPrintable(fault));
    QTEST(document.objectionToFolder(0, folder).isEmpty(), "isFine");
    QCOMPARE(document.objectionToSdks({QStringLiteral("ads")}), QString());
    QVERIFY2(document.objectionToSdks({QStringLiteral("//")}).contains(QLatin1String("pay, ads")),
             "the SDKs that there are are not named");
    QCOMPARE(document.objectionToNumber(QStringLiteral("123456789")), QString());
    QVERIFY2(!document.objectionToNumber(QStringLiteral("1234567890")).isEmpty(), "ten digits are a number");
    QVERIFY2(!document.objectionToNumber(QStringLiteral("-1")).isEmpty(), "a sign belongs to a number");
    QCOMPARE(document.objectionToPackage(QStringLiteral("com.a")), QString());
    QVERIFY2(!document.objectionToPackage(QStringLiteral("com")).isEmpty(), "one word is a package name");
}

void tst_JobDocument::foreignChangeIsNotOverwritten()
{
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf({}, R"({"folder": "a"})")), fault), qPrintable(fault));
    document.setFolder(0, QStringLiteral("b"));
    const QByteArray foreign = jobOf({}, R"({"folder": "foreign"})");
    const QString path = write(foreign);
    fault = saveAndWait(document);
    QVERIFY2(fault.contains(path), qPrintable(fault));
    QCOMPARE(contentOf(path), foreign);
    QVERIFY2(document.isModified(), "it counts as saved");
    QCOMPARE(saveAndWait(document, path), QString());
    QCOMPARE(contentOf(path), document.content());
}

void tst_JobDocument::savedJobIsUnmodified()
{
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf({}, R"({"folder": "a"})")), fault), qPrintable(fault));
    const QSignalSpy saved(&document, &JobDocument::savedAs);
    QVERIFY2(!document.isModified(), "it is modified at first");
    document.setFolder(0, QStringLiteral("b"));
    QVERIFY2(document.isModified(), "it is not modified by an edit");
    const QString other = m_folder->filePath(QStringLiteral("other.json"));
    QCOMPARE(saveAndWait(document, other), QString());
    QVERIFY2(!document.isModified(), "it is modified behind the save");
    QCOMPARE(saved.size(), 1);
    QCOMPARE(document.path(), other);
    QCOMPARE(saveAndWait(document), QString());
    document.close();
    QVERIFY2(!document.isOpen() && document.channelCount() == 0, "it is open");
}

void tst_JobDocument::editDuringTheSaveIsUnsaved()
{
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf({}, R"({"folder": "a"})")), fault), qPrintable(fault));
    document.setFolder(0, QStringLiteral("b"));
    const QByteArray saved = document.content();
    document.save(&document, [](const QString&) {});
    QVERIFY2(document.isSaving(), "it is saved while everybody waits");
    document.setFolder(0, QStringLiteral("c"));
    QTRY_VERIFY(!document.isSaving());
    QCOMPARE(contentOf(document.path()), saved);
    QVERIFY2(document.isModified(), "the later edit counts as saved");
    document.undoStack()->setIndex(0);
    QVERIFY2(document.isModified(), "the file counts as the one that was opened");
    QCOMPARE(saveAndWait(document), QString());
    QVERIFY2(!document.isModified(), "it is not saved");
}

void tst_JobDocument::savesFollowEachOther()
{
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(jobOf({}, R"({"folder": "a"})")), fault), qPrintable(fault));
    QStringList told;
    const auto end = [&told](const QString& text) { told.append(text); };
    for (const char* const folder : {"b", "c", "d"}) {
        document.setFolder(0, QLatin1String(folder));
        document.save(&document, end);
    }
    QTRY_COMPARE(told.size(), 3);
    QCOMPARE(told.join(QString()), QString());
    QCOMPARE(contentOf(document.path()), jobOf({}, R"({"folder": "d"})"));
    QVERIFY2(!document.isModified(), "it counts as modified");
}

void tst_JobDocument::jobInAnotherFolderFindsItsFiles()
{
    const QByteArray job = R"({
  "//": "c",
  "base": "apk/base.apk",
  "icons": {"master": "../icon.png", "marks": "/marks", "platforms": ["ios"]},
  "sdks": {"//": "c", "pay": {"package": "sdk.zip", "id": 7}},
  "defaults": {"files": "."},
  "channels": [{"folder": "a", "files": "over/a"}, {"folder": "b", "files": null}, {"folder": "new"}],
  "encryption": {"key": "key"},
  "signing": {"keystore": "store", "alias": "base", "password": {"file": "password"}},
  "output": "finished"
}
)";
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("old/over")));
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("new/deep")));
    QVERIFY(QFile::link(m_folder->filePath(QStringLiteral("new/deep")),
                        m_folder->filePath(QStringLiteral("link"))));
    QFile file(m_folder->filePath(QStringLiteral("old/job.json")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(job) > 0);
    file.close();
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(file.fileName(), fault), qPrintable(fault));
    const QString moved = m_folder->filePath(QStringLiteral("link/job.json")); // leads two folders down
    QCOMPARE(saveAndWait(document, moved), QString());
    QByteArray wanted = job;
    wanted.replace("\"apk/base.apk", "\"../../old/apk/base.apk");
    wanted.replace("../icon.png", "../../icon.png");
    wanted.replace("\"sdk.zip", "\"../../old/sdk.zip");
    wanted.replace("\".\"", "\"../../old\"");
    wanted.replace("over/a", "../../old/over/a");
    wanted.replace("\"key\"}", "\"../../old/key\"}");
    wanted.replace("\"store", "\"../../old/store");
    wanted.replace("\"password\"}", "\"../../old/password\"}");
    QCOMPARE(contentOf(moved), wanted);
    QCOMPARE(document.content(), wanted);
    QCOMPARE(document.path(), moved);
    QCOMPARE(contentOf(file.fileName()), job);
    QVERIFY2(!document.isModified(), "it counts as modified");
    // Beside the old one again, everything is as it was.
    QCOMPARE(saveAndWait(document, m_folder->filePath(QStringLiteral("old/copy.json"))), QString());
    QCOMPARE(document.content(), job);
}

void tst_JobDocument::undoneEditInAnotherFolderFindsItsFiles()
{
    const QByteArray content =
        jobOf({}, R"({"folder": "a", "files": "over"}, {"folder": "b", "files": "over"})");
    JobDocument document;
    QString fault;
    QVERIFY2(document.open(write(content), fault), qPrintable(fault));
    document.setFolder(0, QStringLiteral("c"));
    document.removeChannels({1});
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("new")));
    QCOMPARE(saveAndWait(document, m_folder->filePath(QStringLiteral("new/job.json"))), QString());
    document.undoStack()->setIndex(0);
    QByteArray wanted = content;
    wanted.replace("\"over", "\"../over");
    QCOMPARE(document.content(), wanted);
    document.undoStack()->setIndex(2);
    QCOMPARE(document.content(), jobOf({}, R"({"folder": "c", "files": "../over"})"));
}

QTEST_GUILESS_MAIN(tst_JobDocument)
#include "tst_jobdocument.moc"
