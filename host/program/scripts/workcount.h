// SPDX-License-Identifier: MIT
#ifndef WORKCOUNT_H
#define WORKCOUNT_H

#include "scripts/handedfile.h"

#include <QString>

struct Progress;

/**
 * Where the scripts of this process tell how far they are. To be made before the interpreter starts, which
 * reads the environment once.
 */
class WorkCount {
public:
    /** Other work begins, of which nothing is known so far. */
    void begin();

    Progress progress(const QString& doing) const;

    /** Asks the work to end and to leave what was there before; false when nobody counts, and would hear it.
     */
    bool stop();

private:
    // Without a file there is no count, and the work is done all the same.
    const HandedFile m_file{"QUENZO_PROGRESS"};
};

#endif
