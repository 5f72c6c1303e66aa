// SPDX-License-Identifier: MIT
#include "suggestion.h"

#include <QVector>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

// How many letters must be put in, left out or replaced.
int distance(const QString& one, const QString& other)
{
    QVector<int> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < one.size(); ++i) {
        int diagonal = std::exchange(row[0], i + 1);
        for (int k = 0; k < other.size(); ++k) {
            const int replaced = diagonal + (one.at(i) == other.at(k) ? 0 : 1);
            diagonal = row.at(k + 1);
            row[k + 1] = std::min({replaced, diagonal + 1, row.at(k) + 1});
        }
    }
    return row.last();
}

} // namespace

QString likelyMeant(const QString& word, const QStringList& names)
{
    constexpr int longest = 40; // no name is longer, and the comparison takes its time
    if (word.size() > longest)
        return {};
    QString nearest;
    int least = std::clamp(word.size() / 2, 1, 3) + 1;
    for (const QString& name : names) {
        const int found = distance(word.toLower(), name);
        if (found < least) {
            least = found;
            nearest = name;
        }
    }
    return nearest;
}
