// SPDX-License-Identifier: MIT
#include "command.h"
#include "console/console.h"
#include "console/diagnostics.h"
#include "console/progress.h"
#include "console/worker.h"
#include "devices/devicetask.h"
#include "devices/devicewords.h"
#include "devices/installerrors.h"
#include "devices/toolcheck.h"
#include "duration.h"

#include <installapk.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QThread>

#include <memory>

namespace {

struct DeviceCommands {
    Q_DECLARE_TR_FUNCTIONS(DeviceCommands)
};

const QString deviceOption = QStringLiteral("device");
const QString timeoutOption = QStringLiteral("timeout");
const QString yesOption = QStringLiteral("yes");
constexpr int longestTimeout = 24 * 60 * 60;

// Lets a blocking question run beside the event loop, so that a terminal shows that something happens.
template <typename Question> auto askTool(const Question& question, Console& console, const QString& text)
{
    Diagnostics::takeAll();
    decltype(question()) answer;
    const std::unique_ptr<QThread> worker(QThread::create([&] { answer = question(); }));
    runWorker(*worker, console, [&text] { return Progress{text}; });
    return answer;
}

bool toolWorks(const QString& name, Console& console)
{
    const QString problem = toolProblem(name);
    if (!problem.isEmpty())
        console.error({Failure::NoTool, problem});
    return problem.isEmpty();
}

// Why the question before had no answer: the cause that the library learnt first is the nearest one.
QString firstCause()
{
    return Diagnostics::takeAll().value(0);
}

QStringList readyDevices(Console& console)
{
    QStringList serials =
        askTool(CInstallApk::getDeviceLs, console, DeviceCommands::tr("asking for devices"));
    // No serial, but a line about a device that this user may not access.
    for (const QString& line : serials.filter(QStringLiteral("\t"))) {
        console.warn(DeviceCommands::tr("not usable: %1")
                         .arg(QString(line).replace(QLatin1Char('\t'), QLatin1Char(' '))));
        serials.removeAll(line);
    }
    console.set(QStringLiteral("devices"), QJsonArray::fromStringList(serials));
    return serials;
}

// Whether there is none since adb failed, which is reported then.
bool adbFailed(Console& console)
{
    const QString cause = firstCause();
    if (!cause.isEmpty())
        console.error({Failure::NoTool, DeviceCommands::tr("the devices cannot be listed"), {cause}});
    return !cause.isEmpty();
}

// The path as the library can hand it on; empty when it cannot.
QString usableApk(const QString& given, Console& console)
{
    const QFileInfo file(given);
    if (!file.isFile()) {
        console.error({Failure::NotFound, DeviceCommands::tr("%1: no such file").arg(given)});
        return {};
    }
    // The tools' command lines are split at quotation marks, and a backslash is no way out.
    QString path = file.absoluteFilePath();
    if (path.contains(QLatin1Char('"'))) {
        console.error(
            {Failure::BadInput,
             DeviceCommands::tr("%1: a path with a quotation mark cannot be used; rename it").arg(path)});
        return {};
    }
    return path;
}

QString packageOf(const QString& apk, Console& console)
{
    QString name = askTool([&apk] { return CInstallApk::getApkPackageName(apk); }, console,
                           DeviceCommands::tr("reading the package name"));
    if (name.isEmpty()) {
        QStringList causes{firstCause()};
        causes.removeAll({});
        console.error({Failure::BadInput,
                       DeviceCommands::tr("%1: aapt finds no package name; is it an APK?").arg(apk), causes});
        return {};
    }
    if (!DeviceWords::isPackageName(name)) {
        console.error({Failure::BadInput,
                       DeviceCommands::tr("%1: \"%2\" cannot be the name of a package").arg(apk, name)});
        return {};
    }
    console.set(QStringLiteral("package"), name);
    return name;
}

QStringList numberedList(const QStringList& serials)
{
    QStringList lines;
    for (int i = 0; i < serials.size(); ++i)
        lines.append(QStringLiteral("  %1  %2").arg(i + 1).arg(serials.at(i)));
    return lines;
}

// The device asked for, the only one, or the person's choice; empty, with the reason reported, when there is
// none.
QString chooseDevice(const QString& wanted, Console& console)
{
    const QStringList serials = readyDevices(console);
    if (serials.isEmpty()) {
        if (!adbFailed(console))
            console.error({Failure::NoDevice,
                           DeviceCommands::tr("no device is ready"),
                           {},
                           DeviceCommands::tr("connect one, unlock it and allow debugging")});
        return {};
    }
    if (!wanted.isEmpty()) {
        if (serials.contains(wanted))
            return wanted;
        console.error({Failure::NoDevice,
                       DeviceCommands::tr("the device %1 is not ready. Ready:").arg(wanted),
                       numberedList(serials)});
        return {};
    }
    if (serials.size() == 1)
        return serials.first();

    if (!Console::isInteractive()) {
        console.error({Failure::NoDevice, DeviceCommands::tr("several devices are ready"),
                       numberedList(serials), DeviceCommands::tr("choose one by -s SERIAL")});
        return {};
    }
    console.warn(DeviceCommands::tr("several devices are ready:"), numberedList(serials));
    QString question = DeviceCommands::tr("Number of the device:");
    while (true) {
        const QString answer = console.ask(question);
        if (answer.isEmpty())
            break;
        const int number = answer.toInt();
        if (number >= 1 && number <= serials.size())
            return serials.at(number - 1);
        question = DeviceCommands::tr("'%1' is none of the numbers 1 to %2. Number of the device:")
                       .arg(answer)
                       .arg(serials.size());
    }
    console.error({Failure::Declined, DeviceCommands::tr("no device was chosen")});
    return {};
}

bool isConfirmed(bool install, const QString& package, const QString& serial, Console& console)
{
    const QString question = install
        ? DeviceCommands::tr("Remove %1 and its data from %2 before the install? [y/N]")
        : DeviceCommands::tr("Remove %1 and its data from %2? [y/N]");
    return console.confirms(question.arg(package, serial));
}

ExitCode tell(const TaskOutcome& outcome, const DeviceTask& task, Console& console)
{
    if (outcome.success) {
        console.say(outcome.information);
        return ExitDone;
    }
    if (outcome.timedOut) {
        console.error({Failure::TimedOut,
                       DeviceCommands::tr(
                           "no outcome was reported within %1 s. adb failed without a code, could not be "
                           "started, or is still at work.")
                           .arg(task.timeoutSeconds),
                       Diagnostics::takeAll()});
        return ExitFailed;
    }
    QString text = outcome.information.trimmed();
    if (!outcome.errorKey.isEmpty()) {
        const QString code = InstallErrors::code(outcome.errorKey);
        text += QStringLiteral(" %1: %2").arg(code, InstallErrors::sentence(outcome.errorKey));
        console.set(QStringLiteral("errorKey"), outcome.errorKey);
    }
    console.error(text.isEmpty() ? DeviceCommands::tr("adb crashed without a word") : text);
    return ExitFailed;
}

ExitCode runTask(const QCommandLineParser& parser, Console& console, bool install)
{
    DeviceTask task;
    task.install = install;
    const qint64 seconds = secondsOf(parser.value(timeoutOption));
    if (seconds < 1 || seconds > longestTimeout) {
        console.error({Failure::Usage,
                       DeviceCommands::tr("--timeout takes a duration such as 90s or 2m, at most 24h")});
        return ExitUsage;
    }
    task.timeoutSeconds = static_cast<int>(seconds);
    task.apk = usableApk(parser.positionalArguments().at(1), console);
    if (task.apk.isEmpty())
        return ExitFailed;
    if (!parser.isSet(yesOption) && !Console::isInteractive()) {
        console.error({Failure::Usage,
                       DeviceCommands::tr("this removes a package and its data: --yes is needed where nobody "
                                          "can be asked")});
        return ExitUsage;
    }
    if (!toolWorks(QStringLiteral("adb"), console) || !toolWorks(QStringLiteral("aapt"), console))
        return ExitFailed;
    const QString package = packageOf(task.apk, console);
    if (package.isEmpty())
        return ExitFailed;
    const QString wanted =
        parser.isSet(deviceOption) ? parser.value(deviceOption) : qEnvironmentVariable("ANDROID_SERIAL");
    task.serial = chooseDevice(wanted, console);
    if (task.serial.isEmpty())
        return ExitFailed;
    // It would end the word that the flow's command line has for the serial.
    if (task.serial.contains(QLatin1Char('"'))) {
        console.error(
            {Failure::NoDevice,
             DeviceCommands::tr("%1: a serial with a quotation mark cannot be used").arg(task.serial)});
        return ExitFailed;
    }
    console.set(QStringLiteral("device"), task.serial);
    if (!parser.isSet(yesOption) && !isConfirmed(install, package, task.serial, console))
        return ExitFailed;
    return tell(runDeviceTask(task, console), task, console);
}

ExitCode listDevices(const QCommandLineParser& /*parser*/, Console& console)
{
    if (!toolWorks(QStringLiteral("adb"), console))
        return ExitFailed;
    const QStringList serials = readyDevices(console);
    for (const QString& serial : serials)
        console.print(serial);
    if (serials.isEmpty() && adbFailed(console))
        return ExitFailed;
    if (serials.isEmpty())
        console.warn(DeviceCommands::tr("no device is ready"));
    return ExitDone;
}

ExitCode printPackageName(const QCommandLineParser& parser, Console& console)
{
    const QString apk = usableApk(parser.positionalArguments().at(1), console);
    if (apk.isEmpty() || !toolWorks(QStringLiteral("aapt"), console))
        return ExitFailed;
    const QString name = packageOf(apk, console);
    if (name.isEmpty())
        return ExitFailed;
    console.print(name);
    return ExitDone;
}

} // namespace

