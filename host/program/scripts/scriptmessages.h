// SPDX-License-Identifier: MIT
#ifndef SCRIPTMESSAGES_H
#define SCRIPTMESSAGES_H

#include "console/failure.h"
#include "scripts/handedfile.h"

#include <QStringList>

/**
 * Where the scripts of this process tell what a person should know. To be made before the interpreter starts,
 * which reads the environment once.
 */
class ScriptMessages {
public:
    struct Told {
        QStringList warnings;
        Failure failure; ///< the first; without a message when there is none
    };

    /** What was told since the last call. */
    Told take();

private:
    // Without a file the scripts write to the standard error.
    const HandedFile m_file{"QUENZO_MESSAGES"};
    qint64 m_taken = 0;
};

#endif
