// SPDX-License-Identifier: MIT
#ifndef LOGPAGE_H
#define LOGPAGE_H

#include "window/log/logmodel.h"
#include "window/log/messagetap.h"
#include "window/page.h"

#include <QThread>

class LogFilter;
QT_BEGIN_NAMESPACE
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QStackedLayout;
class QTableView;
QT_END_NAMESPACE

/** The tool's log and Qt's messages, as they come. */
class LogPage : public Page {
    Q_OBJECT

public:
    explicit LogPage(QWidget* parent = nullptr);
    ~LogPage() override;

    QString title() const override;

protected:
    void setTexts() override;

private:
    void makeTable();
    QLayout* makeTop();
    QLayout* makeBottom();
    void followLog();
    void append(const QVector<LogEntry>& entries);
    void filter();
    void copy() const;
    void showCurrent();
    void showWhetherEmpty();

    MessageTap m_tap;
    QThread m_readerThread;
    LogModel m_model;
    LogFilter* m_filter;
    QLabel* m_searchLabel;
    QLineEdit* m_search;
    QLabel* m_kindLabel;
    QComboBox* m_kinds;
    QTableView* m_table;
    QLabel* m_empty;
    QStackedLayout* m_stack;
    QPlainTextEdit* m_whole; ///< the current entry
    QLabel* m_file;
    QPushButton* m_copy;
    QPushButton* m_clear;
};

#endif
