// SPDX-License-Identifier: MIT
#ifndef BUILDSCENE_H
#define BUILDSCENE_H

#include "quenzoprocess.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QTemporaryDir>

/** A folder with the sample's pictures and packages and a job over them. */
class BuildScene {
public:
    /** Three channels: "plain", "harbor" with a mark and an SDK, and "meadow" with a mark, an SDK and files
     * of its own. */
    BuildScene();

    bool isValid() const { return m_valid; }
    QString path(const QString& name) const { return m_folder.filePath(name); }

    QJsonObject job; ///< written by run(); changed by tests
    QJsonObject channel(int number) const;
    void setChannel(int number, const QJsonObject& channel);

    bool write(const QString& name, const QByteArray& content) const;
    QByteArray read(const QString& name) const;
    bool writeJob() const;

    /** Has packages signed by a program that waits until the file "gate" is there, so that runs can be met in
     * the middle of a step. Its version is what "bin/version" holds. */
    bool signAtGate();
    int waiting() const; ///< how many wait there, or did
    qint64 processAtGate(const QString& channel) const; ///< the one that builds a channel; 0 before it waits
    bool openGate() const { return write(QStringLiteral("gate"), {}); }
    bool closeGate() const { return QFile::remove(path(QStringLiteral("gate"))); }

    /** A process of "quenzo build job.json" and further words, ready to start. */
    std::unique_ptr<QuenzoProcess> process(const QByteArray& words = {}) const;

    /** Runs it to its end. */
    Ended run(const QByteArray& words = {}) const;

    /** What is finished, by its way from the output folder: everything but records and reports. */
    QMap<QString, QByteArray> finished() const;

    /** The outcomes of a run's report by channel: "built", "unchanged", "failed", "not reached". */
    static QMap<QString, QString> outcomes(const Ended& ended);
    static QJsonObject reportOf(const Ended& ended, const QString& channel);

    /** The content of an entry of a finished package. */
    QByteArray entry(const QString& channel, const QString& name) const;

private:
    QTemporaryDir m_folder;
    bool m_valid = false;
};

#endif
