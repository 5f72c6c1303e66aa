// SPDX-License-Identifier: MIT
#ifndef STARTPAGE_H
#define STARTPAGE_H

#include "build/job.h"
#include "window/page.h"

class JobDocument;
class JobFiles;
QT_BEGIN_NAMESPACE
class QLabel;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QStackedLayout;
class QVBoxLayout;
QT_END_NAMESPACE

/** Where a person begins: what can be done, the jobs of late, and what is wrong with the job that is open. */
class StartPage : public Page {
    Q_OBJECT

public:
    StartPage(JobDocument& document, JobFiles& files, QWidget* parent = nullptr);

    QString title() const override;

protected:
    void setTexts() override;

private:
    QLayout* makeButtons();
    void makeRecent(QVBoxLayout* column);
    void makeJob(QVBoxLayout* column);
    void showRecent();
    void markMissing(const QStringList& missing);
    void openCurrent();
    bool eventFilter(QObject* watched, QEvent* event) override;
    void checkJob();
    void showFaults(const QVector<JobFault>& faults);
    void showJob();

    JobDocument& m_document;
    JobFiles& m_files;
    enum class Soundness { Unknown, Sound, Faulty } m_soundness = Soundness::Unknown;
    QLabel* m_welcome;
    QPushButton* m_open;
    QPushButton* m_apk;
    QPushButton* m_sample;
    QLabel* m_recentLabel;
    QListWidget* m_recent;
    QLabel* m_noRecent;
    QStackedLayout* m_recentStack;
    QLabel* m_job;
    QPlainTextEdit* m_faults;
};

#endif
