// SPDX-License-Identifier: MIT
#ifndef NUMBERTEXT_H
#define NUMBERTEXT_H

#include <QVariant>

#include <array>
#include <string_view>

/** The texts of numbers without the way through QString, which takes most of the time of encoding a row. */
namespace NumberText {

using Digits = std::array<char, 24>;

/** What QVariant::toString() makes of a common number; empty for every other value. */
std::string_view of(const QVariant& value, Digits& digits);

} // namespace NumberText

#endif
