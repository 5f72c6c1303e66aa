// SPDX-License-Identifier: MIT
#include "build/jobtemplate.h"
#include "window/mainwindow.h"
#include "window/page.h"

#include <QtTest>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QSettings>
#include <QStyleFactory>

#include <cmath>

namespace {

QString named(const QWidget* widget)
{
    return QStringLiteral("%1 \"%2\"")
        .arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName());
}

// What a reader of the screen would call it.
QString spokenName(QWidget* widget)
{
    const QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(widget);
    return interface == nullptr ? QString() : interface->text(QAccessible::Name);
}

// What in the tree below has no name for a reader of the screen, but for cells that are empty: of how many in
// all.
int collectNameless(QAccessibleInterface* node, const QString& above, QStringList& nameless)
{
    if (node == nullptr || node->state().invisible)
        return 0;
    const QString name = node->text(QAccessible::Name);
    const QString here = above
        + QStringLiteral("/%1 \"%2\"")
              .arg(QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(node->role())),
                   name);
    const auto* const widget = qobject_cast<QWidget*>(node->object());
    const bool isPart = widget != nullptr && widget->focusProxy() != nullptr;
    const bool isCell = node->role() == QAccessible::Cell;
    if (node->state().focusable && !node->state().disabled && !isPart && !isCell && name.isEmpty())
        nameless.append(here);
    int count = 1;
    for (int i = 0; i < node->childCount(); ++i)
        count += collectNameless(node->child(i), here, nameless);
    const QAccessibleTableInterface* const table = node->tableInterface();
    for (int row = 0; table != nullptr && row < table->rowCount(); ++row) {
        bool isNamed = false;
        for (int column = 0; column < table->columnCount(); ++column)
            isNamed = isNamed || !table->cellAt(row, column)->text(QAccessible::Name).isEmpty();
        if (!isNamed)
            nameless.append(here + QStringLiteral("/row %1").arg(row));
    }
    return count;
}

// Whether the keyboard gets there; parts of another widget, like the line of a spin box, are that one.
bool takesTab(const QWidget* widget)
{
    return (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisible() && widget->isEnabled()
        && widget->focusProxy() == nullptr;
}

QRect placeOf(const QWidget* widget)
{
    return {widget->mapTo(widget->window(), QPoint()), widget->size()};
}

double luminance(const QColor& colour)
{
    const auto linear = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double first = luminance(a);
    const double second = luminance(b);
    return (qMax(first, second) + 0.05) / (qMin(first, second) + 0.05);
}

// What does not fit where it stands; empty when all is to be read.
QString cutText(const QWidget* widget)
{
    const QSize size = widget->size();
    QSize needed;
    if (const auto* const label = qobject_cast<const QLabel*>(widget)) {
        needed = label->wordWrap() ? QSize(0, label->heightForWidth(size.width())) : label->sizeHint();
        if (label->text().isEmpty())
            return {};
    } else if (qobject_cast<const QAbstractButton*>(widget) != nullptr
               || qobject_cast<const QComboBox*>(widget) != nullptr) {
        needed = widget->minimumSizeHint();
    }
    if (needed.width() <= size.width() && needed.height() <= size.height())
        return {};
    return QStringLiteral("%1 has %2 x %3 and needs %4 x %5")
        .arg(named(widget))
        .arg(size.width())
        .arg(size.height())
        .arg(needed.width())
        .arg(needed.height());
}

} // namespace

// The window for those who use keyboard and reader, other languages, larger letters, a dark palette.
class tst_WindowForAll : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everythingHasAName_data() { languages(); }
    void everythingHasAName();
    void treeForReadersHasNames_data() { languagesAndJobs(); }
    void treeForReadersHasNames();
    void tabLeavesEveryTable();
    void tabGoesInReadingOrder_data();
    void tabGoesInReadingOrder();
    void noTextIsCutOff_data();
    void noTextIsCutOff();
    void textStandsOutFromItsGround_data();
    void textStandsOutFromItsGround();
    void geometryAndPageAreKept();

