// SPDX-License-Identifier: MIT
#include "channelscene.h"

#include "build/buildreport.h"
#include "icons/iconset.h"
#include "saving.h"
#include "wholesave.h"

#include <threadgenerateicon.h>

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QSettings>

class tst_ChannelsPage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void iconsAreThoseThatTheLibraryMakes();
    void iconIsMadeOnceForAllStarts();
    void onlyChangedIconIsMadeAnew();
    void changedPictureMakesItsIconsAnew();
    void filterTakesEachLetter();
    void headerSorts();
    void editInTheTableIsOneStep();
    void refusedEditSaysWhy();
    void sdksArePicked_data();
    void sdksArePicked();
    void noSdksAreNotAskedFor();
    void numberFilesAndEncryptionAreEdited();
    void numbersSortAsNumbers();
    void keysAddCopyMoveAndRemove();
    void severalChannelsAreRemovedTogether();
    void orderOfTheJobIsNeededToMove();
    void outcomesComeFromTheReport();
    void emptyPageSaysWhatToDo();
    void undoneEditsLeaveTheFileAsItWas();
    void tenThousandChannelsAskForWhatIsShown();

private:
    QTemporaryDir m_folder;
};

namespace {

constexpr int patience = 30000; // icons take their time on a machine that does much else

QByteArray jobOfChannels(int count)
{
    QByteArray job = "{\n  \"game\": \"G\",\n  \"icons\": {\"master\": \"icon.png\", \"marks\": \"marks\"},\n"
                     "  \"channels\": [";
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        job += (i > 0 ? ",\n    " : "\n    ");
        job += R"({"folder": "channel)" + number + R"(", "name": "Channel )" + number
            + R"(", "mark": "harbor", "corner": "left-top", "x": )" + QByteArray::number(i / 4 % 400)
            + R"(, "y": -)" + QByteArray::number(i / 1600) + "}";
    }
    return job + "\n  ]\n}\n";
}

QImage iconIn(const ChannelScene& scene, int row)
{
    const QModelIndex index = scene.table()->model()->index(row, ChannelTable::Name);
    return qvariant_cast<QIcon>(index.data(Qt::DecorationRole)).pixmap(96, 96).toImage();
}

// Whether there is an icon, and not the blank in its place.
bool hasIcon(const ChannelScene& scene, int row)
{
    const QImage icon = iconIn(scene, row).convertToFormat(QImage::Format_ARGB32);
    return !icon.isNull() && qAlpha(icon.pixel(icon.rect().center())) != 0;
}

bool hasAllIcons(const ChannelScene& scene)
{
    for (int row = 0; row < scene.table()->model()->rowCount(); ++row) {
        if (!hasIcon(scene, row))
            return false;
    }
    return true;
}

QString bannerOf(const ChannelScene& scene)
{
    const auto* const banner = scene.find<QLabel>("channelsBanner");
    return banner->isVisible() ? banner->text() : QString();
}

} // namespace

void tst_ChannelsPage::initTestCase()
{
    QVERIFY(m_folder.isValid());
    ChannelScene::prepare(m_folder);
}

void tst_ChannelsPage::init()
{
    QSettings().clear();
    QThreadPool::globalInstance()->waitForDone(); // icons of the test before
    QVERIFY(QDir(m_folder.filePath(QStringLiteral("cache"))).removeRecursively());
}

void tst_ChannelsPage::iconsAreThoseThatTheLibraryMakes()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    QTRY_VERIFY2_WITH_TIMEOUT(hasAllIcons(scene), "an icon is missing", patience);
    const QTemporaryDir made;
    ThreadGenerateIcon generator;
    ST_CHANNEL_ICON icon;
    icon.nOffsetX = 6;
    icon.nOffsetY = -6;
    icon.nCorner = IconSet::LeftTop;
    icon.strMarkName = icon.strChannelDir = QStringLiteral("quartz");
    generator.setGameInfo(scene.document().masterPath(), IconSet::RightBottom, 0, 0, IconSet::Android);
    generator.setInfo(scene.document().marksPath(), {icon});
    generator.setOutputDir(made.path() + QLatin1Char('/'));
    generator.setClearDirFirst(false);
    generator.start();
    QVERIFY(generator.wait());
    const QImage wanted(made.filePath(QStringLiteral("quartz/icon96x96.png")));
    QCOMPARE(scene.cell(4, ChannelTable::Folder), QStringLiteral("quartz"));
    QCOMPARE(iconIn(scene, 4).convertToFormat(QImage::Format_ARGB32),
             wanted.convertToFormat(QImage::Format_ARGB32));
}

