// SPDX-License-Identifier: MIT
#ifndef TREEFIXTURE_H
#define TREEFIXTURE_H

#include "messagelog.h"
#include "treefiles.h"
#include "treeruns.h"

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QTemporaryDir>
#include <QVariantMap>

#include <memory>

/** What TreeFiles::content() finds below a folder. */
using Tree = QMap<QByteArray, QByteArray>;

/** Tests of trees: each begins with an empty source in a new folder, a target that is not made, an empty log,
 * and a umask that takes only writing from others. */
class TreeFixture : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    virtual void init();
    /** Fails on warnings that the test has not taken. */
    virtual void cleanup();

protected:
    /** @param place the template of the folders' paths */
    explicit TreeFixture(QString place = TreeFiles::quickFolder());

    /** What a thread is told: "src" and "dest". */
    QVariantMap folders() const;

    bool copy(bool overwrite = true) const;
    bool move() const { return transfer(TreeRuns::Move); }
    bool transfer(TreeRuns::Manner manner) const;
    static bool remove(const QByteArray& path);

    std::unique_ptr<MessageLog> m_messages;
    QByteArray m_root;
    QByteArray m_source;
    QByteArray m_target;

private:
    const QString m_place;
    std::unique_ptr<QTemporaryDir> m_folder;
};

#endif
