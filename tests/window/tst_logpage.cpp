// SPDX-License-Identifier: MIT
#include "messagelog.h"
#include "runroot.h"
#include "window/log/logpage.h"

#include <quenzobase.h>

#include <QtTest>

#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>

#include <algorithm>
#include <memory>

namespace {

QStringList withoutPlatform(QStringList texts)
{
    const auto isOfThePlatform = [](const QString& text) {
        return text.contains(QLatin1String("This plugin does not support"));
    };
    texts.erase(std::remove_if(texts.begin(), texts.end(), isOfThePlatform), texts.end());
    return texts;
}

} // namespace

// The page of the log, driven by mouse and keys.
class tst_LogPage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void emptyLogSaysWhatWillStandThere();
    void logAppearsAsItIsWritten();
    void logThatIsReplacedIsReadAnew();
    void entryOfSeveralLinesIsOne();
    void endOfALongLogIsShown();
    void messagesAppearAndReachTheHandlerBefore();
    void searchLeavesWhatFits();
    void kindsLeaveWhatFits_data();
    void kindsLeaveWhatFits();
    void chosenEntriesAreCopied();
    void clearedViewLeavesTheFile();
    void oldEntriesGiveWay();

private:
    template <typename Widget> Widget* find(const char* name) const
    {
        return m_page->findChild<Widget*>(QLatin1String(name));
    }
    QStringList texts() const;
    void click(const QString& text) const;
    void open();
    void openWith(const QStringList& entries);

    std::unique_ptr<MessageLog> m_messages;
    std::unique_ptr<LogPage> m_page;
    QTableView* m_table = nullptr;
};

void tst_LogPage::init()
{
    RunRoot::clear();
    m_messages = std::make_unique<MessageLog>();
}

void tst_LogPage::cleanup()
{
    m_page.reset();
    m_messages.reset();
    RunRoot::clear();
}

void tst_LogPage::open()
{
    m_page = std::make_unique<LogPage>();
    m_page->resize(900, 600);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
    m_table = find<QTableView>("log");
}

void tst_LogPage::openWith(const QStringList& entries)
{
    for (const QString& entry : entries)
        QuenzoBase::Log(entry);
    open();
    QTRY_COMPARE(texts(), entries);
}

QStringList tst_LogPage::texts() const
{
    QStringList texts;
    const QAbstractItemModel* const model = m_table->model();
    for (int row = 0; row < model->rowCount(); ++row)
        texts.append(model->index(row, LogModel::Text).data().toString());
    // The platform without a screen warns of what it lacks, which is a message like others.
    return withoutPlatform(texts);
}

void tst_LogPage::click(const QString& text) const
{
    const QModelIndex first = m_table->model()->index(0, LogModel::Text);
    const QModelIndex found = m_table->model()->match(first, Qt::DisplayRole, text).value(0);
    QTest::mouseClick(m_table->viewport(), Qt::LeftButton, {}, m_table->visualRect(found).center());
}

void tst_LogPage::emptyLogSaysWhatWillStandThere()
{
    open();
    const auto* const empty = find<QLabel>("logEmpty");
    const auto isEmptyOnceCleared = [this, empty] {
        QTest::mouseClick(find<QPushButton>("logClear"), Qt::LeftButton);
        return empty->isVisible();
    };
    QTRY_VERIFY(isEmptyOnceCleared());
    QVERIFY2(empty->text().startsWith(QStringLiteral("Nothing has been logged yet")),
             qPrintable(empty->text()));
    QVERIFY(!find<QPushButton>("logCopy")->isEnabled());
}

void tst_LogPage::logAppearsAsItIsWritten()
{
    open();
    QuenzoBase::Log(QStringLiteral("the first"));
    QTRY_COMPARE(texts(), QStringList{QStringLiteral("the first")});
    QVERIFY(m_table->isVisible());
    QuenzoBase::Log(QStringLiteral("the second"));
    QTRY_COMPARE(texts(), (QStringList{QStringLiteral("the first"), QStringLiteral("the second")}));
}

void tst_LogPage::logThatIsReplacedIsReadAnew()
{
    openWith({QStringLiteral("of the old file, which is the longer one"), QStringLiteral("and more of it")});
    QVERIFY(QDir(RunRoot::path() + QStringLiteral("/log")).removeRecursively());
    QuenzoBase::Log(QStringLiteral("of the new file"));
    QTRY_COMPARE(texts().value(2), QStringLiteral("of the new file"));
    QCOMPARE(texts().size(), 3);
}

void tst_LogPage::entryOfSeveralLinesIsOne()
{
    QuenzoBase::Log(QStringLiteral("above\nbelow"));
    open();
    QTRY_COMPARE(texts(), QStringList{QStringLiteral("above")});
    click(QStringLiteral("above"));
    QCOMPARE(find<QPlainTextEdit>("logEntry")->toPlainText(), QStringLiteral("above\nbelow"));
}

