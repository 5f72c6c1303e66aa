// SPDX-License-Identifier: MIT
#ifndef NEWJOBDIALOG_H
#define NEWJOBDIALOG_H

#include <QDialog>

struct GameApk;
QT_BEGIN_NAMESPACE
class QLabel;
class QLineEdit;
QT_END_NAMESPACE

/** Asks for the folder of a new job. */
class NewJobDialog : public QDialog {
    Q_OBJECT

public:
    /** @param apk the game; one without a path for the sample */
    NewJobDialog(const GameApk& apk, QWidget* parent);

    /** Absolute, without links; a job can be written there. */
    QString folder() const;

    void accept() override;

private:
    QLayout* makeGame(const GameApk& apk);
    QLayout* makeFolder(const GameApk& apk);
    void choose();

    QLineEdit* m_folder;
    QLabel* m_fault;
};

#endif
