// SPDX-License-Identifier: MIT
#include "diagnostics.h"

#include <QMutex>
#include <QStringList>

#include <utility>

namespace {

QBasicMutex mutex;
// Workers may still have something to say while the program leaves main.
QStringList& texts = *new QStringList;
QtMessageHandler handlerBefore = nullptr;

void keep(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // Qt says so to whoever draws outside a desktop's session; nothing of ours is kept there.
    if (text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set")))
        return;
    if (type != QtDebugMsg
        || !QString::fromUtf8(context.file).startsWith(QLatin1String("QuenzoTool/source/"))) {
        handlerBefore(type, context, text);
        return;
    }
    const QMutexLocker locker(&mutex);
    texts.append(text);
}

} // namespace

void Diagnostics::install()
{
    handlerBefore = qInstallMessageHandler(keep);
}

QString Diagnostics::take()
{
    const QMutexLocker locker(&mutex);
    return std::exchange(texts, {}).join(QStringLiteral("; "));
}
