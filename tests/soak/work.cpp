// SPDX-License-Identifier: MIT
#include "work.h"

#include <QTimer>

Work::Work(const char* name)
    : m_name(QLatin1String(name))
{
}

void Work::start()
{
    m_isAtWork = true;
    m_isPausing = false;
    begin();
}

void Work::end(const QString& fault, int pieces)
{
    m_pieces += pieces;
    if (m_fault.isEmpty())
        m_fault = fault;
    m_isAtWork = !m_isPausing && m_fault.isEmpty();
    if (m_isAtWork)
        QTimer::singleShot(0, this, [this] { begin(); });
}
