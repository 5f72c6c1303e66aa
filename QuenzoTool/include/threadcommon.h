// SPDX-License-Identifier: MIT
#ifndef THREADCOMMON_H
#define THREADCOMMON_H

#include "quenzotool_export.h"

#include <QString>
#include <QStringList>
#include <QThread>
#include <QVariant>

#include <atomic>

QT_BEGIN_NAMESPACE
class QDir;
QT_END_NAMESPACE

/** The operations of ThreadCommon; hosts pass the values as numbers. */
enum THREAD_OPERATE : int {
    OPERATE_COPY = 0, ///< copy the content of the folder "src" into the folder "dest"
    OPERATE_CUT = 1, ///< move the content of the folder "src" into the folder "dest"
    OPERATE_CUT_OUTPUT =
        2 ///< move it, but for the names in "filter", into "dest", which may lie inside "src"
};

/**
 * Copies or moves one folder tree at a time on a thread of its own.
 *
 * @code
 * auto* thread = new ThreadCommon(this);
 * connect(thread, &QThread::finished, this, [=] { showOutcome(thread->getResult().toBool()); });
 * thread->StartOperate(OPERATE_COPY, QVariantMap {{"src", project}, {"dest", backup}});
 * thread->start();
 * @endcode
 *
 * The parameters of every operation are a QVariantMap with the texts "src" and "dest"; without one of them,
 * or when the parameter is no map, the result is false and nothing is touched. An operation that fails is not
 * rolled back. The source folder itself stays, emptied by a move.
 *
 * A copy makes "dest" with all missing parents. A cut makes "dest" if its parent exists, and so does a cut
 * for output. All of them replace existing files. QuenzoTool::copyDirectory tells what holds for links,
 * special files and names.
 *
 * Cut for output, in particular:
 * - "filter" holds names separated by commas, compared without regard to case and without trimming, that stay
 * in "src"; names deeper down are moved. Without "filter" the list of an earlier operation of this object
 * holds again.
 * - Folders directly inside "dest" are not moved further when "dest" is an absolute path without a trailing
 * slash, since it is compared as a text; otherwise, with "dest" inside "src", the tree is moved into itself
 * level by level until the path is too long, and the result is false.
 * - Files found in a "dest" inside "src" move on into a folder of the same name inside it. Which of them are
 * still there by then depends on the order in which the file system lists them.
 * - A "dest" that is, or lies in, "src" only by a link is refused, and nothing is moved (false).
 * - With equal folders, files are lost: each is removed as the one to be replaced. So is a file in "dest" to
 * which a link in "src" leads that has its name: nothing is left that the link could be copied from.
 * - A folder of "src" that is not empty after its turn is left with the permission QFileDevice::WriteOther
 * alone. On POSIX its owner must change that to enter it again; later entries of the same run may fail for
 * it. A link to a folder passes this on to the folder it leads to.
 * - A file that cannot be copied is written to the tool's log, by QuenzoBase::Log, and ends the operation. So
 * is one, of several perhaps, whose copy could not be brought to the disk.
 *
 * QThread::requestInterruption() ends an operation between two files, some thousands of small ones later at
 * the latest: the result is false, and what was done by then stays, as with any failure.
 *
 * Threads: driven from the thread that made it; run() is on the worker. StartOperate() and getResult() are
 * not to be called while it runs.
 *
 * Lifetime: may be used again after QThread::finished. Destroy it only then; the destructor does not wait.
 *
 * @since 1.0
 */
class QUENZOTOOL_EXPORT ThreadCommon : public QThread {
    Q_OBJECT

public:
    ThreadCommon(QObject* parent = nullptr);
    ~ThreadCommon() override;

    /**
     * Records an operation; the host then calls start().
     *
     * @param operate the operation; a value outside the enumeration leaves the result as it was
     * @param param a QVariantMap as described above; other keys are ignored
     * @return true
     */
    bool StartOperate(THREAD_OPERATE operate, const QVariant& param);

    /** The result of the last operation, a bool; invalid before the first has ended. */
    const QVariant& getResult();

    /**
     * Moves the content of a folder into another one, which is not made. Folders directly inside the folder
     * that the last cut into its own source took for the output within its output are left where they are.
     * Runs on the calling thread.
     *
     * @param fromPath the folder
     * @param toPath the folder for its content
     * @param exceptName takes part in no decision; kept since hosts pass it
     * @return false as soon as a file could not be copied, which is then in the tool's log
     */
    bool exceptCut(QString fromPath, QString toPath, QString exceptName);

protected:
    void run() override;

    void execCopy();
    void execCut();
    void execCutOutput();

    /** A cut for output without names to leave behind, for subclasses: no operation code leads here. */
    void execMigrateData();

    /**
     * Moves the content of a folder into another one, which is made if its parent exists.
     *
     * @param fromDir the folder
     * @param toDir the folder for its content
     * @param filterList the names directly in @p fromDir to leave behind; null for none
     * @return true when everything else was moved
     */
    bool cutForOutput(const QDir& fromDir, const QDir& toDir, QStringList* filterList);

    QVariant m_param;
    THREAD_OPERATE m_operate;
    QVariant m_result;
    QStringList m_filterList;
    QString m_outputDir; ///< "dest" of the last cut for output, as it was given
    QString m_exceptDir; ///< see exceptCut()

private:
    // Its release at the end of run() publishes what the worker wrote, however the host learns of that end.
    std::atomic<bool> m_published{false};
};

#endif
