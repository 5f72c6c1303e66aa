// SPDX-License-Identifier: MIT
#include "terminal.h"

#include <QFile>

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

Terminal::Terminal()
    : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    , m_slave(-1)
{
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0)
        qFatal("no pseudo-terminal");
    // Kept open: the terminal stays when a program ends.
    m_slave = open(ptsname(m_master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    fcntl(m_master, F_SETFL, O_NONBLOCK);
}

Terminal::~Terminal()
{
    close(m_slave);
    close(m_master);
}

QString Terminal::path() const
{
    return QFile::decodeName(ptsname(m_master));
}

void Terminal::setColumns(unsigned short columns, unsigned short rows)
{
    const winsize size{rows, columns, 0, 0};
    if (ioctl(m_master, TIOCSWINSZ, &size) != 0)
        qFatal("cannot set the size");
}

void Terminal::type(const QByteArray& text)
{
    if (write(m_master, text.constData(), std::size_t(text.size())) != text.size())
        qFatal("cannot type");
}

QByteArray Terminal::shown()
{
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = read(m_master, buffer.data(), buffer.size())) > 0)
        m_shown.append(buffer.data(), int(count));
    return m_shown;
}
