// SPDX-License-Identifier: MIT
#ifndef REPORTMODEL_H
#define REPORTMODEL_H

#include "build/buildoutcome.h"

#include <QAbstractTableModel>

/** The report of a run: a row for each channel. */
class ReportModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column : int {
        NameColumn,
        OutcomeColumn,
        PackageColumn,
        SizeColumn,
        TimeColumn,
        NotesColumn,
        ColumnCount
    };

    using QAbstractTableModel::QAbstractTableModel;

    /** Reads report.json; without any channel when there is none. For any thread. */
    static BuildOutcome read(const QString& file);

    void show(const BuildOutcome& build);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /** To be called when the language has changed. */
    void setTexts();

private:
    BuildOutcome m_build;
};

#endif
