// SPDX-License-Identifier: MIT
#include <quenzotool.h>

#include <QtTest>

class tst_QuenzoTool : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void downloadFileNameDropsQuery();
};

void tst_QuenzoTool::downloadFileNameDropsQuery()
{
    QCOMPARE(QuenzoTool::getDownloadFileName(QStringLiteral("dir/app.apk?sign=1&t=2")),
             QStringLiteral("app.apk"));
}

QTEST_GUILESS_MAIN(tst_QuenzoTool)
#include "tst_quenzotool.moc"
