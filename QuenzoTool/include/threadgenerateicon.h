// SPDX-License-Identifier: MIT
#ifndef THREADGENERATEICON_H
#define THREADGENERATEICON_H

#include "quenzotool_export.h"

#include <QImage>
#include <QList>
#include <QString>
#include <QThread>

/** One channel's decoration of the game's icon. */
struct ST_CHANNEL_ICON {
    int nOffsetX = 0; ///< the mark's distance from the icon's left edge, in pixels
    int nOffsetY = 0; ///< the mark's height over the icon's top edge, in pixels: negative values move it down
    int nCorner = 0; ///< 0 left top, 1 left bottom, 2 right top, 3 right bottom, 4 as setGameInfo() says
    QString strMarkName; ///< the mark's folder in the mark root; exactly "None" means no mark
    QString strChannelDir; ///< the channel's folder in the output root
};

/**
 * Writes the launcher icons of every channel: the game's icon with the channel's corner mark, in each size of
 * the platform, as PNG files in a folder a channel.
 *
 * @code
 * auto* thread = new ThreadGenerateIcon(this);
 * // Right bottom, 320 pixels from the left and from the top, Android.
 * thread->setGameInfo(gameIcon, 3, 320, -320, 0);
 * thread->setInfo(markRoot, channels);
 * // Deleted first, with all it holds.
 * thread->setOutputDir(outputDir + "/");
 * connect(thread, &QThread::finished, this, &Window::showIcons);
 * thread->start();
 * @endcode
 *
 * Pictures: each mark's folder holds a folder "icon" with left-top.png, left-bottom.png, right-top.png and
 * right-bottom.png. The picture of the channel's corner is drawn whole, its top left at (x, -y) of the game's
 * icon.
 *
 * Files: Android gets icon36x36.png, and 48, 72, 96, 144 and 192; iOS gets Icon-29.png, and 40, 50, 57, 58,
 * 72, 76, 80, 87, 100, 114, 120, 144, 152 and 180. An icon that is not square keeps its shape within the
 * size. Beside them stands icon512x512.png: the marked icon in its own size, whatever that is. The name is
 * kept; packages expect it.
 *
 * Nothing is reported, by design: QThread::finished ends the run, and hosts look at the files. A folder that
 * cannot be made, a mark that cannot be loaded (the icon stays unmarked) and a file that cannot be written
 * are passed over; the logging category "quenzo.icons", off unless a host switches it on, tells the causes as
 * warnings. A file gets its name once it is whole, so that a full disk or the end of the process leaves what
 * stood there before; one with several names, with rights that cannot be given to another, or in a folder
 * that takes no new files, is overwritten in place. What a link leads to is written, there or not. What is no
 * regular file, like a pipe, is neither read nor written.
 *
 * Threads: the object is driven from the thread that made it, and left alone while it runs. run() encodes on
 * all cores, on threads of its own. Qt scales large pictures in the global thread pool, so a run waits while
 * the host's tasks fill that pool: let none of them wait for a run. Where the system gives no threads for
 * that a run touches nothing; an icon of at most 180 pixels a side needs none for iOS. Equal decorations are
 * encoded once in a run, and files appear in any order; where channels share a folder the later one's stay.
 * The pictures must not change during a run.
 *
 * Lifetime: destroy the object only after QThread::finished; the destructor neither stops nor waits for a
 * run. The same object may run again, with the same or new settings.
 *
 * @since 1.0
 */
class QUENZOTOOL_EXPORT ThreadGenerateIcon : public QThread {
    Q_OBJECT

public:
    ThreadGenerateIcon(QObject* parent = nullptr);
    ~ThreadGenerateIcon() override;

    /**
     * Stores which channels get icons.
     *
     * @param markRoot the folder with one folder a mark
     * @param channels the channels, copied
     */
    void setInfo(QString markRoot, const QList<ST_CHANNEL_ICON>& channels);

    /**
     * Stores the game's icon and what channels with corner 4 use. The platform comes last.
     *
     * @param gameIcon path of the icon, in any format that Qt reads. A run without it touches nothing.
     * @param defaultCorner the corner, as in ST_CHANNEL_ICON; 4 means right bottom, as every unknown value
     * does
     * @param defaultX the position, as ST_CHANNEL_ICON::nOffsetX
     * @param defaultY the position, as ST_CHANNEL_ICON::nOffsetY
     * @param platform 0 for Android, every other value for iOS
     */
    void setGameInfo(QString gameIcon, int defaultCorner, int defaultX, int defaultY, int platform);

    /**
     * Stores the output root.
     *
     * @param dir an absolute path that ends in a separator, since folder names are appended as they are. With
     * an empty or a relative path a run touches nothing.
     */
    void setOutputDir(QString dir);

    /**
     * Whether a run first deletes the output root with all it holds, pictures included; true at first.
     * Otherwise what is there stays, and files of the same names are overwritten.
     */
    void setClearDirFirst(bool clear);

protected:
    /** Makes the icons of all channels. */
    void run() override;

private:
    void generateAndroidIcon(QString channelDir);
    void generateIOSIcon(QString channelDir);

    struct Production;

    ST_CHANNEL_ICON withDefaults(ST_CHANNEL_ICON channel) const;
    void produce();

    QList<ST_CHANNEL_ICON> m_lsChannelIcon;
    QString m_strOutputDir;
    QImage m_imgIcon; // after a run the last channel's marked icon
    bool m_bClearDirFirst = true;
    QString m_strGameIcon;
    int m_nPlatform = 0;
    int m_nDefaultCorner = 0;
    int m_nDefaultX = 0;
    int m_nDefaultY = 0;
    QString m_strMarkRoot;
    Production* m_production = nullptr; // the run at work
};

#endif
