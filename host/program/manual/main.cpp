// SPDX-License-Identifier: MIT
// Writes the manual and the shells' completion from the table of commands, when the program is built:
//   quenzo-manual SOURCES DEST      SOURCES has the files' fixed parts, DEST gets man1/, quenzo.bash and
//   _quenzo
#include "commandtable.h"
#include "manual/completion.h"
#include "manual/manpage.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QSaveFile>

namespace {

void write(const QString& path, const QByteArray& text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
}

QByteArray read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
    return file.readAll();
}

// The same sources give the same pages, where a packager says when they were released.
QDate releaseDate()
{
    bool given = false;
    const qint64 seconds = qgetenv("SOURCE_DATE_EPOCH").toLongLong(&given);
    return given ? QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).date()
                 : QDateTime::currentDateTimeUtc().date();
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 3)
        qFatal("usage: quenzo-manual SOURCES DEST");
    const QString sources = QFile::decodeName(argv[1]) + QLatin1Char('/');
    const QString dest = QFile::decodeName(argv[2]) + QLatin1Char('/');
    const QVector<Command> commands = allCommands();
    // Pages of commands that are no more go.
    const QString pages = dest + QStringLiteral("man1/");
    QDir(pages).removeRecursively();
    QDir().mkpath(pages);
    write(pages + QStringLiteral("quenzo.1"), ManPage::overview(commands, releaseDate()));
    for (const Command& command : commands)
        write(pages + QStringLiteral("quenzo-%1.1").arg(command.name), ManPage::of(command, releaseDate()));
    write(dest + QStringLiteral("quenzo.bash"),
          Completion::bash(commands, read(sources + QStringLiteral("quenzo.bash"))));
    write(dest + QStringLiteral("_quenzo"),
          Completion::zsh(commands, read(sources + QStringLiteral("quenzo.zsh"))));
    return 0;
}
