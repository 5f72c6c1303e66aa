// SPDX-License-Identifier: MIT
// Hands every file of a folder to a fuzz target, in the place of the fuzzer.
#include "fuzz.h"

#include <QDir>

int main(int count, char** words)
{
    if (count != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", words[0]);
        return 2;
    }
    const QDir corpus(QFile::decodeName(words[1]));
    const QStringList names = corpus.entryList(QDir::Files);
    for (const QString& name : names) {
        QFile file(corpus.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "cannot read %s\n", qUtf8Printable(file.fileName()));
            return 1;
        }
        const QByteArray input = file.readAll();
        std::fprintf(stderr, "%s\n", qUtf8Printable(name)); // the last one, should the target end the process
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                               static_cast<std::size_t>(input.size()));
    }
    return names.isEmpty() ? 1 : 0;
}
