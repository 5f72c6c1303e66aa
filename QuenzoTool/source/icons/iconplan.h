// SPDX-License-Identifier: MIT
#ifndef ICONPLAN_H
#define ICONPLAN_H

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

/** What makes one marked icon differ from another: the mark's picture, none when empty, and its top left
 * corner. */
struct Decoration {
    QString markPath;
    int x = 0;
    int y = 0;
};

bool operator==(const Decoration& left, const Decoration& right);
uint qHash(const Decoration& decoration, uint seed = 0);

/** Which folders get which decoration: channels with equal ones are put together, so that they are encoded
 * once. */
class IconPlan {
public:
    struct Group {
        Decoration decoration;
        QStringList folders;
    };

    bool isEmpty() const { return m_groups.isEmpty(); }

    /**
     * Adds a channel. A folder that is given twice keeps the later decoration alone.
     *
     * @param folder the channel's folder in its canonical form; when empty the channel has none, and counts
     * only for which group comes last
     */
    void add(const Decoration& decoration, const QString& folder);

    /** Empties the plan. The group of the channel added last comes last; groups without a folder may be among
     * them. */
    QVector<Group> take();

private:
    QVector<Group> m_groups;
    QHash<Decoration, int> m_groupOfDecoration;
    QHash<QString, int> m_groupOfFolder;
    int m_last = 0;
};

#endif
