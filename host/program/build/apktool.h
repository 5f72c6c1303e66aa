// SPDX-License-Identifier: MIT
#ifndef APKTOOL_H
#define APKTOOL_H

#include "console/failure.h"

#include <QString>

class Console;
struct PackageFacts;

/** Turns a package's manifest into text with apktool, as the search path has it, and back with aapt. */
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

    /**
     * Makes an archive that holds the manifest as packages have it. What the text refers to is looked up in
     * the base: its resources need not be built again, which not those of every package can be.
     *
     * @param manifest the text, under the name that the base's resources have for their package
     * @param package the name that it gets instead
     */
    QString build(const QString& manifest, const QString& package, const QString& base,
                  const PackageFacts& facts, const QString& archive, Console& console) const;

private:
    const QString m_program;
    const QString m_store;
};

#endif
