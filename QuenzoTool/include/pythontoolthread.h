// SPDX-License-Identifier: MIT
#ifndef PYTHONTOOLTHREAD_H
#define PYTHONTOOLTHREAD_H

#include "quenzotool_export.h"

#include <QString>
#include <QThread>
#include <QVariantMap>

#include <atomic>

/** The tasks of PythonToolThread; hosts pass the values as numbers. */
enum PYTHON_TOOL_OPERATE : int {
    PYTHON_TOOL_ZIP =
        0, ///< pack "src", a folder, and the file "apkfile", if not empty, into the archive "dest"
    PYTHON_TOOL_UNZIP = 1, ///< unpack the archive "src" into the folder "dest"
    PYTHON_TOOL_ENCRYPT = 2, ///< encrypt the APK "apkfile"
    PYTHON_TOOL_IMPORT_SDK =
        3, ///< import the SDK package "src" into "dest", checking its number "idSDK" if given
    PYTHON_TOOL_RUN_SCRIPT =
        4, ///< call the function "main" of the script "toolPath" with the values of "list"
    PYTHON_TOOL_EXPORT_DEVELOP_INFO = 5 ///< export the developer record of the channel "idChannel" to "dest"
};

/**
 * Runs one packaging script at a time on a thread of its own.
 *
 * @code
 * qRegisterMetaType<QVariantMap*>("QVariantMap*"); // once, for connections across threads
 * auto* thread = new PythonToolThread(this);
 * connect(thread, &PythonToolThread::onTaskFinsih, this, &Window::showOutcome);
 * if (thread->StartOperate(PYTHON_TOOL_IMPORT_SDK, {{"src", package}, {"dest", folder}}))
 *     thread->start();
 * @endcode
 *
 * Threads: the object is driven from the thread that made it; run() and the scripts are on the worker.
 * Several objects may run at once; their scripts take turns on the interpreter lock. Start the interpreter on
 * one thread first.
 *
 * Lifetime: destroy the object only after QThread::finished; the destructor neither stops nor waits for a
 * task. A task recorded while the thread winds down is kept, but QThread ignores start() until it has
 * finished: wait for QThread::finished before the next start().
 *
 * @since 1.0
 */
class QUENZOTOOL_EXPORT PythonToolThread : public QThread {
    Q_OBJECT

public:
    PythonToolThread(QObject* parent = nullptr);
    ~PythonToolThread() override;

    /**
     * Records a task; the host then calls start(). A task recorded and never started keeps the object busy
     * for good.
     *
     * @param op the task; a value outside the enumeration does nothing when it is run
     * @param params the task's parameters. What the task writes goes to a copy of the object's own. The map
     * that onTaskFinsih() points to is emptied first: hand over a copy of it.
     * @return false, with nothing changed, while a task is recorded or runs
     */
    bool StartOperate(PYTHON_TOOL_OPERATE op, const QVariantMap& params);

    /** Whether a task is recorded or runs. From every thread. */
    bool bExecTask();

    /**
     * Encrypts an APK on the calling thread, through the function `encryptApk` of the script `encrypt.py`,
     * and stores the script's answer as "result". Not to be called while a task of this object runs.
     *
     * @param apkFile path of the APK, encrypted in place
     * @return true when the script answered 0
     */
    bool encrypt(QString apkFile);

Q_SIGNALS:
    /**
     * The outcome of a task, emitted on the worker thread. Packing and unpacking report none, nor does a task
     * that lacks a required parameter, but for the import; wait for QThread::finished there.
     *
     * The spelling is kept: hosts connect by it. Connections across threads need `QVariantMap*` registered
     * with Qt's meta-types, which is left to the host.
     *
     * @param type the task's number; an encryption reports 3, as the import does
     * @param dictParam the parameters with the task's results ("result"; "error_code" and "error_str" of a
     * failed import), owned by the emitting object and unchanged until its next StartOperate(); or null: for
     *        run-script tasks, successful exports and imports without "src" or "dest"
     * @param bSuccess whether the task succeeded
     */
    void onTaskFinsih(int type, QVariantMap* dictParam, bool bSuccess);

protected:
    void run() override;

    /**
     * Imports an SDK package and emits onTaskFinsih().
     *
     * @param src the package file
     * @param dest the folder that the script fills
     * @param idSDK the SDK's number, or -1 for none, which the script then is not given
     */
    void importSDK(QString src, QString dest, int idSDK);

    /** Packs the folder @p src, and the file @p apkfile if not empty, into the archive @p dest. */
    void zip(QString src, QString dest, QString apkfile);

    /** Unpacks the archive @p src into the folder @p dest. */
    void unzip(QString src, QString dest);

    /** Calls an archive function of `pytoolForQt.py` with three texts; its answer is not read. */
    void zipFunction(const char* function, QString first, QString second, QString third);

private:
    void performTask();
    void performScript();
    void performExport();

    PYTHON_TOOL_OPERATE m_operate;
    // Read on the host's thread: its release publishes the map that the task wrote.
    std::atomic<bool> m_bExecTask{false};
    QVariantMap m_params;
};

#endif
