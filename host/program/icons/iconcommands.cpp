// SPDX-License-Identifier: MIT
#include "command.h"
#include "console/console.h"
#include "console/diagnostics.h"
#include "console/standardstreams.h"
#include "fileidentity.h"
#include "icons/channellist.h"
#include "icons/contactsheet.h"
#include "icons/dryrun.h"
#include "icons/filetally.h"
#include "icons/iconjob.h"
#include "icons/iconproduction.h"
#include "icons/iconset.h"
#include "icons/picturefault.h"
#include "suggestion.h"

#include <QBuffer>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QSaveFile>

namespace {

struct IconCommands {
    Q_DECLARE_TR_FUNCTIONS(IconCommands)
};

// False for a value that is no number.
bool readPixels(const QCommandLineParser& parser, const QString& option, std::optional<int>& pixels)
{
    if (!parser.isSet(option))
        return true;
    bool isNumber = false;
    pixels = parser.value(option).toInt(&isNumber);
    return isNumber;
}

const QLatin1String standardStream("-");

// Qt takes a leading colon for the name of a built-in resource.
QString asFile(const QString& path)
{
    return path.startsWith(QLatin1Char(':')) ? QStringLiteral("./") + path : path;
}

QStringList cornersOfMarks()
{
    return IconSet::cornerNames().mid(0, IconSet::Default);
}

QStringList platformNames()
{
    return {QStringLiteral("android"), QStringLiteral("ios")};
}

QStringList missingOptions(const QCommandLineParser& parser)
{
    QVector<QPair<QString, QString>> required{{QStringLiteral("icon"), QStringLiteral("FILE")},
                                              {QStringLiteral("marks"), QStringLiteral("DIR")},
                                              {QStringLiteral("out"), QStringLiteral("DIR")}};
    const int arrangement = IconLayout::arrangementNames().indexOf(parser.value(QStringLiteral("layout")));
    if (arrangement == IconLayout::Plain)
        required.append({QStringLiteral("platform"), QStringLiteral("NAME")});
    if (arrangement == IconLayout::AndroidAdaptive)
        required.append({QStringLiteral("background"), QStringLiteral("FILE")});
    QStringList missing;
    for (const auto& option : qAsConst(required)) {
        if (parser.value(option.first).isEmpty())
            missing.append(QStringLiteral("--%1 %2").arg(option.first, option.second));
    }
    return missing;
}

// Reads what the layout's name implies, and refuses what does not go with it; empty when all is sound.
QString readLayout(const QCommandLineParser& parser, IconJob& job)
{
    const QString word = parser.value(QStringLiteral("layout"));
    const QStringList words = IconLayout::arrangementNames();
    if (!words.contains(word))
        return noneOf(QStringLiteral("--layout"), word, words);
    IconLayout& layout = job.layout;
    layout.arrangement = static_cast<IconLayout::Arrangement>(words.indexOf(word));
    const bool isPlain = layout.arrangement == IconLayout::Plain;
    const QString given = parser.value(QStringLiteral("platform"));
    const QString platform = isPlain ? given : word.section(QLatin1Char('-'), 0, 0);
    if (!platformNames().contains(platform))
        return noneOf(QStringLiteral("--platform"), platform, platformNames());
    if (!given.isEmpty() && given != platform)
        return IconCommands::tr("--layout %1 is for the platform %2").arg(word, platform);
    layout.platform = platform == QLatin1String("android") ? IconSet::Android : IconSet::Ios;

    const bool isNamed = parser.isSet(QStringLiteral("name"));
    layout.name = isNamed ? parser.value(QStringLiteral("name")) : layout.usualName();
    if (isNamed && isPlain)
        return IconCommands::tr("--name belongs to the other layouts than plain");
    if (!layout.takesName(layout.name))
        return IconCommands::tr("no icon of a package can be named '%1'").arg(layout.name);
    job.background = asFile(parser.value(QStringLiteral("background")));
    if (!job.background.isEmpty() && layout.arrangement != IconLayout::AndroidAdaptive)
        return IconCommands::tr("--background belongs to the layout android-adaptive");
    job.base = asFile(parser.value(QStringLiteral("onto")));
    if (!job.base.isEmpty() && (layout.arrangement != IconLayout::AndroidRes || isNamed))
        return IconCommands::tr(
            "--onto belongs to the layout android-res, and takes the names from the package");
    if (!isPlain && parser.isSet(QStringLiteral("clear")))
        return IconCommands::tr("--clear belongs to the layout plain; the others delete nothing");
    return {};
}

// Reads the options; an empty text means they are complete and sound.
QString readOptions(const QCommandLineParser& parser, IconJob& job)
{
    QString fault = readLayout(parser, job);
    if (!fault.isEmpty())
        return fault;
    job.icon = asFile(parser.value(QStringLiteral("icon")));
    job.marks = asFile(parser.value(QStringLiteral("marks")));
    job.out = parser.value(QStringLiteral("out"));
    job.list = asFile(parser.positionalArguments().at(1));
    job.sheet = asFile(parser.value(QStringLiteral("sheet")));
    if (job.sheet == standardStream && parser.isSet(QStringLiteral("json")))
        return IconCommands::tr("the standard output is either for --json or for the sheet");
    job.keep = parser.isSet(QStringLiteral("keep")) || job.layout.arrangement != IconLayout::Plain;
    job.clear = parser.isSet(QStringLiteral("clear"));
    job.ignoreMissing = parser.isSet(QStringLiteral("ignore-missing"));
    if (parser.isSet(QStringLiteral("keep")) && job.clear)
        return IconCommands::tr("--keep and --clear exclude each other");

    const QString corner = parser.value(QStringLiteral("default-corner"));
    job.defaultCorner = ChannelList::cornerOf(corner);
    if (job.defaultCorner < 0 || job.defaultCorner > IconSet::RightBottom)
        return noneOf(QStringLiteral("--default-corner"), corner, cornersOfMarks());
    if (!readPixels(parser, QStringLiteral("default-x"), job.defaultX)
        || !readPixels(parser, QStringLiteral("default-y"), job.defaultY))
        return IconCommands::tr("--default-x and --default-y take whole numbers of pixels");
    return {};
}

// Puts the place that the system takes the word for; false when it is none.
bool resolve(QString& folder)
{
    if (!folder.startsWith(QLatin1Char('/'))) {
        const QString current = QDir::currentPath();
        if (!current.startsWith(QLatin1Char('/'))) // Qt makes nothing of it, and the root would be meant
            return false;
        // Joined by hand: Qt takes a leading colon for the name of a built-in resource.
        folder.prepend(current + QLatin1Char('/'));
    }
    folder = placeOf(folder);
    return true;
}

// Learns which icons the package has; the faults of it.
QStringList readBase(IconJob& job)
{
    QString fault;
    Diagnostics::takeAll();
    const PackageIcons icons = iconsOfPackage(job.base, fault);
    const QString cause = Diagnostics::take();
    if (!fault.isEmpty() && !cause.isEmpty())
        fault += QStringLiteral(": ") + cause;
    job.layout.base = icons.pictures;
    job.keptIcons = icons.others;
    return fault.isEmpty() ? QStringList() : QStringList(fault);
}

QStringList faultsOfPictures(const IconJob& job)
{
    QStringList faults;
    const QString fault = PictureFault::ofIcon(job.icon);
    if (!fault.isEmpty())
        faults.append(IconCommands::tr("the icon '%1' cannot be read: %2").arg(job.icon, fault));
    const QString second = job.background.isEmpty() ? QString() : PictureFault::ofIcon(job.background);
    if (!second.isEmpty())
        faults.append(IconCommands::tr("the background '%1' cannot be read: %2").arg(job.background, second));
    if (!QFileInfo(job.marks).isDir())
        faults.append(IconCommands::tr("the marks' folder '%1' does not exist").arg(job.marks));
    return faults;
}

// Completes the job by what its files hold; the faults of all of it.
QStringList readInputs(IconJob& job)
{
    const QString word = job.out;
    if (!resolve(job.out))
        return {IconCommands::tr("'%1' cannot be found: the current folder is gone; give a whole path")
                    .arg(word)};
    QStringList faults = faultsOfPictures(job);
    if (!job.base.isEmpty())
        faults += readBase(job);
    job.channels = ChannelList::read(job.list, faults);
    if (!faults.isEmpty())
        return faults;
    job.placeMarks();
    const QString danger = job.danger();
    if (!danger.isEmpty())
        faults.append(danger);
    if (faults.isEmpty() && !job.ignoreMissing)
        faults = job.missingMarks();
    return faults;
}

// What is worth a look although the run goes on.
void warnOf(const QStringList& texts, Console& console)
{
    for (const QString& text : texts)
        console.warn(text);
}

// Says what of each channel was not written, after what the library knows of it.
void reportMissing(const IconJob& job, const QStringList& missing, const QStringList& causes,
                   Console& console)
{
    const int mostCauses = console.verbose() ? causes.size() : 10;
    console.set(QStringLiteral("missing"), QJsonArray::fromStringList(missing));
    if (missing.isEmpty())
        return;
    for (const QString& cause : causes.mid(0, mostCauses))
        console.warn(cause);
    if (causes.size() > mostCauses)
        console.warn(IconCommands::tr("and %1 more like these").arg(causes.size() - mostCauses));
    console.set(QStringLiteral("causes"), QJsonArray::fromStringList(causes));

    QMap<QString, QStringList> filesOfFolder;
    for (const QString& path : missing)
        filesOfFolder[QFileInfo(path).path()].append(QFileInfo(path).fileName());
    for (auto folder = filesOfFolder.cbegin(); folder != filesOfFolder.cend(); ++folder)
        console.warn(
            IconCommands::tr("not written in %1: %2").arg(folder.key(), folder->join(QStringLiteral(", "))));
    console.error(
        IconCommands::tr("not written: %1 of %2 files").arg(missing.size()).arg(job.files().size()));
}

bool writeSheet(const IconJob& job, Console& console)
{
    QVector<SheetEntry> entries;
    for (const ListedChannel& channel : job.channels) {
        const QString shown = job.layout.shownFile(channel.icon.strChannelDir);
        entries.append({channel.name, job.out + QLatin1Char('/') + shown});
    }
    const QString platform =
        job.layout.platform == IconSet::Android ? QStringLiteral("Android") : QStringLiteral("iOS");
    const QString title = IconCommands::tr("%1, channels: %2").arg(platform).arg(entries.size());
    if (job.sheet == standardStream) {
        QBuffer picture;
        if (picture.open(QIODevice::WriteOnly) && drawContactSheet(title, entries).save(&picture, "PNG"))
            StandardStreams::writeResult(picture.data());
        return true;
    }
    QSaveFile file(job.sheet);
    if (file.open(QIODevice::WriteOnly) && drawContactSheet(title, entries).save(&file, "PNG") && file.flush()
        && file.commit()) {
        console.set(QStringLiteral("sheet"), job.sheet);
        return true;
    }
    console.error(
        IconCommands::tr("the sheet '%1' cannot be written: %2").arg(job.sheet, file.errorString()));
    return false;
}

QStringList doubtsOfSheet(const IconJob& job)
{
    if (job.sheet.isEmpty())
        return {};
    if (!canWriteOnSheets())
        return {IconCommands::tr("no font was found; the sheet has neither a title nor names")};
    QStringList texts;
    for (const ListedChannel& channel : job.channels) {
        const QString letters = lettersWithoutFont(channel.name);
        if (!letters.isEmpty())
            texts.append(
                IconCommands::tr("channel '%1': no installed font has %2; the sheet shows boxes there")
                    .arg(channel.name, letters));
    }
    return texts;
}

QStringList warningsAfter(const IconJob& job)
{
    QStringList texts;
    const QStringList leftovers = job.leftovers();
    if (!job.keep && QFileInfo(job.out).isDir() && !job.markAsOwn())
        texts.append(IconCommands::tr("the next run into %1 will need --clear").arg(job.out));
    if (!leftovers.isEmpty())
        texts.append(IconCommands::tr("not deleted: %1").arg(leftovers.join(QStringLiteral(", "))));
    return texts + doubtsOfSheet(job);
}

// False when a file is missing.
bool reportFiles(const IconJob& job, const FileTally& tally, const QStringList& causes,
                 const QElapsedTimer& time, Console& console)
{
    const QStringList missing = tally.missing();
    const int written = tally.expected() - missing.size();
    reportMissing(job, missing, Diagnostics::takeAll() + causes, console);
    console.set(QStringLiteral("channels"), job.channels.size());
    console.set(QStringLiteral("expected"), tally.expected());
    console.set(QStringLiteral("written"), written);
    console.set(QStringLiteral("out"), job.out);
    console.say(IconCommands::tr("%1 of %2 files in %3 s, channels: %4, folder: %5")
                    .arg(written)
                    .arg(tally.expected())
                    .arg(static_cast<double>(time.elapsed()) / 1000, 0, 'f', 1)
                    .arg(job.channels.size())
                    .arg(job.out));
    return missing.isEmpty();
}

ExitCode makeIcons(const QCommandLineParser& parser, Console& console)
{
    IconJob job;
    const QString fault = readOptions(parser, job);
    if (!fault.isEmpty()) {
        console.error({Failure::Usage, fault});
        return ExitUsage;
    }
    const QStringList faults = readInputs(job);
    for (const QString& text : faults)
        console.error({Failure::BadInput, text});
    if (!faults.isEmpty())
        return ExitFailed;
    const QString refusal = job.refusal();
    if (!refusal.isEmpty()) {
        console.error({Failure::Refused, refusal});
        return ExitFailed;
    }
    warnOf((job.ignoreMissing ? job.missingMarks() : QStringList()) + job.warnings(), console);
    if (parser.isSet(QStringLiteral("dry-run"))) {
        reportDryRun(job, console);
        return ExitDone;
    }

    if (job.sheet == standardStream)
        console.leaveOutputFree();
    QElapsedTimer time;
    time.start();
    FileTally tally(job.files());
    QStringList causes;
    if (!produceIcons(job, tally, causes, console))
        return ExitFailed;
    const bool complete = reportFiles(job, tally, causes, time, console);
    warnOf(warningsAfter(job), console);
    const bool sheetDone = job.sheet.isEmpty() || writeSheet(job, console);
    return complete && sheetDone ? ExitDone : ExitFailed;
}

} // namespace

