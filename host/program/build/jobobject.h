// SPDX-License-Identifier: MIT
#ifndef JOBOBJECT_H
#define JOBOBJECT_H

#include "build/job.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSet>

#include <functional>
#include <optional>

/** The mistakes of a job, each once: what the defaults say wrong is met again with every channel. */
class JobFaults {
public:
    void add(const QString& place, const QString& text);
    const QVector<JobFault>& all() const { return m_faults; }

private:
    QVector<JobFault> m_faults;
    QSet<QString> m_seen;
};

/** One object of a job at its place: hands out its values, and notes what is wrong with them. */
class JobObject {
public:
    enum Need { Required, Optional };

    /** @param faults outlives the object */
    JobObject(const QJsonValue& value, const QString& place, JobFaults& faults);

    /** Whether the job has such an object at all. */
    bool exists() const { return m_exists; }

    /** Notes every other key; comments are allowed everywhere. */
    void allowKeys(const QStringList& keys) const;

    QStringList keys() const; ///< all but comments
    bool has(const QString& key) const { return m_values.contains(key); }
    bool isNull(const QString& key) const { return m_values.value(key).isNull(); }
    QJsonValue value(const QString& key) const { return m_values.value(key); }
    QString at(const QString& key) const; ///< the place of a value
    void complain(const QString& key, const QString& text) const;

    /** The values as the job must give them; empty with a note when they are something else. Null is nothing
     * where a channel takes a default away. */
    QString text(const QString& key, Need need = Optional) const;
    QString path(const QString& key, Need need = Optional) const; ///< as it stands
    QString folderName(const QString& key, Need need = Optional) const;
    std::optional<int> number(const QString& key, int least) const;
    bool flag(const QString& key) const;
    QJsonArray array(const QString& key, Need need = Optional) const;
    JobObject object(const QString& key, Need need = Optional) const;
    QJsonObject freeObject(const QString& key) const;

    /** Texts that differ from each other, and have no fault that is asked for. */
    using Check = std::function<QString(const QString& text)>;
    QStringList texts(const QString& key, const Check& faultOf = {}) const;

    /** Why a text is none that names or shows something; empty when it is one. */
    static QString faultOfText(const QString& text);
    /** In quotation marks, and cut where it is longer than anybody reads. */
    static QString quoted(const QString& text);

    /** "is a number, not a text". */
    static QString wrongKind(const QJsonValue& value, const QString& wanted);

private:
    QJsonValue valueOf(const QString& key, QJsonValue::Type type, Need need) const;
    void checkComment() const;

    QJsonObject m_values;
    QString m_place;
    JobFaults* m_faults;
    bool m_exists;
};

#endif
