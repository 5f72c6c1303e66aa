// SPDX-License-Identifier: MIT
#include <installapk.h>

#include <QtTest>

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTranslator>
#include <QXmlStreamReader>

namespace {

struct Message {
    QString context;
    QString source;
    QString translation;
    QString state; ///< "unfinished" and the like; empty for a good one
};

// All that stands in a sheet; a damaged one fails the test.
QVector<Message> readSheet(const QString& path)
{
    QVector<Message> messages;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qUtf8Printable(path));
    QXmlStreamReader reader(&file);
    QString context;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (reader.name() == QLatin1String("name"))
            context = reader.readElementText();
        else if (reader.name() == QLatin1String("message"))
            messages.append({context, {}, {}, QStringLiteral("without a translation")});
        else if (reader.name() == QLatin1String("source"))
            messages.last().source = reader.readElementText();
        else if (reader.name() == QLatin1String("translation")) {
            messages.last().state = reader.attributes().value(QStringLiteral("type")).toString();
            messages.last().translation = reader.readElementText();
        }
    }
    if (reader.hasError())
        qFatal("%s: %s", qUtf8Printable(path), qUtf8Printable(reader.errorString()));
    return messages;
}

// What a translation takes over as it is, sorted: places, options, variables, names of files and of values in
// quotation marks, and line breaks.
QStringList kept(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral(
        "%\\d|%n|(?<![\\w-])--?[a-z][a-z-]*|\\b[A-Z][A-Z0-9_]*_[A-Z0-9_]+\\b|\\b[A-Z]{5,}\\b"
        "|\\b[\\w-]+\\.(?:json|png|xml|log|key|apk)\\b|\"[a-z-]+\"|\\[y/N\\]|~/[\\w./]*\\w|\\d+|\n"));
    QStringList found;
    for (auto match = pattern.globalMatch(text); match.hasNext();)
        found.append(match.next().captured());
    found.sort();
    return found;
}

QString shown(const Message& message)
{
    return QStringLiteral("%1: \"%2\"").arg(message.context, message.source);
}

} // namespace

// The sheets of translated texts, of the library, the program and the window.
class tst_Translations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sheetsHaveTheTextsOfTheSources_data() { sheets(); }
    void sheetsHaveTheTextsOfTheSources();
    void everyTextIsTranslated_data() { sheets(); }
    void everyTextIsTranslated();
    void translationsKeepWhatIsNoWord_data() { sheets(); }
    void translationsKeepWhatIsNoWord();
    void compiledSheetsAreWhole_data() { sheets(); }
    void compiledSheetsAreWhole();
    void statementsOfTheInterpreterAreNoTexts();
    void libraryAnswersInTheLanguageThatAHostLoads();

private:
    static void sheets();
    static QString sheet(const QString& name)
    {
        return QStringLiteral(SOURCE_DIR "/translations/%1_zh_CN.ts").arg(name);
    }
};

void tst_Translations::sheets()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("library") << QStringLiteral("quenzotool");
    QTest::newRow("program") << QStringLiteral("quenzo");
    QTest::newRow("window") << QStringLiteral("quenzo-window");
}

void tst_Translations::sheetsHaveTheTextsOfTheSources()
{
    QFETCH(const QString, name);
    QTemporaryDir folder;
    for (const char* const each : {"quenzotool", "quenzo", "quenzo-window"}) {
        const QString from = sheet(QLatin1String(each));
        QVERIFY(QFile::copy(from, folder.filePath(QFileInfo(from).fileName())));
    }
    QProcess refresh;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LUPDATE"), QStringLiteral(LUPDATE));
    refresh.setProcessEnvironment(environment);
    refresh.start(QStringLiteral(SOURCE_DIR "/scripts/translations.sh"), {folder.path()});
    QVERIFY2(refresh.waitForFinished(120000) && refresh.exitCode() == 0,
             refresh.readAllStandardError().constData());

    const auto textsOf = [](const QString& path) {
        QStringList texts;
        for (const Message& message : readSheet(path))
            texts.append(shown(message));
        return texts;
    };
    const QStringList now = textsOf(sheet(name));
    const QStringList wanted = textsOf(folder.filePath(QFileInfo(sheet(name)).fileName()));
    QVERIFY(!wanted.isEmpty());
    QStringList differences;
    for (const QString& text : wanted) {
        if (!now.contains(text))
            differences.append(QStringLiteral("no sheet has ") + text);
    }
    for (const QString& text : now) {
        if (!wanted.contains(text))
            differences.append(QStringLiteral("no source has ") + text);
    }
    QVERIFY2(differences.isEmpty(),
             qUtf8Printable(QStringLiteral("run scripts/translations.sh:\n")
                            + differences.join(QLatin1Char('\n'))));
}

