// SPDX-License-Identifier: MIT
// A host's own companion library: it says where the host runs, and writes its log to the standard error.
#include <quenzobase.h>

#include <cstdio>

QString QuenzoBase::getRunPath()
{
    return QStringLiteral("/host's own/run path");
}

void QuenzoBase::Log(QString text)
{
    std::fprintf(stderr, "companion: %s\n", qUtf8Printable(text));
}