private:
    static void languages();
    static void languagesAndJobs();
    void openSample(MainWindow& window) const;
    /** Calls for each page while it is shown. */
    static void forEachPage(MainWindow& window, const std::function<void(Page*)>& action);

    QTemporaryDir m_settings;
    QString m_job; ///< the sample's
};

void tst_WindowForAll::initTestCase()
{
    QVERIFY(m_settings.isValid());
    QCoreApplication::setOrganizationName(QStringLiteral("quenzo"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(m_settings.filePath(QStringLiteral("cache"))));
    QCOMPARE(JobTemplate::write(m_settings.filePath(QStringLiteral("sample")), {}), QString());
    m_job = m_settings.filePath(QStringLiteral("sample/job.json"));
}

void tst_WindowForAll::openSample(MainWindow& window) const
{
    window.take(m_job);
    QTRY_VERIFY_WITH_TIMEOUT(window.windowTitle().contains(QLatin1String("job.json")), 60000);
}

void tst_WindowForAll::languages()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << QStringLiteral("en");
    QTest::newRow("Chinese") << QStringLiteral("zh_CN");
}

void tst_WindowForAll::languagesAndJobs()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<bool>("isOpen");
    for (const char* const language : {"en", "zh_CN"}) {
        for (const bool isOpen : {false, true})
            QTest::addRow("%s, %s", language, isOpen ? "the sample" : "no job")
                << QString::fromLatin1(language) << isOpen;
    }
}

void tst_WindowForAll::forEachPage(MainWindow& window, const std::function<void(Page*)>& action)
{
    window.show();
    const auto pages = window.findChildren<Page*>();
    QVERIFY(pages.size() > 1);
    for (Page* const page : pages) {
        window.show(page);
        QTRY_VERIFY(page->isVisible());
        QCoreApplication::processEvents();
        action(page);
    }
}

void tst_WindowForAll::everythingHasAName()
{
    QFETCH(const QString, language);
    QSettings().setValue(QStringLiteral("language"), language);
    MainWindow window;
    QStringList nameless;
    forEachPage(window, [&](Page* page) {
        for (QWidget* const widget : window.findChildren<QWidget*>()) {
            const bool isSpoken = takesTab(widget) || qobject_cast<QAbstractButton*>(widget) != nullptr
                || qobject_cast<QAbstractItemView*>(widget) != nullptr;
            const bool isPart = widget->objectName().startsWith(QLatin1String("qt_"))
                || qobject_cast<QAbstractScrollArea*>(widget->parentWidget()) != nullptr
                || widget->window() != &window || widget->parentWidget()->inherits("QLineEdit")
                || widget->parentWidget()->inherits("QAbstractSpinBox");
            if (widget->isVisible() && isSpoken && !isPart && spokenName(widget).isEmpty())
                nameless.append(page->title() + QStringLiteral(": ") + named(widget));
        }
    });
    QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join(QLatin1Char('\n'))));
}

void tst_WindowForAll::treeForReadersHasNames()
{
    QFETCH(const QString, language);
    QFETCH(const bool, isOpen);
    QSettings().setValue(QStringLiteral("language"), language);
    MainWindow window;
    if (isOpen)
        openSample(window);
    QStringList nameless;
    forEachPage(window, [&](Page* /*page*/) {
        QStringList found;
        const int count = collectNameless(QAccessible::queryAccessibleInterface(&window), {}, found);
        QVERIFY2(count > 12, qPrintable(QStringLiteral("%1 in the tree").arg(count)));
        nameless += found;
    });
    nameless.removeDuplicates();
    QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join(QLatin1Char('\n'))));
}

void tst_WindowForAll::tabLeavesEveryTable()
{
    const MainWindow window;
    const auto tables = window.findChildren<QAbstractItemView*>();
    QVERIFY(tables.size() > 5);
    for (const QAbstractItemView* const table : tables)
        QVERIFY2(!table->tabKeyNavigation(), qPrintable(named(table)));
}

void tst_WindowForAll::tabGoesInReadingOrder_data()
{
    QTest::addColumn<bool>("isOpen");
    QTest::newRow("no job") << false;
    QTest::newRow("the sample") << true;
}

