// SPDX-License-Identifier: MIT
#include "command.h"

#include "console/console.h"
#include "scripts/apksigner.h"
#include "scripts/scripttask.h"
#include "scripts/toolrun.h"

#include <pythonforqt.h>
#include <quenzotool.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

struct ApkCommands {
    Q_DECLARE_TR_FUNCTIONS(ApkCommands)
};

const QString keystoreOption = QStringLiteral("keystore");
const QString passFileOption = QStringLiteral("pass-file");
const QString passEnvOption = QStringLiteral("pass-env");
const QString aliasOption = QStringLiteral("alias");
using Texts = QMap<QString, QString>;

/** What the bytes of a package tell of it; "error" when it is not whole. */
Texts lookAt(const QString& apk, Console& console)
{
    Texts texts;
    const ScriptOutcome outcome =
        runCall(console, {QStringLiteral("apkcheck.py"), QStringLiteral("checkApk"), {apk}},
                ApkCommands::tr("checking"),
                [&texts](PythonForQt& python, ScriptOutcome&) { texts = python.getResultAsStrDict(); });
    if (texts.isEmpty())
        texts.insert(QStringLiteral("error"),
                     ApkCommands::tr("the check gave no answer (%1)")
                         .arg(outcome.diagnostics.join(QStringLiteral("; "))));
    return texts;
}

bool tellArchive(const Texts& texts, const QString& apk, Console& console)
{
    const QString error = texts.value(QStringLiteral("error"));
    if (!error.isEmpty()) {
        console.error({Failure::BadInput, ApkCommands::tr("%1: %2").arg(apk, error)});
        return false;
    }
    const QString misaligned = texts.value(QStringLiteral("misaligned"));
    const bool aligned = misaligned == QLatin1String("0");
    console.set(QStringLiteral("entries"), texts.value(QStringLiteral("entries")).toInt());
    console.set(QStringLiteral("aligned"), aligned);
    console.print(
        ApkCommands::tr("archive    whole, %1 entries").arg(texts.value(QStringLiteral("entries"))));
    if (aligned)
        console.print(ApkCommands::tr("alignment  good"));
    else
        console.error(
            ApkCommands::tr("%1: %2 entries are not aligned: %3. \"quenzo pack\" aligns all it writes")
                .arg(apk, misaligned, texts.value(QStringLiteral("names"))));
    return aligned;
}

bool tellSignature(bool isSigned, const QString& apk, Console& console)
{
    const ApkSigner signer;
    QString state = QStringLiteral("unsigned");
    bool good = true;
    if (!isSigned) {
        console.print(ApkCommands::tr("signature  unsigned"));
    } else if (!signer.isInstalled()) {
        state = QStringLiteral("unverified");
        console.print(ApkCommands::tr("signature  there, but not verified"));
        console.warn(ApkSigner::missing().message);
    } else {
        const Verdict verdict = signer.verify(apk, console);
        good = verdict.holds;
        state = good ? QStringLiteral("verified") : QStringLiteral("broken");
        if (good) {
            console.print(ApkCommands::tr("signature  verified, SHA-256 of the certificate %1")
                              .arg(verdict.certificate));
            console.set(QStringLiteral("certificate"), verdict.certificate);
        } else {
            console.error(ApkCommands::tr("%1: the signature does not hold: %2").arg(apk, verdict.reason));
        }
    }
    console.set(QStringLiteral("signature"), state);
    return good;
}

bool tellPackage(const QString& apk, Console& console)
{
    const QString aapt = QDir::cleanPath(QuenzoTool::getToolPath() + QStringLiteral("/aapt"));
    if (!QFileInfo(aapt).isFile() || !QFileInfo(aapt).isExecutable()) {
        console.error(
            {Failure::NoTool,
             ApkCommands::tr("the program aapt is missing: there is no %1 that can be run").arg(aapt)});
        return false;
    }
    const ToolRun run = runTool(console, aapt, {QStringLiteral("dump"), QStringLiteral("badging"), apk},
                                ApkCommands::tr("reading the manifest"));
    static const QRegularExpression form(
        QStringLiteral("^package: name='([^']+)' versionCode='([^']*)' versionName='([^']*)'"));
    if (!run.ended) {
        console.error({Failure::NoTool, ApkCommands::tr("%1: aapt cannot read it").arg(apk), {run.error}});
        return false;
    }
    const QRegularExpressionMatch match = form.match(run.output);
    if (!match.hasMatch()) {
        console.error(ApkCommands::tr("%1: aapt finds no package name; is it an APK?").arg(apk),
                      run.error.split(QLatin1Char('\n'), Qt::SkipEmptyParts).mid(0, 1));
        return false;
    }
    console.print(ApkCommands::tr("package    %1, version %2 (%3)")
                      .arg(match.captured(1), match.captured(3), match.captured(2)));
    console.set(QStringLiteral("package"), match.captured(1));
    console.set(QStringLiteral("versionName"), match.captured(3));
    console.set(QStringLiteral("versionCode"), match.captured(2));
    return true;
}

