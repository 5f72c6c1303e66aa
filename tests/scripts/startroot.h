// SPDX-License-Identifier: MIT
#ifndef STARTROOT_H
#define STARTROOT_H

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/** A root of its own for one process, with one of the hosts starthost and loadhost in its bin folder. */
class StartRoot {
public:
    explicit StartRoot(const QString& name = QStringLiteral("root"));

    QString path() const { return m_path; }

    /** Writes a file below the root, with its folders. */
    void write(const QString& relativePath, const QByteArray& content);
    void writeStartModule(const QByteArray& content);

    /** Lets the host load a library before every other. */
    void preload(const QString& library);

    /** Adds to the environment of the process. */
    void setVariable(const QString& name, const QString& value);

    void start(const QString& host, const QStringList& arguments);

    /** What the host printed, its end included when it was not a good one. */
    QByteArray output();

    /** What starthost prints that starts the interpreter in this way. */
    QByteArray run(const QString& way);

    QProcess& process() { return m_process; }
    QByteArray error() const { return m_error; }

private:
    QTemporaryDir m_folder;
    QString m_path;
    QProcess m_process;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QByteArray m_error;
};

#endif
