// SPDX-License-Identifier: MIT
#ifndef TREESCENE_H
#define TREESCENE_H

#include "quenzoprocess.h"

#include <QTemporaryDir>

#include <memory>

/** A folder of its own for each test of the tree commands, which are run in it. */
class TreeScene {
protected:
    void openScene(const QString& folderTemplate = {});
    void closeScene();

    QString path(const QString& relative) const { return m_folder->filePath(relative); }
    QString folder() const { return m_folder->path(); }

    Ended run(const QStringList& words, const std::function<void()>& before = {}) const;
    Ended run(const char* line) const { return run(QuenzoProcess::words(line)); }
    Ended runPlainly(const char* line) const
    {
        return run(QuenzoProcess::words(line), QuenzoProcess::becomePlainUser);
    }

    /** Makes everything in the scene belong to whom runPlainly() runs as. */
    void giveToPlainUser() const;

    QByteArray m_root; ///< the same folder in the file system's bytes

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

#endif
