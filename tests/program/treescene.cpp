// SPDX-License-Identifier: MIT
#include "treescene.h"

#include <QtTest>

#include <unistd.h>

void TreeScene::openScene(const QString& folderTemplate)
{
    m_folder = folderTemplate.isEmpty() ? std::make_unique<QTemporaryDir>()
                                        : std::make_unique<QTemporaryDir>(folderTemplate);
    QVERIFY2(m_folder->isValid(), qPrintable(m_folder->errorString()));
    m_root = QFile::encodeName(m_folder->path());
}

// Names that are no text stop the temporary folder's own removal.
void TreeScene::closeScene()
{
    if (m_folder)
        QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-rf"), m_folder->path()});
    m_folder.reset();
}

Ended TreeScene::run(const QStringList& words, const std::function<void()>& before) const
{
    QuenzoProcess process(words, m_folder->path());
    process.before = before;
    return process.end();
}

void TreeScene::giveToPlainUser() const
{
    if (geteuid() != 0)
        return;
    const QStringList words{QStringLiteral("-Rh"), QStringLiteral("65534:65534"), m_folder->path()};
    QCOMPARE(QProcess::execute(QStringLiteral("chown"), words), 0);
}
