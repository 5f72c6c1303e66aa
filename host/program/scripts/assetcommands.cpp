// SPDX-License-Identifier: MIT
#include "command.h"

#include "console/console.h"
#include "scripts/assetencryption.h"

#include <pythonforqt.h>

#include <QCommandLineParser>
#include <QCoreApplication>

namespace {

struct AssetCommands {
    Q_DECLARE_TR_FUNCTIONS(AssetCommands)
};

const QString keyOption = QStringLiteral("key");
const QString excludeOption = QStringLiteral("exclude");
const QString secretOption = QStringLiteral("secret");
using Texts = QMap<QString, QString>;

/** Names the key's file to the scripts; false when there is something wrong with it, which is reported. */
bool takeKey(const QCommandLineParser& parser, Console& console)
{
    if (!parser.isSet(keyOption))
        return true;
    const QString key = parser.value(keyOption);
    // An empty name would mean the person's own key.
    if (key.isEmpty()) {
        console.error({Failure::Usage, AssetCommands::tr("--key takes the name of a file")});
        return false;
    }
    const QString objection = objectionToStream(key);
    if (!objection.isEmpty()) {
        console.error({Failure::Usage, QStringLiteral("--key: ") + objection});
        return false;
    }
    useKey(key);
    return true;
}

ExitCode reportWork(Console& console, const QString& apk, const ScriptOutcome& outcome, const QString& done,
                    const QString& failed)
{
    const int answer = outcome.values.value(QStringLiteral("result"), -1).toInt();
    console.set(QStringLiteral("answer"), answer);
    if (!outcome.succeeded)
        return failTask(console, failed.arg(answer), outcome);
    console.say(done.arg(apk));
    return ExitDone;
}

ExitCode encryptApk(const QCommandLineParser& parser, Console& console)
{
    const QString apk = parser.positionalArguments().at(1);
    const QStringList excluded = parser.values(excludeOption);
    if (excluded.contains(QString())) {
        console.error({Failure::Usage, AssetCommands::tr("--exclude takes a pattern of names")});
        return ExitUsage;
    }
    if (!takeKey(parser, console))
        return ExitUsage;
    if (!pathExists(console, apk))
        return ExitFailed;
    const ScriptOutcome outcome = encryptAssets(console, apk, excluded);
    return reportWork(console, apk, outcome, AssetCommands::tr("encrypted %1"),
                      AssetCommands::tr("encryption failed with answer %1"));
}

ExitCode decryptApk(const QCommandLineParser& parser, Console& console)
{
    const QString apk = parser.positionalArguments().at(1);
    if (!takeKey(parser, console))
        return ExitUsage;
    if (!pathExists(console, apk))
        return ExitFailed;
    const ScriptOutcome outcome =
        callOnAssets(console, QStringLiteral("decryptApk"), apk, {}, AssetCommands::tr("decrypting"));
    return reportWork(console, apk, outcome, AssetCommands::tr("decrypted %1"),
                      AssetCommands::tr("decryption failed with answer %1"));
}

/** Asks a function about keys; false when it failed, which is reported. */
bool askKeys(Console& console, const QString& function, const QList<QVariant>& arguments, Texts& texts)
{
    const ScriptOutcome outcome = runCall(
        console, {QStringLiteral("keys.py"), function, arguments}, AssetCommands::tr("looking at the key"),
        [&texts](PythonForQt& python, ScriptOutcome&) { texts = python.getResultAsStrDict(); });
    const QString error = texts.value(QStringLiteral("error"));
    if (!texts.isEmpty() && error.isEmpty()) {
        for (auto text = texts.cbegin(); text != texts.cend(); ++text)
            console.set(text.key(), text.value());
        return true;
    }
    if (outcome.failure.message.isEmpty())
        failTask(console, AssetCommands::tr("the keys' script gave no answer"), outcome);
    else
        console.error(outcome.failure);
    return false;
}

ExitCode showKey(const QCommandLineParser& parser, Console& console)
{
    Texts texts;
    const int withSecret = parser.isSet(secretOption) ? 1 : 0;
    if (!askKeys(console, QStringLiteral("showKey"), {QString::fromLatin1(""), withSecret}, texts))
        return ExitFailed;
    console.print(AssetCommands::tr("file         %1").arg(texts.value(QStringLiteral("path"))));
    console.print(AssetCommands::tr("fingerprint  %1").arg(texts.value(QStringLiteral("fingerprint"))));
    if (withSecret != 0)
        console.print(AssetCommands::tr("key          %1").arg(texts.value(QStringLiteral("secret"))));
    return ExitDone;
}

ExitCode newKey(Console& console)
{
    Texts texts;
    if (!askKeys(console, QStringLiteral("newKey"), {QString::fromLatin1("")}, texts))
        return ExitFailed;
    console.print(AssetCommands::tr("made %1 with the fingerprint %2")
                      .arg(texts.value(QStringLiteral("path")), texts.value(QStringLiteral("fingerprint"))));
    console.print(AssetCommands::tr("Keep a copy: without it nothing can be decrypted."));
    return ExitDone;
}

ExitCode checkKey(const QString& apk, Console& console)
{
    Texts texts;
    if (!pathExists(console, apk)
        || !askKeys(console, QStringLiteral("checkKey"), {apk, QString::fromLatin1("")}, texts))
        return ExitFailed;
    const QString needed = texts.value(QStringLiteral("needed"));
    const QString path = texts.value(QStringLiteral("path"));
    const QString fits = texts.value(QStringLiteral("fits"));
    if (needed.isEmpty()) {
        console.print(AssetCommands::tr("%1 is not encrypted").arg(apk));
        return ExitDone;
    }
    if (fits == QLatin1String("yes")) {
        console.print(
            AssetCommands::tr("%1 was encrypted with the key %2, which is %3").arg(apk, needed, path));
        return ExitDone;
    }
    if (fits.isEmpty()) {
        console.error(AssetCommands::tr("%1 does not tell its key, as packages of earlier versions; only "
                                        "decrypting shows whether %2 is it")
                          .arg(apk, path));
        return ExitFailed;
    }
    const QString present = texts.value(QStringLiteral("fingerprint"));
    const QString cause = texts.value(QStringLiteral("cause"));
    console.error(present.isEmpty()
                      ? AssetCommands::tr("%1 was encrypted with the key %2; %3").arg(apk, needed, cause)
                      : AssetCommands::tr("%1 was encrypted with the key %2, and %3 is the key %4")
                            .arg(apk, needed, path, present));
    return ExitFailed;
}

QStringList missingApk(const QCommandLineParser& parser)
{
    const QStringList words = parser.positionalArguments();
    const bool lacks = words.size() == 2 && words.at(1) == QLatin1String("check");
    return lacks ? QStringList(QStringLiteral("APK")) : QStringList();
}

ExitCode workOnKey(const QCommandLineParser& parser, Console& console)
{
    const QStringList words = parser.positionalArguments();
    const QString& what = words.at(1);
    const bool checks = what == QLatin1String("check");
    if (!checks && words.size() > 2) {
        console.error(
            {Failure::Usage, AssetCommands::tr("key %1: '%2' is one word too many").arg(what, words.at(2))});
        return ExitUsage;
    }
    if (!takeKey(parser, console))
        return ExitUsage;
    if (checks)
        return checkKey(words.at(2), console);
    return what == QLatin1String("new") ? newKey(console) : showKey(parser, console);
}

} // namespace

