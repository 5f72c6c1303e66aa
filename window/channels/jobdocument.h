// SPDX-License-Identifier: MIT
#ifndef JOBDOCUMENT_H
#define JOBDOCUMENT_H

#include "window/channels/jobcontent.h"

#include <QObject>
#include <QPoint>
#include <QSize>
#include <QUndoStack>
#include <QVector>

#include <functional>
#include <optional>

/** Where a channel's mark goes, as the library numbers corners and counts pixels. */
struct MarkPlace {
    int corner = 3; ///< 0 to 3
    std::optional<int> x, y; ///< flush in the corner when not given

    bool operator==(const MarkPlace& other) const
    {
        return corner == other.corner && x == other.x && y == other.y;
    }
    bool operator!=(const MarkPlace& other) const { return !(*this == other); }

    /** Where the mark's top left comes to lie on an icon, in pixels from the icon's own. */
    QPoint cornerIn(const QSize& icon, const QSize& mark) const;
};

/**
 * The job file that is open: its channels are read and edited here, and each edit can be undone.
 *
 * @code
 * document.open(JobContent::read(path)); // which another thread may have done
 * document.setMark({0, 1}, "harbor"); // one step of undoStack()
 * document.save(this, [this](const QString& fault) { banner->setText(fault); });
 * @endcode
 *
 * Rows count the channels in the job's order. What it says of a channel has the job's defaults applied, as a
 * run does it. A file is written with its own order of keys, its comments, its layout and what the window
 * does not know: an edit that has been undone leaves no trace. A job may be opened although a run would
 * refuse it. It belongs to the window's thread.
 */
class JobDocument : public QObject {
    Q_OBJECT

public:
    enum Step { Whole, Continued }; ///< consecutive continued edits of the same channels are undone together

    explicit JobDocument(QObject* parent = nullptr);
    ~JobDocument() override;

    /** @param job without a fault */
    void open(const JobContent& job);
    /** Reads it here and now. @param[out] fault a sentence; what was open before stays then. */
    bool open(const QString& path, QString& fault);
    void close();

    /** Told on the window's thread when it is over; @p fault is a sentence, and empty when all went well. */
    using Ended = std::function<void(const QString& fault)>;

    /** Writes the job as it is now on another thread. @param receiver nothing is told without it */
    void save(QObject* receiver, const Ended& ended);
    /** The job is this file from then on; what it reads stays where it is. */
    void saveAs(const QString& path, QObject* receiver, const Ended& ended);
    bool isSaving() const { return m_isSaving; }
    /** Does it as soon as nothing is being saved: at once, most often. */
    void whenSaved(const std::function<void()>& then);

    bool isOpen() const { return !m_path.isEmpty(); }
    QString path() const { return m_path; } ///< absolute; empty when no job is open
    bool isModified() const { return !m_undoStack.isClean(); }
    QUndoStack* undoStack() { return &m_undoStack; }
    QByteArray content() const; ///< what save() writes

    QString game() const;
    QString masterPath() const; ///< absolute, as the following; empty where the job names none
    QString marksPath() const;
    QString outputPath() const;
    QStringList sdkNames() const; ///< those that channels may have

    int channelCount() const;
    QString folderOf(int row) const;
    QString nameOf(int row) const; ///< the folder when the job gives none
    QString numberOf(int row) const;
    QString packageOf(int row) const; ///< empty for the base's own
    QStringList sdksOf(int row) const;
    QString filesOf(int row) const; ///< as the job says it; empty for none
    bool isEncrypted(int row) const;
    QString markOf(int row) const; ///< empty for none
    MarkPlace placeOf(int row) const;
    bool hasOwnPlace(int row) const; ///< otherwise it is that of the job's defaults

    /** Why a channel cannot have this: a sentence; empty when it can. */
    QString objectionToFolder(int row, const QString& folder) const;
    QString objectionToNumber(const QString& number) const;
    QString objectionToPackage(const QString& package) const;
    QString objectionToSdks(const QStringList& sdks) const;

    void setFolder(int row, const QString& folder);
    void setName(int row, const QString& name);
    void setNumber(int row, const QString& number);
    void setPackage(int row, const QString& package);
    void setFiles(int row, const QString& path);
    void setEncrypted(const QVector<int>& rows, bool isEncrypted);
    void setSdks(const QVector<int>& rows, const QStringList& sdks);
    void setMark(const QVector<int>& rows, const QString& mark);
    void setPlace(const QVector<int>& rows, const MarkPlace& place, Step step = Whole);
    void removePlace(const QVector<int>& rows); ///< the defaults' holds again

    int addChannel(int row); ///< a new one in this place; @return the row
    void copyChannels(const QVector<int>& rows); ///< each behind itself, with a folder of its own
    void removeChannels(const QVector<int>& rows);
    /** @param row that of the first one afterwards, were the others not there */
    void moveChannels(const QVector<int>& rows, int row);

Q_SIGNALS:
    void opened();
    void closed();
    void savedAs(const QString& path);
    void channelsChanged(const QVector<int>& rows);
    void channelsToBeInserted(int first, int last);
    void channelsInserted(int first, int last);
    void channelsToBeRemoved(int first, int last);
    void channelsRemoved(int first, int last);
    void channelsPlaced(const QVector<int>& rows); ///< these have been added, moved or brought back

private:
    class Change;
    class Arrangement;
    using Items = QVector<OrderedJson::Item>;

    const OrderedJson& channel(int row) const;
    OrderedJson valueOf(int row, const QString& key) const;
    const Items& channels() const;
    Items& channels();
    void change(const QString& text, const QVector<int>& rows, Step step,
                const std::function<void(int row, OrderedJson& channel)>& edit);
    void arrange(const QString& text, const QVector<int>& taken, const QVector<int>& placed,
                 const Items& items);
    void replace(int row, const OrderedJson& channel);
    Items take(const QVector<int>& rows);
    void put(const QVector<int>& rows, const Items& items);
    OrderedJson newChannel(const OrderedJson& like, QString folder) const;
    QString folder() const;
    JobContent contentNow() const;
    void write(const QString& path, QObject* receiver, const Ended& ended);
    void settle(const JobContent& written, int revision);
    QString absolute(const QString& path) const;
    QString titleOf(const QVector<int>& rows) const;

    QString m_path;
    QByteArray m_digest; // of the file as it was read or written
    OrderedJson m_root;
    OrderedJson m_defaults;
    int m_list = -1; // the index of the channels in the root
    int m_revision = 0; // another one with each edit
    bool m_isSaving = false;
    QVector<std::function<void()>> m_waiting; // for the end of that
    QUndoStack m_undoStack;
};

#endif
