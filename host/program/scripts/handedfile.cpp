// SPDX-License-Identifier: MIT
#include "scripts/handedfile.h"

#include <QByteArray>

#include <sys/mman.h>
#include <unistd.h>

HandedFile::HandedFile(const char* variable)
    : m_variable(variable)
    , m_number(memfd_create(variable, MFD_CLOEXEC))
{
    if (m_number >= 0)
        qputenv(m_variable, QByteArray::number(m_number));
    else
        qunsetenv(m_variable);
}

HandedFile::~HandedFile()
{
    qunsetenv(m_variable);
    if (m_number >= 0)
        close(m_number);
}
