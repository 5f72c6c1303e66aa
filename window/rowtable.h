// SPDX-License-Identifier: MIT
#ifndef ROWTABLE_H
#define ROWTABLE_H

#include <QHeaderView>
#include <QTableView>

/** Has a table look and behave as all of them do whose rows stand for a thing each; Tab leaves it. */
inline void prepareRows(QTableView* table, QAbstractItemModel* model)
{
    table->setModel(model);
    table->setAlternatingRowColors(true);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

#endif