void tst_ChannelsPage::iconIsMadeOnceForAllStarts()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    QTRY_VERIFY2_WITH_TIMEOUT(hasAllIcons(scene), "an icon is missing", patience);
    QCOMPARE(scene.page().icons().madeCount(), 6);
    JobDocument document;
    ChannelsPage again(document);
    QString fault;
    QVERIFY2(document.open(scene.document().path(), fault), qPrintable(fault));
    again.show();
    auto* const table = again.findChild<QTableView*>(QStringLiteral("channels"));
    const QModelIndex index = table->model()->index(5, ChannelTable::Name);
    QTRY_VERIFY2_WITH_TIMEOUT(
        !qvariant_cast<QIcon>(index.data(Qt::DecorationRole)).pixmap(96, 96).toImage().isNull()
            && qAlpha(qvariant_cast<QIcon>(index.data(Qt::DecorationRole))
                          .pixmap(96, 96)
                          .toImage()
                          .convertToFormat(QImage::Format_ARGB32)
                          .pixel(48, 48))
                != 0,
        "an icon is missing", patience);
    QCOMPARE(again.icons().madeCount(), 0);
}

void tst_ChannelsPage::onlyChangedIconIsMadeAnew()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    QTRY_VERIFY2_WITH_TIMEOUT(hasAllIcons(scene), "an icon is missing", patience);
    const QImage before = iconIn(scene, 1);
    const int made = scene.page().icons().madeCount();
    MarkPlace place;
    place.corner = IconSet::LeftTop;
    scene.document().setPlace({1}, place);
    QTRY_VERIFY2_WITH_TIMEOUT(hasIcon(scene, 1) && iconIn(scene, 1) != before, "the icon stays as it was",
                              patience);
    QCOMPARE(scene.page().icons().madeCount(), made + 1);
    scene.document().undoStack()->undo();
    QTRY_VERIFY2_WITH_TIMEOUT(iconIn(scene, 1) == before, "the icon is not the earlier one", patience);
    QCOMPARE(scene.page().icons().madeCount(), made + 1);
}

void tst_ChannelsPage::changedPictureMakesItsIconsAnew()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    QTRY_VERIFY2_WITH_TIMEOUT(hasAllIcons(scene), "an icon is missing", patience);
    const QImage before = iconIn(scene, 2);
    const int made = scene.page().icons().madeCount();
    const QString path = scene.document().marksPath() + QStringLiteral("/meadow/icon/left-bottom.png");
    QImage mark(path);
    QVERIFY2(!mark.isNull(), qPrintable(path));
    mark.fill(Qt::red);
    QVERIFY(mark.save(path));
    QTRY_VERIFY2_WITH_TIMEOUT(iconIn(scene, 2) != before, "the icon stays as it was", patience);
    QCOMPARE(scene.page().icons().madeCount(), made + 1);
}

void tst_ChannelsPage::filterTakesEachLetter()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    auto* const filter = scene.find<QLineEdit>("channelFilter");
    QTest::mouseClick(filter, Qt::LeftButton);
    QTest::keyClick(filter, 'T'); // in names, folders and SDKs, whatever the case
    QCOMPARE(scene.column(ChannelTable::Folder).join(QLatin1Char(' ')),
             QStringLiteral("official harbor quartz tideway"));
    QTest::keyClicks(filter, QStringLiteral("idew"));
    QCOMPARE(scene.column(ChannelTable::Folder), QStringList{QStringLiteral("tideway")});
    QTest::keyClicks(filter, QStringLiteral("x"));
    const auto* const empty = scene.find<QLabel>("channelsEmpty");
    QVERIFY2(empty->isVisible(), "nothing tells why the table is empty");
    QTest::keyClick(filter, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(filter, Qt::Key_Delete);
    QCOMPARE(scene.table()->model()->rowCount(), 6);
    QVERIFY2(!empty->isVisible(), "the table is hidden");
}

