// SPDX-License-Identifier: MIT
#include "scriptedtools.h"
#include "shellsession.h"

#include <QtTest>

#include <algorithm>
#include <map>
#include <memory>

namespace {

constexpr int timeLimitMs = 30000;

} // namespace

// What the two shells offer when a person presses Tab behind a word of the program.
class tst_Completion : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void wordIsCompleted_data();
    void wordIsCompleted();
    void choiceIsShown_data();
    void choiceIsShown();
    void cleanupTestCase();

private:
    static void bothShells(const char* name, const QByteArray& typed, const QByteArray& expected);

    QTemporaryDir m_folder;
    std::map<QString, std::unique_ptr<ShellSession>> m_shells;
};

void tst_Completion::initTestCase()
{
    const QString programs = QCoreApplication::applicationDirPath();
    QFile::remove(programs + QStringLiteral("/quenzo"));
    QVERIFY(QFile::copy(QStringLiteral(QUENZO_PROGRAM), programs + QStringLiteral("/quenzo")));
    ScriptedTools::write();
    ScriptedTools::attach({QStringLiteral("emulator-5554"), QStringLiteral("192.168.0.7:5555")});
    QVERIFY(QDir().mkpath(programs + QStringLiteral("/../Script")));
    QFile records(programs + QStringLiteral("/../Script/develop_info.json"));
    QVERIFY(records.open(QIODevice::WriteOnly));
    records.write("{\"channels\": [\n  {\"id\": 4711, \"name\": \"a\"},\n  {\n    \"id\": 815\n  }\n]}\n");

    for (const char* name : {"game.apk", "sdk.zip", "notes.txt", "channels.json", "my app.apk"})
        QVERIFY(QFile(m_folder.filePath(QString::fromLatin1(name))).open(QIODevice::WriteOnly));
    QVERIFY(QDir(m_folder.path()).mkdir(QStringLiteral("build")));

    const QByteArray words = " quenzo() { if [ \"$1\" = devices ]; then command quenzo devices; "
                             "else printf '<%s>' \"$@\"; echo; fi; }";
    const QByteArray bashLines = "source '" QUENZO_MANUAL "/quenzo.bash'";
    const QByteArray zshLines = "fpath=('" QUENZO_MANUAL "' $fpath); autoload -U compinit; compinit -u -D";
    auto& bash = m_shells[QStringLiteral("bash")];
    bash = std::make_unique<ShellSession>(QStringList{QStringLiteral("bash"), QStringLiteral("--norc"),
                                                      QStringLiteral("--noprofile"), QStringLiteral("-i")},
                                          m_folder.path());
    auto& zsh = m_shells[QStringLiteral("zsh")];
    const QStringList simple = QuenzoProcess::words("-f -i -o nopromptsp -o nopromptcr");
    zsh = std::make_unique<ShellSession>(QStringList(QStringLiteral(ZSH)) + simple, m_folder.path());
    QVERIFY2(bash->enter(bashLines) && bash->enter(words), bash->shown().constData());
    QVERIFY2(zsh->enter(zshLines) && zsh->enter(words), zsh->shown().constData());
}

void tst_Completion::bothShells(const char* name, const QByteArray& typed, const QByteArray& expected)
{
    for (const QString& shell : {QStringLiteral("bash"), QStringLiteral("zsh")})
        QTest::addRow("%s, %s", name, qPrintable(shell)) << shell << typed << expected;
}

