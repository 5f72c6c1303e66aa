// SPDX-License-Identifier: MIT
#ifndef FILEHANDLE_LINUX_H
#define FILEHANDLE_LINUX_H

#include <unistd.h>
#include <utility>

/** Owns an open file by its number, and closes it in the end. */
class FileHandle {
public:
    FileHandle() = default;
    explicit FileHandle(int number)
        : m_number(number)
    {
    }
    ~FileHandle()
    {
        if (isOpen())
            close(m_number);
    }
    FileHandle(FileHandle&& other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    FileHandle& operator=(FileHandle&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }

private:
    int m_number = -1;
};

#endif
