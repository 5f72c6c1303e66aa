// SPDX-License-Identifier: MIT
#include "quenzoprocess.h"

#include <QDir>
#include <QJsonArray>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// The variables of a locale, in the order LC_ALL, LC_MESSAGES, LANG, LANGUAGE.
using Locale = QStringList;

const Locale english{QStringLiteral("C.UTF-8"), {}, {}, {}};
const Locale chinese{QStringLiteral("zh_CN.UTF-8"), {}, {}, {}};

Ended run(const QStringList& words, const Locale& locale, const QString& folder)
{
    QuenzoProcess process(words, folder);
    int i = 0;
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE"})
        process.setVariable(name, locale.at(i++));
    return process.end();
}

// What of a JSON value is for programs: the shape, and everything but the texts for people and for the
// moment.
QStringList shapeOf(const QJsonValue& value, const QString& path)
{
    static const QStringList texts{QStringLiteral("message"), QStringLiteral("cause"),
                                   QStringLiteral("hint")};
    QStringList lines;
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        for (auto entry = object.begin(); entry != object.end(); ++entry) {
            const QString below = path + QLatin1Char('/') + entry.key();
            lines += texts.contains(entry.key()) ? QStringList{below} : shapeOf(entry.value(), below);
        }
    } else if (value.isArray()) {
        for (const QJsonValue item : value.toArray())
            lines += shapeOf(item, path + QStringLiteral("[]"));
    } else {
        lines.append(path + QLatin1Char('=') + value.toVariant().toString());
    }
    return lines;
}

bool write(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

} // namespace

// The languages that the program speaks.
class tst_HostLanguages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void localeChoosesTheLanguage_data();
    void localeChoosesTheLanguage();
    void everyKindOfTextIsTranslated_data();
    void everyKindOfTextIsTranslated();
    void jsonStaysTheSame_data();
    void jsonStaysTheSame();
    void helpFitsTheScreen_data();
    void helpFitsTheScreen();
};

void tst_HostLanguages::localeChoosesTheLanguage_data()
{
    QTest::addColumn<Locale>("locale");
    QTest::addColumn<bool>("isChinese");
    const QString zh = QStringLiteral("zh_CN.UTF-8");
    const QString en = QStringLiteral("en_US.UTF-8");
    const QString c = QStringLiteral("C.UTF-8");
    const QString list = QStringLiteral("zh_CN");
    QTest::newRow("nothing") << Locale{{}, {}, {}, {}} << false;
    QTest::newRow("LC_ALL") << Locale{zh, {}, en, {}} << true;
    QTest::newRow("LC_ALL of another encoding") << Locale{QStringLiteral("zh_CN.GBK"), {}, {}, {}} << true;
    QTest::newRow("LC_MESSAGES") << Locale{{}, zh, en, {}} << true;
    QTest::newRow("LANG") << Locale{{}, {}, zh, {}} << true;
    QTest::newRow("LANGUAGE") << Locale{{}, {}, en, list} << true;
    QTest::newRow("LANGUAGE, second") << Locale{{}, {}, en, QStringLiteral("fr:zh_CN:en")} << true;
    QTest::newRow("LANGUAGE, English first") << Locale{{}, {}, zh, QStringLiteral("en:zh_CN")} << false;
    QTest::newRow("the C locale has no LANGUAGE") << Locale{c, {}, zh, list} << false;
    QTest::newRow("POSIX") << Locale{QStringLiteral("POSIX"), {}, zh, list} << false;
    QTest::newRow("a language without texts") << Locale{QStringLiteral("fr_FR.UTF-8"), {}, zh, {}} << false;
    QTest::newRow("the other Chinese") << Locale{QStringLiteral("zh_TW.UTF-8"), {}, zh, {}} << false;
}

void tst_HostLanguages::localeChoosesTheLanguage()
{
    QFETCH(const Locale, locale);
    QFETCH(const bool, isChinese);
    const Ended ended = run({QStringLiteral("help")}, locale, {});
    QCOMPARE(ended.code, 0);
    const QByteArray wanted = isChinese ? "用法: quenzo COMMAND" : "Usage: quenzo COMMAND";
    QCOMPARE(ended.output.left(wanted.size()), wanted);
}

