// SPDX-License-Identifier: MIT
#include "build/apkeditor.h"

#include <QDirIterator>

#include <cstdio>

// Makes packages of a base as a run over many channels does: the same files over it, and an own one in each.
//   make_packages BASE FOLDER OUTPUT COUNT KEPT     of COUNT packages the last KEPT stay, since each gets one
//   of so many names

namespace {

QVector<ApkChange> changesOf(const QString& folder)
{
    QVector<ApkChange> changes;
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        changes.append({QFile::encodeName(file.mid(folder.size() + 1)), file, {}});
    }
    return changes;
}

int fail(const QString& reason)
{
    std::fprintf(stderr, "make_packages: %s\n", qPrintable(reason));
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 6)
        return fail(QStringLiteral("wrong arguments"));
    const auto argument = [argv](int number) { return QFile::decodeName(argv[number]); };
    ApkEditor editor;
    if (!editor.open(argument(1)))
        return fail(editor.error());
    const int count = argument(4).toInt();
    const int kept = argument(5).toInt();
    for (int i = 0; i < count; ++i) {
        QVector<ApkChange> changes = changesOf(argument(2));
        changes.append({"assets/channel.json", {}, "{\"channel\": " + QByteArray::number(i) + "}\n"});
        const QString package = QStringLiteral("%1/%2.apk").arg(argument(3)).arg(i % kept);
        QFile::remove(package);
        if (!editor.write(package, changes))
            return fail(editor.error());
    }
    return 0;
}