void tst_ChannelsPage::headerSorts()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    const QStringList before = scene.column(ChannelTable::Folder);
    QHeaderView* const header = scene.table()->horizontalHeader();
    const auto click = [header](int column) {
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                          {header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                           header->height() / 2});
    };
    scene.clickCell(2, ChannelTable::Folder);
    click(ChannelTable::Folder);
    QStringList sorted = before;
    sorted.sort();
    if (scene.column(ChannelTable::Folder) != sorted) // the first click may sort the other way round
        click(ChannelTable::Folder);
    QCOMPARE(scene.column(ChannelTable::Folder), sorted);
    QCOMPARE(scene.page().chosen(), QVector<int>{2});
    click(ChannelTable::Folder);
    std::reverse(sorted.begin(), sorted.end());
    QCOMPARE(scene.column(ChannelTable::Folder), sorted);
    QCOMPARE(scene.document().content(), scene.job());
}

void tst_ChannelsPage::editInTheTableIsOneStep()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    scene.clickCell(1, ChannelTable::Name);
    QTest::keyClick(scene.table(), Qt::Key_F2);
    auto* const editor = scene.table()->findChild<QLineEdit*>();
    QVERIFY2(editor, "no editor opens");
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("New name"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(scene.document().nameOf(1), QStringLiteral("New name"), patience);
    QCOMPARE(scene.cell(1, ChannelTable::Name), QStringLiteral("New name"));
    QCOMPARE(scene.document().undoStack()->count(), 1);
    scene.document().undoStack()->undo();
    QCOMPARE(scene.cell(1, ChannelTable::Name), QStringLiteral("Harbor Store"));
}

void tst_ChannelsPage::refusedEditSaysWhy()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    scene.clickCell(1, ChannelTable::Folder);
    QTest::keyClick(scene.table(), Qt::Key_F2);
    auto* const editor = scene.table()->findChild<QLineEdit*>();
    QVERIFY2(editor, "no editor opens");
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("Quartz"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY2_WITH_TIMEOUT(bannerOf(scene).contains(QLatin1String("quartz")), qPrintable(bannerOf(scene)),
                              patience);
    QCOMPARE(scene.document().content(), scene.job());
    scene.document().setName(0, QStringLiteral("Another"));
    QCOMPARE(bannerOf(scene), QString());
}

void tst_ChannelsPage::sdksArePicked_data()
{
    QTest::addColumn<bool>("byKeys");
    QTest::newRow("keys") << true;
    QTest::newRow("mouse") << false;
}

void tst_ChannelsPage::sdksArePicked()
{
    QFETCH(const bool, byKeys);
    ChannelScene scene(R"({"sdks": {"pay": {}, "ads": {}, "push, and pull": {}},
  "channels": [{"folder": "a", "sdks": ["push, and pull", "ads"]}, {"folder": "b"}]})");
    QCOMPARE(scene.show(), QString());
    scene.clickCell(0, ChannelTable::Sdks);
    if (byKeys)
        QTest::keyClick(scene.table(), Qt::Key_F2);
    else
        QTest::mouseDClick(scene.table()->viewport(), Qt::LeftButton, Qt::NoModifier,
                           scene.table()->visualRect(scene.table()->currentIndex()).center());
    auto* const picker = scene.find<QListWidget>("sdkPicker");
    QVERIFY2(picker, "nothing to pick from opens");
    QStringList offered;
    for (int i = 0; i < picker->count(); ++i)
        offered.append(picker->item(i)->text() + QString::number(int(picker->item(i)->checkState())));
    QCOMPARE(offered.join(QLatin1Char(' ')), QStringLiteral("pay0 ads2 push, and pull2"));
    QVERIFY2(picker->parentWidget()->rect().contains(picker->geometry()), "it is cut off");
    for (const int row : {0, 1}) {
        if (byKeys) {
            QTest::keyClick(picker, Qt::Key_Space);
            QTest::keyClick(picker, Qt::Key_Down);
            continue;
        }
        QStyleOptionViewItem option;
        option.rect = picker->visualItemRect(picker->item(row));
        option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
        const QRect box =
            picker->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, picker);
        QTest::mouseClick(picker->viewport(), Qt::LeftButton, Qt::NoModifier, box.center());
    }
    if (byKeys)
        QTest::keyClick(picker, Qt::Key_Return);
    else
        scene.clickCell(1, ChannelTable::Name); // elsewhere
    const QStringList wanted{QStringLiteral("push, and pull"), QStringLiteral("pay")};
    QTRY_COMPARE_WITH_TIMEOUT(scene.document().sdksOf(0), wanted, patience);
    QCOMPARE(scene.cell(0, ChannelTable::Sdks), QStringLiteral("push, and pull, pay"));
    QCOMPARE(scene.document().undoStack()->count(), 1);
    scene.document().undoStack()->undo();
    QCOMPARE(scene.document().content(), scene.job());
}

