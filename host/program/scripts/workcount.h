// SPDX-License-Identifier: MIT
#ifndef WORKCOUNT_H
#define WORKCOUNT_H

#include <QString>

struct Progress;

/**
 * Where the scripts of this process tell how far they are. To be made before the interpreter starts, which
 * reads the environment once.
 */
class WorkCount {
public:
    WorkCount();
    ~WorkCount();
    WorkCount(const WorkCount&) = delete;
    WorkCount& operator=(const WorkCount&) = delete;

    Progress progress(const QString& doing) const;

    /** Asks the work to end and to leave what was there before; false when nobody counts, and would hear it.
     */
    bool stop();

private:
    int m_file;
};

#endif
