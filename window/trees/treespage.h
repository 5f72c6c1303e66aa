// SPDX-License-Identifier: MIT
#ifndef TREESPAGE_H
#define TREESPAGE_H

#include "window/page.h"
#include "window/trees/treelook.h"

QT_BEGIN_NAMESPACE
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QTableView;
QT_END_NAMESPACE
class TreeLookModel;
class TreeWork;

/** Copies and moves folder trees, after a dry look at what would go and what would stay. */
class TreesPage : public Page {
    Q_OBJECT

public:
    explicit TreesPage(QWidget* parent = nullptr);

    QString title() const override;
    QString workAtHand() const override;
    void stopWork() override;

protected:
    void setTexts() override;

private:
    QLayout* makeForm();
    QLayout* makeButtons();
    QLayout* withButton(QLineEdit* folder, QPushButton* button);
    TreeWish wish() const;
    void choose(QLineEdit* folder);
    void look();
    void present(const TreeLook& look);
    void start();
    void end(bool done);
    void enable();
    void tellLook();
    void tell(const QString& text);

    QComboBox* m_operate;
    QLabel* m_operateLabel;
    QLineEdit* m_source;
    QLabel* m_sourceLabel;
    QPushButton* m_chooseSource;
    QLineEdit* m_target;
    QLabel* m_targetLabel;
    QPushButton* m_chooseTarget;
    QLineEdit* m_left;
    QLabel* m_leftLabel;
    QPushButton* m_lookButton;
    QPushButton* m_startButton;
    QPushButton* m_stopButton;
    QProgressBar* m_progress;
    QLabel* m_told;
    QLabel* m_empty;
    QTableView* m_view;
    QStackedWidget* m_shown;
    TreeLookModel* m_model;
    TreeWork* m_work;
    TreeLook m_look; ///< the latest
    bool m_isLooking = false;
    bool m_hasEnded = false; ///< what m_look saw has been done, or tried
};

#endif
