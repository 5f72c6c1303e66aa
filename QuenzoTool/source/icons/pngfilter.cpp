// SPDX-License-Identifier: MIT
#include "icons/pngfilter.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace {

using Byte = unsigned char;

// One row and the one above, each behind a zero pixel, so that the first pixel has neighbours too.
struct Rows {
    const Byte* current;
    const Byte* above;
    int pixel; // bytes
    int length;
};

// Gives the row's filtered form and how far it is from zero, which tells how well it will deflate.
template <typename Predictor> unsigned filterRow(const Rows& rows, Byte* filtered, Predictor predict)
{
    unsigned distance = 0;
    for (int i = 0; i < rows.length; ++i) {
        const Byte* const left = rows.current + i - rows.pixel;
        const Byte* const above = rows.above + i;
        const auto rest = static_cast<Byte>(rows.current[i] - predict(*left, *above, above[-rows.pixel]));
        filtered[i] = rest;
        distance += rest < 128 ? rest : 256U - rest;
    }
    return distance;
}

short paeth(short left, short above, short corner)
{
    const auto towardAbove = static_cast<short>(above - corner);
    const auto towardLeft = static_cast<short>(left - corner);
    const auto byLeft = static_cast<short>(std::abs(towardAbove));
    const auto byAbove = static_cast<short>(std::abs(towardLeft));
    const auto byCorner = static_cast<short>(std::abs(static_cast<short>(towardAbove + towardLeft)));
    const short other = byAbove <= byCorner ? above : corner;
    return byLeft <= byAbove && byLeft <= byCorner ? left : other;
}

} // namespace

std::vector<unsigned char> filteredPngRows(const QImage& picture, int pixel)
{
    const auto margin = static_cast<std::size_t>(pixel);
    const std::size_t length = static_cast<std::size_t>(picture.width()) * margin;
    std::vector<Byte> current(margin + length);
    std::vector<Byte> above(margin + length);
    std::array<std::vector<Byte>, 5> forms;
    for (std::vector<Byte>& form : forms)
        form.resize(length);
    std::vector<Byte> filtered;
    filtered.reserve((length + 1) * static_cast<std::size_t>(picture.height()));
    for (int y = 0; y < picture.height(); ++y) {
        std::swap(current, above);
        std::memcpy(current.data() + margin, picture.constScanLine(y), length);
        const Rows rows{current.data() + margin, above.data() + margin, pixel, static_cast<int>(length)};
        const std::array<unsigned, 5> distances{
            filterRow(rows, forms[0].data(), [](short, short, short) { return short(0); }),
            filterRow(rows, forms[1].data(), [](short left, short, short) { return left; }),
            filterRow(rows, forms[2].data(), [](short, short up, short) { return up; }),
            filterRow(rows, forms[3].data(),
                      [](short left, short up, short) { return short((left + up) / 2); }),
            filterRow(rows, forms[4].data(), paeth),
        };
        const auto best = static_cast<std::size_t>(std::min_element(distances.cbegin(), distances.cend())
                                                   - distances.cbegin());
        filtered.push_back(static_cast<Byte>(best));
        filtered.insert(filtered.end(), forms[best].cbegin(), forms[best].cend());
    }
    return filtered;
}
