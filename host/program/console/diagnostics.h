// SPDX-License-Identifier: MIT
#ifndef DIAGNOSTICS_H
#define DIAGNOSTICS_H

#include <QString>
#include <QStringList>

/** Keeps the library's messages at debug level instead of showing them: they name why an operation failed. */
namespace Diagnostics {

/** To be called once, before the library is used. */
void install();

/** Takes what the library has said since the last call, message by message. */
QStringList takeAll();

/** The same in one line; empty when it said nothing. */
QString take();

} // namespace Diagnostics

#endif
