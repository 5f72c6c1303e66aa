// SPDX-License-Identifier: MIT
#include "manual/manpage.h"

#include "commandtable.h"

#include <QCoreApplication>

namespace {

struct Manual {
    Q_DECLARE_TR_FUNCTIONS(Manual)
};

// A text of one or more lines in which nothing is a request.
QString plain(const QString& text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& line : lines) {
        line.replace(QLatin1Char('\\'), QLatin1String("\\e")).replace(QLatin1Char('-'), QLatin1String("\\-"));
        line.replace(QLatin1Char('\''), QLatin1String("\\(aq"))
            .replace(QLatin1Char('^'), QLatin1String("\\(ha"));
        line.replace(QLatin1Char('~'), QLatin1String("\\(ti"));
        if (line.startsWith(QLatin1Char('.')))
            line.prepend(QLatin1String("\\&"));
    }
    return lines.join(QLatin1Char('\n'));
}

QString bold(const QString& text)
{
    return QLatin1String("\\fB") + plain(text) + QLatin1String("\\fR");
}

QString italic(const QString& text)
{
    return QLatin1String("\\fI") + plain(text) + QLatin1String("\\fR");
}

// An argument of a request.
QString quoted(const QString& text)
{
    return QLatin1Char('"') + plain(text).replace(QLatin1Char('"'), QLatin1String("\\(dq"))
        + QLatin1Char('"');
}

class Page {
public:
    Page(const QString& name, const QString& summary, const QDate& date)
    {
        m_text += QStringLiteral(".TH %1 1 %2 \"quenzo " QUENZO_VERSION "\" \"User Commands\"\n")
                      .arg(quoted(name.toUpper()), date.toString(Qt::ISODate));
        section("NAME");
        m_text += plain(name) + QLatin1String(" \\- ") + plain(summary) + QLatin1Char('\n');
    }

    void section(const char* title) { m_text += QStringLiteral(".SH \"%1\"\n").arg(QLatin1String(title)); }

    /** @param text with what stands for itself escaped already */
    void paragraph(const QString& text) { m_text += text + QLatin1Char('\n'); }

    // Paragraphs, a line each; lines that begin with a blank are laid out, with columns and examples.
    void paragraphs(const QString& text)
    {
        constexpr int indent = 2; // of the help; a page has its own
        bool isLaidOut = false;
        const QStringList lines = text.split(QLatin1Char('\n'));
        for (const QString& line : lines) {
            const bool stands = line.startsWith(QLatin1Char(' '));
            if (stands != isLaidOut)
                m_text += stands ? QLatin1String(".nf\n") : QLatin1String(".fi\n");
            if (!stands)
                m_text += QLatin1String(".PP\n");
            isLaidOut = stands;
            m_text += plain(stands ? line.mid(indent) : line) + QLatin1Char('\n');
        }
        if (isLaidOut)
            m_text += QLatin1String(".fi\n");
    }

    void entry(const QString& name, const QString& meaning)
    {
        m_text += QLatin1String(".TP\n") + name + QLatin1Char('\n') + plain(meaning) + QLatin1Char('\n');
    }

    void entries(const char* title, const QVector<Explained>& all)
    {
        section(title);
        for (const Explained& explained : all)
            entry(bold(explained.name), explained.meaning);
    }

    QByteArray text() const { return m_text.toUtf8(); }

private:
    QString m_text = QStringLiteral(".\\\" Made from the table of commands: do not edit.\n");
};

QString nameOf(const QCommandLineOption& option)
{
    QStringList names;
    for (const QString& name : option.names())
        names += bold((name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name);
    const QString value = option.valueName();
    return names.join(QLatin1String(", ")) + (value.isEmpty() ? QString() : QLatin1Char(' ') + italic(value));
}

void addOptions(Page& page, const QList<QCommandLineOption>& options)
{
    page.section("OPTIONS");
    for (const QCommandLineOption& option : options) {
        if ((option.flags() & QCommandLineOption::HiddenFromHelp) == 0)
            page.entry(nameOf(option), option.description());
    }
}

QString pageName(const Command& command)
{
    return QStringLiteral("quenzo-") + command.name;
}

QString sentence(QString text)
{
    text[0] = text.at(0).toUpper();
    return text.endsWith(QLatin1Char('.')) ? text : text + QLatin1Char('.');
}

} // namespace

QByteArray ManPage::overview(const QVector<Command>& commands, const QDate& date)
{
    Page page(QStringLiteral("quenzo"), Manual::tr("packaging work of a mobile game tool"), date);
    page.section("SYNOPSIS");
    page.paragraph(bold(QStringLiteral("quenzo")) + QLatin1Char(' ') + italic(QStringLiteral("COMMAND"))
                   + QLatin1String(" [") + italic(Manual::tr("options")) + QLatin1String("] [")
                   + italic(Manual::tr("arguments")) + QLatin1Char(']'));
    page.section("DESCRIPTION");
    page.paragraph(plain(Manual::tr("Results go to the standard output, diagnostics to the standard error. "
                                    "Words behind -- are no options.")));
    page.section("COMMANDS");
    for (const Command& command : commands)
        page.entry(bold(pageName(command)) + QLatin1String("(1)"), sentence(command.summary));
    for (const Explained& own : ownCommands())
        page.entry(bold(QStringLiteral("quenzo ") + own.name), sentence(own.meaning));
    addOptions(page, commonOptions() + QList<QCommandLineOption>{versionOption()});
    page.entries("EXIT STATUS", exitCodes());
    page.entries("ENVIRONMENT", environmentVariables());
    page.entries("FILES", usedFiles());
    return page.text();
}

QByteArray ManPage::of(const Command& command, const QDate& date)
{
    Page page(pageName(command), command.summary, date);
    page.section("SYNOPSIS");
    QString usage = bold(QStringLiteral("quenzo ") + command.name) + QLatin1String(" [")
        + italic(Manual::tr("options")) + QLatin1Char(']');
    for (const Argument& argument : command.arguments)
        usage += QLatin1Char(' ') + italic(syntaxOf(argument));
    page.paragraph(usage);
    page.section("DESCRIPTION");
    page.paragraph(plain(sentence(command.summary)));
    if (!command.details.isEmpty())
        page.paragraphs(command.details);
    if (!command.arguments.isEmpty())
        page.section("ARGUMENTS");
    for (const Argument& argument : command.arguments)
        page.entry(italic(argument.name), argument.description);
    addOptions(page, shownOptions(command));
    page.section("SEE ALSO");
    page.paragraph(bold(QStringLiteral("quenzo"))
                   + Manual::tr("(1) tells of exit codes, variables and files."));
    return page.text();
}
