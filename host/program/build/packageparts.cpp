// SPDX-License-Identifier: MIT
#include "build/packageparts.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace {

struct Parts {
    Q_DECLARE_TR_FUNCTIONS(PackageParts)
};

// The files below a folder by their ways from it, in ascending order; a fault for what is neither file nor
// folder.
QStringList filesBelow(const QString& folder, QString& fault)
{
    QStringList files;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        const QFileInfo entry = entries.fileInfo();
        if (entry.isSymLink() || (!entry.isDir() && !entry.isFile()))
            fault = Parts::tr("'%1' is neither a file nor a folder").arg(entry.filePath());
        else if (entry.isFile())
            files.append(entry.filePath().mid(folder.size() + 1));
    }
    std::sort(files.begin(), files.end());
    return files;
}

// Which of an archive's classes a name is: 1 for classes.dex, 0 for none.
int numberOfClasses(const QString& name)
{
    if (!name.startsWith(QLatin1String("classes"))) // nearly every name
        return 0;
    static const QRegularExpression form(QStringLiteral("^classes([2-9]|[1-9][0-9]+)?\\.dex$"));
    const QRegularExpressionMatch match = form.match(name);
    if (!match.hasMatch())
        return 0;
    return match.captured(1).isEmpty() ? 1 : match.captured(1).toInt();
}

QByteArray contentOf(const ApkChange& change, bool& readable)
{
    if (change.file.isEmpty())
        return change.content;
    QFile file(change.file);
    readable = file.open(QIODevice::ReadOnly);
    return readable ? file.readAll() : QByteArray();
}

bool equal(const ApkChange& one, const ApkChange& other)
{
    bool readable = true;
    const QByteArray first = contentOf(one, readable);
    return readable && first == contentOf(other, readable) && readable;
}

} // namespace

PackageParts::PackageParts(const QVector<ApkEntry>& base)
{
    for (const ApkEntry& entry : base) {
        m_base.insert(entry.name, entry);
        m_classes = std::max(m_classes, numberOfClasses(QString::fromUtf8(entry.name)));
    }
}

bool PackageParts::addMade(const QString& folder, const QStringList& paths)
{
    return std::all_of(paths.cbegin(), paths.cend(), [&](const QString& path) {
        return add({{path.toUtf8(), folder + QLatin1Char('/') + path, {}}, Made, {}});
    });
}

bool PackageParts::addSdk(const QString& name, const QString& folder)
{
    QString fault;
    const QStringList files = filesBelow(folder, fault);
    if (!fault.isEmpty())
        return fail(Parts::tr("SDK '%1': %2").arg(name, fault));
    int left = 0;
    for (const QString& file : files) {
        const bool taken =
            file.startsWith(QLatin1String("assets/")) || file.startsWith(QLatin1String("lib/"));
        if (taken && !add({{file.toUtf8(), folder + QLatin1Char('/') + file, {}}, Sdk, name}))
            return false;
        if (!taken && numberOfClasses(file) == 0 && file != QLatin1String("config.xml"))
            ++left;
    }
    if (left > 0)
        m_notes.append(Parts::tr("SDK '%1': files that packages do not take: %2").arg(name).arg(left));
    return addClasses(name, folder, files);
}

bool PackageParts::addClasses(const QString& name, const QString& folder, const QStringList& files)
{
    QMap<int, QString> classes;
    for (const QString& file : files) {
        if (const int number = numberOfClasses(file); number > 0)
            classes.insert(number, file);
    }
    for (const QString& file : qAsConst(classes)) {
        ++m_classes;
        const QString own =
            m_classes == 1 ? QStringLiteral("classes.dex") : QStringLiteral("classes%1.dex").arg(m_classes);
        if (!add({{own.toUtf8(), folder + QLatin1Char('/') + file, {}}, Sdk, name}))
            return false;
    }
    return true;
}

bool PackageParts::addFiles(const QString& folder)
{
    QString fault;
    const QStringList files = filesBelow(folder, fault);
    if (!fault.isEmpty())
        return fail(fault);
    return std::all_of(files.cbegin(), files.cend(), [&](const QString& file) {
        return add({{file.toUtf8(), folder + QLatin1Char('/') + file, {}}, Files, {}});
    });
}

bool PackageParts::addContent(const QByteArray& name, const QByteArray& content)
{
    return add({{name, {}, content}, Build, {}});
}

bool PackageParts::add(const Part& part)
{
    const QString shown = QString::fromUtf8(part.change.name);
    const auto other = m_parts.constFind(part.change.name);
    if (other != m_parts.cend()) {
        if (part.origin == Build)
            return fail(Parts::tr("'%1' is written by the build, and no other part may bring it").arg(shown));
        if (part.origin == Sdk && other->origin == Sdk && !equal(part.change, other->change))
            return fail(Parts::tr("the SDKs '%1' and '%2' bring different files '%3'")
                            .arg(other->from, part.from, shown));
    }
    if (part.origin == Sdk && m_base.contains(part.change.name))
        m_notes.append(Parts::tr("SDK '%1' replaces '%2' of the base").arg(part.from, shown));
    m_parts.insert(part.change.name, part);
    return true;
}

bool PackageParts::fail(const QString& error)
{
    m_error = error;
    return false;
}

QVector<ApkChange> PackageParts::changes() const
{
    QVector<ApkChange> changes;
    for (const Part& part : m_parts)
        changes.append(part.change);
    return changes;
}

int PackageParts::replaced() const
{
    const QList<QByteArray> names = m_parts.keys();
    return static_cast<int>(std::count_if(names.cbegin(), names.cend(),
                                          [this](const QByteArray& name) { return m_base.contains(name); }));
}

int PackageParts::added() const
{
    return m_parts.size() - replaced();
}
