// SPDX-License-Identifier: MIT
#ifndef PERSON_H
#define PERSON_H

#include <QtTest>

#include <QAbstractButton>
#include <QApplication>

#include <functional>
#include <utility>

/** Answers the next question that the window asks: the person sits on the other side of its event loop. */
class Person : public QObject {
public:
    explicit Person(std::function<void(QWidget*)> answer)
        : m_answer(std::move(answer))
    {
        startTimer(5);
    }

    bool wasAsked() const { return !m_answer; }

    /** By the mouse. */
    static void press(QWidget* dialog, const QString& text)
    {
        QTest::mouseClick(button(dialog, text), Qt::LeftButton);
    }

    /** By the keys alone: Tab until the button has the focus, then Space. */
    static void reach(QWidget* dialog, const QString& text)
    {
        const QAbstractButton* const wanted = button(dialog, text);
        for (int i = 0; i < 20 && dialog->focusWidget() != wanted; ++i)
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
        if (dialog->focusWidget() != wanted)
            qFatal("Tab does not reach %s", qUtf8Printable(text));
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Space);
    }

private:
    static QAbstractButton* button(const QWidget* dialog, const QString& text)
    {
        const auto buttons = dialog->findChildren<QAbstractButton*>();
        for (QAbstractButton* const button : buttons) {
            if (button->text() == text)
                return button;
        }
        qFatal("no button %s", qUtf8Printable(text));
    }

    void timerEvent(QTimerEvent* /*event*/) override
    {
        QWidget* const dialog = QApplication::activeModalWidget();
        if (dialog != nullptr && m_answer)
            std::exchange(m_answer, nullptr)(dialog);
    }

    std::function<void(QWidget*)> m_answer;
};

#endif