QVector<Command> deviceCommands()
{
    const Argument apk{QStringLiteral("APK"), DeviceCommands::tr("the APK file")};
    const QCommandLineOption device(
        {QStringLiteral("s"), deviceOption},
        DeviceCommands::tr("The device, by its serial as \"quenzo devices\" prints it. "
                           "Default: ANDROID_SERIAL, or else the only one."),
        QStringLiteral("SERIAL"));
    const QCommandLineOption timeout(
        timeoutOption, DeviceCommands::tr("Gives up after this time, such as 90s or 2m. Default: 10m."),
        QStringLiteral("TIME"), QStringLiteral("10m"));
    const QCommandLineOption yes({QStringLiteral("y"), yesOption},
                                 DeviceCommands::tr("Does not ask before it removes the installed package. "
                                                    "Needed where no terminal is."));
    const auto install = [](const QCommandLineParser& parser, Console& console) {
        return runTask(parser, console, true);
    };
    const auto uninstall = [](const QCommandLineParser& parser, Console& console) {
        return runTask(parser, console, false);
    };
    return {
        {QStringLiteral("devices"),
         DeviceCommands::tr("lists the attached Android devices that are ready"),
         {},
         {},
         listDevices},
        {QStringLiteral("package-name"),
         DeviceCommands::tr("prints the package name of an APK"),
         {apk},
         {},
         printPackageName},
        {QStringLiteral("install"),
         DeviceCommands::tr("installs an APK on a device, in the place of its package"),
         {apk},
         {device, timeout, yes},
         install,
         DeviceCommands::tr(
             "The installed package is always removed first, with all its data. There is no way back: "
             "it is gone even if the device then refuses the APK. On a terminal you are asked first.")},
        {QStringLiteral("uninstall"),
         DeviceCommands::tr("removes an APK's package from a device"),
         {apk},
         {device, timeout, yes},
         uninstall,
         DeviceCommands::tr("All data of the package goes with it. On a terminal you are asked first.")},
    };
}
