// SPDX-License-Identifier: MIT
#ifndef TREERUNS_H
#define TREERUNS_H

#include <QByteArray>
#include <QMetaType>

#include <array>

/** The three ways in which the library takes a tree to another place, for tests that hold for each of them.
 */
namespace TreeRuns {

enum Manner { Copy, Move, CutForOutput };

struct Way {
    Manner manner;
    const char* name;
};
constexpr std::array<Way, 3> everyWay{{{Copy, "copy"}, {Move, "move"}, {CutForOutput, "output"}}};

/** With replacement of existing files; the result of the run. */
bool transfer(const QByteArray& source, const QByteArray& target, Manner manner);

/** Adds the column "manner" to a test's table, and a row for each way. */
void addEveryWay();
void addEveryMove();

/** Adds the column "name" and a row for each of TreeFiles::hardNames(). */
void addHardNames();

/** A file system of its own in a folder made for it: a small one in memory, or another folder; as root only.
 */
class Mount {
public:
    static Mount smallDisk(const QByteArray& place, const char* size);
    static Mount folder(const QByteArray& folder, const QByteArray& place);
    ~Mount();
    Mount(const Mount&) = delete;
    Mount& operator=(const Mount&) = delete;

    const bool isMounted;

private:
    Mount(const QByteArray& place, bool mounted);

    const QByteArray m_place;
};

} // namespace TreeRuns

Q_DECLARE_METATYPE(TreeRuns::Manner)

#endif
