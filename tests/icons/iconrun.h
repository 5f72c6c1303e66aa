// SPDX-License-Identifier: MIT
#ifndef ICONRUN_H
#define ICONRUN_H

#include <threadgenerateicon.h>

#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/** What tests of the class that makes icons share. */
namespace IconRun {

constexpr int android = 0;
constexpr int ios = 1;

/** The names of a channel's files, sorted. */
QStringList namesOf(int platform);

ST_CHANNEL_ICON channel(const char* mark, const char* folder, int corner = 0, int x = 0, int y = 0);

void makePipe(const QString& path);

/** Whether the folder holds exactly one set, each file as Qt alone makes it of @p icon: empty, or what
 * differs. */
QString differencesFrom(const QImage& icon, const QString& folder, int platform);

/** Runs the class in a folder of its own with the marks "red" and "blue", whose corners differ. */
class Job {
public:
    Job();

    static QStringList corners();

    QString path(const QString& relative) const { return m_folder.filePath(relative); }
    QString out(const QString& relative = {}) const { return path(QStringLiteral("out/")) + relative; }
    QString markPath(const QString& mark, const QString& corner) const;
    QImage markPicture(const char* mark, int corner) const;
    void writePicture(const QString& file, const QImage& picture, const char* format = "PNG") const;
    void write(const QString& file, const QByteArray& content) const;

    void run(const QList<ST_CHANNEL_ICON>& channels, int platform = android);

    QStringList filesIn(const QString& folder) const;
    QImage produced(const char* folder) const;

private:
    QTemporaryDir m_folder;

public:
    ThreadGenerateIcon thread;
    QString icon = path(QStringLiteral("game.png"));
    QString outputDir = out();
    int defaultCorner = 3;
    int defaultX = 7;
    int defaultY = -9;
};

} // namespace IconRun

#endif