void tst_LogPage::endOfALongLogIsShown()
{
    const QByteArray line = "2026-03-01T09:30:00.125 " + QByteArray(1000, 'x') + '\n';
    RunRoot::write(QStringLiteral("log/quenzotool.log"),
                   line.repeated(3000) + "2026-03-01T09:30:00.125 the last\n");
    open();
    QTRY_VERIFY(!texts().isEmpty());
    QCOMPARE(texts().constLast(), QStringLiteral("the last"));
    QCOMPARE(texts().constFirst(), QString(1000, QLatin1Char('x'))); // whole
    QVERIFY2(texts().size() < 1100, qPrintable(QString::number(texts().size())));
}

void tst_LogPage::messagesAppearAndReachTheHandlerBefore()
{
    open();
    qWarning("something is amiss");
    std::unique_ptr<QThread> thread(QThread::create([] { qWarning("elsewhere, too"); }));
    thread->start();
    QVERIFY(thread->wait());
    const QStringList wanted{QStringLiteral("something is amiss"), QStringLiteral("elsewhere, too")};
    QTRY_COMPARE(texts(), wanted);
    QCOMPARE(withoutPlatform(m_messages->takeWarnings()), wanted);
}

void tst_LogPage::searchLeavesWhatFits()
{
    openWith({QStringLiteral("an apple"), QStringLiteral("a pear"), QStringLiteral("an APPLE tree")});
    QTest::keyClicks(find<QLineEdit>("logSearch"), QStringLiteral("apple"));
    QCOMPARE(texts(), (QStringList{QStringLiteral("an apple"), QStringLiteral("an APPLE tree")}));
    QTest::keyClicks(find<QLineEdit>("logSearch"), QStringLiteral("s"));
    QVERIFY(texts().isEmpty());
    QVERIFY2(find<QLabel>("logEmpty")->text().startsWith(QStringLiteral("No entry fits")),
             qPrintable(find<QLabel>("logEmpty")->text()));
}

void tst_LogPage::kindsLeaveWhatFits_data()
{
    QTest::addColumn<int>("downs");
    QTest::addColumn<QStringList>("left");
    const QString log = QStringLiteral("of the log");
    const QString detail = QStringLiteral("a detail");
    const QString warning = QStringLiteral("a warning");
    QTest::newRow("everything") << 0 << QStringList{log, detail, warning};
    QTest::newRow("the tool's log") << 1 << QStringList{log};
    QTest::newRow("warnings") << 2 << QStringList{warning};
}

void tst_LogPage::kindsLeaveWhatFits()
{
    QFETCH(const int, downs);
    openWith({QStringLiteral("of the log")});
    qDebug("a detail");
    qWarning("a warning");
    QTRY_COMPARE(texts().size(), 3);
    for (int i = 0; i < downs; ++i)
        QTest::keyClick(find<QComboBox>("logKinds"), Qt::Key_Down);
    QTEST(texts(), "left");
}

void tst_LogPage::chosenEntriesAreCopied()
{
    openWith({QStringLiteral("two")});
    qWarning("three");
    QTRY_COMPARE(texts().size(), 2);
    auto* const copy = find<QPushButton>("logCopy");
    QTest::mouseClick(copy, Qt::LeftButton);
    const auto copied = [] {
        return withoutPlatform(QGuiApplication::clipboard()->text().split(QLatin1Char('\n')));
    };
    const QStringList all = copied();
    QCOMPARE(all.size(), 2);
    QVERIFY2(all.at(0).endsWith(QStringLiteral(" Log: two")), qPrintable(all.at(0)));
    QVERIFY2(all.at(1).endsWith(QStringLiteral(" Warning: three")), qPrintable(all.at(1)));
    click(QStringLiteral("three"));
    QTest::mouseClick(copy, Qt::LeftButton);
    QCOMPARE(copied(), all.mid(1));
}

void tst_LogPage::clearedViewLeavesTheFile()
{
    openWith({QStringLiteral("before")});
    QTest::mouseClick(find<QPushButton>("logClear"), Qt::LeftButton);
    QVERIFY(texts().isEmpty());
    QVERIFY(RunRoot::log().endsWith(" before\n"));
    QuenzoBase::Log(QStringLiteral("after"));
    QTRY_COMPARE(texts(), QStringList{QStringLiteral("after")});
}

void tst_LogPage::oldEntriesGiveWay()
{
    LogModel model;
    QVector<LogEntry> entries(LogModel::capacity - 1);
    entries.append({QString(), LogEntry::Tool, QStringLiteral("the last of many")});
    model.append(entries);
    model.append({{QString(), LogEntry::Tool, QStringLiteral("one more")}});
    QVERIFY2(model.rowCount() <= LogModel::capacity, qPrintable(QString::number(model.rowCount())));
    const auto fromEnd = [&model](int n) {
        return model.index(model.rowCount() - n, LogModel::Text).data().toString();
    };
    QCOMPARE(fromEnd(2), QStringLiteral("the last of many"));
    QCOMPARE(fromEnd(1), QStringLiteral("one more"));
}

QTEST_MAIN(tst_LogPage)
#include "tst_logpage.moc"
