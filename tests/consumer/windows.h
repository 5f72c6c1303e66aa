// SPDX-License-Identifier: MIT
// What the examples in the public headers leave to a host, one class for each header: WindowOf_ and its name.
#ifndef WINDOWS_H
#define WINDOWS_H

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

struct WindowOf_quenzotool : QObject {
    void showDevices(const QString& output);
    void example();
};

struct _object;
extern "C" int PyList_Append(_object* list,
                             _object* item); // of the headers that a host of Python objects has

struct WindowOf_pythonforqt : QObject {
    void example();
    QString scriptFolder;
    _object* list = nullptr;
    _object* item = nullptr;
};

struct WindowOf_pythontoolthread : QObject {
    void showOutcome(int type, QVariantMap* map, bool success);
    void example();
    QString package;
    QString folder;
};

struct WindowOf_threadcommon : QObject {
    void showOutcome(bool success);
    void example();
    QString project;
    QString backup;
};

struct WindowOf_dbhelper : QObject {
    void showRows(const QString& table, const QVariantList& rows, const QString& tag);
    void example();
    QString file;
};

struct WindowOf_installapk : QObject {
    void showOutcome(bool success, const QString& information, const QString& key);
    void askForDevice(bool isInstall, const QStringList& devices);
    void example();
    QString apkPath;
};

struct ST_CHANNEL_ICON;
struct WindowOf_threadgenerateicon : QObject {
    void showIcons();
    void example();
    QString gameIcon;
    QString markRoot;
    QString outputDir;
    QList<ST_CHANNEL_ICON> channels;
};

#endif
