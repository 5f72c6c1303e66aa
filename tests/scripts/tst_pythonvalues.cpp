// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include "messagelog.h"
#include "runroot.h"

#include <QtTest>

#include <limits>
#include <memory>

using Texts = QMap<QString, QString>;

namespace {

// One script serves all: it gives back what an expression makes, or how its arguments look.
const QByteArray script = R"(# -*- coding: utf-8 -*-
class Number(object):
    def __int__(self): return 42
class Refusal(object):
    def __int__(self): raise SystemExit(3)
class Text(str): pass
class Unicode(unicode): pass
class List(list): pass
class Dict(dict): pass
class Held(object):
    alive = 0
    def __init__(self): Held.alive += 1
    def __del__(self): Held.alive -= 1
def make(expression): return eval(expression)
def look(*all): return repr(all)
def alive(): return Held.alive
)";

} // namespace

class tst_PythonValues : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void intsAndTextsArePassed_data();
    void intsAndTextsArePassed();
    void everyOtherTypeIsLeftOut_data();
    void everyOtherTypeIsLeftOut();
    void laterValuesMoveUpAndNoneFillsTheEnd_data();
    void laterValuesMoveUpAndNoneFillsTheEnd();
    void aLongArgumentListIsPassed();
    void buildValueGivesANewReference();
    void releaseDropsTheReferenceAndEmptiesTheSlot();

    void resultAsInt_data();
    void resultAsInt();
    void resultAsString_data();
    void resultAsString();
    void resultAsStrList_data();
    void resultAsStrList();
    void resultAsStrDict_data();
    void resultAsStrDict();

    void readersWithoutAResultAreEmpty();
    void secondReaderFindsNothing_data();
    void secondReaderFindsNothing();
    void everyReaderReleasesTheResult_data();
    void everyReaderReleasesTheResult();
    void wrongReaderLeavesNoErrorBehind();
    void resultsDoNotChangeTheNextCall();
    void resultNotReadIsReplacedAndNotReleased();

private:
    QVariant call(const QString& function, const QList<QVariant>& arguments, int reader);
    PythonForQt& make(const QByteArray& expression);

    QString m_script;
    std::unique_ptr<OpenBridge> m_bridge;
    std::unique_ptr<MessageLog> m_log;
};

void tst_PythonValues::initTestCase()
{
    RunRoot::clear();
    RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
    m_script = RunRoot::write(QStringLiteral("Script/values.py"), script);
    m_log = std::make_unique<MessageLog>();
    m_bridge = std::make_unique<OpenBridge>();
}

void tst_PythonValues::cleanup()
{
    m_bridge->releaseObj(&m_bridge->pResult);
    QCOMPARE(m_log->takeWarnings(), QStringList());
    const PyThreadStateLock lock;
    QVERIFY2(PyErr_Occurred() == nullptr, "an exception is left pending");
}

PythonForQt& tst_PythonValues::make(const QByteArray& expression)
{
    m_bridge->callScript(m_script, QStringLiteral("make"), {QString::fromUtf8(expression)}, false);
    return *m_bridge;
}

void tst_PythonValues::intsAndTextsArePassed_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("seen");
    QTest::newRow("0") << QVariant(0) << QStringLiteral("(0,)");
    QTest::newRow("least") << QVariant(std::numeric_limits<int>::min()) << QStringLiteral("(-2147483648,)");
    QTest::newRow("greatest") << QVariant(std::numeric_limits<int>::max()) << QStringLiteral("(2147483647,)");
    QTest::newRow("null int") << QVariant(QVariant::Int) << QStringLiteral("(0,)");
    QTest::newRow("text") << QVariant(QStringLiteral("a'b\"c\\d\n"))
                          << QStringLiteral("('a\\'b\"c\\\\d\\n',)");
    QTest::newRow("digits stay text") << QVariant(QStringLiteral("12")) << QStringLiteral("('12',)");
    QTest::newRow("UTF-8") << QVariant(QStringLiteral("é\U0001F600"))
                           << QStringLiteral("('\\xc3\\xa9\\xf0\\x9f\\x98\\x80',)");
    QTest::newRow("empty text") << QVariant(QString()) << QStringLiteral("('',)");
    QTest::newRow("null text") << QVariant(QVariant::String) << QStringLiteral("('',)");
    QTest::newRow("up to the null character")
        << QVariant(QStringLiteral("ab").append(QChar(0)).append(QLatin1Char('c')))
        << QStringLiteral("('ab',)");
    QTest::newRow("lone surrogate") << QVariant(QString(QChar(0xD800)).append(QLatin1Char('a')))
                                    << QStringLiteral("('?a',)");
}

