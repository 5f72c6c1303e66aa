// SPDX-License-Identifier: MIT
#include "suggestion.h"

#include <QCoreApplication>
#include <QVector>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

struct Suggestion {
    Q_DECLARE_TR_FUNCTIONS(Suggestion)
};

// How many letters must be put in, left out, replaced or exchanged with their neighbours.
int distance(const QString& one, const QString& other)
{
    QVector<int> beforeLast;
    QVector<int> last;
    QVector<int> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 1; i <= one.size(); ++i) {
        beforeLast = std::exchange(last, row);
        row[0] = i;
        for (int k = 1; k <= other.size(); ++k) {
            const int replaced = last.at(k - 1) + (one.at(i - 1) == other.at(k - 1) ? 0 : 1);
            row[k] = std::min({replaced, last.at(k) + 1, row.at(k - 1) + 1});
            if (i > 1 && k > 1 && one.at(i - 1) == other.at(k - 2) && one.at(i - 2) == other.at(k - 1))
                row[k] = std::min(row.at(k), beforeLast.at(k - 2) + 1);
        }
    }
    return row.last();
}

} // namespace

QString likelyMeant(const QString& word, const QStringList& names)
{
    constexpr int longest = 40; // no name is longer, and the comparison takes its time
    if (word.size() > longest || word.size() < 2)
        return {};
    QString nearest;
    int least = std::clamp(word.size() / 3, 1, 3) + 1;
    for (const QString& name : names) {
        const int found = distance(word.toLower(), name.toLower());
        if (name.size() > 1 && found < least) {
            least = found;
            nearest = name;
        }
    }
    return nearest;
}

QString withSuggestion(const QString& objection, const QString& meant)
{
    return meant.isEmpty() ? objection : Suggestion::tr("%1; did you mean '%2'?").arg(objection, meant);
}

QString noneOf(const QString& what, const QString& word, const QStringList& names)
{
    const QString objection =
        Suggestion::tr("%1: '%2' is none of %3").arg(what, word, names.join(QStringLiteral(", ")));
    return withSuggestion(objection, likelyMeant(word, names));
}
