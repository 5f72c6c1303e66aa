// SPDX-License-Identifier: MIT
#ifndef WORK_H
#define WORK_H

#include <QObject>
#include <QString>

#include <memory>

/** One kind of work, done piece after piece from the time it is started until it is paused. */
class Work : public QObject {
public:
    explicit Work(const char* name);

    void start();
    /** The piece at work is done first. */
    void pause() { m_isPausing = true; }

    QString name() const { return m_name; }
    bool isAtWork() const { return m_isAtWork; }
    int pieces() const { return m_pieces; }
    /** What was wrong with the piece that it ended with; empty for nothing. */
    QString fault() const { return m_fault; }

protected:
    /** Begins a piece, which end() is told of. */
    virtual void begin() = 0;
    void end(const QString& fault = {}, int pieces = 1);

private:
    const QString m_name;
    QString m_fault;
    int m_pieces = 0;
    bool m_isAtWork = false;
    bool m_isPausing = false;
};

/** Packs, unpacks, imports an SDK package and calls a script, in turns on a thread of its own. */
std::unique_ptr<Work> scriptWork();

/** 2,500 queued commands a piece, and more than a million in ten minutes where the machine keeps up. */
std::unique_ptr<Work> recordWork();

/** Copies a tree, moves the copy and removes it. */
std::unique_ptr<Work> treeWork();

/** Makes the icons of some channels. */
std::unique_ptr<Work> iconWork();

/** Installs a package on an emulated device, and removes it, through the system's adb. */
std::unique_ptr<Work> deviceWork();

#endif
