// SPDX-License-Identifier: MIT
#include "records/numbertext.h"

#include <QMetaType>

#include <charconv>
#include <cmath>

namespace {

using NumberText::Digits;

// Behind the sign.
char* write(qlonglong number, char* begin, Digits& digits)
{
    return std::to_chars(begin, digits.data() + digits.size(), number).ptr;
}

std::string_view between(const char* begin, const char* end)
{
    return {begin, static_cast<std::size_t>(end - begin)};
}

std::string_view textOf(qlonglong number, Digits& digits)
{
    return between(digits.data(), write(number, digits.data(), digits));
}

// Reals of six decimals at most, as prices are: so few digits stand for one real alone. QVariant may give
// those out of the bounds an exponent.
std::string_view textOf(double real, Digits& digits)
{
    constexpr qlonglong scale = 1000000;
    const double size = std::abs(real);
    if (!(size >= 0.001 && size < 100000))
        return {};
    const qlonglong scaled = std::llround(size * double(scale));
    if (double(scaled) / double(scale) != size)
        return {};
    char* const begin = digits.data() + 1;
    char* const point = write(scaled / scale, begin, digits);
    // The scale keeps the zeroes behind the point.
    char* end = write(scale + scaled % scale, point, digits);
    *point = '.';
    while (end[-1] == '0')
        --end;
    if (end - 1 == point)
        --end;
    if (real > 0)
        return between(begin, end);
    digits.front() = '-';
    return between(digits.data(), end);
}

} // namespace

std::string_view NumberText::of(const QVariant& value, Digits& digits)
{
    switch (value.userType()) {
    case QMetaType::Int:
        return textOf(qlonglong{*static_cast<const int*>(value.constData())}, digits);
    case QMetaType::LongLong:
        return textOf(*static_cast<const qlonglong*>(value.constData()), digits);
    case QMetaType::Double:
        return textOf(*static_cast<const double*>(value.constData()), digits);
    default:
        return {};
    }
}
