// SPDX-License-Identifier: MIT
#ifndef WINDOWSCENE_H
#define WINDOWSCENE_H

#include "window/mainwindow.h"

#include <QTemporaryDir>
#include <QtTest>

// Generous: other work may load the machine.
#define SCENE_TRY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 60000)

/** The whole window, used by mouse and keys. */
class WindowScene {
public:
    /** Settings and caches go below a folder of the test; the language is English. */
    static void prepare(const QTemporaryDir& folder);

    /** Puts the program of the build tree beside the test, where the window looks for it. */
    static bool linkProgram();

    /** Shows it; why that failed, empty when it did not. */
    QString show();
    /** Hands a job over and waits until it is open: why it is not. */
    QString open(const QString& job);

    MainWindow& window() { return m_window; }
    bool isOpen() const { return m_window.isVisible(); }

    template <class Widget> Widget* part(const char* name) const
    {
        return m_window.findChild<Widget*>(QLatin1String(name));
    }
    QString label(const char* name) const;
    QString cell(const char* table, int row, int column) const;

    /** By a click in the list of pages. */
    void goTo(const QString& page) const;
    void click(const char* button) const;
    void clickCell(const char* table, int row, int column) const;
    void clickTab(const char* tabs, int tab) const;
    /** In the place of what the field holds. */
    void type(const char* field, const QString& text) const;
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /** Presses the left button, moves in steps, and lets it go. */
    void drag(const QWidget* widget, const QPointF& from, const QPointF& to);

    /** As the desktop closes it. */
    void closeFrame() { m_window.windowHandle()->close(); }

private:
    MainWindow m_window;
};

#endif
