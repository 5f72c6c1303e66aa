// SPDX-License-Identifier: MIT
#include "commandline.h"
#include "console/diagnostics.h"
#include "console/standardstreams.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QLocale>
#include <QTranslator>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <langinfo.h>
#include <memory>
#include <vector>

namespace {

struct Program {
    Q_DECLARE_TR_FUNCTIONS(Program)
};

// The languages that the person asks for, the best first; none for the one of the sources. As elsewhere
// LANGUAGE counts where a locale is chosen at all, and the locale need not be installed.
QStringList wantedLanguages()
{
    QString locale;
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        locale = qEnvironmentVariable(name);
        if (!locale.isEmpty())
            break;
    }
    if (QLocale(locale).language() == QLocale::C)
        return {};
    const QString list = qEnvironmentVariable("LANGUAGE");
    return (list.isEmpty() ? locale : list).split(QLatin1Char(':'), Qt::SkipEmptyParts);
}

// The texts of the library or of the program, which are part of it.
void loadTexts(QTranslator& translator, const QString& name, const QStringList& languages)
{
    for (const QString& language : languages) {
        const QLocale locale(language);
        if (locale.language() == QLocale::English)
            return;
        if (translator.load(locale, name, QStringLiteral("_"),
                            QStringLiteral(":/%1/translations").arg(name))) {
            QCoreApplication::installTranslator(&translator);
            return;
        }
    }
}

// Under another encoding the interpreter cannot import from folders with names beyond ASCII, nor can Qt open
// them.
void ensureUtf8Locale()
{
    std::setlocale(LC_ALL, "");
    if (qstrcmp(nl_langinfo(CODESET), "UTF-8") == 0)
        return;
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_ALL, "");
}

// Texts on a picture take Qt's fonts, and these the larger application. It is told to look for no display,
// and gets none of the words: some of ours, like --platform, are options of its own.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, const QStringList& words)
{
    if (words.value(0) != QLatin1String("icons") && words.value(0) != QLatin1String("build"))
        return std::make_unique<QCoreApplication>(argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    argc = 1;
    return std::make_unique<QGuiApplication>(argc, argv);
}

// A word that is no text would become the name of something else. Returns which one it is, or 0.
int firstNoText(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        if (QString::fromLocal8Bit(argv[i]).toLocal8Bit() != argv[i])
            return i;
    }
    return 0;
}

// Qt ends the process where there are none for its event loops: the program's, the worker's, and a tool's.
bool areHandlesLeft()
{
    constexpr int needed = 4;
    std::vector<std::unique_ptr<QFile>> files;
    for (int i = 0; i < needed; ++i) {
        files.push_back(std::make_unique<QFile>(QStringLiteral("/dev/null")));
        if (!files.back()->open(QIODevice::ReadOnly))
            return false;
    }
    return true;
}

// What a command has done is of no use to a caller that gets only half of the answer.
ExitCode checkedForOutput(ExitCode code)
{
    const QString error = StandardStreams::outputError();
    if (error.isEmpty())
        return code;
    StandardStreams::writeDiagnostic(
        Program::tr("quenzo: the standard output cannot be written: %1").arg(error) + QLatin1Char('\n'));
    return code == ExitDone ? ExitFailed : code;
}

} // namespace

int main(int argc, char* argv[])
{
    StandardStreams::takeOver();
    std::signal(SIGXFSZ, SIG_IGN); // a limit on the size of files is an error then, which is told
    const QStringList languages = wantedLanguages();
    ensureUtf8Locale();
    Diagnostics::install();
    if (!areHandlesLeft()) { // and so none for translations, either
        StandardStreams::writeDiagnostic(
            QStringLiteral("quenzo: too few files may be open at the same time\n"));
        return ExitFailed;
    }
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    const int noText = firstNoText(argc, argv);
    if (noText == 0)
        words = CommandLine::withCommandFirst(words);
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv, words);
    QCoreApplication::setApplicationName(QStringLiteral("quenzo"));
    QTranslator libraryTexts;
    loadTexts(libraryTexts, QStringLiteral("quenzotool"), languages);
    QTranslator programTexts;
    loadTexts(programTexts, QStringLiteral("quenzo"), languages);
    if (noText > 0)
        return CommandLine::refuse(
            words, Program::tr("word %1, '%2', is not UTF-8 text").arg(noText).arg(words.at(noText - 1)));
    return checkedForOutput(CommandLine::run(words));
}
