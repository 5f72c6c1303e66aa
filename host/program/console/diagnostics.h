// SPDX-License-Identifier: MIT
#ifndef DIAGNOSTICS_H
#define DIAGNOSTICS_H

#include <QString>
#include <QStringList>

#include <functional>

/**
 * Switches the library's logging categories on ("quenzo.trees" and so on), which name why an operation
 * failed, and keeps what they say. Its other messages, which are for hosts' developers, are not shown.
 */
namespace Diagnostics {

/** To be called once, before the library is used. */
void install();

/** Takes what the library has said since the last call, message by message. */
QStringList takeAll();

/** The same in one line; empty when it said nothing. */
QString take();

/**
 * Who is told what the library says it does, in detail, too (its categories at debug level), when it says so,
 * on whatever thread; none when it is empty.
 */
void followSteps(const std::function<void(const QString&)>& follower);

/**
 * Hands what one category says ("quenzo.records") to somebody instead of keeping it, on whatever thread; to
 * nobody when it is empty. For who works beside others that take what is kept.
 */
void divert(const char* category, const std::function<void(QtMsgType, const QString&)>& taker);

/** What the library said it does, step by step (its messages at info level), since the program began. */
QStringList steps();

} // namespace Diagnostics

#endif
