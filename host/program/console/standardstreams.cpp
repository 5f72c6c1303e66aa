// SPDX-License-Identifier: MIT
#include "console/standardstreams.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

int firstError = 0;

void keepError()
{
    if (firstError == 0)
        firstError = errno;
}

} // namespace

void StandardStreams::ensureOpen()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is the one that is given.
        if (fcntl(descriptor, F_GETFD) == -1)
            open("/dev/null", O_RDONLY);
    }
}

void StandardStreams::write(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<std::size_t>(bytes.size());
    const bool written = std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
    if (!written && stream == stdout)
        keepError();
}

QString StandardStreams::outputError()
{
    if (std::fflush(stdout) != 0)
        keepError();
    // Scripts in this process write to the same stream.
    if (firstError == 0 && std::ferror(stdout) != 0)
        firstError = EIO;
    return firstError == 0 ? QString() : QString::fromLocal8Bit(std::strerror(firstError));
}
