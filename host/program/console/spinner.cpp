// SPDX-License-Identifier: MIT
#include "console/spinner.h"

#include "console/console.h"

#include <utility>

Spinner::Spinner(Console& console, std::function<QString()> text)
    : m_console(console)
    , m_text(std::move(text))
{
    constexpr int intervalMs = 120;
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { turn(); });
    if (Console::showsProgress())
        m_timer.start(intervalMs);
}

Spinner::~Spinner()
{
    m_console.clearProgress();
}

void Spinner::turn()
{
    const QString signs = QStringLiteral("|/-\\");
    m_console.showProgress(signs.at(m_turn++ % signs.size()) + QLatin1Char(' ') + m_text());
}
