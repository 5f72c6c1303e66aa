// SPDX-License-Identifier: MIT
#include "window/start/startpage.h"

#include <QLabel>
#include <QVBoxLayout>

StartPage::StartPage(QWidget* parent)
    : Page(parent)
    , m_welcome(new QLabel)
{
    auto* const column = new QVBoxLayout(this);
    column->addWidget(m_welcome);
    column->addStretch(1);
    m_welcome->setWordWrap(true);
    StartPage::setTexts();
}

QString StartPage::title() const
{
    return tr("Start");
}

void StartPage::setTexts()
{
    m_welcome->setText(tr("Open a job, or drop one here: a job names a game, its base APK and the channels "
                          "whose packages are wanted."));
}
