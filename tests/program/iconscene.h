// SPDX-License-Identifier: MIT
#ifndef ICONSCENE_H
#define ICONSCENE_H

#include <QByteArray>
#include <QImage>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

/** How a run of the program ended. */
struct Ended {
    int code = -1;
    QByteArray output;
    QByteArray error;
};

/** Waits for the program's end; it must end by itself. */
Ended endOf(QProcess& process);

/** Words with a blank between any two. */
QStringList words(const char* text);

/** A folder with a small game icon and the mark "red", whose four pictures differ in size; for the tests of
 * the command icons. */
class IconScene {
public:
    /** Makes the folder anew. */
    void prepare();

    static const QStringList& cornerNames();
    static QByteArray contentOf(const QString& file);
    static QStringList filesBelow(const QString& folder);
    static void makePipe(const QString& path);

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
    Ended quenzo(const QStringList& arguments) const;
    /** Runs its command icons with this channel list, for Android if nothing else is said. */
    Ended icons(const QByteArray& list, const QStringList& further = {},
                const QString& outDir = QStringLiteral("out")) const;

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

#endif
