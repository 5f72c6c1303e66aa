// SPDX-License-Identifier: MIT
#ifndef LAYOUTPRODUCTION_H
#define LAYOUTPRODUCTION_H

#include "icons/iconjob.h"

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVector>

/**
 * Makes the files of a layout from the sets that the library writes: one for each decoration, into a folder
 * of its own. Files of the library's sizes are taken as they are; others are scaled from its marked icon as
 * the library scales.
 */
class LayoutProduction {
public:
    /** @param staged the folder of the library's sets */
    LayoutProduction(const IconJob& job, const QString& staged);

    /** What the library has to make beforehand: each decoration once, with its folder. */
    const QList<ST_CHANNEL_ICON>& decorations() const { return m_decorations; }
    /** The files that this gives. */
    QStringList stagedFiles() const;

    /** Writes all channels' files; to be called on a thread that may work for long. */
    void run();

    /** Why files were not written, a line each. */
    QStringList causes() const { return m_causes; }

private:
    void writeChannels(int decoration);
    QByteArray contentOf(const LayoutFile& file, const QString& set, const QImage& icon) const;
    void write(const QString& path, const QByteArray& content);
    void complain(const QString& path, const QString& cause);

    const IconJob& m_job;
    const QString m_staged;
    QList<ST_CHANNEL_ICON> m_decorations;
    QVector<QStringList> m_folders; // the channels' folders, by decoration
    QImage m_background;
    QMutex m_mutex; // guards what follows
    QStringList m_causes;
};

#endif
