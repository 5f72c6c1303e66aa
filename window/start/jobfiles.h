// SPDX-License-Identifier: MIT
#ifndef JOBFILES_H
#define JOBFILES_H

#include <QObject>

class JobDocument;
struct GameApk;

/** What a person does with whole jobs: opens, makes, saves and closes them. It asks before edits are lost. */
class JobFiles : public QObject {
    Q_OBJECT

public:
    JobFiles(JobDocument& document, QWidget* window);

    /** Asks what becomes of edits that are not saved; false when the person would rather go on with them. */
    bool mayLeave();

    /** A job is opened; an APK begins a new one. */
    Q_INVOKABLE void take(const QString& path);

    void open(const QString& path);
    void chooseJob();
    void chooseApk();
    void makeSample();
    bool save();
    bool saveAs();
    void close();
    void forget(const QString& path); ///< as a recent one

Q_SIGNALS:
    void recentChanged();
    void told(const QString& sentence); ///< what went wrong; empty as soon as something goes well

private:
    void makeFrom(const QString& apk);
    void make(const GameApk& apk);
    bool finish(bool isDone, const QString& fault);

    JobDocument& m_document;
    QWidget* const m_window;
};

#endif