ExitCode checkApk(const QCommandLineParser& parser, Console& console)
{
    const QString apk = parser.positionalArguments().at(1);
    if (!pathExists(console, apk))
        return ExitFailed;
    const Texts texts = lookAt(apk, console);
    bool good = tellArchive(texts, apk, console);
    if (texts.contains(QStringLiteral("error")))
        return ExitFailed;
    // Whatever is wrong is told in one run.
    good &= tellSignature(texts.value(QStringLiteral("signature")) == QLatin1String("yes"), apk, console);
    good &= tellPackage(apk, console);
    return good ? ExitDone : ExitFailed;
}

QStringList missingOptions(const QCommandLineParser& parser)
{
    QStringList missing;
    if (parser.value(keystoreOption).isEmpty())
        missing.append(QStringLiteral("--keystore FILE"));
    if (!parser.isSet(passFileOption) && !parser.isSet(passEnvOption))
        missing.append(ApkCommands::tr("--pass-file FILE or --pass-env NAME"));
    return missing;
}

/** What is wrong with the options of sign; empty if nothing is. */
QString objectionToOptions(const QCommandLineParser& parser)
{
    const bool hasFile = parser.isSet(passFileOption);
    const bool hasVariable = parser.isSet(passEnvOption);
    if (hasFile && hasVariable)
        return ApkCommands::tr("--pass-file and --pass-env exclude each other");
    const QString stream = objectionToStream(parser.value(passFileOption));
    if (!stream.isEmpty())
        return QStringLiteral("--pass-file: ") + stream;
    const QString variable = parser.value(passEnvOption);
    if (hasVariable && (variable.isEmpty() || !qEnvironmentVariableIsSet(variable.toUtf8().constData())))
        return ApkCommands::tr("--pass-env: there is no environment variable '%1'").arg(variable);
    return {};
}

ExitCode signApk(const QCommandLineParser& parser, Console& console)
{
    const QString objection = objectionToOptions(parser);
    if (!objection.isEmpty()) {
        console.error({Failure::Usage, objection});
        return ExitUsage;
    }
    const QString apk = parser.positionalArguments().at(1);
    SigningKey key{parser.value(keystoreOption), {}, parser.value(aliasOption)};
    key.password = parser.isSet(passFileOption) ? QStringLiteral("file:") + parser.value(passFileOption)
                                                : QStringLiteral("env:") + parser.value(passEnvOption);
    for (const QString& file : {apk, key.keystore, parser.value(passFileOption)}) {
        if (!file.isEmpty() && !pathExists(console, file))
            return ExitFailed;
    }
    const Texts texts = lookAt(apk, console);
    if (texts.contains(QStringLiteral("error"))
        || texts.value(QStringLiteral("misaligned")) != QLatin1String("0")) {
        tellArchive(texts, apk, console);
        return ExitFailed;
    }
    const ApkSigner signer;
    if (!signer.isInstalled()) {
        console.error(ApkSigner::missing());
        return ExitFailed;
    }
    const Verdict verdict = signer.sign(apk, key, console);
    if (!verdict.holds) {
        console.error(ApkCommands::tr("%1 was not signed: %2").arg(apk, verdict.reason));
        return ExitFailed;
    }
    console.say(ApkCommands::tr("signed %1, SHA-256 of the certificate %2").arg(apk, verdict.certificate));
    console.set(QStringLiteral("apk"), apk);
    console.set(QStringLiteral("certificate"), verdict.certificate);
    return ExitDone;
}

} // namespace

QVector<Command> apkCommands()
{
    const QString file = QStringLiteral("FILE");
    const Argument apk{QStringLiteral("APK"), ApkCommands::tr("the APK file")};
    return {
        {QStringLiteral("sign"),
         ApkCommands::tr("signs an APK in place through apksigner, and verifies it"),
         {apk},
         {{keystoreOption, ApkCommands::tr("The keystore with the key to sign with."), file},
          {passFileOption, ApkCommands::tr("The keystore's password is the first line of this file."), file},
          {passEnvOption, ApkCommands::tr("The keystore's password is in this environment variable."),
           QStringLiteral("NAME")},
          {aliasOption, ApkCommands::tr("The key's name, where the keystore holds several."),
           QStringLiteral("NAME")}},
         signApk,
         ApkCommands::tr("A password never stands on a command line. An APK that is not aligned is refused."),
         {},
         {},
         missingOptions},
        {QStringLiteral("check"),
         ApkCommands::tr("checks an APK: archive, alignment, signature, package name"),
         {apk},
         {},
         checkApk,
         ApkCommands::tr(
             "Ends with 1 when the archive is damaged, an entry is not aligned, a signature does not hold or "
             "there is no package name. An unsigned APK is no failure.")},
    };
}
