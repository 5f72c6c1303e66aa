// SPDX-License-Identifier: MIT
#include "work.h"

#include "iconrun.h"
#include "treefiles.h"

#include <QFile>

namespace {

class IconWork : public Work {
public:
    IconWork();

protected:
    void begin() override { m_job.thread.start(); }

private:
    QMap<QByteArray, QByteArray> icons() const { return TreeFiles::content(QFile::encodeName(m_job.out())); }

    IconRun::Job m_job;
    QMap<QByteArray, QByteArray> m_expected;
};

IconWork::IconWork()
    : Work("icon sets of three channels")
{
    m_job.run({IconRun::channel("red", "one"), IconRun::channel("blue", "two", 3),
               IconRun::channel("None", "three")});
    const QString differences =
        IconRun::differencesFrom(QImage(m_job.icon), m_job.out(QStringLiteral("three")), IconRun::android);
    if (!differences.isEmpty())
        qFatal("the first icons are wrong: %s", qUtf8Printable(differences));
    m_expected = icons();
    connect(&m_job.thread, &QThread::finished, this, [this] {
        m_job.thread.wait();
        end(icons() == m_expected ? QString() : QStringLiteral("icons are not what they were"));
    });
}

} // namespace

std::unique_ptr<Work> iconWork()
{
    return std::make_unique<IconWork>();
}
