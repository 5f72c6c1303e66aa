// SPDX-License-Identifier: MIT
// A script gets the arguments that it is called with, and each reader gives of any result what it is
// described to give.
#include "fuzz.h"
#include "runroot.h"

#include <pythonforqt.h>

#include <QSet>

#include <limits>

using Fuzz::require;

namespace {

constexpr const char* script = R"(
def described(*arguments):
    return [type(one).__name__ + ":" + (one.encode("hex") if isinstance(one, str) else repr(one)) for one in arguments]

def made(literal):
    return eval(literal)
)";

// What a script returns, and what the readers make of it.
struct Value {
    QByteArray literal;
    QString text;
    int number = -1;
};

const QString& scriptPath()
{
    static const QString path = [] {
        RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
        return RunRoot::write(QStringLiteral("Script/fuzzed.py"), script);
    }();
    return path;
}

int whole(double number)
{
    using Limits = std::numeric_limits<int>;
    return number >= Limits::min() && number <= Limits::max() ? static_cast<int>(number) : -1;
}

// Texts end at their first null character.
QString readable(const QByteArray& utf8)
{
    return QString::fromUtf8(utf8.constData());
}

Value bytesOf(const QByteArray& bytes)
{
    QByteArray literal = "'";
    for (const char byte : bytes)
        literal += "\\x" + QByteArray(1, byte).toHex();
    return {literal + '\'', readable(bytes), -1};
}

Value unicodeOf(const QString& text)
{
    QByteArray literal = "u'";
    for (const uint letter : text.toUcs4())
        literal += "\\U" + QByteArray::number(letter, 16).rightJustified(8, '0');
    return {literal + '\'', readable(text.toUtf8()), -1};
}

Value valueOf(Fuzz::Input& input)
{
    const auto number = input.number();
    switch (input.below(6)) {
    case 0:
        return {"None", {}, -1};
    case 1:
        return {QByteArray::number(static_cast<qlonglong>(number)), {}, whole(static_cast<double>(number))};
    case 2:
        return bytesOf(input.someBytes());
    case 3:
        return unicodeOf(QString::fromUtf8(input.someBytes()));
    case 4: {
        const double real = static_cast<double>(number) / 8;
        return {"float('" + QByteArray::number(real, 'e', 17) + "')", {}, whole(real)};
    }
    default:
        return input.below(2) == 0 ? Value{"False", {}, 0} : Value{"True", {}, 1};
    }
}

void make(PythonForQt& python, const QByteArray& literal)
{
    python.callScript(scriptPath(), QStringLiteral("made"), {QString::fromLatin1(literal)}, false);
}

void holdScalar(PythonForQt& python, Fuzz::Input& input)
{
    const Value value = valueOf(input);
    make(python, value.literal);
    require(python.getResultAsString() == value.text, "a result is read as a text");
    make(python, value.literal);
    require(python.getResultAsInt() == value.number, "a result is read as a number");
    make(python, value.literal);
    require(python.getResultAsStrList().isEmpty(), "what is no list has no texts");
    make(python, value.literal);
    require(python.getResultAsStrDict().isEmpty(), "what is no dictionary has no texts");
    require(python.getResultAsString().isNull(), "a result is read once");
}

void holdList(PythonForQt& python, Fuzz::Input& input)
{
    QStringList texts;
    QByteArray literal;
    for (int items = input.below(6); items > 0; --items) {
        const Value value = valueOf(input);
        texts.append(value.text);
        literal += value.literal + ',';
    }
    make(python, '[' + literal + ']');
    require(python.getResultAsStrList() == texts, "a list keeps its places");
    make(python, '[' + literal + ']');
    require(python.getResultAsInt() == -1, "a list is no number");
}

void holdDictionary(PythonForQt& python, Fuzz::Input& input)
{
    QMap<QString, QSet<QString>> values; // keys that are no texts may be several
    QByteArray literal;
    for (int pairs = input.below(6); pairs > 0; --pairs) {
        const Value key = valueOf(input);
        const Value value = valueOf(input);
        values[key.text].insert(value.text);
        literal += key.literal + ':' + value.literal + ',';
    }
    make(python, '{' + literal + '}');
    const QMap<QString, QString> texts = python.getResultAsStrDict();
    require(texts.keys() == values.keys(), "the keys are those of the dictionary");
    for (auto text = texts.cbegin(); text != texts.cend(); ++text)
        require(values.value(text.key()).contains(*text), "each with a value of its own");
}

void holdArguments(PythonForQt& python, Fuzz::Input& input)
{
    QList<QVariant> arguments;
    QStringList expected;
    for (int left = input.below(6); left > 0; --left) {
        const auto number = static_cast<int>(input.number());
        const QString text = input.text();
        const QVariantList kinds{number,        text,       static_cast<qlonglong>(number),
                                 text.toUtf8(), QVariant(), true};
        const int kind = input.below(kinds.size());
        arguments.append(kinds.at(kind));
        if (kind == 0)
            expected.append(QStringLiteral("int:%1").arg(number));
        const QByteArray utf8 = text.toUtf8();
        if (kind == 1)
            expected.append(QStringLiteral("str:")
                            + QString::fromLatin1(QByteArray(utf8.constData()).toHex()));
    }
    while (expected.size() < arguments.size())
        expected.append(QStringLiteral("NoneType:None"));
    python.callScript(scriptPath(), QStringLiteral("described"), arguments, false);
    require(python.getResultAsStrList() == expected, "a function gets the arguments of the call");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::startApplication();
    scriptPath();
    static PythonForQt python;
    Fuzz::Input input(data, size);
    while (!input.atEnd()) {
        switch (input.below(4)) {
        case 0:
            holdScalar(python, input);
            break;
        case 1:
            holdList(python, input);
            break;
        case 2:
            holdDictionary(python, input);
            break;
        default:
            holdArguments(python, input);
        }
    }
    return 0;
}
