// SPDX-License-Identifier: MIT
#ifndef WHOLESAVE_H
#define WHOLESAVE_H

#include <QSaveFile>

/** A file that gets its name when it is whole, over one of that name. */
class WholeSave {
public:
    explicit WholeSave(const QString& path);

    /** Appends; does nothing more after a failure. */
    void write(const QByteArray& content);

    /** Gives it the name. @return why there is no such file, a full disk too; empty when there is */
    QString finish();

private:
    QSaveFile m_file;
    QString m_fault;
};

/** Writes a whole file at once. @return as WholeSave::finish() */
QString saveWhole(const QString& path, const QByteArray& content);

#endif