QVector<Command> assetCommands()
{
    const QCommandLineOption key(keyOption,
                                 AssetCommands::tr("The key's file, instead of QUENZO_KEY or your own."),
                                 QStringLiteral("FILE"));
    const Argument apk{QStringLiteral("APK"), AssetCommands::tr("the APK file")};
    return {
        {QStringLiteral("encrypt"),
         AssetCommands::tr("encrypts the assets of an APK in place"),
         {apk},
         {key,
          {excludeOption,
           AssetCommands::tr(
               "Leaves assets of such names as they are, like *.json or assets/web/*; may be repeated."),
           QStringLiteral("GLOB")}},
         encryptApk},
        {QStringLiteral("decrypt"),
         AssetCommands::tr("gives the assets of an encrypted APK their bytes back"),
         {apk},
         {key},
         decryptApk},
        {QStringLiteral("key"),
         AssetCommands::tr("shows or makes the key of encryption, or checks which one an APK needs"),
         {{QStringLiteral("WHAT"), AssetCommands::tr("show, new or check")},
          {QStringLiteral("APK"), AssetCommands::tr("the APK to check"), Argument::Optional}},
         {key, {secretOption, AssetCommands::tr("Shows the key itself, too; whoever sees it can decrypt.")}},
         workOnKey,
         AssetCommands::tr(
             "\"show\" names the file and the fingerprint of the key in force, \"new\" makes one where "
             "there is "
             "none, \"check\" tells which key an APK was encrypted with, and ends with 1 when the present "
             "one "
             "is another."),
         {{QStringLiteral("WHAT"), {QStringLiteral("show"), QStringLiteral("new"), QStringLiteral("check")}}},
         {},
         missingApk},
    };
}
