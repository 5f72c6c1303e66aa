// SPDX-License-Identifier: MIT
#include "console/interruptreport.h"

#include "console/console.h"

#include <QCoreApplication>

namespace {

struct InterruptReportText {
    Q_DECLARE_TR_FUNCTIONS(InterruptReport)
};

} // namespace

InterruptReport::InterruptReport(Console& console)
{
    if (!console.json())
        return;
    const auto tell = [&console] {
        console.error(
            {Failure::Interrupted, InterruptReportText::tr("interrupted; the work may be done in part")});
        console.finish(false);
    };
    m_guard.emplace(tell, QVector<int>{SIGINT, SIGTERM, SIGHUP});
}