QVector<Command> iconCommands()
{
    const auto option = [](const char* name, const QString& description, const char* value,
                           const char* otherwise = "") {
        return QCommandLineOption(QLatin1String(name), description, QLatin1String(value),
                                  QLatin1String(otherwise));
    };
    Command icons;
    icons.name = QStringLiteral("icons");
    icons.summary = IconCommands::tr("makes every channel's launcher icons");
    icons.arguments = {
        {QStringLiteral("CHANNELS.json"),
         IconCommands::tr("the list of channels, see below; - reads it from the standard input")}};
    icons.options = {
        option("icon", IconCommands::tr("The game's icon, in any usual format."), "FILE"),
        option("marks", IconCommands::tr("The folder that holds a folder a mark."), "DIR"),
        option("out",
               IconCommands::tr(
                   "The output folder. With the layout plain it is deleted first, and must be empty or of "
                   "an earlier run; the others only add to it."),
               "DIR"),
        option("platform",
               IconCommands::tr("The set of sizes: android or ios. Other layouts than plain name it."),
               "NAME"),
        option("layout",
               IconCommands::tr("How they are arranged: %1 (plain).")
                   .arg(IconLayout::arrangementNames().join(QStringLiteral(", "))),
               "NAME", "plain"),
        option("name", IconCommands::tr("The icon's name in the package (ic_launcher, AppIcon)."), "TEXT"),
        option("onto", IconCommands::tr("The built package whose icons these replace, for android-res."),
               "APK"),
        option("background", IconCommands::tr("The picture behind the icon, for android-adaptive."), "FILE"),
        option("default-corner",
               IconCommands::tr("The corner of channels with the corner \"default\" (right-bottom)."),
               "CORNER", "right-bottom"),
        option("default-x",
               IconCommands::tr("Where these channels' marks go, as \"x\" (flush in the corner)."), "N"),
        option("default-y",
               IconCommands::tr("Where these channels' marks go, as \"y\" (flush in the corner)."), "N"),
        QCommandLineOption(QStringLiteral("keep"),
                           IconCommands::tr("Deletes nothing: files of the same names are overwritten.")),
        QCommandLineOption(QStringLiteral("clear"),
                           IconCommands::tr("Deletes an output folder that no earlier run has made, too.")),
        QCommandLineOption(
            QStringLiteral("ignore-missing"),
            IconCommands::tr("Leaves icons unmarked whose marks are missing or cannot be read.")),
        QCommandLineOption(
            {QStringLiteral("n"), QStringLiteral("dry-run")},
            IconCommands::tr("Tells file by file what would be written and deleted, and does nothing.")),
        option("sheet",
               IconCommands::tr(
                   "Draws all channels' icons with their names into one picture; - is the standard output."),
               "FILE.png"),
    };
    icons.run = makeIcons;
    icons.details = ChannelList::formatHelp();
    icons.words = {{QStringLiteral("platform"), platformNames()},
                   {QStringLiteral("layout"), IconLayout::arrangementNames()},
                   {QStringLiteral("default-corner"), cornersOfMarks()}};
    icons.missing = missingOptions;
    return {icons};
}
