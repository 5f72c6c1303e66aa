// SPDX-License-Identifier: MIT
#include "build/zipnames.h"

#include "console/console.h"

#include <QCoreApplication>
#include <QSet>
#include <QTextCodec>

#include <algorithm>
#include <cctype>

namespace {

struct ZipNameTexts {
    Q_DECLARE_TR_FUNCTIONS(ZipNameTexts)
};

constexpr int deepest = 100; // folders, as the scripts have it
constexpr int longest = 65535; // bytes, by the format

QByteArray pathOf(const QByteArray& name)
{
    return name.endsWith('/') ? name.chopped(1) : name;
}

bool isPlain(const QByteArray& name)
{
    if (name.isEmpty() || name.size() > longest || name.contains('\\') || name.contains('\0'))
        return false;
    const bool hasDrive =
        name.size() > 1 && name.at(1) == ':' && std::isalpha(static_cast<unsigned char>(name.at(0))) != 0;
    const QByteArray inFolders = '/' + pathOf(name) + '/';
    return !hasDrive && inFolders.count('/') - 1 <= deepest && !inFolders.contains("//")
        && !inFolders.contains("/./") && !inFolders.contains("/../");
}

// Whether one of the folders that a name lies in is a file.
bool liesInFile(const QByteArray& name, const QSet<QByteArray>& files)
{
    const QByteArray path = pathOf(name);
    for (int slash = path.indexOf('/'); slash >= 0; slash = path.indexOf('/', slash + 1)) {
        if (files.contains(path.left(slash)))
            return true;
    }
    return false;
}

QByteArray suffixOf(const QByteArray& fileName)
{
    const int dot = fileName.lastIndexOf('.');
    const auto isDot = [](char letter) { return letter == '.'; };
    const bool isHidden = std::all_of(fileName.cbegin(), fileName.cbegin() + qMax(dot, 0), isDot);
    return dot < 0 || isHidden ? QByteArray() : fileName.mid(dot);
}

} // namespace

QString ZipNames::objectionTo(const QVector<QByteArray>& names)
{
    QSet<QByteArray> taken;
    QSet<QByteArray> files;
    taken.reserve(names.size());
    files.reserve(names.size());
    for (const QByteArray& name : names) {
        if (!isPlain(name))
            return ZipNameTexts::tr("the name of the entry '%1' is not a plain path").arg(shown(name));
        const QByteArray path = pathOf(name);
        if (taken.contains(path))
            return ZipNameTexts::tr("the entry '%1' is there twice").arg(shown(name));
        taken.insert(path);
        if (path.size() == name.size())
            files.insert(path);
    }
    for (const QByteArray& name : names) {
        if (liesInFile(name, files))
            return ZipNameTexts::tr("the entry '%1' lies in a file").arg(shown(name));
    }
    return {};
}

bool ZipNames::isSignature(const QByteArray& name)
{
    const QByteArray folder("meta-inf/");
    const QByteArray lower = name.toLower();
    if (!lower.startsWith(folder))
        return false;
    const QByteArray file = lower.mid(folder.size());
    if (file == "manifest.mf")
        return true;
    const int dot = file.lastIndexOf('.');
    static const QSet<QByteArray> suffixes{".sf", ".rsa", ".dsa", ".ec"};
    return dot > 0 && !file.contains('/') && suffixes.contains(file.mid(dot));
}

bool ZipNames::isStored(const QByteArray& name)
{
    static const QSet<QByteArray> suffixes{
        ".so",   ".png", ".jpg", ".jpeg", ".gif", ".webp", ".heic", ".mp2", ".mp3",   ".ogg", ".oga",
        ".opus", ".aac", ".m4a", ".wma",  ".wav", ".mid",  ".midi", ".imy", ".rtttl", ".smf", ".xmf",
        ".amr",  ".awb", ".jet", ".mp4",  ".m4v", ".3gp",  ".3gpp", ".3g2", ".3gpp2", ".mpg", ".mpeg",
        ".webm", ".mkv", ".wmv", ".zip",  ".jar", ".apk",  ".obb",  ".gz",  ".xz",    ".7z"};
    const QByteArray file = name.mid(name.lastIndexOf('/') + 1).toLower();
    return file == "resources.arsc" || suffixes.contains(suffixOf(file));
}

bool ZipNames::isUtf8(const QByteArray& name)
{
    constexpr int utf8 = 106; // its number among all encodings
    QTextCodec::ConverterState state;
    QTextCodec::codecForMib(utf8)->toUnicode(name.constData(), name.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

QString ZipNames::shown(const QByteArray& name)
{
    constexpr int widest = 500;
    return Console::shown(QString::fromUtf8(name.left(widest)));
}
