// SPDX-License-Identifier: MIT
#include "scriptedtools.h"

#include "runroot.h"

#include <QFile>

#include <sys/stat.h>

namespace {

const char* const program = R"(#!/bin/sh
dir=${0%/*}
{
    printf '%s ' "${0##*/}"
    printf '<%s>' "$@"
    printf '\0'
} >>"$dir/calls"
[ "$1" != -s ] || shift 2
. "$dir/$1.answer"
)";

QString inToolFolder(const QString& name)
{
    return QStringLiteral("tool/mac/") + name;
}

} // namespace

void ScriptedTools::write()
{
    RunRoot::clear();
    RunRoot::writeProgram(inToolFolder(QStringLiteral("adb")), program);
    RunRoot::writeProgram(inToolFolder(QStringLiteral("aapt")), program);
    const QString gate = RunRoot::path() + QStringLiteral("/tool/mac/gate");
    if (mkfifo(QFile::encodeName(gate).constData(), 0600) != 0)
        qFatal("cannot make %s", qUtf8Printable(gate));
    attach({});
    answer(QStringLiteral("version"), ":");
    answer(QStringLiteral("d"), "echo \"package: name='org.example.game' versionCode='1'\"");
    answer(QStringLiteral("uninstall"), "echo Success");
    answer(QStringLiteral("install"), "echo 'Performing Streamed Install'; echo Success");
}

void ScriptedTools::answer(const QString& subcommand, const QByteArray& script)
{
    RunRoot::write(inToolFolder(subcommand + QStringLiteral(".answer")), script + '\n');
}

void ScriptedTools::attach(const QStringList& serials)
{
    QByteArray script = "cat <<'END'\nList of devices attached\n";
    for (const QString& serial : serials)
        script += serial.toUtf8() + (serial.contains(QLatin1Char('\t')) ? "\n" : "\tdevice\n");
    answer(QStringLiteral("devices"), script + "\nEND");
}

QStringList ScriptedTools::calls()
{
    QFile file(RunRoot::path() + QStringLiteral("/tool/mac/calls"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines =
        QString::fromUtf8(QByteArray(file.readAll()).replace('\0', "\x1e")).split(QChar(0x1e));
    lines.removeLast();
    return lines;
}

void ScriptedTools::forgetCalls()
{
    QFile::remove(RunRoot::path() + QStringLiteral("/tool/mac/calls"));
}

void ScriptedTools::openGate()
{
    QFile gate(RunRoot::path() + QStringLiteral("/tool/mac/gate"));
    if (!gate.open(QIODevice::WriteOnly))
        qFatal("cannot open the gate");
}
