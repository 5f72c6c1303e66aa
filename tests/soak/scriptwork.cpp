// SPDX-License-Identifier: MIT
#include "work.h"

#include "treefiles.h"

#include <pythontoolthread.h>

#include <QDir>
#include <QTemporaryDir>

#include <atomic>

namespace {

class ScriptWork : public Work {
public:
    ScriptWork();

protected:
    void begin() override;

private:
    enum Step { Packing, Unpacking, Importing, Calling };

    QString path(const char* name) const { return m_folder.filePath(QLatin1String(name)); }
    void perform(Step step, PYTHON_TOOL_OPERATE task, const QVariantMap& params);
    void goOn();
    bool unpackedEqually() const;

    QTemporaryDir m_folder;
    PythonToolThread m_thread;
    Step m_step = Packing;
    std::atomic<bool> m_success{false};
    int m_number = 0;
};

constexpr const char* script = "def say(path, text):\n"
                               "    with open(path, 'w') as out:\n"
                               "        out.write(text)\n"
                               "    return 'param'\n"; // what the library takes for success

ScriptWork::ScriptWork()
    : Work("script tasks")
{
    TreeFiles::writeManySizes(QFile::encodeName(path("src/assets/file")), 40);
    TreeFiles::write(QFile::encodeName(path("tool.py")), script);
    connect(
        &m_thread, &PythonToolThread::onTaskFinsih, this,
        [this](int, QVariantMap*, bool success) { m_success = success; }, Qt::DirectConnection);
    connect(&m_thread, &QThread::finished, this, [this] { goOn(); });
}

void ScriptWork::perform(Step step, PYTHON_TOOL_OPERATE task, const QVariantMap& params)
{
    m_step = step;
    m_success = false;
    m_thread.wait();
    if (!m_thread.StartOperate(task, params))
        end(QStringLiteral("a task is refused"));
    else
        m_thread.start();
}

void ScriptWork::begin()
{
    for (const char* name : {"unpacked", "imported"})
        QDir(path(name)).removeRecursively();
    QFile::remove(path("packed.zip"));
    perform(Packing, PYTHON_TOOL_ZIP,
            {{QStringLiteral("src"), path("src")},
             {QStringLiteral("dest"), path("packed.zip")},
             {QStringLiteral("apkfile"), QString()}});
}

bool ScriptWork::unpackedEqually() const
{
    return TreeFiles::content(QFile::encodeName(path("unpacked")))
        == TreeFiles::content(QFile::encodeName(path("src")));
}

void ScriptWork::goOn()
{
    const QString text = QString::number(++m_number);
    const QByteArray sdk = QFile::encodeName(path("imported/assets/harbourpay.json"));
    switch (m_step) {
    case Packing:
        perform(Unpacking, PYTHON_TOOL_UNZIP,
                {{QStringLiteral("src"), path("packed.zip")}, {QStringLiteral("dest"), path("unpacked")}});
        break;
    case Unpacking:
        if (!unpackedEqually())
            return end(QStringLiteral("what was unpacked is not what was packed"));
        perform(Importing, PYTHON_TOOL_IMPORT_SDK,
                {{QStringLiteral("src"), QStringLiteral(SAMPLE "/packages/harbourpay.zip")},
                 {QStringLiteral("dest"), path("imported")},
                 {QStringLiteral("idSDK"), 7}});
        break;
    case Importing:
        if (!m_success || !TreeFiles::exists(sdk))
            return end(QStringLiteral("an SDK is not imported"));
        perform(Calling, PYTHON_TOOL_RUN_SCRIPT,
                {{QStringLiteral("toolPath"), path("tool.py")},
                 {QStringLiteral("main"), QStringLiteral("say")},
                 {QStringLiteral("list"), QVariantList{path("said"), text}}});
        break;
    case Calling:
        // The number has gone on since the text was made.
        return end(m_success && TreeFiles::read(QFile::encodeName(path("said"))).toInt() == m_number - 1
                       ? QString()
                       : QStringLiteral("a script is not called"));
    }
}

} // namespace

std::unique_ptr<Work> scriptWork()
{
    return std::make_unique<ScriptWork>();
}
