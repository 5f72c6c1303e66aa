// SPDX-License-Identifier: MIT
#ifndef FILENAMER_LINUX_H
#define FILENAMER_LINUX_H

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <sys/types.h>
#include <thread>
#include <vector>

/** A file whose content is copied, and which has no name yet. */
struct UnnamedFile {
    int source;
    int target;
    mode_t mode;
    off_t size;
    int folder; ///< where it belongs
    const char* name;
};

/** Gives an unnamed file its mode, where the file system knows such, and its name; an error number, or 0. */
int giveName(const UnnamedFile& file);

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

    /** Takes a file over and closes it in the end; false once one has failed. */
    bool add(const UnnamedFile& file);

    /** Waits for all of them; tells how many got their name since the last call. Those behind a failure are
     * gone. */
    Outcome drain();

private:
    void work();
    void processGathered();
    void process(const std::vector<UnnamedFile>& files);

    std::vector<UnnamedFile> m_gathered;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<UnnamedFile> m_handedOver;
    bool m_working = false;
    bool m_stopping = false;
    std::atomic<bool> m_failed{false};
    Outcome m_outcome{};
    std::thread m_thread;
};

#endif
