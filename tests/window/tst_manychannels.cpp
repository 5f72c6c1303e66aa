// SPDX-License-Identifier: MIT
#include "build/jobtemplate.h"
#include "tickwatch.h"
#include "window/channels/channelspage.h"
#include "window/mainwindow.h"

#include <QtTest>

#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QTableView>

#include <functional>

// The window over a job of ten thousand channels: nothing that a person does holds it up.
class tst_ManyChannels : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void nothingHoldsTheWindow();

private:
    void step(const char* what, const std::function<void()>& act);
    template <class Part> Part* find(const char* name) const
    {
        return m_window->findChild<Part*>(QLatin1String(name));
    }
    QTableView* table() const { return find<QTableView>("channels"); }
    int shownCount() const { return table()->model()->rowCount(); }
    void open(const QString& path);
    void scroll();
    void sortBy(int column);
    void choose(const char* box, int item);

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindow> m_window;
    QStringList m_slow;
};

namespace {

constexpr int count = 10000;
constexpr int patience = 60000;

// Machines differ, and what is not optimised takes longer for the same; the figures are printed.
#if defined(__OPTIMIZE__)
constexpr qint64 limit = 2 * TickWatch::mostMs;
#else
constexpr qint64 limit = 6 * TickWatch::mostMs;
#endif

QByteArray jobOfChannels()
{
    const char* const marks[] = {"harbor", "quartz", "meadow", "tideway"};
    QByteArray job = "{\n  \"game\": \"G\",\n  \"base\": \"skyharbour.apk\",\n"
                     "  \"icons\": {\"master\": \"icon.png\", \"marks\": \"marks\"},\n"
                     "  \"sdks\": {\"pay\": {\"package\": \"packages/harbourpay.zip\"}},\n  \"channels\": [";
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i * 7919 % count); // in no order
        job += (i > 0 ? ",\n    " : "\n    ");
        job += R"({"folder": "channel)" + number + R"(", "name": "Channel )" + number + R"(", "number": )"
            + number + R"(, "package": "com.quenzo.game.store)" + number + R"(", "mark": ")" + marks[i % 4]
            + R"(", "corner": "left-top", "x": )" + QByteArray::number(i / 4 % 400) + R"(, "y": -)"
            + QByteArray::number(i / 1600) + R"(, "sdks": ["pay"]})";
    }
    return job + "\n  ]\n}\n";
}

} // namespace

void tst_ManyChannels::initTestCase()
{
    QVERIFY(m_folder.isValid());
    qputenv("XDG_CACHE_HOME", QFile::encodeName(m_folder.filePath(QStringLiteral("cache"))));
    QCoreApplication::setOrganizationName(QStringLiteral("quenzo"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_folder.path());
    QSettings().setValue(QStringLiteral("language"), QStringLiteral("en"));
}

// Does one thing, lets the window do what it does about it, and notes when it computed too long at one go.
void tst_ManyChannels::step(const char* what, const std::function<void()>& act)
{
    const TickWatch watch;
    QTest::qWait(10);
    act();
    QTest::qWait(100);
    qInfo("%s: %s", what, watch.figures().constData());
    if (!watch.isWithin(limit))
        m_slow.append(QLatin1String(what) + QStringLiteral(": ") + QString::fromLatin1(watch.figures()));
}

void tst_ManyChannels::open(const QString& path)
{
    m_window->take(path);
    QTRY_COMPARE_WITH_TIMEOUT(shownCount(), count, patience);
}

void tst_ManyChannels::scroll()
{
    QScrollBar* const bar = table()->verticalScrollBar();
    for (int i = 0; i < 60; ++i) {
        bar->triggerAction(i % 2 == 0 ? QAbstractSlider::SliderPageStepAdd
                                      : QAbstractSlider::SliderSingleStepAdd);
        QTest::qWait(15);
    }
    for (const Qt::Key key : {Qt::Key_End, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_PageDown}) {
        QTest::keyClick(table(), key);
        QTest::qWait(15);
    }
}

void tst_ManyChannels::sortBy(int column)
{
    const QHeaderView* const header = table()->horizontalHeader();
    QTest::mouseClick(
        header->viewport(), Qt::LeftButton, Qt::NoModifier,
        {header->sectionViewportPosition(column) + header->sectionSize(column) / 2, header->height() / 2});
}

void tst_ManyChannels::choose(const char* box, int item)
{
    auto* const combo = find<QComboBox>(box);
    combo->setFocus();
    QTest::keyClick(combo, Qt::Key_Home);
    for (int i = 0; i < item; ++i) {
        QTest::qWait(5);
        QTest::keyClick(combo, Qt::Key_Down);
    }
}

void tst_ManyChannels::nothingHoldsTheWindow()
{
    QCOMPARE(JobTemplate::write(m_folder.filePath(QStringLiteral("many")), {}), QString());
    const QString path = m_folder.filePath(QStringLiteral("many/job.json"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(jobOfChannels()) > 0);
    file.close();
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    m_window->show(m_window->findChild<ChannelsPage*>());
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    auto* const filter = find<QLineEdit>("channelFilter");

    step("open", [this, path] { open(path); });
    step("scroll", [this] { scroll(); });
    step("sort by name", [this] { sortBy(ChannelTable::Name); });
    step("sort the other way", [this] { sortBy(ChannelTable::Name); });
    step("sort by package", [this] { sortBy(ChannelTable::Package); });
    for (const char letter : {'7', '7', '1'})
        step("filter", [filter, letter] { QTest::keyClick(filter, letter); });
    const int found = shownCount();
    QVERIFY2(found > 0 && found < count / 10, qPrintable(QString::number(found)));
    step("filter no more", [filter] { filter->clear(); });
    step("choose all", [this] { QTest::keyClick(table(), Qt::Key_A, Qt::ControlModifier); });
    step("place all", [this] { choose("corner", 3); });
    step("mark all", [this] { choose("mark", 1); });
    step("scroll again", [this] { scroll(); });
    for (const char* const action : {"undo", "redo"})
        step(action, [this, action] { find<QAction>(action)->trigger(); });
    filter->setText(QStringLiteral("77"));
    table()->setFocus();
    QTest::keyClick(table(), Qt::Key_A, Qt::ControlModifier);
    step("remove some", [this] { QTest::keyClick(table(), Qt::Key_Delete); });
    QTRY_COMPARE(shownCount(), 0);
    step("bring some back", [this] { find<QAction>("undo")->trigger(); });
    step("show all", [filter] { filter->clear(); });
    QTRY_COMPARE(shownCount(), count);
    QTest::keyClick(table(), Qt::Key_A, Qt::ControlModifier);
    step("remove all", [this] { QTest::keyClick(table(), Qt::Key_Delete); });
    QTRY_COMPARE(shownCount(), 0);
    step("bring all back", [this] { find<QAction>("undo")->trigger(); });
    QTRY_COMPARE(shownCount(), count);
    step("save", [this] { find<QAction>("save")->trigger(); });
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isWindowModified(), patience);
    QVERIFY2(m_slow.isEmpty(), qPrintable(m_slow.join(QLatin1String("; "))));
}

QTEST_MAIN(tst_ManyChannels)
#include "tst_manychannels.moc"
