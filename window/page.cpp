// SPDX-License-Identifier: MIT
#include "window/page.h"

#include <QEvent>

QString Page::workAtHand() const
{
    return {};
}

void Page::stopWork() { }

void Page::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        setTexts();
    QWidget::changeEvent(event);
}
