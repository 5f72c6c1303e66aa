// SPDX-License-Identifier: MIT
#include "window/channels/jobdocument.h"
#include "window/records/recordspage.h"

#include "messagelog.h"
#include "tickwatch.h"

#include <quenzotool.h>

#include <QtTest>

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTableView>
#include <QToolButton>

class tst_RecordsPage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void fileThatIsNoneIsNamed_data();
    void fileThatIsNoneIsNamed();
    void tablesAndRowsAreShown();
    void filterShowsRowsThatContainIt();
    void headerSorts();
    void scrambledColumnIsShownPlain();
    void whatIsSeenIsExported();
    void nextFileTakesThePlaceOfTheFormer();
    void fileThatIsChosenDuringAReadIsShown();
    void recordsOfAnOpenedJobAreShown();
    void recordsOfItsFirstBuildAreShown();
    void emptyTableShowsItsColumns();
    void oddNamesAreRead();
    void windowTicksOverAHundredThousandRows();

private:
    void open(const QString& file);
    QStringList column(int number) const;
    template <typename Widget> Widget* find(const char* name) const
    {
        return m_page->findChild<Widget*>(QLatin1String(name));
    }

    QTemporaryDir m_folder;
    QString m_file;
    std::unique_ptr<MessageLog> m_messages;
    JobDocument m_document;
    std::unique_ptr<RecordsPage> m_page;
};

namespace {

void perform(const QString& file, const QStringList& statements)
{
    {
        QSqlDatabase database =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("preparation"));
        database.setDatabaseName(file);
        QVERIFY2(database.open(), qPrintable(database.lastError().text()));
        QSqlQuery query(database);
        for (const QString& statement : statements)
            QVERIFY2(query.exec(statement), qPrintable(query.lastError().text()));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("preparation"));
}

} // namespace

void tst_RecordsPage::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QLocale::setDefault(QLocale::c());
    m_file = m_folder.filePath(QStringLiteral("records.db"));
    const QString scrambled = QuenzoTool::ckEncode(QStringLiteral("the harbour's key"));
    perform(m_file,
            {QStringLiteral("CREATE TABLE channel (id INTEGER, name TEXT, note TEXT)"),
             QStringLiteral("INSERT INTO channel VALUES (9, 'Official', NULL), (10, 'harbor', '%1'), "
                            "(2, 'Lighthouse', 'a, \"b\"')")
                 .arg(scrambled),
             QStringLiteral("CREATE TABLE build (number INTEGER, \"start\" TEXT)")});
}

void tst_RecordsPage::init()
{
    m_messages = std::make_unique<MessageLog>();
    m_page = std::make_unique<RecordsPage>(m_document);
    m_page->resize(900, 600);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
}

void tst_RecordsPage::cleanup()
{
    m_page.reset();
    m_document.close();
    QStringList warnings = m_messages->takeWarnings();
    // Of the platform without a screen, about each window with a smallest size.
    warnings.removeAll(QStringLiteral("This plugin does not support propagateSizeHints()"));
    // Of one without a window manager, about each window that is to have the focus before it is there.
    for (const QString& warning : warnings.filter(QStringLiteral("(SetInputFocus)")))
        warnings.removeAll(warning);
    QCOMPARE(warnings, QStringList());
    m_messages.reset();
}

void tst_RecordsPage::open(const QString& file)
{
    auto* const line = find<QLineEdit>("recordsFile");
    line->clear();
    QTest::keyClicks(line, file);
    QTest::keyClick(line, Qt::Key_Return);
}

QStringList tst_RecordsPage::column(int number) const
{
    const QAbstractItemModel* const model = find<QTableView>("rows")->model();
    QStringList cells;
    for (int row = 0; row < model->rowCount(); ++row)
        cells.append(model->index(row, number).data().toString());
    return cells;
}

void tst_RecordsPage::fileThatIsNoneIsNamed_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("exists");
    QTest::newRow("missing") << QByteArray() << false;
    QTest::newRow("text") << QByteArray("this is a text, and no database") << true;
}

void tst_RecordsPage::fileThatIsNoneIsNamed()
{
    QFETCH(const QByteArray, content);
    QFETCH(const bool, exists);
    const QString path = m_folder.filePath(QStringLiteral("other.db"));
    if (exists) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    open(path);
    QTRY_VERIFY(!find<QTableView>("rows")->isVisible());
    const auto labels = m_page->findChildren<QLabel*>();
    QVERIFY2(std::any_of(
                 labels.cbegin(), labels.cend(),
                 [&path](const QLabel* label) { return label->isVisible() && label->text().contains(path); }),
             "no label names the file");
    QCOMPARE(QFile::exists(path), exists);
    QFile::remove(path);
}

