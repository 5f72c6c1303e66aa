// SPDX-License-Identifier: MIT
#include "icons/iconplan.h"

#include <QtTest>

class tst_IconPlan : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void equalDecorationsArePutTogether();
    void anotherPositionIsAnotherDecoration();
    void laterChannelOfAFolderWins();
    void lastChannelsGroupComesLast();
    void channelWithoutFolderCountsForTheEnd();
    void takingEmptiesThePlan();
};

static const Decoration none;
static const Decoration red{QStringLiteral("/marks/red"), 10, -20};
static const Decoration blue{QStringLiteral("/marks/blue"), 10, -20};

void tst_IconPlan::equalDecorationsArePutTogether()
{
    IconPlan plan;
    plan.add(red, QStringLiteral("/a"));
    plan.add(none, QStringLiteral("/b"));
    plan.add(red, QStringLiteral("/c"));
    const QVector<IconPlan::Group> groups = plan.take();
    QCOMPARE(groups.size(), 2);
    QCOMPARE(groups.at(1).decoration, red);
    QCOMPARE(groups.at(1).folders, QStringList({QStringLiteral("/a"), QStringLiteral("/c")}));
    QCOMPARE(groups.at(0).folders, QStringList(QStringLiteral("/b")));
}

void tst_IconPlan::anotherPositionIsAnotherDecoration()
{
    IconPlan plan;
    plan.add(red, QStringLiteral("/a"));
    plan.add({red.markPath, red.y, red.x}, QStringLiteral("/b"));
    plan.add({red.markPath, red.x, red.y - 1}, QStringLiteral("/c"));
    QCOMPARE(plan.take().size(), 3);
}

void tst_IconPlan::laterChannelOfAFolderWins()
{
    IconPlan plan;
    plan.add(red, QStringLiteral("/a"));
    plan.add(blue, QStringLiteral("/a"));
    plan.add(none, QStringLiteral("/b"));
    plan.add(red, QStringLiteral("/b"));
    const QVector<IconPlan::Group> groups = plan.take();
    for (const IconPlan::Group& group : groups) {
        const QStringList expected = group.decoration == blue ? QStringList(QStringLiteral("/a"))
            : group.decoration == red                         ? QStringList(QStringLiteral("/b"))
                                                              : QStringList();
        QCOMPARE(group.folders, expected);
    }
}

void tst_IconPlan::lastChannelsGroupComesLast()
{
    IconPlan plan;
    plan.add(red, QStringLiteral("/a"));
    plan.add(blue, QStringLiteral("/b"));
    plan.add(none, QStringLiteral("/c"));
    plan.add(red, QStringLiteral("/d"));
    QCOMPARE(plan.take().last().decoration, red);
}

void tst_IconPlan::channelWithoutFolderCountsForTheEnd()
{
    IconPlan plan;
    plan.add(red, QStringLiteral("/a"));
    plan.add(blue, QString());
    const QVector<IconPlan::Group> groups = plan.take();
    QCOMPARE(groups.last().decoration, blue);
    QCOMPARE(groups.last().folders, QStringList());
}

void tst_IconPlan::takingEmptiesThePlan()
{
    IconPlan plan;
    QVERIFY(plan.take().isEmpty());
    plan.add(red, QStringLiteral("/a"));
    QVERIFY(!plan.isEmpty());
    QCOMPARE(plan.take().size(), 1);
    QVERIFY(plan.isEmpty());
    plan.add(blue, QStringLiteral("/a"));
    const QVector<IconPlan::Group> groups = plan.take();
    QCOMPARE(groups.size(), 1);
    QCOMPARE(groups.first().folders, QStringList(QStringLiteral("/a")));
}

QTEST_APPLESS_MAIN(tst_IconPlan)
#include "tst_iconplan.moc"
