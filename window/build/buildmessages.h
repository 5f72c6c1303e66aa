// SPDX-License-Identifier: MIT
#ifndef BUILDMESSAGES_H
#define BUILDMESSAGES_H

#include <QAbstractTableModel>

/** What a run says, as it comes: the channel's folder, where it is of one, and the text. */
class BuildMessages : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column : int { FolderColumn, TextColumn, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    void clear();
    void add(const QString& folder, const QString& text);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /** To be called when the language has changed. */
    void setTexts();

private:
    struct Message {
        QString folder;
        QString text;
    };

    QVector<Message> m_messages;
};

#endif
