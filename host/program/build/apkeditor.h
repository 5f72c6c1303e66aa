// SPDX-License-Identifier: MIT
#ifndef APKEDITOR_H
#define APKEDITOR_H

#include <QByteArray>
#include <QString>
#include <QVector>

#include <memory>

/** What a package gets in the place of an entry of its base, or besides them. */
struct ApkChange {
    QByteArray name; ///< of the entry
    QString file; ///< whose content it gets; empty where content is given
    QByteArray content;
};

/** One entry of an archive. */
struct ApkEntry {
    QByteArray name;
    quint16 method = 0; ///< 0 stored, 8 deflated
    quint32 crc = 0;
    qint64 packed = 0;
    qint64 size = 0;
};

/**
 * Makes packages from a base archive: entries that do not change are taken over as they were packed, by the
 * kernel where it can, and never unpacked. One object serves any number of packages, on one thread at a time.
 *
 * The bytes of a package follow from base and changes alone. Stored entries begin at multiples of 4 bytes,
 * stored libraries (.so) at multiples of 16 KiB; signatures of the base are dropped.
 */
class ApkEditor {
public:
    ApkEditor();
    ~ApkEditor();
    ApkEditor(const ApkEditor&) = delete;
    ApkEditor& operator=(const ApkEditor&) = delete;

    /** Opens and reads the directory of the base; false with error(). */
    bool open(const QString& base);

    const QVector<ApkEntry>& entries() const;

    /** Whether the base bore a signature, which its packages lose. */
    bool isSigned() const;

    /** How many bytes the last package took over as they were. */
    qint64 takenOver() const;

    /**
     * Writes a package whole, or nothing: a file of that name is replaced once the package is complete.
     *
     * @param changes names each once; they stand in the place of the base's entry, new ones behind all others
     * by name
     * @return false with error()
     */
    bool write(const QString& package, const QVector<ApkChange>& changes);

    /**
     * Holds the content of each of the base's entries against its checksum. How they are aligned does not
     * matter: packages have them aligned anew.
     */
    QString objectionToContents() const;

    /**
     * Holds a package against what Android wants of it: every entry's content against its checksum, no name
     * twice, stored entries aligned. Empty when it is sound, otherwise what is not.
     */
    static QString objectionTo(const QString& package);

    /** The same of what is open. */
    QString objection() const;

    /**
     * The same of what is open, a package of a base that has been looked at as a whole: of the contents only
     * those that changed.
     */
    QString objection(const QVector<ApkChange>& changes) const;

    /** Tells packages apart by their size and every entry's checksum. */
    QString digest() const;

    /** One line: what failed, on which archive or entry, why. */
    const QString& error() const;

private:
    struct Base;
    std::unique_ptr<Base> m_base;
    QString m_error;
};

#endif
