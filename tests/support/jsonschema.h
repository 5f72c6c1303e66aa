// SPDX-License-Identifier: MIT
#ifndef JSONSCHEMA_H
#define JSONSCHEMA_H

#include <QJsonObject>
#include <QProcess>
#include <QString>

/** One of the schemas in docs, asked through a validator that shares no code with us. */
class JsonSchema {
public:
    /**
     * @param name of the file in docs
     * @param definition the one of its definitions that is meant; the whole schema when it is empty
     */
    explicit JsonSchema(const QString& name, const QString& definition = {});
    ~JsonSchema();
    JsonSchema(const JsonSchema&) = delete;
    JsonSchema& operator=(const JsonSchema&) = delete;

    /** The schema itself. */
    QJsonObject object() const;

    /** "valid", or what is forbidden in a JSON text of one line, with the place before it. */
    QByteArray verdictOn(const QByteArray& json);

private:
    bool start();
    QByteArray answer();

    const QString m_path;
    const QString m_definition;
    QProcess m_validator;
};

#endif
