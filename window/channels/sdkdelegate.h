// SPDX-License-Identifier: MIT
#ifndef SDKDELEGATE_H
#define SDKDELEGATE_H

#include <QStyledItemDelegate>

class JobDocument;

/** Picks the SDKs of a channel in a table: a list of the job's, each with a box to tick, below the cell. */
class SdkDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    /** @param document outlives the object */
    SdkDelegate(const JobDocument& document, QObject* parent);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

private:
    const JobDocument& m_document;
};

#endif
