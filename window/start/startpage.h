// SPDX-License-Identifier: MIT
#ifndef STARTPAGE_H
#define STARTPAGE_H

#include "window/page.h"

QT_BEGIN_NAMESPACE
class QLabel;
QT_END_NAMESPACE

/** Where a person begins: what can be done, and the jobs of late. */
class StartPage : public Page {
    Q_OBJECT

public:
    explicit StartPage(QWidget* parent = nullptr);

    QString title() const override;

protected:
    void setTexts() override;

private:
    QLabel* m_welcome;
};

#endif
