// SPDX-License-Identifier: MIT
#ifndef DEVICEFIXTURE_H
#define DEVICEFIXTURE_H

#include "quenzoprocess.h"
#include "scriptedtools.h"

#include <QObject>
#include <QTemporaryDir>

#include <memory>

class Terminal;

/** Tests of the commands for devices: a copy of the program in this root, which finds scripted tools there,
 * and an APK. */
class DeviceFixture : public QObject {
    Q_OBJECT

protected Q_SLOTS:
    void initTestCase();
    void init();

protected:
    static constexpr int timeLimitMs = 60000;

    /** Lets a process be the copy. */
    static void prepare(QuenzoProcess& process);
    static Ended quenzo(const QStringList& arguments);
    static Ended confirmed(const QStringList& arguments);
    /** Starts one that believes that a person sits there. */
    static void start(QuenzoProcess& process, const Terminal& terminal);

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_apk;
};

#endif
