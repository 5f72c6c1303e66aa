// SPDX-License-Identifier: MIT
#include "window/build/buildwords.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace {

struct Word {
    const char* word;
    const char* text;
};

// In the order of a channel's work.
constexpr std::array steps{
    Word{"clear", QT_TRANSLATE_NOOP("BuildWords", "clearing")},
    Word{"icons", QT_TRANSLATE_NOOP("BuildWords", "taking icons")},
    Word{"manifest", QT_TRANSLATE_NOOP("BuildWords", "writing the manifest")},
    Word{"package", QT_TRANSLATE_NOOP("BuildWords", "packing")},
    Word{"encrypt", QT_TRANSLATE_NOOP("BuildWords", "encrypting")},
    Word{"sign", QT_TRANSLATE_NOOP("BuildWords", "signing")},
    Word{"check", QT_TRANSLATE_NOOP("BuildWords", "checking")},
    Word{"export", QT_TRANSLATE_NOOP("BuildWords", "exporting its record")},
    Word{"output", QT_TRANSLATE_NOOP("BuildWords", "handing out")},
};

constexpr std::array outcomes{
    Word{"built", QT_TRANSLATE_NOOP("BuildWords", "built")},
    Word{"unchanged", QT_TRANSLATE_NOOP("BuildWords", "unchanged")},
    Word{"failed", QT_TRANSLATE_NOOP("BuildWords", "failed")},
    Word{"not reached", QT_TRANSLATE_NOOP("BuildWords", "not reached")},
};

template <std::size_t size> QString textOf(const std::array<Word, size>& words, const QString& word)
{
    for (const Word& one : words) {
        if (word == QLatin1String(one.word))
            return QCoreApplication::translate("BuildWords", one.text);
    }
    return word;
}

} // namespace

QString BuildWords::step(const QString& step)
{
    return textOf(steps, step);
}

int BuildWords::percentBefore(const QString& step)
{
    const auto* const found = std::find_if(
        steps.cbegin(), steps.cend(), [&step](const Word& one) { return step == QLatin1String(one.word); });
    return found == steps.cend() ? 0 : int(100 * (found - steps.cbegin()) / std::ptrdiff_t(steps.size()));
}

QString BuildWords::outcome(const QString& outcome)
{
    return textOf(outcomes, outcome);
}

QString BuildWords::firstSentence(const QString& message)
{
    return message.left(message.indexOf(QLatin1Char('\n'))).section(QStringLiteral("; "), 0, 0);
}

QString BuildWords::timeLeft(qint64 seconds)
{
    constexpr qint64 minute = 60;
    if (seconds < minute)
        return QCoreApplication::translate("BuildWords", "about %1 s left").arg(std::max<qint64>(1, seconds));
    return QCoreApplication::translate("BuildWords", "about %1 min left")
        .arg((seconds + minute / 2) / minute);
}
