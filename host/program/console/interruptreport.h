// SPDX-License-Identifier: MIT
#ifndef INTERRUPTREPORT_H
#define INTERRUPTREPORT_H

#include "console/interruptguard.h"

#include <optional>

class Console;

/**
 * Who wants JSON gets the object of an interruption, too, where one comes while this lives and the event loop
 * runs. The program ends by the signal all the same. For the others nothing is held back.
 */
class InterruptReport {
public:
    explicit InterruptReport(Console& console);

private:
    std::optional<InterruptGuard> m_guard;
};

#endif