void tst_PythonValues::intsAndTextsArePassed()
{
    QFETCH(const QVariant, value);
    QFETCH(const QString, seen);
    m_bridge->callScript(m_script, QStringLiteral("look"), {value}, false);
    QCOMPARE(m_bridge->getResultAsString(), seen);
}

void tst_PythonValues::everyOtherTypeIsLeftOut_data()
{
    QTest::addColumn<int>("type");
    // Every type of Qt Core that a QVariant can hold.
    for (int type = QMetaType::UnknownType; type < QMetaType::FirstGuiType; ++type) {
        const bool passed = type == QMetaType::Int || type == QMetaType::QString;
        if (!passed && type != QMetaType::Void && (type == 0 || QMetaType::isRegistered(type))
            && QMetaType::sizeOf(type) > 0) {
            QTest::newRow(QMetaType::typeName(type)) << type;
        }
    }
    QTest::newRow("invalid") << int(QMetaType::UnknownType);
}

void tst_PythonValues::everyOtherTypeIsLeftOut()
{
    QFETCH(const int, type);
    const QVariant value(type, nullptr);
    {
        const PyThreadStateLock lock;
        QVERIFY(m_bridge->BuildValue(value) == nullptr);
        QVERIFY(PyErr_Occurred() == nullptr);
    }
    m_bridge->callScript(m_script, QStringLiteral("look"), {value, 7}, false);
    QCOMPARE(m_bridge->getResultAsString(), QStringLiteral("(7, None)"));
}

void tst_PythonValues::laterValuesMoveUpAndNoneFillsTheEnd_data()
{
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("seen");
    const QString text = QStringLiteral("t");
    QTest::newRow("none passes") << QVariantList{true, 1.5, QVariant()}
                                 << QStringLiteral("(None, None, None)");
    QTest::newRow("first") << QVariantList{true, 1, text} << QStringLiteral("(1, 't', None)");
    QTest::newRow("middle") << QVariantList{1, 2.5, text} << QStringLiteral("(1, 't', None)");
    QTest::newRow("last") << QVariantList{1, text, 2U} << QStringLiteral("(1, 't', None)");
    QTest::newRow("every second") << QVariantList{1, 2LL, 3, QByteArray("4"), 5, QVariantList{6}}
                                  << QStringLiteral("(1, 3, 5, None, None, None)");
}

void tst_PythonValues::laterValuesMoveUpAndNoneFillsTheEnd()
{
    QFETCH(const QVariantList, arguments);
    QFETCH(const QString, seen);
    m_bridge->callScript(m_script, QStringLiteral("look"), arguments, false);
    QCOMPARE(m_bridge->getResultAsString(), seen);
    QCOMPARE(m_log->take().size(), 0);
}

void tst_PythonValues::aLongArgumentListIsPassed()
{
    QVariantList arguments;
    for (int i = 0; i < 10000; ++i)
        arguments.append(i % 2 == 0 ? QVariant(i) : QVariant(QString::number(i)));
    m_bridge->callScript(m_script, QStringLiteral("look"), arguments, false);
    const QString seen = m_bridge->getResultAsString();
    QVERIFY(seen.startsWith(QStringLiteral("(0, '1', 2, '3', ")));
    QVERIFY(seen.endsWith(QStringLiteral(", 9998, '9999')")));
}

void tst_PythonValues::buildValueGivesANewReference()
{
    const PyThreadStateLock lock;
    PyObject* text = m_bridge->BuildValue(QStringLiteral("a text that nobody else holds"));
    QCOMPARE(Py_REFCNT(text), Py_ssize_t(1));
    QVERIFY(PyString_Check(text) != 0);
    PyObject* number = m_bridge->BuildValue(123456789);
    QCOMPARE(PyInt_AsLong(number), 123456789L);
    m_bridge->releaseObj(&text);
    m_bridge->releaseObj(&number);
}

void tst_PythonValues::releaseDropsTheReferenceAndEmptiesTheSlot()
{
    PyObject* empty = nullptr;
    m_bridge->releaseObj(&empty);
    QVERIFY(empty == nullptr);

    make("Held()");
    m_bridge->callScript(m_script, QStringLiteral("alive"), {}, false);
    const int alive = m_bridge->getResultAsInt();
    make("Held()");
    m_bridge->releaseObj(&m_bridge->pResult);
    QVERIFY(m_bridge->pResult == nullptr);
    QCOMPARE(m_bridge->getResultAsInt(), -1);
    m_bridge->callScript(m_script, QStringLiteral("alive"), {}, false);
    QCOMPARE(m_bridge->getResultAsInt(), alive);
}