void tst_Translations::everyTextIsTranslated()
{
    QFETCH(const QString, name);
    QStringList faults;
    for (const Message& message : readSheet(sheet(name))) {
        // A context without a name is one that Qt's tools have not understood; nothing would be found there.
        if (!message.state.isEmpty() || message.translation.isEmpty() || message.context.isEmpty())
            faults.append(shown(message) + QLatin1Char(' ') + message.state);
    }
    QVERIFY2(faults.isEmpty(), qUtf8Printable(faults.join(QLatin1Char('\n'))));
}

void tst_Translations::translationsKeepWhatIsNoWord()
{
    QFETCH(const QString, name);
    QStringList faults;
    for (const Message& message : readSheet(sheet(name))) {
        const QStringList wanted = kept(message.source);
        const QStringList found = kept(message.translation);
        if (found != wanted)
            faults.append(
                QStringLiteral("%1\n  has    %2\n  wanted %3")
                    .arg(shown(message), found.join(QLatin1Char(' ')), wanted.join(QLatin1Char(' '))));
    }
    QVERIFY2(faults.isEmpty(), qUtf8Printable(faults.join(QLatin1Char('\n'))));
}

void tst_Translations::compiledSheetsAreWhole()
{
    QFETCH(const QString, name);
    QTranslator compiled;
    QVERIFY(compiled.load(QStringLiteral(COMPILED_SHEETS "/%1_zh_CN.qm").arg(name)));
    const QVector<Message> messages = readSheet(sheet(name));
    QVERIFY(!messages.isEmpty());
    for (const Message& message : messages) {
        const QString found =
            compiled.translate(message.context.toUtf8().constData(), message.source.toUtf8().constData());
        QVERIFY2(found == message.translation, qUtf8Printable(shown(message)));
    }
}

void tst_Translations::statementsOfTheInterpreterAreNoTexts()
{
    for (const Message& message : readSheet(sheet(QStringLiteral("quenzotool"))))
        QVERIFY2(message.context != QLatin1String("PythonForQt"), qUtf8Printable(shown(message)));
}

void tst_Translations::libraryAnswersInTheLanguageThatAHostLoads()
{
    const char* const source = "Please select devices first!";
    QCOMPARE(CInstallApk::tr(source), QString::fromLatin1(source));
    QTranslator texts;
    QVERIFY(texts.load(QLocale(QStringLiteral("zh_CN")), QStringLiteral("quenzotool"), QStringLiteral("_"),
                       QStringLiteral(":/quenzotool/translations")));
    QVERIFY(QCoreApplication::installTranslator(&texts));
    QCOMPARE(CInstallApk::tr(source), QStringLiteral("请先选择设备！"));
    QCoreApplication::removeTranslator(&texts);
    // Nobody has translated it into these: they stay English.
    for (const char* const other : {"en_US", "de_DE", "zh_TW", "C"})
        QVERIFY2(!texts.load(QLocale(QLatin1String(other)), QStringLiteral("quenzotool"), QStringLiteral("_"),
                             QStringLiteral(":/quenzotool/translations")),
                 other);
}

QTEST_GUILESS_MAIN(tst_Translations)
#include "tst_translations.moc"
