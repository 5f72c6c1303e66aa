// SPDX-License-Identifier: MIT
#ifndef APKSIGNER_H
#define APKSIGNER_H

#include "console/failure.h"

#include <QString>

class Console;

/** What an APK is signed with. */
struct SigningKey {
    QString keystore;
    QString password; ///< where it is, in apksigner's words: "file:PATH" or "env:NAME"
    QString alias;
};

/** Whether a signature holds, and what it says, or why not. */
struct Verdict {
    bool holds = false;
    QString certificate; ///< the SHA-256 of the first signer's certificate, in hexadecimal
    QString reason;
};

/** The program apksigner, as the search path has it. */
class ApkSigner {
public:
    ApkSigner();

    bool isInstalled() const { return !m_program.isEmpty(); }

    /** For a machine that has no such program. */
    static Failure missing();

    /** Signs an APK and puts it in its place once the signature has been verified. */
    Verdict sign(const QString& apk, const SigningKey& key, Console& console) const;

    Verdict verify(const QString& apk, Console& console) const;

private:
    QString m_program;
};

#endif