void tst_PythonValues::resultAsInt_data()
{
    QTest::addColumn<QByteArray>("expression");
    QTest::addColumn<int>("number");
    const auto row = [](const char* expression, int number) {
        QTest::newRow(expression) << QByteArray(expression) << number;
    };
    row("0", 0);
    row("-1", -1);
    row("2147483647", 2147483647);
    row("-2147483648", std::numeric_limits<int>::min());
    row("2147483648", -1);
    row("10L", 10);
    row("10**30", -1);
    row("True", 1);
    row("2.9", 2);
    row("-2.9", -2);
    row("1e300", -1);
    row("float('nan')", -1);
    row("None", -1);
    row("'42'", -1);
    row("u'42'", -1);
    row("[1]", -1);
    row("{}", -1);
    row("object()", -1);
    row("Number()", 42);
    row("Refusal()", -1);
    row("ValueError('x')", -1);
}

void tst_PythonValues::resultAsInt()
{
    QFETCH(const QByteArray, expression);
    QFETCH(const int, number);
    QCOMPARE(make(expression).getResultAsInt(), number);
    QCOMPARE(m_log->take().size(), 0);
}

void tst_PythonValues::resultAsString_data()
{
    QTest::addColumn<QByteArray>("expression");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* expression, const QString& text) {
        QTest::newRow(expression) << QByteArray(expression) << text;
    };
    row("'text'", QStringLiteral("text"));
    row("''", QString());
    row("'\\xc3\\xa9'", QStringLiteral("é"));
    row("u'\\xe9\\u4e2d'", QStringLiteral("é中"));
    row("u'\\U0001f600'", QStringLiteral("\U0001F600"));
    row("'\\xff'", QStringLiteral("\uFFFD"));
    row("'ab\\0c'", QStringLiteral("ab"));
    row("Text('sub')", QStringLiteral("sub"));
    row("Unicode(u'\\xe9')", QStringLiteral("é"));
    row("'x' * 1000000", QString(1000000, QLatin1Char('x')));
    row("None", QString());
    row("5", QString());
    row("['text']", QString());
    row("bytearray('text')", QString());
    row("object()", QString());
}

void tst_PythonValues::resultAsString()
{
    QFETCH(const QByteArray, expression);
    QFETCH(const QString, text);
    QCOMPARE(make(expression).getResultAsString(), text);
    QCOMPARE(m_log->take().size(), 0);
}

void tst_PythonValues::resultAsStrList_data()
{
    QTest::addColumn<QByteArray>("expression");
    QTest::addColumn<QStringList>("texts");
    const auto row = [](const char* expression, const QStringList& texts) {
        QTest::newRow(expression) << QByteArray(expression) << texts;
    };
    row("['x', 3, u'\\xe9']", {QStringLiteral("x"), QString(), QStringLiteral("é")});
    row("[]", {});
    row("[None, '', [], object()]", {QString(), QString(), QString(), QString()});
    row("List(['a'])", {QStringLiteral("a")});
    row("['a', 'a']", {QStringLiteral("a"), QStringLiteral("a")});
    row("('a', 'b')", {});
    row("'text'", {});
    row("None", {});
    row("{'a': 'b'}", {});
    row("iter(['a'])", {});
}

void tst_PythonValues::resultAsStrList()
{
    QFETCH(const QByteArray, expression);
    QFETCH(const QStringList, texts);
    QCOMPARE(make(expression).getResultAsStrList(), texts);
    QCOMPARE(m_log->take().size(), 0);
}

void tst_PythonValues::resultAsStrDict_data()
{
    QTest::addColumn<QByteArray>("expression");
    QTest::addColumn<Texts>("texts");
    const auto row = [](const char* expression, const Texts& texts) {
        QTest::newRow(expression) << QByteArray(expression) << texts;
    };
    const QString a = QStringLiteral("a");
    const QString b = QStringLiteral("b");
    row("{'a': '1', 'b': 2}", {{a, QStringLiteral("1")}, {b, QString()}});
    row("{}", {});
    row("{1: 'a'}", {{QString(), a}});
    row("{u'\\xe9': u'\\u4e2d'}", {{QStringLiteral("é"), QStringLiteral("中")}});
    row("Dict(a='b')", {{a, b}});
    row("{'a': None}", {{a, QString()}});
    row("['a']", {});
    row("None", {});
    row("'text'", {});
    row("5", {});
}