void tst_ChannelsPage::noSdksAreNotAskedFor()
{
    ChannelScene scene(R"({"channels": [{"folder": "a"}]})");
    QCOMPARE(scene.show(), QString());
    scene.clickCell(0, ChannelTable::Sdks);
    QTest::keyClick(scene.table(), Qt::Key_F2);
    QVERIFY2(!scene.find<QListWidget>("sdkPicker"), "an empty list opens");
}

void tst_ChannelsPage::numberFilesAndEncryptionAreEdited()
{
    ChannelScene scene(R"({"channels": [{"folder": "a"}]})");
    QCOMPARE(scene.show(), QString());
    const auto type = [&scene](int column, const QString& text) {
        scene.clickCell(0, column);
        QTest::keyClick(scene.table(), Qt::Key_F2);
        auto* const editor = scene.table()->findChild<QLineEdit*>();
        QVERIFY2(editor, "no editor opens");
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(scene.cell(0, column), text, patience);
        QTRY_VERIFY(!scene.table()->findChild<QLineEdit*>());
    };
    type(ChannelTable::Number, QStringLiteral("12"));
    type(ChannelTable::Files, QStringLiteral("over"));
    scene.clickCell(0, ChannelTable::Encrypted);
    QTest::keyClick(scene.table(), Qt::Key_Space);
    QTRY_VERIFY(scene.document().isEncrypted(0));
    QVERIFY2(scene.document().content().contains(
                 R"({"folder": "a", "number": 12, "files": "over", "encrypt": true})"),
             scene.document().content().constData());
    QCOMPARE(scene.document().undoStack()->count(), 3);
    scene.document().undoStack()->setIndex(0);
    QCOMPARE(scene.document().content(), scene.job());
    QCOMPARE(scene.cell(0, ChannelTable::Number), QString());
}

void tst_ChannelsPage::numbersSortAsNumbers()
{
    ChannelScene scene(R"({"channels": [{"folder": "a", "number": 10}, {"folder": "b", "number": "9"},
  {"folder": "c"}, {"folder": "d", "number": 2}]})");
    QCOMPARE(scene.show(), QString());
    scene.table()->sortByColumn(ChannelTable::Number, Qt::AscendingOrder);
    QCOMPARE(scene.column(ChannelTable::Folder).join(QLatin1Char(' ')), QStringLiteral("c d b a"));
}

void tst_ChannelsPage::keysAddCopyMoveAndRemove()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    scene.clickCell(1, ChannelTable::Position);
    QTest::keyClick(scene.table(), Qt::Key_D, Qt::ControlModifier);
    QCOMPARE(scene.cell(2, ChannelTable::Folder), QStringLiteral("harbor-2"));
    QCOMPARE(scene.page().chosen(), QVector<int>{2});
    QTest::keyClick(scene.table(), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(scene.table(), Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(scene.cell(0, ChannelTable::Folder), QStringLiteral("harbor-2"));
    QVERIFY2(!scene.find<QPushButton>("moveUpButton")->isEnabled(), "the first one can go up");
    QTest::keyClick(scene.table(), Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(scene.cell(1, ChannelTable::Folder), QStringLiteral("harbor-2"));
    QTest::keyClick(scene.table(), Qt::Key_Delete);
    QCOMPARE(scene.column(ChannelTable::Folder).mid(0, 2),
             (QStringList{QStringLiteral("official"), QStringLiteral("harbor")}));
    QTest::keyClick(scene.table(), Qt::Key_Insert);
    auto* const editor = scene.table()->findChild<QLineEdit*>();
    QVERIFY2(editor, "the new channel's folder is not asked for");
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("fresh"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(scene.cell(2, ChannelTable::Folder), QStringLiteral("fresh"), patience);
    QCOMPARE(scene.document().channelCount(), 7);
}

void tst_ChannelsPage::severalChannelsAreRemovedTogether()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    scene.clickCell(1, ChannelTable::Name);
    scene.clickCell(3, ChannelTable::Name, Qt::ControlModifier);
    QCOMPARE(scene.page().chosen(), (QVector<int>{1, 3}));
    QTest::mouseClick(scene.find<QPushButton>("removeChannelsButton"), Qt::LeftButton);
    QCOMPARE(scene.document().channelCount(), 4);
    QCOMPARE(scene.document().undoStack()->count(), 1);
    scene.document().undoStack()->undo();
    QCOMPARE(scene.document().channelCount(), 6);
    QCOMPARE(scene.page().chosen(), (QVector<int>{1, 3}));
}

void tst_ChannelsPage::orderOfTheJobIsNeededToMove()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    scene.clickCell(1, ChannelTable::Name);
    QVERIFY2(scene.find<QPushButton>("moveUpButton")->isEnabled(), "it cannot be moved");
    QTest::keyClicks(scene.find<QLineEdit>("channelFilter"), QStringLiteral("a"));
    QVERIFY2(!scene.find<QPushButton>("moveUpButton")->isEnabled(),
             "it can be moved among some of its neighbours");
}

void tst_ChannelsPage::outcomesComeFromTheReport()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    BuildOutcome build;
    build.output = scene.document().outputPath();
    build.end = QDateTime::currentDateTimeUtc();
    ChannelOutcome failed;
    failed.folder = QStringLiteral("harbor");
    failed.outcome = ChannelOutcome::Failed;
    failed.message = QStringLiteral("the disk is full");
    build.channels = {failed};
    QVERIFY(QDir().mkpath(build.output));
    const QString path = build.output + QStringLiteral("/report.json");
    QCOMPARE(saveWhole(path, QJsonDocument(BuildReport::toJson(build)).toJson()), QString());
    QTRY_COMPARE_WITH_TIMEOUT(scene.cell(1, ChannelTable::Outcome), QStringLiteral("Failed"), patience);
    QCOMPARE(scene.table()->model()->index(1, ChannelTable::Outcome).data(Qt::ToolTipRole).toString(),
             failed.message);
    QCOMPARE(scene.cell(0, ChannelTable::Outcome), QString());
    // The next run's, while the page is shown.
    build.channels.first().outcome = ChannelOutcome::Built;
    QCOMPARE(saveWhole(path, QJsonDocument(BuildReport::toJson(build)).toJson()), QString());
    QTRY_COMPARE_WITH_TIMEOUT(scene.cell(1, ChannelTable::Outcome), QStringLiteral("Built"), patience);
}

