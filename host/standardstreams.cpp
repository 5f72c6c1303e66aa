// SPDX-License-Identifier: MIT
#include "standardstreams.h"

#include <cerrno>
#include <cstring>

namespace {

int firstError = 0;

void keepError()
{
    if (firstError == 0)
        firstError = errno;
}

} // namespace

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
