// SPDX-License-Identifier: MIT
#ifndef SAVING_H
#define SAVING_H

#include "window/channels/jobdocument.h"

#include <QtTest>

/** Saves a job, under another path where one is given, and waits for it. @return what it tells then */
inline QString saveAndWait(JobDocument& document, const QString& path = {})
{
    QObject receiver;
    bool isOver = false;
    QString told;
    const auto end = [&](const QString& fault) {
        told = fault;
        isOver = true;
    };
    if (path.isEmpty())
        document.save(&receiver, end);
    else
        document.saveAs(path, &receiver, end);
    return QTest::qWaitFor([&isOver] { return isOver; }, 30000) ? told : QStringLiteral("it does not end");
}

#endif
