// SPDX-License-Identifier: MIT
#include "pythontoolthread.h"

#include "exitgate.h"
#include "pythonforqt.h"

#include <quenzobase.h>

#include <QVector>

#include <mutex>

namespace {

QString archiveScript()
{
    return QuenzoBase::getRunPath() + QStringLiteral("/../Script/pytoolForQt.py");
}

// The bridges of run-script tasks stay alive until the process ends: what a script returned may still be in
// use.
PythonForQt* keptBridge()
{
    static std::mutex mutex;
    static auto& bridges = *new QVector<PythonForQt*>;
    auto* const bridge = new PythonForQt;
    const std::lock_guard<std::mutex> guard(mutex);
    bridges.append(bridge);
    return bridge;
}

QString importErrorText(int answer)
{
    switch (answer) {
    case 100:
        return PythonToolThread::tr("The imported file is not this SDK");
    case 101:
        return PythonToolThread::tr("Import file was damaged!");
    case 102:
        return PythonToolThread::tr("Import file is wrong(config.xml was not found!)");
    case 103:
        return PythonToolThread::tr("Import file is wrong(Failed to parse config.xml!)");
    case 104:
        return PythonToolThread::tr("Failed to unzip!");
    default:
        return QLatin1String("");
    }
}

} // namespace

PythonToolThread::PythonToolThread(QObject* parent)
    : QThread(parent)
    , m_operate(static_cast<PYTHON_TOOL_OPERATE>(-1)) // a thread started without a task does nothing
{
    // The interpreter counts its levels, not their bytes, and overruns the stack of a process with a low
    // limit.
    constexpr uint bytesOfAThousandLevels = 8 << 20;
    setStackSize(bytesOfAThousandLevels);
}

PythonToolThread::~PythonToolThread() = default;

bool PythonToolThread::StartOperate(PYTHON_TOOL_OPERATE op, const QVariantMap& params)
{
    if (m_bExecTask.load(std::memory_order_acquire))
        return false;
    m_bExecTask.store(true, std::memory_order_release);
    m_operate = op;
    // Emptied first, and so left empty by whoever hands over the object's own map, got by onTaskFinsih().
    m_params.clear();
    m_params = params;
    return true;
}

bool PythonToolThread::bExecTask()
{
    return m_bExecTask.load(std::memory_order_acquire);
}

void PythonToolThread::run()
{
    // A report needs what is destroyed at exit as much as the script call does.
    const ExitGate::Call call;
    if (!call.mayGoOn())
        return;
    const auto lacks = [this](const char* key) { return !m_params.contains(QLatin1String(key)); };
    if (m_operate == PYTHON_TOOL_IMPORT_SDK && (lacks("src") || lacks("dest"))) {
        // The flag goes first here, and only once: whoever hears of it may have recorded the next task.
        m_bExecTask.store(false, std::memory_order_release);
        Q_EMIT onTaskFinsih(PYTHON_TOOL_IMPORT_SDK, nullptr, false);
        return;
    }
    performTask();
    m_bExecTask.store(false, std::memory_order_release);
}

void PythonToolThread::performTask()
{
    const auto has = [this](const char* key) { return m_params.contains(QLatin1String(key)); };
    const auto text = [this](const char* key) { return m_params.value(QLatin1String(key)).toString(); };
    switch (m_operate) {
    case PYTHON_TOOL_ZIP:
        if (has("src") && has("dest") && has("apkfile"))
            zip(text("src"), text("dest"), text("apkfile"));
        break;
    case PYTHON_TOOL_UNZIP:
        if (has("src") && has("dest"))
            unzip(text("src"), text("dest"));
        break;
    case PYTHON_TOOL_ENCRYPT:
        if (has("apkfile")) {
            const bool encrypted = encrypt(text("apkfile"));
            // Kept: hosts tell an encryption from an import by its "result".
            Q_EMIT onTaskFinsih(PYTHON_TOOL_IMPORT_SDK, &m_params, encrypted);
        }
        break;
    case PYTHON_TOOL_IMPORT_SDK:
        importSDK(text("src"), text("dest"), m_params.value(QStringLiteral("idSDK"), -1).toInt());
        break;
    case PYTHON_TOOL_RUN_SCRIPT:
        performScript();
        break;
    case PYTHON_TOOL_EXPORT_DEVELOP_INFO:
        performExport();
        break;
    }
}

void PythonToolThread::performScript()
{
    PythonForQt* const bridge = keptBridge();
    bridge->callScript(m_params.value(QStringLiteral("toolPath")).toString(),
                       m_params.value(QStringLiteral("main")).toString(),
                       m_params.value(QStringLiteral("list")).toList(), false);
    const bool matched = bridge->getResultAsString() == QLatin1String("param");
    Q_EMIT onTaskFinsih(PYTHON_TOOL_RUN_SCRIPT, nullptr, matched);
}

void PythonToolThread::performExport()
{
    PythonForQt bridge;
    const int idChannel = m_params.value(QStringLiteral("idChannel")).toInt();
    const QString dest = m_params.value(QStringLiteral("dest")).toString();
    bridge.callScript(QuenzoBase::getRunPath() + QStringLiteral("/../Script/start.py"),
                      QStringLiteral("export_develop_info"), {idChannel, dest}, true);
    const int answer = bridge.getResultAsInt();
    m_params[QStringLiteral("result")] = answer;
    const bool exported = answer == 0;
    Q_EMIT onTaskFinsih(PYTHON_TOOL_EXPORT_DEVELOP_INFO, exported ? nullptr : &m_params, exported);
}

void PythonToolThread::importSDK(QString src, QString dest, int idSDK)
{
    PythonForQt bridge;
    QList<QVariant> arguments{src, dest};
    if (idSDK != -1)
        arguments.append(idSDK);
    bridge.callScript(archiveScript(), QStringLiteral("importSDK"), arguments, true);
    const int answer = bridge.getResultAsInt();
    const bool imported = answer == 1;
    if (!imported) {
        m_params[QStringLiteral("error_code")] = answer;
        m_params[QStringLiteral("error_str")] = importErrorText(answer);
    }
    Q_EMIT onTaskFinsih(PYTHON_TOOL_IMPORT_SDK, &m_params, imported);
}

bool PythonToolThread::encrypt(QString apkFile)
{
    PythonForQt bridge;
    bridge.callScript(QuenzoBase::getRunPath() + QStringLiteral("/../Script/encrypt.py"),
                      QStringLiteral("encryptApk"), {QuenzoBase::getRunPath(), apkFile}, true);
    const int answer = bridge.getResultAsInt();
    m_params[QStringLiteral("result")] = answer;
    return answer == 0;
}

void PythonToolThread::zip(QString src, QString dest, QString apkfile)
{
    zipFunction("zip", src, dest, apkfile);
}

void PythonToolThread::unzip(QString src, QString dest)
{
    zipFunction("unZip", src, dest, QStringLiteral("NULL"));
}

void PythonToolThread::zipFunction(const char* function, QString first, QString second, QString third)
{
    PythonForQt bridge;
    bridge.callScript(archiveScript(), QString::fromUtf8(function), {first, second, third}, true);
}