void tst_PythonValues::resultAsStrDict()
{
    QFETCH(const QByteArray, expression);
    QFETCH(const Texts, texts);
    QCOMPARE(make(expression).getResultAsStrDict(), texts);
    QCOMPARE(m_log->take().size(), 0);
}

void tst_PythonValues::readersWithoutAResultAreEmpty()
{
    PythonForQt fresh;
    QCOMPARE(fresh.getResultAsInt(), -1);
    QCOMPARE(fresh.getResultAsString(), QString());
    QCOMPARE(fresh.getResultAsStrList(), QStringList());
    QCOMPARE(fresh.getResultAsStrDict(), Texts());
}

void tst_PythonValues::secondReaderFindsNothing_data()
{
    QTest::addColumn<int>("reader");
    QTest::newRow("int") << 0;
    QTest::newRow("text") << 1;
    QTest::newRow("list") << 2;
    QTest::newRow("dictionary") << 3;
}

QVariant tst_PythonValues::call(const QString& function, const QList<QVariant>& arguments, int reader)
{
    m_bridge->callScript(m_script, function, arguments, false);
    switch (reader) {
    case 0:
        return m_bridge->getResultAsInt();
    case 1:
        return m_bridge->getResultAsString();
    case 2:
        return m_bridge->getResultAsStrList();
    default:
        return QVariant::fromValue(m_bridge->getResultAsStrDict());
    }
}

void tst_PythonValues::secondReaderFindsNothing()
{
    QFETCH(const int, reader);
    for (const char* expression : {"5", "'text'", "['a']", "{'a': 'b'}", "None"}) {
        call(QStringLiteral("make"), {QString::fromLatin1(expression)}, reader);
        QVERIFY(m_bridge->pResult == nullptr);
        QCOMPARE(m_bridge->getResultAsInt(), -1);
        QCOMPARE(m_bridge->getResultAsString(), QString());
        QCOMPARE(m_bridge->getResultAsStrList(), QStringList());
        QCOMPARE(m_bridge->getResultAsStrDict(), Texts());
    }
}

void tst_PythonValues::everyReaderReleasesTheResult_data()
{
    secondReaderFindsNothing_data();
}

void tst_PythonValues::everyReaderReleasesTheResult()
{
    QFETCH(const int, reader);
    const int alive = call(QStringLiteral("alive"), {}, 0).toInt();
    for (const char* expression : {"Held()", "[Held(), 'a']", "{'a': Held()}"})
        call(QStringLiteral("make"), {QString::fromLatin1(expression)}, reader);
    QCOMPARE(call(QStringLiteral("alive"), {}, 0).toInt(), alive);
}

void tst_PythonValues::wrongReaderLeavesNoErrorBehind()
{
    const PyThreadStateLock lock;
    for (int reader = 0; reader < 4; ++reader) {
        for (const char* expression : {"object()", "[object()]", "{1: object()}", "Refusal()", "10**30"}) {
            call(QStringLiteral("make"), {QString::fromLatin1(expression)}, reader);
            QVERIFY2(PyErr_Occurred() == nullptr, expression);
        }
    }
}

void tst_PythonValues::resultsDoNotChangeTheNextCall()
{
    const QString good = QStringLiteral("'good'");
    for (int reader = 0; reader < 4; ++reader) {
        for (const char* expression : {"object()", "Refusal()", "10**30", "raise_unknown_name", "None"}) {
            call(QStringLiteral("make"), {QString::fromLatin1(expression)}, reader);
            QCOMPARE(call(QStringLiteral("make"), {good}, 1).toString(), QStringLiteral("good"));
        }
    }
}

void tst_PythonValues::resultNotReadIsReplacedAndNotReleased()
{
    const int alive = call(QStringLiteral("alive"), {}, 0).toInt();
    make("Held()");
    PyObject* first = m_bridge->pResult;
    QCOMPARE(call(QStringLiteral("alive"), {}, 0).toInt(), alive + 1);
    m_bridge->releaseObj(&first);
    QCOMPARE(call(QStringLiteral("alive"), {}, 0).toInt(), alive);
}

QTEST_GUILESS_MAIN(tst_PythonValues)
#include "tst_pythonvalues.moc"
