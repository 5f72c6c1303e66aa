// SPDX-License-Identifier: MIT
#include "window/channels/markpreview.h"

#include "channelscene.h"

#include "icons/iconset.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>

class tst_MarkPreview : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void dragBringsTheMarkToAnotherCorner_data();
    void dragBringsTheMarkToAnotherCorner();
    void numbersFollowTheDrag();
    void escapeEndsTheDrag();
    void arrowKeysMoveByPixels();
    void numbersMoveTheMark();
    void cornerIsChosenByKeys();
    void flushIsTakenAndGiven();
    void defaultsHoldAgain();
    void markIsChosenForSeveralChannels();
    void missingIconIsToldAsASentence();
    void undoneDragsLeaveTheFileAsItWas();

private:
    QTemporaryDir m_folder;
};

namespace {

constexpr int patience = 60000; // icons take their time on a machine that does much else

constexpr int harbor = 1; // the sample's channel with a mark and no corner of its own

// Shows the page with the channel chosen and its pictures there.
QString begin(ChannelScene& scene, int channel = harbor)
{
    QString fault = scene.show();
    scene.clickCell(channel, ChannelTable::Name);
    auto* const preview = scene.find<MarkPreview>("markPreview");
    if (fault.isEmpty() && !QTest::qWaitFor([preview] { return !preview->markRect().isEmpty(); }, patience))
        fault = QStringLiteral("the preview shows no mark");
    return fault;
}

// Where the mark's middle lies when it is flush in a corner.
QPointF middleAt(const MarkPreview& preview, int corner)
{
    QRectF mark({}, preview.markRect().size());
    const QRectF icon = preview.iconRect();
    mark.moveTo(IconSet::isRight(corner) ? icon.right() - mark.width() : icon.left(),
                IconSet::isBottom(corner) ? icon.bottom() - mark.height() : icon.top());
    return mark.center();
}

} // namespace

void tst_MarkPreview::initTestCase()
{
    QVERIFY(m_folder.isValid());
    ChannelScene::prepare(m_folder);
}

void tst_MarkPreview::init()
{
    QSettings().clear();
}

void tst_MarkPreview::dragBringsTheMarkToAnotherCorner_data()
{
    QTest::addColumn<int>("corner");
    QTest::addColumn<QByteArray>("written");
    QTest::newRow("left top") << int(IconSet::LeftTop) << QByteArray(R"("corner": "left-top"})");
    QTest::newRow("left bottom") << int(IconSet::LeftBottom) << QByteArray(R"("corner": "left-bottom"})");
    QTest::newRow("right top") << int(IconSet::RightTop) << QByteArray(R"("corner": "right-top"})");
}

void tst_MarkPreview::dragBringsTheMarkToAnotherCorner()
{
    QFETCH(int, corner);
    QFETCH(QByteArray, written);
    ChannelScene scene;
    QCOMPARE(begin(scene), QString());
    auto* const preview = scene.find<MarkPreview>("markPreview");
    QCOMPARE(preview->place().corner, int(IconSet::RightBottom));
    scene.drag(preview, preview->markRect().center(), middleAt(*preview, corner) + QPointF(3, -3));
    MarkPlace flush;
    flush.corner = corner;
    QCOMPARE(scene.document().placeOf(harbor).corner, corner);
    QVERIFY2(scene.document().placeOf(harbor) == flush, "it does not lie flush in the corner");
    QCOMPARE(scene.find<QComboBox>("corner")->currentIndex(), corner);
    QVERIFY2(scene.find<QCheckBox>("flush")->isChecked(), "the numbers do not say that it is flush");
    QCOMPARE(scene.document().undoStack()->count(), 1);
    QVERIFY2(scene.document().content().contains(written), scene.document().content().constData());
}

