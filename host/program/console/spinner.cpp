// SPDX-License-Identifier: MIT
#include "console/spinner.h"

#include "console/console.h"
#include "console/progress.h"

#include <utility>

Spinner::Spinner(Console& console, std::function<Progress()> progress)
    : m_console(console)
    , m_progress(std::move(progress))
{
    constexpr int intervalMs = 120;
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { m_console.showProgress(m_progress()); });
    if (m_console.showsProgress())
        m_timer.start(intervalMs);
}

Spinner::~Spinner()
{
    m_console.clearProgress();
}
