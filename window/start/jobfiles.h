// SPDX-License-Identifier: MIT
#ifndef JOBFILES_H
#define JOBFILES_H

#include <QObject>

#include <functional>

class JobDocument;
struct GameApk;
struct JobContent;

/** What a person does with whole jobs: opens, makes, saves and closes them. It asks before edits are lost. */
class JobFiles : public QObject {
    Q_OBJECT

public:
    JobFiles(JobDocument& document, QWidget* window);

    /**
     * Asks what becomes of edits that are not saved; false when the person would rather go on with them.
     *
     * @param again is called when they have been saved, which goes on behind the answer false
     */
    bool mayLeave(const std::function<void()>& again);

    /** A job is opened; an APK begins a new one. */
    Q_INVOKABLE void take(const QString& path);

    void open(const QString& path);
    void chooseJob();
    void chooseApk();
    void makeSample();
    void save();
    void saveAs();
    void close();
    void forget(const QString& path); ///< as a recent one

Q_SIGNALS:
    void recentChanged();
    void told(const QString& sentence); ///< what went wrong; empty as soon as something goes well

private:
    void makeFrom(const QString& apk);
    void make(const GameApk& apk);
    void begin(const JobContent& job);
    bool finish(const QString& fault);

    JobDocument& m_document;
    QWidget* const m_window;
    int m_order = 0; // of the latest job that is to be opened
};

#endif
