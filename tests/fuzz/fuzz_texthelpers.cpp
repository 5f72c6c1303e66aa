// SPDX-License-Identifier: MIT
// The text helpers give what their plain forms give, for any text, number and suffix.
#include "fuzz.h"
#include "plaintexts.h"

#include <quenzotool.h>

#include <QJsonArray>

#include <limits>

using Fuzz::require;

namespace {

void holdNames(const QString& text)
{
    const QString name = QuenzoTool::getDownloadFileName(text);
    const int query = text.indexOf(QLatin1Char('?'));
    // A slash behind the mark separates, too.
    const QString last = text.mid(text.lastIndexOf(QLatin1Char('/')) + 1);
    require(name == last.left(last.indexOf(QLatin1Char('?'))), "the name is what is behind the last slash");
    require(query >= 0 || name == last, "nothing else ends a name");
}

void holdNumbers(const QString& text, double number)
{
    QJsonArray values{number, text, text == QLatin1String("x"), QJsonValue()};
    using Limits = std::numeric_limits<int>;
    const int whole = QuenzoTool::ConvertToInt(values[0]);
    if (number > Limits::min() && number < Limits::max())
        require(whole == static_cast<int>(number), "numbers are cut off towards zero");
    else
        require(whole == (number > 0 ? Limits::max() : Limits::min()),
                "numbers beyond the range are its ends");
    require(QuenzoTool::ConvertToInt(values[1]) == text.toInt(), "texts are read as numbers");
    require(QuenzoTool::ConvertToInt(values[2]) == 0 && QuenzoTool::ConvertToInt(values[3]) == 0,
            "other values are no numbers");
    require(QuenzoTool::ConvertToStr(values[0]) == QString::number(number, 'g', 6), "six digits of a number");
    require(QuenzoTool::ConvertToStr(values[1]) == text, "a text is itself");
    require(QuenzoTool::ConvertToStr(values[2]).isEmpty(), "other values have no text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::startApplication();
    Fuzz::Input input(data, size);
    const auto number = static_cast<int>(input.number());
    const int divisor = 1 + input.byte();
    const QString suffix = input.text();
    const QString text = input.restAsText();

    require(QuenzoTool::showLength(text) == text.toLocal8Bit().size(), "the length is that of the bytes");
    const int count = number % 5000;
    require(QuenzoTool::getStrInMaxCount(text, count, suffix) == PlainTexts::cut(text, count, suffix),
            "a text is cut as by the letter");
    const QString escaped = QuenzoTool::blankReplace(text);
    require(escaped == PlainTexts::escaped(text), "blanks are escaped as by the letter");
    require(QuenzoTool::blankReplace(escaped) == escaped, "what is escaped stays");
    holdNames(text);
    holdNumbers(text, static_cast<double>(number) / divisor);
    return 0;
}