void tst_Completion::wordIsCompleted_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<QByteArray>("typed");
    QTest::addColumn<QByteArray>("expected");
    bothShells("a command", "quenzo unin", "<uninstall>");
    bothShells("a command to help with", "quenzo help packa", "<help><package-name>");
    bothShells("an option", "quenzo copy --dr", "<copy><--dry-run>");
    bothShells("an option behind an argument", "quenzo copy build --dr", "<copy><build><--dry-run>");
    bothShells("no option behind dashes", "quenzo copy -- --dr", "<copy><--><--dr>");
    bothShells("an APK", "quenzo encrypt g", "<encrypt><game.apk>");
    bothShells("an APK with a blank", "quenzo encrypt m", "<encrypt><my app.apk>");
    bothShells("a package", "quenzo import s", "<import><sdk.zip>");
    bothShells("a list of channels", "quenzo icons c", "<icons><channels.json>");
    bothShells("a folder", "quenzo copy b", "<copy><build/>");
    bothShells("a second folder", "quenzo import sdk.zip b", "<import><sdk.zip><build/>");
    bothShells("a job or its records", "quenzo builds channels", "<builds><channels.json>");
    bothShells("no folder", "quenzo copy ch", "<copy><ch>");
    bothShells("any file", "quenzo encrypt --key no", "<encrypt><--key><notes.txt>");
    bothShells("a value of a list", "quenzo icons --platform an", "<icons><--platform><android>");
    bothShells("a value in one word", "quenzo icons --platform=i", "<icons><--platform=ios>");
    bothShells("a form of progress", "quenzo copy --progress=j", "<copy><--progress=json>");
    bothShells("a form of progress in two words", "quenzo copy --progress j", "<copy><--progress><json>");
    bothShells("a command behind an option", "quenzo -q unin", "<-q><uninstall>");
    bothShells("an argument of a command behind an option", "quenzo --json encrypt g",
               "<--json><encrypt><game.apk>");
    bothShells("a serial", "quenzo install --device e", "<install><--device><emulator-5554>");
    bothShells("a serial with a colon",
               "quenzo install --device 192.168.0.7:", "<install><--device><192.168.0.7:5555>");
    bothShells("a serial in one word", "quenzo install --device=192", "<install><--device=192.168.0.7:5555>");
    bothShells("a channel", "quenzo export 47", "<export><4711>");
    // zsh offers any file where none of the kind fits.
    QTest::addRow("no APK, bash") << QStringLiteral("bash") << QByteArray("quenzo encrypt no")
                                  << QByteArray("<encrypt><no>");
    bothShells("an argument behind an option's value", "quenzo install --device x g",
               "<install><--device><x><game.apk>");
}

void tst_Completion::wordIsCompleted()
{
    QFETCH(QString, shell);
    QFETCH(QByteArray, typed);
    QFETCH(QByteArray, expected);
    ShellSession& session = *m_shells.at(shell);
    QVERIFY2(session.enter(typed + '\t'), session.shown().constData());
    const QRegularExpression line(QStringLiteral("\\n *(<.*>)\\n"));
    const QByteArray printed = line.match(QString::fromUtf8(session.shown())).captured(1).toUtf8();
    // zsh takes the slash of a folder back when the line ends there.
    if (shell == QLatin1String("zsh"))
        expected.replace("/>", ">");
    QCOMPARE(printed, expected);
}

void tst_Completion::choiceIsShown_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<QByteArray>("typed");
    QTest::addColumn<QByteArray>("expected");
    bothShells("commands", "quenzo ",
               "init build builds import encrypt decrypt pack unpack run export copy cut output remove db "
               "encode decode icons devices package-name install uninstall help version");
    bothShells("options", "quenzo install --",
               "--help --json --progress --quiet --verbose --device --timeout --yes");
    bothShells("archives and folders", "quenzo unpack ", "sdk.zip game.apk build");
    bothShells("corners", "quenzo icons --default-corner ", "left-top left-bottom right-top right-bottom");
    bothShells("serials", "quenzo install --device ", "emulator-5554 192.168.0.7:5555");
    bothShells("channels", "quenzo export ", "4711 815");
}

void tst_Completion::choiceIsShown()
{
    QFETCH(QString, shell);
    QFETCH(QByteArray, typed);
    QFETCH(QByteArray, expected);
    ShellSession& session = *m_shells.at(shell);
    QByteArrayList missing = expected.split(' ');
    session.type(typed + (shell == QLatin1String("bash") ? "\t\t" : "\t"));
    const bool complete = QTest::qWaitFor(
        [&] {
            const QString shown = QString::fromUtf8(session.shown());
            const auto isShown = [&shown](const QByteArray& word) {
                const QString escaped = QRegularExpression::escape(QString::fromUtf8(word));
                return shown.contains(QRegularExpression(QStringLiteral("(^|\\s)%1/?(\\s|$)").arg(escaped)));
            };
            missing.erase(std::remove_if(missing.begin(), missing.end(), isShown), missing.end());
            return missing.isEmpty();
        },
        timeLimitMs);
    const QByteArray shown = session.shown();
    QVERIFY(session.forget());
    QVERIFY2(complete,
             qPrintable(QStringLiteral("%1 not in: %2")
                            .arg(QString::fromUtf8(missing.join(' ')), QString::fromUtf8(shown))));
    QVERIFY2(!shown.contains("notes.txt"), shown.constData());
}

void tst_Completion::cleanupTestCase()
{
    m_shells.clear();
}

QTEST_GUILESS_MAIN(tst_Completion)
#include "tst_completion.moc"
