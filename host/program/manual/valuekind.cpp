// SPDX-License-Identifier: MIT
#include "manual/valuekind.h"

#include <QHash>

namespace {

const QHash<QString, ValueKind>& kinds()
{
    static const QHash<QString, ValueKind> table{
        {QStringLiteral("APK"), {ValueKind::File, {QStringLiteral("apk")}}},
        {QStringLiteral("ARCHIVE"), {ValueKind::File, {QStringLiteral("zip"), QStringLiteral("apk")}}},
        {QStringLiteral("BASE"), {ValueKind::File, {QStringLiteral("apk"), QStringLiteral("zip")}}},
        {QStringLiteral("DB"), {ValueKind::File}},
        {QStringLiteral("FILE"), {ValueKind::File}},
        {QStringLiteral("PACKAGE"), {ValueKind::File, {QStringLiteral("zip")}}},
        {QStringLiteral("JOB"), {ValueKind::File, {QStringLiteral("json")}}},
        {QStringLiteral("SCRIPT"), {ValueKind::File, {QStringLiteral("py")}}},
        {QStringLiteral("DEST"), {ValueKind::Folder}},
        {QStringLiteral("DIR"), {ValueKind::Folder}},
        {QStringLiteral("FOLDER"), {ValueKind::Folder}},
        {QStringLiteral("SRC"), {ValueKind::Folder}},
        {QStringLiteral("SERIAL"), {ValueKind::Serial}},
        {QStringLiteral("CHANNEL-ID"), {ValueKind::Channel}},
        {QStringLiteral("ARG"), {ValueKind::Text}},
        {QStringLiteral("CHANNEL"), {ValueKind::Text}},
        {QStringLiteral("COLUMN"), {ValueKind::Text}},
        {QStringLiteral("COLUMN=VALUE"), {ValueKind::Text}},
        {QStringLiteral("FUNCTION"), {ValueKind::Text}},
        {QStringLiteral("FORM"), {ValueKind::Words, {QStringLiteral("terminal"), QStringLiteral("json")}}},
        {QStringLiteral("GLOB"), {ValueKind::Text}},
        {QStringLiteral("I/N"), {ValueKind::Text}},
        {QStringLiteral("N"), {ValueKind::Text}},
        {QStringLiteral("NAME"), {ValueKind::Text}},
        {QStringLiteral("NAME,..."), {ValueKind::Text}},
        {QStringLiteral("TIME"), {ValueKind::Text}},
        {QStringLiteral("TABLE"), {ValueKind::Text}},
        {QStringLiteral("TEXT"), {ValueKind::Text}},
    };
    return table;
}

ValueKind wordsOr(const QStringList& words, const QString& valueName)
{
    return words.isEmpty() ? kindOf(valueName) : ValueKind{ValueKind::Words, words};
}

} // namespace

ValueKind kindOf(const QString& valueName)
{
    const auto known = kinds().constFind(valueName);
    if (known != kinds().cend())
        return *known;
    // FILE.png and the like tell their ending.
    const int dot = valueName.lastIndexOf(QLatin1Char('.'));
    if (dot > 0 && dot + 1 < valueName.size())
        return {ValueKind::File, {valueName.mid(dot + 1)}};
    return {};
}

ValueKind kindOf(const Command& command, const QCommandLineOption& option)
{
    return wordsOr(command.words.value(option.names().constLast()), option.valueName());
}

ValueKind kindOf(const Command& command, const Argument& argument)
{
    return wordsOr(command.words.value(argument.name), argument.name);
}
