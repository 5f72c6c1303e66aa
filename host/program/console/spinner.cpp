// SPDX-License-Identifier: MIT
#include "console/spinner.h"

#include "console/console.h"
#include "console/progress.h"

#include <utility>

namespace {

constexpr int intervalMs = 120;

} // namespace

Spinner::Spinner(Console& console, std::function<Progress()> progress)
    : m_console(console)
    , m_progress(std::move(progress))
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { m_console.showProgress(m_progress()); });
    if (m_console.showsProgress())
        m_timer.start(intervalMs);
}

Spinner::~Spinner()
{
    m_console.clearProgress();
}

PacedProgress::PacedProgress(Console& console)
    : m_console(console)
{
}

PacedProgress::~PacedProgress()
{
    m_console.clearProgress();
}

void PacedProgress::show(const Progress& progress)
{
    if (m_sinceShown.isValid() && !m_sinceShown.hasExpired(intervalMs))
        return;
    m_console.showProgress(progress);
    m_sinceShown.start();
}
