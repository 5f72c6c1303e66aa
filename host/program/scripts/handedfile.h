// SPDX-License-Identifier: MIT
#ifndef HANDEDFILE_H
#define HANDEDFILE_H

/**
 * A file in memory into which the scripts of this process write: a variable of the environment hands them its
 * number. To be made before the interpreter starts, which reads the environment once.
 */
class HandedFile {
public:
    /** @param variable kept by its address */
    explicit HandedFile(const char* variable);
    ~HandedFile();
    HandedFile(const HandedFile&) = delete;
    HandedFile& operator=(const HandedFile&) = delete;

    /** Negative where the system had none to give; the variable is not set then. */
    int number() const { return m_number; }

private:
    const char* const m_variable;
    const int m_number;
};

#endif
