// SPDX-License-Identifier: MIT
#ifndef SPINNER_H
#define SPINNER_H

#include <QElapsedTimer>
#include <QTimer>

#include <functional>

class Console;
struct Progress;

/** Shows, while it lives and the event loop runs, the state of work where that is wanted. */
class Spinner {
public:
    /** @param progress asked several times a second; never where nothing is to be shown */
    Spinner(Console& console, std::function<Progress()> progress);
    ~Spinner();
    Spinner(const Spinner&) = delete;
    Spinner& operator=(const Spinner&) = delete;

private:
    Console& m_console;
    const std::function<Progress()> m_progress;
    QTimer m_timer;
};

/** The same for work that keeps the event loop from running: shows what it is given, several times a second
 * at most. */
class PacedProgress {
public:
    explicit PacedProgress(Console& console);
    ~PacedProgress();
    PacedProgress(const PacedProgress&) = delete;
    PacedProgress& operator=(const PacedProgress&) = delete;

    void show(const Progress& progress);

private:
    Console& m_console;
    QElapsedTimer m_sinceShown;
};

#endif
