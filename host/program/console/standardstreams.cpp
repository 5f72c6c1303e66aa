// SPDX-License-Identifier: MIT
#include "console/standardstreams.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

struct StreamText {
    Q_DECLARE_TR_FUNCTIONS(StandardStreams)
};

int firstError = 0;
int output = STDOUT_FILENO;

void ensureOpen()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is the one that is given.
        if (fcntl(descriptor, F_GETFD) == -1)
            open("/dev/null", O_RDONLY);
    }
}

// Nothing that is written there fails: a script is not to stumble over its own prints.
void redirectPrints()
{
    const bool canWrite = (fcntl(STDERR_FILENO, F_GETFL) & O_ACCMODE) != O_RDONLY;
    const int other = canWrite ? STDERR_FILENO : open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(other, STDOUT_FILENO);
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

int writeAll(int descriptor, const QByteArray& bytes)
{
    for (int done = 0; done < bytes.size();) {
        const ssize_t count =
            ::write(descriptor, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
        if (count < 0 && errno != EINTR)
            return errno;
        done += static_cast<int>(qMax<ssize_t>(0, count));
    }
    return 0;
}

// After a failed read. Who shares the input may have made it one that does not wait.
bool canTryAgain()
{
    if (errno == EINTR)
        return true;
    if (errno != EAGAIN)
        return false;
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, -1) == 1 || errno == EINTR;
}

} // namespace

void StandardStreams::takeOver()
{
    ensureOpen();
    output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    redirectPrints();
}

bool StandardStreams::outputIsTerminal()
{
    return isatty(output) != 0;
}

bool StandardStreams::inputIsTerminal()
{
    return isatty(STDIN_FILENO) != 0;
}

void StandardStreams::writeResult(const QByteArray& bytes)
{
    const int error = writeAll(output, bytes);
    if (firstError == 0)
        firstError = error;
}

void StandardStreams::writeDiagnostic(const QString& text)
{
    writeAll(STDERR_FILENO, text.toUtf8());
}

QString StandardStreams::outputError()
{
    return firstError == 0 ? QString() : QString::fromLocal8Bit(std::strerror(firstError));
}

QByteArray StandardStreams::readInput(QString& error)
{
    QByteArray bytes;
    for (;;) {
        constexpr qint64 pieceSize = 65536;
        const QByteArray piece = readPiece(pieceSize, error);
        if (!error.isEmpty()) {
            error = StreamText::tr("the standard input cannot be read: %1").arg(error);
            return {};
        }
        if (piece.isEmpty())
            return bytes;
        bytes.append(piece);
    }
}

QByteArray StandardStreams::readPiece(qint64 size, QString& error)
{
    QByteArray bytes(static_cast<int>(size), Qt::Uninitialized);
    ssize_t count = 0;
    do
        count = ::read(STDIN_FILENO, bytes.data(), static_cast<std::size_t>(bytes.size()));
    while (count < 0 && canTryAgain());
    if (count < 0)
        error = QString::fromLocal8Bit(std::strerror(errno));
    bytes.truncate(static_cast<int>(qMax<ssize_t>(0, count)));
    return bytes;
}
