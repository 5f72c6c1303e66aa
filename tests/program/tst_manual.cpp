// SPDX-License-Identifier: MIT
#include "commandtable.h"
#include "manual/valuekind.h"

#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include <utility>

namespace {

QString pageOf(const QString& name)
{
    return QStringLiteral(QUENZO_MANUAL "/man1/%1.1").arg(name);
}

struct Read {
    QString text;
    QByteArray complaints;
};

// As a reader sees a page, on lines that are long enough for everything if nothing else is said.
Read readPage(const QString& name, int columns = 900)
{
    QProcess groff;
    groff.start(QStringLiteral(GROFF),
                {QStringLiteral("-ww"), QStringLiteral("-k"), QStringLiteral("-man"),
                 QStringLiteral("-Tutf8"), QStringLiteral("-P-c"), QStringLiteral("-rLL=%1n").arg(columns),
                 pageOf(name)});
    if (!groff.waitForFinished())
        return {{}, "groff: " + groff.errorString().toUtf8()};
    static const QRegularExpression overstruck(QStringLiteral(".\b"));
    const QString text = QString::fromUtf8(groff.readAllStandardOutput()).remove(overstruck);
    return {text, groff.readAllStandardError()};
}

QStringList pageNames()
{
    QStringList names{QStringLiteral("quenzo")};
    for (const Command& command : allCommands())
        names += QStringLiteral("quenzo-") + command.name;
    return names;
}

// What the sources ask the environment for, by the forms in which C++, Python and the shell do.
QSet<QString> variablesAskedFor()
{
    static const QRegularExpression form(
        QStringLiteral("(?:qgetenv|qEnvironmentVariable\\w*|environ\\.get|getenv)\\(\"([A-Z_]+)\""
                       "|VARIABLE = \"([A-Z_]+)\"|\\$\\{(QUENZO_[A-Z_]+):-"));
    QSet<QString> found;
    for (const char* folder : {"/program", "/Script", "/tool"}) {
        QDirIterator files(QStringLiteral(HOST_SOURCES) + QLatin1String(folder), QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly))
                qFatal("%s", qPrintable(file.errorString()));
            auto matches = form.globalMatch(QString::fromUtf8(file.readAll()));
            while (matches.hasNext())
                found.insert(matches.next().capturedTexts().mid(1).join(QString()));
        }
    }
    return found;
}

} // namespace

// The pages that the build makes from the same table as the program's help.
class tst_Manual : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pagesAreWellFormed_data();
    void pagesAreWellFormed();
    void pagesFitTheTerminal_data();
    void pagesFitTheTerminal();
    void overviewListsWhatIsNoCommandOfTheTable();
    void everyCommandHasItsPage();
    void pageSaysWhatTheHelpSays_data();
    void pageSaysWhatTheHelpSays();
    void overviewHasExitCodesAndVariables();
    void everyVariableIsExplained();
    void everyValueHasAKind();
};

void tst_Manual::pagesAreWellFormed_data()
{
    QTest::addColumn<QString>("name");
    for (const QString& name : pageNames())
        QTest::newRow(qPrintable(name)) << name;
}

void tst_Manual::pagesAreWellFormed()
{
    QFETCH(QString, name);
    QCOMPARE(readPage(name).complaints, QByteArray());
    QProcess mandoc;
    mandoc.start(QStringLiteral(MANDOC),
                 {QStringLiteral("-Tlint"), QStringLiteral("-Wwarning"), pageOf(name)});
    QVERIFY2(mandoc.waitForFinished(), qPrintable(mandoc.errorString()));
    QCOMPARE(mandoc.readAllStandardOutput() + mandoc.readAllStandardError(), QByteArray());
    QCOMPARE(mandoc.exitCode(), 0);
}

void tst_Manual::pagesFitTheTerminal_data()
{
    pagesAreWellFormed_data();
}

void tst_Manual::pagesFitTheTerminal()
{
    QFETCH(QString, name);
    const QString text = readPage(name, 79).text;
    for (const QString& line : text.split(QLatin1Char('\n')))
        QVERIFY2(line.size() < 80, qPrintable(line));
}

