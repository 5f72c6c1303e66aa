// SPDX-License-Identifier: MIT
#ifndef FILETALLY_H
#define FILETALLY_H

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>

/** Tells which of the expected files have been written since it was made; files from before count once
 * replaced. */
class FileTally {
public:
    explicit FileTally(const QStringList& paths);

    int expected() const { return m_expected.size(); }

    /** How many were seen by now. What was seen is not looked at again: a file may yet be taken away. */
    int seen();

    /** Those that are not there, empty, or not replaced. */
    QStringList missing() const;

private:
    struct Expected {
        QString path;
        QDateTime changedBefore; // invalid when there was no file
    };
    bool isWritten(const Expected& file) const;

    const QDateTime m_start;
    QVector<Expected> m_expected;
    QVector<Expected> m_unseen;
};

#endif
