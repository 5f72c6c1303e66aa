// SPDX-License-Identifier: MIT
#ifndef ASSETENCRYPTION_H
#define ASSETENCRYPTION_H

#include "scripts/scripttask.h"

/** Names a key's file to the scripts, before the interpreter starts. */
void useKey(const QString& file);

/**
 * Calls a function of the shipped script for assets on an APK.
 *
 * @param function "encryptApk" or "decryptApk"
 * @param excluded patterns of assets that stay as they are
 */
ScriptOutcome callOnAssets(Console& console, const QString& function, const QString& apk,
                           const QStringList& excluded, const QString& doing);

/** Encrypts the assets of an APK in place. */
ScriptOutcome encryptAssets(Console& console, const QString& apk, const QStringList& excluded);

#endif
