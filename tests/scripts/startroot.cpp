// SPDX-License-Identifier: MIT
#include "startroot.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <csignal>

StartRoot::StartRoot(const QString& name)
    : m_path(m_folder.path() + QLatin1Char('/') + name)
{
    // Hosts would inherit that it is ignored, as it is in what a shell runs in the background.
    std::signal(SIGINT, SIG_DFL);
    QDir().mkpath(m_path + QStringLiteral("/bin"));
    write(QStringLiteral("Script/answers.py"),
          "import time, sys\n"
          "def five(): return 5\n"
          "def wait():\n    print 'waiting'\n    sys.stdout.flush()\n    time.sleep(60)\n");
    setVariable(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
}

void StartRoot::write(const QString& relativePath, const QByteArray& content)
{
    const QString path = m_path + QLatin1Char('/') + relativePath;
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qUtf8Printable(path));
}

void StartRoot::writeStartModule(const QByteArray& content)
{
    write(QStringLiteral("tool/mac/Python/init_python_env.py"), content);
}

void StartRoot::setVariable(const QString& name, const QString& value)
{
    m_environment.insert(name, value);
}

void StartRoot::preload(const QString& library)
{
    setVariable(QStringLiteral("LD_PRELOAD"), library);
    // The address sanitizer would refuse to come second.
    setVariable(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
}

void StartRoot::start(const QString& host, const QStringList& arguments)
{
    const QString program = m_path + QStringLiteral("/bin/") + host;
    QFile::copy(QStringLiteral(START_HOSTS) + QLatin1Char('/') + host, program);
    m_process.setProcessEnvironment(m_environment);
    m_process.start(program, arguments);
}

QByteArray StartRoot::output()
{
    if (!m_process.waitForFinished(120000))
        return "not finished";
    m_error = m_process.readAllStandardError();
    QByteArray lines = m_process.readAllStandardOutput();
    if (m_process.exitStatus() != QProcess::NormalExit || m_process.exitCode() != 0)
        lines += "ended with " + QByteArray::number(m_process.exitCode()) + '\n' + m_error;
    return lines;
}

QByteArray StartRoot::run(const QString& way)
{
    start(QStringLiteral("starthost"), {way});
    return output();
}
