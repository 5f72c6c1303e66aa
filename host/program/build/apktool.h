// SPDX-License-Identifier: MIT
#ifndef APKTOOL_H
#define APKTOOL_H

#include "console/failure.h"

#include <QString>

class Console;

/** The program apktool, as the search path has it: it turns a package's manifest into text and back. */
class ApkTool {
public:
    /** @param store folder for what it keeps between its runs, instead of the person's home */
    explicit ApkTool(const QString& store);

    bool isInstalled() const { return !m_program.isEmpty(); }

    /** For a machine that has no such program. */
    static Failure missing();

    /**
     * Decodes what the manifest of a package needs into a folder: manifest and resources.
     *
     * @return a fault in one sentence, or an empty text
     */
    QString decode(const QString& apk, const QString& folder, Console& console) const;

    /** Builds such a folder again; the manifest as packages have it is then manifestIn(). */
    QString build(const QString& folder, Console& console) const;

    static QString manifestIn(const QString& folder)
    {
        return folder + QStringLiteral("/build/apk/AndroidManifest.xml");
    }

private:
    QString run(const QStringList& words, const QString& doing, Console& console) const;

    const QString m_program;
    const QString m_store;
};

#endif
