// SPDX-License-Identifier: MIT
#ifndef SPINNER_H
#define SPINNER_H

#include <QString>
#include <QTimer>

#include <functional>

class Console;

/** Shows, while it lives and the event loop runs, a turning sign and the state of work on a terminal. */
class Spinner {
public:
    /** @param text asked several times a second for what follows the sign; never without a terminal */
    Spinner(Console& console, std::function<QString()> text);
    ~Spinner();
    Spinner(const Spinner&) = delete;
    Spinner& operator=(const Spinner&) = delete;

private:
    void turn();

    Console& m_console;
    const std::function<QString()> m_text;
    QTimer m_timer;
    int m_turn = 0;
};

#endif
