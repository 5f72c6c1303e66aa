// SPDX-License-Identifier: MIT
#ifndef ICONSCENE_H
#define ICONSCENE_H

#include "quenzoprocess.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

/** A folder with a small game icon and the mark "red", whose four pictures differ in size; for the tests of
 * the command icons. */
class IconScene {
public:
    /** Makes the folder anew. */
    void prepare();
    /** The same, with a picture that layout() puts behind icons. */
    void prepareLayouts();

    /** The words of a line, which blanks part. */
    static QStringList words(const char* line) { return QuenzoProcess::words(line); }
    static const QStringList& cornerNames();
    static QByteArray contentOf(const QString& file);
    /** The sign of an output folder that a run has made. */
    static QString marker() { return QStringLiteral(".quenzo-icons"); }
    /** All files but that one, by their paths in the folder. */
    static QStringList filesBelow(const QString& folder);
    static void makePipe(const QString& path);

    /** An icon that fits into a square. */
    static QImage scaled(const QImage& icon, int side)
    {
        return icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }

    /** A list of one channel, with the mark. */
    static inline const QByteArray oneChannel = R"([{"folder": "a", "mark": "red"}])";

    QString root() const { return m_folder->path(); }
    QString path(const QString& relative) const { return m_folder->filePath(relative); }
    QString out(const QString& relative = {}) const { return path(QStringLiteral("out/")) + relative; }
    void write(const QString& file, const QByteArray& content) const;

    QImage master() const { return QImage(path(QStringLiteral("game.png"))); }
    QImage markPicture(int corner) const;
    QImage produced(const QString& folder) const
    {
        return QImage(out(folder) + QStringLiteral("/icon512x512.png"));
    }

    /** Runs the program in the folder. */
    Ended quenzo(const QStringList& arguments) const { return QuenzoProcess(arguments, root()).end(); }
    /** The arguments of its command icons, for Android if nothing else is said. */
    static QStringList arguments(const QStringList& further = {},
                                 const QString& outDir = QStringLiteral("out"));
    /** The words that name a layout, and what it needs. */
    static QStringList layout(const QString& name);
    /** Runs it with these arguments and this channel list. */
    Ended icons(const QByteArray& list, const QStringList& further = {},
                const QString& outDir = QStringLiteral("out")) const;

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

#endif
