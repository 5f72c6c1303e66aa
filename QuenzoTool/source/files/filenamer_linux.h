// SPDX-License-Identifier: MIT
#ifndef FILENAMER_LINUX_H
#define FILENAMER_LINUX_H

#include "files/filehandle_linux.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <sys/types.h>
#include <thread>
#include <vector>

/** What a file without a name is to become. */
struct FileName {
    mode_t mode;
    int folder; ///< where it belongs
    const char* name;
};

/** A copy that has no name yet. */
struct NamelessFile {
    FileHandle file;
    FileName becomes;
    off_t size;
};

/** Gives a nameless file its mode, where the file system knows such, and its name; an error number, or 0. */
int giveName(int file, const FileName& becomes);

/**
 * Gives files their names on a thread of its own, in order and up to the first failure, while the next ones
 * are being copied; on the caller's thread when the system has no other to give.
 *
 * The kernel spends as long on the names of small files as on their content.
 */
class FileNamer {
public:
    struct Outcome {
        int named;
        off_t bytes;
    };

    FileNamer();
    ~FileNamer();
    FileNamer(const FileNamer&) = delete;
    FileNamer& operator=(const FileNamer&) = delete;

    /** Takes a complete copy over; false once one has failed. */
    bool add(NamelessFile copy);

    /** Waits for all of them; tells how many got their name since the last call. Those behind a failure are
     * gone. */
    Outcome drain();

private:
    void work();
    void processGathered();
    void process(const std::vector<NamelessFile>& copies);

    std::vector<NamelessFile> m_gathered;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<NamelessFile> m_handedOver;
    bool m_working = false;
    bool m_stopping = false;
    std::atomic<bool> m_failed{false};
    Outcome m_outcome{};
    std::thread m_thread;
};

#endif
