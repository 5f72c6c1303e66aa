// SPDX-License-Identifier: MIT
#include "platform.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

// None of these asks for the file's times: once somebody has read them, the next write must store new ones,
// which takes longer than writing a line.
FileIdentity identity(int folder, const char* path, int flags)
{
    struct statx status { };
    if (statx(folder, path, flags, STATX_INO, &status) != 0)
        return {};
    return {quint64(status.stx_dev_major) << 32U | status.stx_dev_minor, status.stx_ino};
}

} // namespace

QString executablePath()
{
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

FileIdentity identityOf(const QFile& openFile)
{
    return identity(openFile.handle(), "", AT_EMPTY_PATH);
}

FileIdentity identityAt(const QByteArray& path)
{
    return identity(AT_FDCWD, path.constData(), 0);
}