void tst_HostLanguages::everyKindOfTextIsTranslated_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("options of help") << QStringLiteral("copy --help") << QByteArray("\n选项:\n  -h, --help")
                                     << QByteArray();
    QTest::newRow("arguments of help")
        << QStringLiteral("copy --help") << QByteArray("\n参数:\n  SRC ") << QByteArray();
    QTest::newRow("wrong words") << QStringLiteral("copy") << QByteArray()
                                 << QByteArray("quenzo: copy: 缺少：SRC, DEST");
    QTest::newRow("the parser's own objection")
        << QStringLiteral("pack --like") << QByteArray() << QByteArray("'--like' 之后缺少值");
    QTest::newRow("failure") << QStringLiteral("copy absent there") << QByteArray()
                             << QByteArray("quenzo: 没有文件夹 '");
    QTest::newRow("result") << QStringLiteral("copy from to") << QByteArray("/to：文件数：1，大小：3 字节\n")
                            << QByteArray();
    QTest::newRow("result of a removal")
        << QStringLiteral("remove from --yes") << QByteArray("已删除 ") << QByteArray();
}

void tst_HostLanguages::everyKindOfTextIsTranslated()
{
    QFETCH(const QString, line);
    QFETCH(const QByteArray, output);
    QFETCH(const QByteArray, error);
    QTemporaryDir folder;
    QVERIFY(write(folder.filePath(QStringLiteral("from/a")), "abc"));
    const Ended ended = run(line.split(QLatin1Char(' ')), chinese, folder.path());
    QVERIFY2(ended.output.contains(output), ended.output.constData());
    QVERIFY2(ended.error.contains(error), ended.error.constData());
    QCOMPARE(ended.output.isEmpty(), output.isEmpty());
    QCOMPARE(ended.error.isEmpty(), error.isEmpty());
}

void tst_HostLanguages::jsonStaysTheSame_data()
{
    QTest::addColumn<QString>("line");
    for (const char* const line :
         {"copy from to", "copy absent to", "copy", "nothing", "copy from to --dry-run", "remove from --yes",
          "remove from", "encode hello", "decode GaVsbG8=", "db select t --file absent", "pack from to.zip",
          "unpack absent.zip to", "import absent.zip to", "check absent.apk", "key nonsense", "version",
          "export nonsense to", "install absent.apk", "run absent.py main"})
        QTest::newRow(line) << QString::fromLatin1(line);
}

void tst_HostLanguages::jsonStaysTheSame()
{
    QFETCH(const QString, line);
    const QStringList words = line.split(QLatin1Char(' ')) << QStringLiteral("--json");
    QTemporaryDir folder;
    QVector<QStringList> shapes;
    QVector<int> codes;
    for (const Locale& locale : {english, chinese}) {
        QDir(folder.path()).removeRecursively();
        QVERIFY(write(folder.filePath(QStringLiteral("from/a")), "abc"));
        const Ended ended = run(words, locale, folder.path());
        QVERIFY2(!ended.json().isEmpty(), ended.output.constData());
        shapes.append(shapeOf(ended.json(), {}));
        codes.append(ended.code);
    }
    QCOMPARE(shapes[1], shapes[0]);
    QCOMPARE(codes[1], codes[0]);
}

void tst_HostLanguages::helpFitsTheScreen_data()
{
    QTest::addColumn<QString>("command");
    const QString overview = QString::fromUtf8(run({QStringLiteral("help")}, english, {}).output);
    static const QRegularExpression name(QStringLiteral("^  ([a-z-]+) "),
                                         QRegularExpression::MultilineOption);
    for (auto match = name.globalMatch(overview); match.hasNext();) {
        const QString command = match.next().captured(1);
        QTest::newRow(qPrintable(command)) << command;
    }
}

void tst_HostLanguages::helpFitsTheScreen()
{
    QFETCH(const QString, command);
    const Ended ended = run({QStringLiteral("help"), command}, chinese, {});
    QCOMPARE(ended.code, 0);
    for (const QString& line : QString::fromUtf8(ended.output).split(QLatin1Char('\n'))) {
        if (!line.startsWith(QLatin1Char(' ')))
            continue; // the paragraphs behind the options are the terminal's to wrap
        int columns = 0;
        for (const QChar letter : line)
            columns += letter.unicode() > 0x2e80 ? 2 : 1;
        QVERIFY2(columns <= 80, qUtf8Printable(line));
    }
}

QTEST_GUILESS_MAIN(tst_HostLanguages)
#include "tst_hostlanguages.moc"