void tst_MarkPreview::numbersFollowTheDrag()
{
    ChannelScene scene;
    QCOMPARE(begin(scene), QString());
    auto* const preview = scene.find<MarkPreview>("markPreview");
    const auto* const left = scene.find<QSpinBox>("left");
    const auto* const top = scene.find<QSpinBox>("top");
    const QPointF grip = preview->markRect().center();
    scene.press(preview, grip);
    scene.moveTo(preview, grip - QPointF(30, 20));
    scene.moveTo(preview, grip - QPointF(60, 40));
    const QPoint onTheWay = preview->markPosition();
    QCOMPARE(QPoint(left->value(), top->value()), onTheWay);
    QCOMPARE(scene.document().undoStack()->count(), 0);
    scene.moveTo(preview, grip - QPointF(90, 60));
    QVERIFY2(preview->markPosition() != onTheWay, "the mark stays");
    scene.release(preview, grip - QPointF(90, 60));
    const MarkPlace place = scene.document().placeOf(harbor);
    QCOMPARE(place.x, std::optional<int>(left->value()));
    QCOMPARE(place.y, std::optional<int>(-top->value()));
    QCOMPARE(QPoint(left->value(), top->value()), preview->markPosition());
    QCOMPARE(scene.document().undoStack()->count(), 1);
}

void tst_MarkPreview::escapeEndsTheDrag()
{
    ChannelScene scene;
    QCOMPARE(begin(scene), QString());
    auto* const preview = scene.find<MarkPreview>("markPreview");
    preview->setFocus();
    const QPointF grip = preview->markRect().center();
    const QPoint before = preview->markPosition();
    scene.press(preview, grip);
    scene.moveTo(preview, grip - QPointF(60, 60));
    QVERIFY2(preview->markPosition() != before, "the mark stays");
    QTest::keyClick(preview, Qt::Key_Escape);
    scene.release(preview, grip - QPointF(60, 60));
    QCOMPARE(preview->markPosition(), before);
    QCOMPARE(scene.document().content(), scene.job());
}