void tst_RecordsPage::tablesAndRowsAreShown()
{
    open(m_file);
    auto* const tables = find<QComboBox>("table");
    QTRY_COMPARE_WITH_TIMEOUT(tables->count(), 2, 60000);
    QCOMPARE(tables->currentText(), QStringLiteral("build"));
    tables->setFocus();
    QTest::keyClick(tables, Qt::Key_Down);
    QTRY_COMPARE_WITH_TIMEOUT(column(0).size(), 3, 60000);
    QCOMPARE(
        column(1),
        QStringList({QStringLiteral("Official"), QStringLiteral("harbor"), QStringLiteral("Lighthouse")}));
    const QAbstractItemModel* const model = find<QTableView>("rows")->model();
    QCOMPARE(model->headerData(2, Qt::Horizontal).toString(), QStringLiteral("note"));
}

void tst_RecordsPage::filterShowsRowsThatContainIt()
{
    tablesAndRowsAreShown();
    QTest::keyClicks(find<QLineEdit>("rowFilter"), QStringLiteral("HARB"));
    QTRY_COMPARE(column(1), QStringList(QStringLiteral("harbor")));
    find<QLineEdit>("rowFilter")->clear();
    QTRY_COMPARE(column(1).size(), 3);
}

void tst_RecordsPage::headerSorts()
{
    tablesAndRowsAreShown();
    QHeaderView* const header = find<QTableView>("rows")->horizontalHeader();
    const auto click = [header](int section) {
        const QPoint place(header->sectionViewportPosition(section) + 8, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
    };
    click(0);
    QTRY_COMPARE(column(0), QStringList({QStringLiteral("2"), QStringLiteral("9"), QStringLiteral("10")}));
    click(0);
    QTRY_COMPARE(column(0), QStringList({QStringLiteral("10"), QStringLiteral("9"), QStringLiteral("2")}));
}

void tst_RecordsPage::scrambledColumnIsShownPlain()
{
    tablesAndRowsAreShown();
    QVERIFY(!column(2).contains(QStringLiteral("the harbour's key")));
    auto* const button = find<QToolButton>("scrambledColumns");
    QAction* note = nullptr;
    for (QAction* const action : button->menu()->actions()) {
        if (action->data() == QStringLiteral("note"))
            note = action;
    }
    QVERIFY(note);
    note->trigger();
    QTRY_VERIFY(column(2).contains(QStringLiteral("the harbour's key")));
    QVERIFY2(column(2).contains(QStringLiteral("a, \"b\"")), "a text that nothing has scrambled changed");
    QTest::keyClicks(find<QLineEdit>("rowFilter"), QStringLiteral("harbour's"));
    QTRY_COMPARE(column(1), QStringList(QStringLiteral("harbor")));
}

void tst_RecordsPage::whatIsSeenIsExported()
{
    scrambledColumnIsShownPlain();
    const QString csv = m_folder.filePath(QStringLiteral("channel.csv"));
    QTimer::singleShot(0, m_page.get(), [csv] {
        auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        QVERIFY2(dialog, "nobody asks for a file");
        dialog->selectFile(csv);
        QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
    });
    QTest::mouseClick(find<QPushButton>("saveRows"), Qt::LeftButton);
    QTRY_COMPARE(m_page->workAtHand(), QString());
    QFile file(csv);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("id,name,note\n10,harbor,the harbour's key\n"));
}

void tst_RecordsPage::nextFileTakesThePlaceOfTheFormer()
{
    tablesAndRowsAreShown();
    const QString other = m_folder.filePath(QStringLiteral("second.db"));
    perform(other,
            {QStringLiteral("CREATE TABLE only (word TEXT)"),
             QStringLiteral("INSERT INTO only VALUES ('here')")});
    open(other);
    QTRY_COMPARE_WITH_TIMEOUT(column(0), QStringList(QStringLiteral("here")), 60000);
    QCOMPARE(find<QComboBox>("table")->count(), 1);
}

void tst_RecordsPage::fileThatIsChosenDuringAReadIsShown()
{
    const QString other = m_folder.filePath(QStringLiteral("chosen.db"));
    perform(other,
            {QStringLiteral("CREATE TABLE build (number INTEGER)"),
             QStringLiteral("INSERT INTO build VALUES (6)")});
    m_page->open(m_file);
    m_page->open(other);
    QTRY_COMPARE_WITH_TIMEOUT(column(0), QStringList(QStringLiteral("6")), 60000);
}