void tst_Manual::overviewListsWhatIsNoCommandOfTheTable()
{
    const QString page = readPage(QStringLiteral("quenzo")).text.simplified();
    for (const char* words : {" quenzo help Tells of the program; help COMMAND of one command.",
                              " quenzo version Prints the version.", " -h, --help Shows this help.",
                              " -V, --version Prints the version."})
        QVERIFY2(page.contains(QLatin1String(words)),
                 qPrintable(QLatin1String(words) + QLatin1String(" is not in ") + page));
}

void tst_Manual::everyCommandHasItsPage()
{
    QStringList files = QDir(QStringLiteral(QUENZO_MANUAL "/man1")).entryList(QDir::Files);
    QStringList expected = pageNames();
    for (QString& name : expected)
        name += QStringLiteral(".1");
    expected.sort();
    QCOMPARE(files, expected);
}

void tst_Manual::pageSaysWhatTheHelpSays_data()
{
    QTest::addColumn<int>("index");
    const QVector<Command> commands = allCommands();
    for (int i = 0; i < commands.size(); ++i)
        QTest::newRow(qPrintable(commands.at(i).name)) << i;
}

void tst_Manual::pageSaysWhatTheHelpSays()
{
    QFETCH(int, index);
    const Command command = allCommands().at(index);
    QStringList texts{command.details, command.summary.mid(1)};
    for (const Argument& argument : command.arguments)
        texts += {syntaxOf(argument), argument.description};
    for (const QCommandLineOption& option : shownOptions(command))
        texts +=
            {QStringLiteral("--") + option.names().constLast(), option.valueName(), option.description()};
    const QString page = readPage(QStringLiteral("quenzo-") + command.name).text.simplified();
    for (const QString& text : std::as_const(texts))
        QVERIFY2(page.contains(text.simplified()), qPrintable(text + QStringLiteral("\nis not in\n") + page));
}

void tst_Manual::overviewHasExitCodesAndVariables()
{
    const QString page = readPage(QStringLiteral("quenzo")).text.simplified();
    for (const QVector<Explained>& table : {exitCodes(), environmentVariables(), usedFiles()}) {
        for (const Explained& entry : table)
            QVERIFY2(page.contains(entry.name + QLatin1Char(' ') + entry.meaning.simplified()),
                     qPrintable(entry.name + QStringLiteral(" is not in ") + page));
    }
    QStringList codes;
    for (const Explained& code : exitCodes())
        codes += code.name;
    QCOMPARE(
        codes,
        QStringList({QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("130")}));
}

void tst_Manual::everyVariableIsExplained()
{
    // How the tools among themselves and the interpreter are told something is nobody else's business.
    QSet<QString> explained{QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("PYTHON_QUENZO_ENV"),
                            QStringLiteral("QUENZO_PROGRESS"), QStringLiteral("QUENZO_MESSAGES")};
    for (const Explained& entry : environmentVariables())
        explained.insert(entry.name);
    const QSet<QString> asked = variablesAskedFor();
    QVERIFY2(asked.contains(QStringLiteral("QUENZO_KEY")), "the sources were not read");
    QCOMPARE(QStringList((asked - explained).values()).join(QLatin1Char(' ')), QString());
}

void tst_Manual::everyValueHasAKind()
{
    QStringList unknown;
    for (const Command& command : allCommands()) {
        for (const Argument& argument : command.arguments) {
            if (kindOf(command, argument).type == ValueKind::Unknown)
                unknown += command.name + QLatin1Char(' ') + argument.name;
        }
        for (const QCommandLineOption& option : shownOptions(command)) {
            if (!option.valueName().isEmpty() && kindOf(command, option).type == ValueKind::Unknown)
                unknown += command.name + QStringLiteral(" --") + option.names().constLast();
        }
    }
    QVERIFY2(unknown.isEmpty(),
             qPrintable(QStringLiteral("manual/valuekind.cpp does not know what these take: ")
                        + unknown.join(QStringLiteral(", "))));
}

QTEST_GUILESS_MAIN(tst_Manual)
#include "tst_manual.moc"
