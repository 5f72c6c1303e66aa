// SPDX-License-Identifier: MIT
#ifndef SOURCEREMOVAL_H
#define SOURCEREMOVAL_H

#include "files/treefolder.h"

#include <QSet>
#include <QVector>

/**
 * What a move has copied and has yet to remove from its source, in order: so that one flush serves many
 * files.
 *
 * The walk cannot tell as long as everything is removed before one of the folders concerned is looked at
 * again. Somebody else may write to a file meanwhile: it stays then.
 */
class SourceRemoval {
public:
    /** A file and its copy, by their paths; empty for none. */
    struct Copied {
        QByteArray source;
        QByteArray target;
    };

    /** @param states what the files were like when they were copied */
    void addFiles(const TreeFolder& folder, const TreeEntry* files, const QVector<FileState>& states,
                  const TreeFolder& target);
    /** @param forced which folder gets other rights if it resists; empty for none */
    void addFolder(const TreeFolder& folder, const QByteArray& name, const FileIdentity& forced);

    int count() const { return m_count; }
    Copied firstFile() const;
    bool concerns(const TreeFolder& folder) const { return m_folders.contains(folder.id()); }

    /** Removes everything, as far as that succeeds. */
    void perform();

    static void removeFolder(const TreeFolder& parent, const QByteArray& name, const FileIdentity& forced);

private:
    struct Item {
        QByteArray name;
        bool isFolder;
        FileIdentity forced; // of a folder
        FileState state; // of a file
    };
    struct Group {
        QByteArray path;
        FileIdentity id;
        QVector<Item> items;
        QByteArray targetPath; // of the files
    };
    Group& groupOf(const TreeFolder& folder, const QByteArray& targetPath);

    QVector<Group> m_groups;
    QSet<FileIdentity> m_folders;
    int m_count = 0;
};

#endif