void tst_RecordsPage::recordsOfAnOpenedJobAreShown()
{
    QVERIFY(QDir(m_folder.path()).mkdir(QStringLiteral("built")));
    perform(m_folder.filePath(QStringLiteral("built/records.db")),
            {QStringLiteral("CREATE TABLE build (number INTEGER)"),
             QStringLiteral("INSERT INTO build VALUES (7)")});
    QFile job(m_folder.filePath(QStringLiteral("job.json")));
    QVERIFY(job.open(QIODevice::WriteOnly));
    job.write(R"({"game": "G", "base": "g.apk", "channels": [{"folder": "a"}], "output": "built"})");
    job.close();
    QString fault;
    QVERIFY2(m_document.open(job.fileName(), fault), qPrintable(fault));
    QTRY_COMPARE_WITH_TIMEOUT(column(0), QStringList(QStringLiteral("7")), 60000);
}

void tst_RecordsPage::recordsOfItsFirstBuildAreShown()
{
    QFile job(m_folder.filePath(QStringLiteral("new.json")));
    QVERIFY(job.open(QIODevice::WriteOnly));
    job.write(R"({"game": "G", "base": "g.apk", "channels": [{"folder": "a"}], "output": "first"})");
    job.close();
    QString fault;
    m_page->hide();
    QVERIFY2(m_document.open(job.fileName(), fault), qPrintable(fault));
    QVERIFY(QDir(m_folder.path()).mkdir(QStringLiteral("first")));
    perform(m_folder.filePath(QStringLiteral("first/records.db")),
            {QStringLiteral("CREATE TABLE build (number INTEGER)"),
             QStringLiteral("INSERT INTO build VALUES (8)")});
    m_page->show();
    QTRY_COMPARE_WITH_TIMEOUT(column(0), QStringList(QStringLiteral("8")), 60000);
}

void tst_RecordsPage::emptyTableShowsItsColumns()
{
    open(m_file);
    const QAbstractItemModel* const model = find<QTableView>("rows")->model();
    QTRY_COMPARE_WITH_TIMEOUT(model->columnCount(), 2, 60000);
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("start"));
    QVERIFY(!find<QPushButton>("saveRows")->isEnabled());
}

void tst_RecordsPage::oddNamesAreRead()
{
    const QString odd = m_folder.filePath(QStringLiteral("odd.db"));
    perform(odd,
            {QStringLiteral("CREATE TABLE \"it's \"\"odd\"\"; --\" (\"a 'b' \"\"c\"\"\" TEXT)"),
             QStringLiteral("INSERT INTO \"it's \"\"odd\"\"; --\" VALUES ('read')")});
    open(odd);
    QTRY_COMPARE_WITH_TIMEOUT(column(0), QStringList(QStringLiteral("read")), 60000);
}

void tst_RecordsPage::windowTicksOverAHundredThousandRows()
{
    constexpr int rows = 100000;
    const QString many = m_folder.filePath(QStringLiteral("many.db"));
    perform(many,
            {QStringLiteral("CREATE TABLE many (id INTEGER, name TEXT)"),
             QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
                            "INSERT INTO many SELECT i, 'row ' || i FROM n")
                 .arg(rows)});
    const TickWatch watch;
    open(many);
    const auto* const table = find<QTableView>("rows");
    QTRY_COMPARE_WITH_TIMEOUT(table->model()->rowCount(), rows, 60000);
    const QHeaderView* const header = table->horizontalHeader();
    const QPoint place(header->sectionViewportPosition(1) + 8, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
    const auto last = [table] { return table->model()->index(rows - 1, 1).data().toString(); };
    QTRY_COMPARE_WITH_TIMEOUT(last(), QStringLiteral("row 99999"), 60000);
    QTest::keyClicks(find<QLineEdit>("rowFilter"), QStringLiteral("row 123"));
    QTRY_COMPARE_WITH_TIMEOUT(table->model()->rowCount(), 111, 60000);
    find<QLineEdit>("rowFilter")->clear();
    QTRY_COMPARE_WITH_TIMEOUT(table->model()->rowCount(), rows, 60000);
    qInfo("%s", watch.figures().constData());
    QVERIFY2(watch.isWithin(), watch.figures());
}

QTEST_MAIN(tst_RecordsPage)
#include "tst_recordspage.moc"
