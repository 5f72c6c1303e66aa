// SPDX-License-Identifier: MIT
#include "commandtable.h"

#include <QCoreApplication>

namespace {

struct Table {
    Q_DECLARE_TR_FUNCTIONS(Table)
};

} // namespace

QVector<Command> allCommands()
{
    QVector<Command> commands;
    for (const auto& group :
         {jobCommands, buildCommands, buildRecordCommands, archiveCommands, assetCommands, apkCommands,
          scriptCommands, treeCommands, dbCommands, iconCommands, deviceCommands})
        commands += group();
    return commands;
}

QList<QCommandLineOption> commonOptions()
{
    return {
        {{QStringLiteral("h"), QStringLiteral("help")}, Table::tr("Shows this help.")},
        {QStringLiteral("json"), Table::tr("Prints one JSON object as the result.")},
        {QStringLiteral("progress"),
         Table::tr("How the state of work is shown: terminal (a line, where there is one) or json (objects, "
                   "line by line on the standard error)."),
         QStringLiteral("FORM"), QStringLiteral("terminal")},
        {{QStringLiteral("q"), QStringLiteral("quiet")},
         Table::tr("Shows no progress, no warnings and no word of success.")},
        {{QStringLiteral("v"), QStringLiteral("verbose")},
         Table::tr("Tells the steps, and all of the causes.")}};
}

QCommandLineOption versionOption()
{
    return {{QStringLiteral("V"), QStringLiteral("version")}, Table::tr("Prints the version.")};
}

QList<QCommandLineOption> shownOptions(const Command& command)
{
    QList<QCommandLineOption> shown = commonOptions();
    for (const QCommandLineOption& option : command.options) {
        if ((option.flags() & QCommandLineOption::HiddenFromHelp) == 0)
            shown.append(option);
    }
    return shown;
}

QString syntaxOf(const Argument& argument)
{
    switch (argument.count) {
    case Argument::Optional:
        return QStringLiteral("[%1]").arg(argument.name);
    case Argument::AnyNumber:
        return QStringLiteral("[%1...]").arg(argument.name);
    case Argument::Once:
        break;
    }
    return argument.name;
}

QVector<Explained> ownCommands()
{
    return {
        {QStringLiteral("help"), Table::tr("tells of the program; help COMMAND of one command")},
        {QStringLiteral("version"), Table::tr("prints the version")},
    };
}

QVector<Explained> exitCodes()
{
    return {
        {QStringLiteral("0"), Table::tr("done")},
        {QStringLiteral("1"), Table::tr("the operation failed, or not all of it could be done")},
        {QStringLiteral("2"), Table::tr("the words were wrong; nothing was done")},
        {QStringLiteral("130"),
         Table::tr("Ctrl-C ended the program, as a shell tells it: 128 and the signal's number")},
    };
}

QVector<Explained> environmentVariables()
{
    return {
        {QStringLiteral("QUENZO_KEY"),
         Table::tr("The file of the key that encrypt and decrypt take, where "
                   "--key names none.")},
        {QStringLiteral("XDG_DATA_HOME"),
         Table::tr("The folder that holds the person's own key, instead of ~/.local/share.")},
        {QStringLiteral("XDG_STATE_HOME"),
         Table::tr("The folder that holds the log of a program that the system's "
                   "packages have installed, instead of ~/.local/state.")},
        {QStringLiteral("QUENZO_DEVELOP_INFO"),
         Table::tr("The file of the channels' developer records that export reads.")},
        {QStringLiteral("ANDROID_SERIAL"),
         Table::tr("The device of install and uninstall, where --device names none.")},
        {QStringLiteral("QUENZO_ADB_TIMEOUT"),
         Table::tr("How many seconds one command of adb may take: 600.")},
        {QStringLiteral("QUENZO_ADB_WAIT"),
         Table::tr("How many seconds of these it may wait for a device that is away: 20.")},
        {QStringLiteral("LC_ALL"),
         Table::tr(
             "The locale, as LC_MESSAGES and LANG name it, too: zh_CN.UTF-8 brings the texts in Simplified "
             "Chinese.")},
        {QStringLiteral("LANGUAGE"),
         Table::tr("The languages of texts, parted by colons, instead of the locale's.")},
        {QStringLiteral("TERM"),
         Table::tr("A terminal that is \"dumb\" gets no state of work at hand, and no colour.")},
        {QStringLiteral("NO_COLOR"), Table::tr("Any value switches colour off.")},
    };
}

QVector<Explained> usedFiles()
{
    return {
        {QStringLiteral("ROOT/bin/quenzo"),
         Table::tr("The program; everything else is found from its folder, links resolved.")},
        {QStringLiteral("ROOT/Script"),
         Table::tr("The scripts behind import, encrypt, decrypt, pack, unpack "
                   "and export, and the developer records.")},
        {QStringLiteral("ROOT/tool/mac"), Table::tr("adb and aapt, and what the interpreter imports first.")},
        {QStringLiteral("ROOT/log/quenzotool.log"), Table::tr("The log.")},
        {QStringLiteral("~/.local/state/quenzo/quenzotool.log"),
         Table::tr("The log of a program that the system's packages have installed.")},
        {QStringLiteral("~/.local/share/quenzo/encrypt.key"),
         Table::tr("The person's own key, made when it is first needed.")},
    };
}