void tst_ChannelsPage::emptyPageSaysWhatToDo()
{
    ChannelScene scene(R"({"channels": []})");
    QCOMPARE(scene.show(), QString());
    const auto* const empty = scene.find<QLabel>("channelsEmpty");
    QVERIFY2(empty->isVisible() && empty->text().contains(QLatin1String("Add")), qPrintable(empty->text()));
    scene.document().close();
    QVERIFY2(empty->isVisible() && empty->text().contains(QLatin1String("Open")), qPrintable(empty->text()));
    QVERIFY2(!scene.find<QPushButton>("addChannelButton")->isEnabled(), "a channel can be added to no job");
}

void tst_ChannelsPage::undoneEditsLeaveTheFileAsItWas()
{
    ChannelScene scene;
    QCOMPARE(scene.show(), QString());
    scene.clickCell(1, ChannelTable::Position);
    QTest::keyClick(scene.table(), Qt::Key_Delete);
    QTest::keyClick(scene.table(), Qt::Key_D, Qt::ControlModifier);
    QTest::keyClick(scene.table(), Qt::Key_Down, Qt::AltModifier);
    scene.clickCell(0, ChannelTable::Position);
    QTest::keyClick(scene.table(), Qt::Key_Delete);
    QCOMPARE(saveAndWait(scene.document()), QString());
    QCOMPARE(scene.document().undoStack()->count(), 4);
    scene.document().undoStack()->setIndex(0);
    QCOMPARE(saveAndWait(scene.document()), QString());
    QFile file(scene.document().path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), scene.job());
}

void tst_ChannelsPage::tenThousandChannelsAskForWhatIsShown()
{
    ChannelScene scene(jobOfChannels(10000));
    QCOMPARE(scene.show(), QString());
    QCOMPARE(scene.table()->model()->rowCount(), 10000);
    // Four neighbours share a place, and icons are made in batches of eight.
    const int shown = scene.table()->viewport()->height() / scene.table()->rowHeight(0) + 2;
    QTRY_VERIFY2_WITH_TIMEOUT(hasIcon(scene, 0), "the first icon is missing", patience);
    scene.table()->scrollToBottom();
    QTRY_VERIFY2_WITH_TIMEOUT(hasIcon(scene, 9999), "the last icon is missing", patience);
    const int made = scene.page().icons().madeCount();
    QVERIFY2(made <= 2 * (shown / 4 + 2) + 8, qPrintable(QString::number(made)));
}

QTEST_MAIN(tst_ChannelsPage)
#include "tst_channelspage.moc"
