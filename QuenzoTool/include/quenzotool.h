// SPDX-License-Identifier: MIT
#ifndef QUENZOTOOL_H
#define QUENZOTOOL_H

#include "quenzotool_export.h"

#include <QJsonValue>
#include <QMap>
#include <QString>

QT_BEGIN_NAMESPACE
class QDir;
QT_END_NAMESPACE

/**
 * Small, self-contained jobs: the tool folder, running a command and waiting for it, text helpers, directory
 * trees and the text scrambling codec.
 *
 * @code
 * QString output, error;
 * if (QuenzoTool::runCmdWaitFinish("\"" + QuenzoTool::getToolPath() + "/adb\" devices", output, error))
 *     showDevices(output);
 * @endcode
 *
 * Every function is static, keeps no state between calls and may be called from every thread. Failures come
 * back as results; nothing throws.
 *
 * @since 1.0
 */
class QUENZOTOOL_EXPORT QuenzoTool {
public:
    QuenzoTool() = default;

    /**
     * The folder of the external tools: the run path followed by `/../tool/win` in a Windows build and by
     * `/../tool/mac` in every other. The `..` is not resolved.
     */
    static QString getToolPath();

    /**
     * Runs a command line and waits for its end, at most 30 seconds; then it is killed, with every child of
     * it that has not gone into a process group of its own. The same happens to one that prints more than
     * 64 MiB, both streams together. It has no terminal: on POSIX a question that it puts to /dev/tty fails
     * at once. Blocks the calling thread.
     *
     * @param command program and arguments in one string; double quotation marks keep blanks together
     * @param[out] output what the program had written to its standard output, as UTF-8
     * @param[out] error what it had written to its standard error, as UTF-8
     * @return true when it ended in time, whatever its exit code; false when it did not, printed too much or
     * could not be started. Both texts are assigned in every case.
     */
    static bool runCmdWaitFinish(const QString& command, QString& output, QString& error);

    /** The current local date and time in @p format (see QDateTime::toString). */
    static QString getCurrentTime(QString format);

    /**
     * The bare file name of a URL or path: what follows the last slash, without the query. Nothing is
     * percent-decoded; a URL that ends in a slash gives an empty text.
     */
    static QString getDownloadFileName(QString url);

    /** The length of @p text in bytes of the local 8-bit encoding. */
    static int showLength(QString text);

    /**
     * Shortens a text to a budget of bytes of the local 8-bit encoding.
     *
     * For single-byte text the result is one byte under the budget: a prefix of one byte less than the room
     * that the suffix leaves is taken before the exact one. Kept: hosts lay out their lists by it.
     *
     * @param text the text
     * @param count the budget in bytes
     * @param suffix what marks a shortened text, counted within the budget
     * @return the text as it is when it is within budget, or when the suffix alone fills the budget;
     * otherwise its beginning followed by the suffix; an empty text when wide characters step over both
     * acceptable lengths
     */
    static QString getStrInMaxCount(QString text, int count, QString suffix);

    /**
     * Escapes white space by a backslash, from the tenth character on: blanks among the first nine characters
     * stay as they are, and one that follows a backslash gets none.
     */
    static QString blankReplace(QString text);

    /**
     * Reads a JSON value leniently as a whole number: a number is truncated toward zero (and kept within the
     * range of int), a text is read in base 10, everything else, a text that is no number included, is 0.
     */
    static int ConvertToInt(QJsonValueRef value);

    /** Reads a JSON value as text: a number in six significant digits, a text as it is, everything else
     * empty. */
    static QString ConvertToStr(QJsonValueRef value);

    /**
     * Splits the query of a URL. Keys and values are taken as they stand: nothing is decoded or trimmed.
     *
     * A piece without "=" before a later pair is glued to that pair's key, whose value then runs to the end,
     * and the later pair is read once more by itself; at the end of the query such a piece is dropped.
     * The result of many such pieces grows with their number's square: do not pass on what strangers wrote
     * unseen.
     *
     * @param url the URL
     * @param[out] params replaced by the pairs behind the first "?"; the last occurrence of a key wins
     */
    static void getUrlParam(QString url, QMap<QString, QString>& params);