void tst_MarkPreview::arrowKeysMoveByPixels()
{
    ChannelScene scene;
    QCOMPARE(begin(scene), QString());
    auto* const preview = scene.find<MarkPreview>("markPreview");
    const QPoint before = preview->markPosition();
    preview->setFocus();
    QTest::keyClick(preview, Qt::Key_Left);
    QTest::keyClick(preview, Qt::Key_Left);
    QTest::keyClick(preview, Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(preview->markPosition(), before - QPoint(2, 10));
    QCOMPARE(scene.document().placeOf(harbor).x, std::optional<int>(before.x() - 2));
    QCOMPARE(scene.document().placeOf(harbor).y, std::optional<int>(10 - before.y()));
    QCOMPARE(scene.document().undoStack()->count(), 1);
    scene.document().undoStack()->undo();
    QCOMPARE(preview->markPosition(), before);
}

void tst_MarkPreview::numbersMoveTheMark()
{
    ChannelScene scene;
    QCOMPARE(begin(scene), QString());
    auto* const preview = scene.find<MarkPreview>("markPreview");
    auto* const left = scene.find<QSpinBox>("left");
    const int top = preview->markPosition().y();
    left->setFocus();
    left->selectAll();
    QTest::keyClicks(left, QStringLiteral("17"));
    QTest::keyClick(left, Qt::Key_Return);
    QCOMPARE(preview->markPosition(), QPoint(17, top));
    QCOMPARE(scene.document().placeOf(harbor).x, std::optional<int>(17));
    QCOMPARE(scene.document().placeOf(harbor).y, std::optional<int>());
    QTest::keyClick(left, Qt::Key_Up);
    QCOMPARE(preview->markPosition(), QPoint(18, top));
    QVERIFY2(!scene.find<QCheckBox>("flush")->isChecked(), "it counts as flush");
}

void tst_MarkPreview::cornerIsChosenByKeys()
{
    ChannelScene scene;
    QCOMPARE(begin(scene), QString());
    auto* const corner = scene.find<QComboBox>("corner");
    corner->setFocus();
    QTest::keyClick(corner, Qt::Key_Up);
    QCOMPARE(scene.document().placeOf(harbor).corner, int(IconSet::RightTop));
    QCOMPARE(scene.find<QSpinBox>("top")->value(), 0);
}

void tst_MarkPreview::flushIsTakenAndGiven()
{
    ChannelScene scene;
    constexpr int quartz = 4; // whose place the sample gives in numbers
    QCOMPARE(begin(scene, quartz), QString());
    auto* const flush = scene.find<QCheckBox>("flush");
    QTRY_COMPARE_WITH_TIMEOUT(scene.find<QSpinBox>("left")->value(), 6, patience);
    QVERIFY2(!flush->isChecked(), "it counts as flush");
    flush->setFocus();
    QTest::keyClick(flush, Qt::Key_Space);
    QCOMPARE(scene.find<MarkPreview>("markPreview")->markPosition(), QPoint(0, 0));
    QVERIFY2(!scene.document().placeOf(quartz).x, "the job keeps the number");
    QTest::keyClick(flush, Qt::Key_Space);
    QCOMPARE(scene.document().placeOf(quartz).x, std::optional<int>(0));
    QCOMPARE(scene.document().placeOf(quartz).y, std::optional<int>(0));
}

void tst_MarkPreview::defaultsHoldAgain()
{
    ChannelScene scene;
    constexpr int meadow = 2; // which has a corner of its own
    QCOMPARE(begin(scene, meadow), QString());
    auto* const defaults = scene.find<QPushButton>("defaultPlace");
    QVERIFY2(defaults->isEnabled(), "the channel has no place of its own");
    QTest::mouseClick(defaults, Qt::LeftButton);
    QCOMPARE(scene.document().placeOf(meadow).corner, int(IconSet::RightBottom));
    QCOMPARE(scene.find<QComboBox>("corner")->currentIndex(), int(IconSet::RightBottom));
    QVERIFY2(!defaults->isEnabled(), "the channel still has a place of its own");
}

void tst_MarkPreview::markIsChosenForSeveralChannels()
{
    ChannelScene scene;
    QCOMPARE(begin(scene), QString());
    scene.clickCell(2, ChannelTable::Name, Qt::ShiftModifier);
    QCOMPARE(scene.page().chosen(), (QVector<int>{1, 2}));
    auto* const mark = scene.find<QComboBox>("mark");
    QTRY_VERIFY2_WITH_TIMEOUT(mark->findText(QStringLiteral("nimbus")) > 0, "the marks are not offered",
                              patience);
    mark->setFocus();
    QTest::keyClicks(mark, QStringLiteral("nimbus"));
    QCOMPARE(scene.document().markOf(1), QStringLiteral("nimbus"));
    QCOMPARE(scene.document().markOf(2), QStringLiteral("nimbus"));
    scene.document().undoStack()->setIndex(0);
    QCOMPARE(scene.document().content(), scene.job());
}

void tst_MarkPreview::missingIconIsToldAsASentence()
{
    ChannelScene scene(R"({"icons": {"master": "none.png"}, "channels": [{"folder": "a"}]})");
    QCOMPARE(scene.show(), QString());
    const auto* const fault = scene.find<QLabel>("markFault");
    QTRY_VERIFY2_WITH_TIMEOUT(fault->isVisible() && fault->text().contains(QLatin1String("none.png")),
                              qPrintable(fault->text()), patience);
}

void tst_MarkPreview::undoneDragsLeaveTheFileAsItWas()
{
    ChannelScene scene;
    QCOMPARE(begin(scene), QString());
    auto* const preview = scene.find<MarkPreview>("markPreview");
    scene.drag(preview, preview->markRect().center(), middleAt(*preview, IconSet::LeftTop));
    scene.drag(preview, preview->markRect().center(), preview->iconRect().center());
    scene.drag(preview, preview->markRect().center(), middleAt(*preview, IconSet::RightTop));
    QCOMPARE(scene.document().undoStack()->count(), 3);
    while (scene.document().undoStack()->canUndo())
        scene.document().undoStack()->undo();
    QCOMPARE(scene.document().content(), scene.job());
    QVERIFY2(!scene.document().isModified(), "the job counts as modified");
}

QTEST_MAIN(tst_MarkPreview)
#include "tst_markpreview.moc"
