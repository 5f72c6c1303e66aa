// SPDX-License-Identifier: MIT
#include "scripts/apksigner.h"

#include "scripts/toolrun.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

struct SignerText {
    Q_DECLARE_TR_FUNCTIONS(ApkSigner)
};

// The first words of a Java program's report; the rest is its own stack.
QString reasonOf(const ToolRun& run)
{
    QStringList lines = (run.error.isEmpty() ? run.output : run.error).split(QLatin1Char('\n'));
    lines = lines.filter(QRegularExpression(QStringLiteral("^(?!WARNING|\\s*at |\\s*$)"))).mid(0, 2);
    return lines.isEmpty() ? SignerText::tr("apksigner gave no reason") : lines.join(QStringLiteral("; "));
}

// A name that packing passes over, should it be left behind.
QString scratchBeside(const QString& path)
{
    return QFileInfo(path).path()
        + QStringLiteral("/.quenzo-%1.tmp")
              .arg(QRandomGenerator::system()->generate64(), 16, 16, QLatin1Char('0'));
}

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// Brings the scratch to its place; the words of a failure, or none.
QString moved(const QString& scratch, const QString& path)
{
    QFile file(scratch);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) || fsync(file.handle()) != 0)
        return file.isOpen() ? systemError() : file.errorString();
    file.setPermissions(QFile::permissions(path));
    file.close();
    if (std::rename(QFile::encodeName(scratch).constData(), QFile::encodeName(path).constData()) != 0)
        return systemError();
    return {};
}

} // namespace

ApkSigner::ApkSigner()
    : m_program(QStandardPaths::findExecutable(QStringLiteral("apksigner")))
{
}

Failure ApkSigner::missing()
{
    return {Failure::NoTool,
            SignerText::tr("the program apksigner is missing"),
            {},
            SignerText::tr("on Debian \"apt-get install apksigner\" brings it")};
}

Verdict ApkSigner::sign(const QString& apk, const SigningKey& key, Console& console) const
{
    const QString path = QFileInfo(apk).canonicalFilePath();
    if (!QFileInfo(path).isWritable())
        return {false, {}, SignerText::tr("the file is write-protected")};
    const QString scratch = scratchBeside(path);
    const auto tidy = [&scratch] { QFile::remove(scratch); };
    QStringList words{QStringLiteral("sign"),
                      QStringLiteral("--ks"),
                      key.keystore,
                      QStringLiteral("--ks-pass"),
                      key.password,
                      QStringLiteral("--v4-signing-enabled"),
                      QStringLiteral("false"),
                      QStringLiteral("--out"),
                      scratch};
    if (!key.alias.isEmpty())
        words += {QStringLiteral("--ks-key-alias"), key.alias};
    const ToolRun run =
        runTool(console, m_program, words << QStringLiteral("--in") << path, SignerText::tr("signing"), tidy);
    Verdict verdict;
    verdict.reason = run.succeeded ? QString() : reasonOf(run);
    if (run.succeeded)
        verdict = verify(scratch, console);
    if (verdict.holds) {
        verdict.reason = moved(scratch, path);
        verdict.holds = verdict.reason.isEmpty();
    }
    if (!verdict.holds)
        tidy();
    return verdict;
}

Verdict ApkSigner::verify(const QString& apk, Console& console) const
{
    const ToolRun run = runTool(console, m_program,
                                {QStringLiteral("verify"), QStringLiteral("--print-certs"),
                                 QStringLiteral("--in"), QFileInfo(apk).absoluteFilePath()},
                                SignerText::tr("verifying the signature"));
    static const QRegularExpression form(QStringLiteral("certificate SHA-256 digest: ([0-9a-f]+)"));
    if (!run.succeeded)
        return {false, {}, reasonOf(run)};
    return {true, form.match(run.output).captured(1), {}};
}