    /**
     * Copies or moves the content of a folder into another folder, which is made if its parent exists.
     *
     * Ends at the first entry that fails, in the order in which the file system lists them; what was copied
     * by then stays, what was moved by then is gone from the source. A file arrives whole or not at all, with
     * the permission bits that QFile::copy gives, and in a move goes from the source when its data are on the
     * disk. Folders are made with the process's default rights. The source folder itself always stays.
     *
     * - A link to a file is copied as that file. A link to a folder is walked as a folder: a move empties
     * what it leads to, and a link to a parent is followed some forty times, until the system refuses
     * (false). One to the target, or to the folder that just then is copied to, ends the operation (false).
     * - Links that lead nowhere, pipes, sockets, devices and folders that cannot be read are not copied
     * (false).
     * - A source that is missing counts as an empty folder: the target is made (true). With the target inside
     * the source, or a source that cannot be read, nothing is touched (false). A file is never copied onto
     * itself (false).
     * - What failed, or stays in a move, and why is told in the logging category "quenzo.trees", which a host
     * may switch on.
     * - A link or mount in the target that leads into the source ends the operation (false) before anything
     * behind it is touched; others are followed.
     * - Folders of Qt's resource system (":/name") can be copied from. Nothing can be removed from them, so a
     * move out of one is a copy. They take nothing (false).
     * - The name filters of @p source hold for what is directly in it.
     * - A tree too deep for the thread's stack ends the operation (false), on Linux.
     * - QThread::requestInterruption() of the calling thread ends the operation between two files (false).
     *
     * Blocks the calling thread.
     *
     * @param source the folder
     * @param target the folder for its content
     * @param overwrite whether existing files are replaced; each goes when its replacement is whole, or when
     * there is no room for both. One that cannot be removed gets the permission QFileDevice::WriteOther for
     * another try, and its own back if it stays. A link that leads nowhere does not count as existing, and
     * fails. With false the first one that exists fails.
     * @param deleteSource whether to move: files and subfolders that cannot be removed stay, and so does a
     * file that somebody wrote to after it was copied; neither is a failure
     * @return true when everything was copied
     */
    static bool copyDirectory(const QDir& source, const QDir& target, bool overwrite, bool deleteSource);

    /**
     * Gives every file in a folder, at every depth, the permission QFileDevice::WriteOther and no other: this
     * clears the read-only attribute on Windows. On POSIX the mode is 0002 then, and a plain user is locked
     * out of the file. Links are followed, so files outside the folder are changed too. Folders keep their
     * rights.
     *
     * Every file and folder is named in Qt's message log, at debug level. The spelling is kept: hosts call
     * it.
     *
     * The name filters of @p folder hold for what is directly in it.
     *
     * @return true: also when the folder does not exist, and when files keep their rights because they could
     * not be changed or are too deep for the thread's stack, which the category "quenzo.trees" tells
     */
    static bool changePermessionRecursively(QDir& folder);

    /**
     * Deletes a folder with everything in it, after changePermessionRecursively() for the sake of read-only
     * files: which changes files that links in it lead to, outside the folder too. The links themselves are
     * removed, not what they lead to.
     *
     * @return true when the folder is gone, or was not there; false of a folder of Qt's resource system
     */
    static bool removeRecursively(QDir& folder);

    /**
     * Scrambles a text so that it cannot be read at a glance: the Base64 form of its UTF-8 bytes with
     * neighbouring characters swapped in pairs, all but the last six. There is no key: this hides, it does
     * not protect.
     *
     * Kept: texts of less than four bytes scramble to an empty (not null) text and cannot be brought back. A
     * zero byte ends a text when it is decoded.
     */
    static QString ckEncode(QString text);

    /**
     * Brings a text back that ckEncode() scrambled.
     *
     * @return the plain text, never null; whatever the rearranged characters decode to, possibly an empty or
     * garbled text, for anything that ckEncode() has not made
     */
    static QString ckDecode(QString text);

    /** Starts the embedded interpreter; see PythonForQt::initPythonEnv. */
    static bool initPythonEnv();
};

#endif
