// SPDX-License-Identifier: MIT
#include "treefixture.h"

#include "runroot.h"

#include <quenzotool.h>

#include <QDir>
#include <QtTest>

#include <sys/stat.h>

TreeFixture::TreeFixture(QString place)
    : m_place(std::move(place))
{
}

void TreeFixture::init()
{
    umask(022);
    RunRoot::clear();
    m_messages = std::make_unique<MessageLog>();
    m_folder = std::make_unique<QTemporaryDir>(m_place);
    QVERIFY2(m_folder->isValid(), qUtf8Printable(m_folder->errorString()));
    m_root = QFile::encodeName(m_folder->path());
    m_source = m_root + "/source";
    m_target = m_root + "/target";
    TreeFiles::makeFolder(m_source);
}

void TreeFixture::cleanup()
{
    const QStringList warnings = m_messages->takeWarnings();
    m_messages.reset();
    QCOMPARE(warnings, QStringList());
}

QVariantMap TreeFixture::folders() const
{
    return {{QStringLiteral("src"), QFile::decodeName(m_source)},
            {QStringLiteral("dest"), QFile::decodeName(m_target)}};
}

bool TreeFixture::copy(bool overwrite) const
{
    return QuenzoTool::copyDirectory(TreeFiles::folder(m_source), TreeFiles::folder(m_target), overwrite,
                                     false);
}

bool TreeFixture::transfer(TreeRuns::Manner manner) const
{
    return TreeRuns::transfer(m_source, m_target, manner);
}

bool TreeFixture::remove(const QByteArray& path)
{
    QDir folder = TreeFiles::folder(path);
    return QuenzoTool::removeRecursively(folder);
}