void tst_WindowForAll::tabGoesInReadingOrder()
{
    QFETCH(const bool, isOpen);
    QSettings().setValue(QStringLiteral("language"), QStringLiteral("en"));
    MainWindow window;
    if (isOpen)
        openSample(window);
    QStringList jumps;
    forEachPage(window, [&](Page* page) {
        const QWidget* before = nullptr;
        for (QWidget* widget = page->nextInFocusChain(); page->isAncestorOf(widget);
             widget = widget->nextInFocusChain()) {
            if (!takesTab(widget))
                continue;
            const QRect place = placeOf(widget);
            // Down, or to the right: along a line, or into the next column.
            const bool isAhead = before == nullptr || place.top() > placeOf(before).bottom()
                || place.left() > placeOf(before).left();
            if (!isAhead)
                jumps.append(
                    QStringLiteral("%1: from %2 to %3").arg(page->title(), named(before), named(widget)));
            before = widget;
        }
    });
    QVERIFY2(jumps.isEmpty(), qPrintable(jumps.join(QLatin1Char('\n'))));
}

void tst_WindowForAll::noTextIsCutOff_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("percent");
    QTest::addColumn<bool>("isOpen");
    for (const char* const language : {"en", "zh_CN"}) {
        for (const int percent : {100, 200}) {
            for (const bool isOpen : {false, true})
                QTest::addRow("%s, %d %%, %s", language, percent, isOpen ? "the sample" : "no job")
                    << QString::fromLatin1(language) << percent << isOpen;
        }
    }
}

void tst_WindowForAll::noTextIsCutOff()
{
    QFETCH(const QString, language);
    QFETCH(const int, percent);
    QFETCH(const bool, isOpen);
    QSettings().clear();
    QSettings().setValue(QStringLiteral("language"), language);
    const QFont usual = QApplication::font();
    QFont font = usual;
    font.setPointSizeF(usual.pointSizeF() * percent / 100);
    QApplication::setFont(font);
    QStringList cut;
    {
        MainWindow window;
        window.resize(QSize(1100, 720) * percent / 100);
        if (isOpen)
            openSample(window);
        forEachPage(window, [&](Page* page) {
            for (const QWidget* const widget : window.findChildren<QWidget*>()) {
                if (!widget->isVisible() || widget->window() != &window)
                    continue;
                const QString fault = cutText(widget);
                if (!fault.isEmpty())
                    cut.append(page->title() + QStringLiteral(": ") + fault);
            }
        });
    }
    QApplication::setFont(usual);
    QVERIFY2(cut.isEmpty(), qPrintable(cut.join(QLatin1Char('\n'))));
}

void tst_WindowForAll::textStandsOutFromItsGround_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void tst_WindowForAll::textStandsOutFromItsGround()
{
    QFETCH(const bool, isDark);
    const QPalette usual = QApplication::palette();
    if (isDark)
        QApplication::setPalette(QPalette(QColor(53, 56, 60), QColor(43, 46, 50)));
    QStringList faint;
    {
        MainWindow window;
        forEachPage(window, [&](Page* page) {
            for (const QWidget* const widget : window.findChildren<QWidget*>()) {
                if (!widget->isVisible() || !widget->isEnabled())
                    continue;
                const QPalette palette = widget->palette();
                const double ratio = contrast(palette.color(widget->foregroundRole()),
                                              palette.color(widget->backgroundRole()));
                if (ratio < 4.5)
                    faint.append(
                        QStringLiteral("%1: %2 has %3").arg(page->title(), named(widget)).arg(ratio));
            }
        });
    }
    QApplication::setPalette(usual);
    QVERIFY2(faint.isEmpty(), qPrintable(faint.join(QLatin1Char('\n'))));
}

void tst_WindowForAll::geometryAndPageAreKept()
{
    QSettings().clear();
    {
        MainWindow window;
        window.show();
        window.resize(1000, 650);
        window.show(window.findChildren<Page*>().constLast());
        QVERIFY(window.close());
    }
    MainWindow window;
    window.show();
    QCOMPARE(window.size(), QSize(1000, 650));
    QTRY_VERIFY(window.findChildren<Page*>().constLast()->isVisible());
}

QTEST_MAIN(tst_WindowForAll)
#include "tst_windowforall.moc"
