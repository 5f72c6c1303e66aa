// SPDX-License-Identifier: MIT
#include "scripts/archivestream.h"

#include "console/console.h"
#include "console/progress.h"
#include "console/standardstreams.h"
#include "console/worker.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThread>

#include <atomic>
#include <memory>

namespace {

struct ArchiveStreamText {
    Q_DECLARE_TR_FUNCTIONS(ArchiveStream)
};

constexpr qint64 pieceSize = 1 << 20;

} // namespace

ArchiveStream::ArchiveStream(Console& console)
    : m_console(console)
    // Again while a script still puts files into it.
    , m_guard([this] {
        for (int i = 0; i < 100 && !QDir(m_folder.path()).removeRecursively(); ++i)
            QThread::msleep(1);
    })
{
}

bool ArchiveStream::fail(const QString& text, const QString& cause)
{
    m_console.error(text, {cause});
    return false;
}

bool ArchiveStream::isReady()
{
    return m_folder.isValid()
        || fail(ArchiveStreamText::tr("no folder for a file on the way can be made"), m_folder.errorString());
}

// On a thread, as the other side may let one wait for ever, and an interruption is to be seen.
bool ArchiveStream::takeInput()
{
    QFile file(path());
    if (!file.open(QIODevice::WriteOnly))
        return fail(ArchiveStreamText::tr("'%1' cannot be written").arg(path()), file.errorString());
    QString error;
    std::atomic<qint64> done{0};
    const std::unique_ptr<QThread> worker(QThread::create([&] {
        QByteArray piece;
        do {
            piece = StandardStreams::readPiece(pieceSize, error);
            done += piece.size();
        } while (!piece.isEmpty() && file.write(piece) == piece.size());
        file.close();
    }));
    if (!runWorker(*worker, m_console, [&] {
            return Progress{ArchiveStreamText::tr("reading"), Progress::Bytes, done};
        }))
        return false;
    if (!error.isEmpty())
        return fail(ArchiveStreamText::tr("the archive cannot be read"), error);
    if (file.error() != QFile::NoError)
        return fail(ArchiveStreamText::tr("'%1' cannot be written").arg(path()), file.errorString());
    return true;
}

bool ArchiveStream::giveOutput()
{
    QFile file(path());
    if (!file.open(QIODevice::ReadOnly))
        return fail(ArchiveStreamText::tr("'%1' cannot be read").arg(path()), file.errorString());
    std::atomic<qint64> done{0};
    const std::unique_ptr<QThread> worker(QThread::create([&] {
        while (!file.atEnd() && file.error() == QFile::NoError && StandardStreams::outputError().isEmpty()) {
            const QByteArray piece = file.read(pieceSize);
            StandardStreams::writeResult(piece);
            done += piece.size();
        }
    }));
    if (!runWorker(*worker, m_console, [&] {
            return Progress{ArchiveStreamText::tr("writing"), Progress::Bytes, done, file.size()};
        }))
        return false;
    if (file.error() != QFile::NoError)
        return fail(ArchiveStreamText::tr("'%1' cannot be read").arg(path()), file.errorString());
    return true; // what the output itself refuses is told at the program's end
}
