// SPDX-License-Identifier: MIT
#ifndef BUILDPAGE_H
#define BUILDPAGE_H

#include "window/build/buildmessages.h"
#include "window/build/buildmodel.h"
#include "window/build/buildprocess.h"
#include "window/build/reportmodel.h"
#include "window/page.h"

#include <QElapsedTimer>
#include <QPointer>

class JobDocument;
QT_BEGIN_NAMESPACE
class QCheckBox;
class QLabel;
class QLineEdit;
class QMessageBox;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QSortFilterProxyModel;
class QStackedLayout;
class QTableView;
class QTabWidget;
QT_END_NAMESPACE

/** Builds the open job's channels and shows how far each is, what is said meanwhile, and the report. */
class BuildPage : public Page {
    Q_OBJECT

public:
    explicit BuildPage(JobDocument& document, QWidget* parent = nullptr);

    QString title() const override;
    QString workAtHand() const override;
    void stopWork() override;

    /** The channels that are chosen elsewhere, by their rows in the job: one button builds these alone. */
    void setChosen(const QVector<int>& rows);

protected:
    void setTexts() override;

private:
    void nameParts();
    void layOut();
    QLayout* makeTop();
    QWidget* makeChannels();
    QWidget* makeMessages();
    QWidget* makeReport();
    void connectParts();
    void connectProcess();
    void begin();
    void beginChosen();
    void askToSave();
    void run();
    void showProgress(const QString& doing, int done, int total);
    void finish(bool succeeded, const QString& fault);
    void readReport();
    void showControls();
    void showTicked();
    void showWholeMessage();
    QString outcomeText(bool succeeded) const;

    JobDocument& m_document;
    BuildModel m_model;
    BuildMessages m_messages;
    ReportModel m_reportRows;
    BuildProcess m_process;
    QVector<int> m_chosen; ///< on the page of the channels
    QElapsedTimer m_elapsed; ///< since the first channel to be built began
    QPointer<QMessageBox> m_question;
    QSortFilterProxyModel* m_filtered;
    QStackedLayout* m_stack;
    QWidget* m_work;
    QLabel* m_empty;
    QCheckBox* m_all;
    QCheckBox* m_force;
    QPushButton* m_build;
    QPushButton* m_buildChosen;
    QPushButton* m_stop;
    QProgressBar* m_progress;
    QLabel* m_timeLeft;
    QTabWidget* m_tabs;
    QTableView* m_channels;
    QLabel* m_messageLabel;
    QPlainTextEdit* m_message;
    QLabel* m_filterLabel;
    QLineEdit* m_filter;
    QTableView* m_messageTable;
    QTableView* m_report;
    QLabel* m_reportEmpty;
    QPushButton* m_browse;
    QLabel* m_banner;
};

#endif
