// SPDX-License-Identifier: MIT
#ifndef DEFLATEDCONTENTS_H
#define DEFLATEDCONTENTS_H

#include <QByteArray>
#include <QCache>

/** Deflates contents, and knows those of late: many channels get the same files of one SDK. */
class DeflatedContents {
public:
    static constexpr int level = 6; ///< 9 makes packages less than a hundredth smaller, in twice the time
    static constexpr qint64 largest = 8 << 20; ///< larger contents are not for memory

    /** The deflated form of a content; empty when there is no memory for it. */
    QByteArray of(const QByteArray& content);

private:
    static constexpr int mostBytes = 64 << 20; // of contents and their deflated forms

    QCache<QByteArray, QByteArray> m_deflated{mostBytes};
};

#endif
