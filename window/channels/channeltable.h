// SPDX-License-Identifier: MIT
#ifndef CHANNELTABLE_H
#define CHANNELTABLE_H

#include "window/channels/jobdocument.h"

#include <QAbstractTableModel>

class ChannelIcons;
class ChannelOutcomes;

/**
 * The channels of the open job as a table, filtered and sorted. An edit leaves rows where they are; sorting,
 * filtering and rearranging begin the table anew.
 */
class ChannelTable : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Position, Name, Folder, Sdks, Package, Outcome, Number, Files, Encrypted, ColumnCount };

    /** The arguments outlive the object. */
    ChannelTable(JobDocument& document, ChannelIcons& icons, const ChannelOutcomes& outcomes,
                 QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    void sort(int column, Qt::SortOrder order) override;

    /** Shows the channels alone that have the text anywhere. */
    void setFilter(const QString& text);
    bool isFiltered() const { return !m_filter.isEmpty(); }
    /** Whether the rows stand in the job's order. */
    bool isInJobOrder() const { return m_column == Position && m_order == Qt::AscendingOrder; }

    int channelOf(int row) const { return m_channels.at(row); } ///< its row in the job
    int rowOf(int channel) const { return m_rows.value(channel, -1); } ///< -1 where the filter hides it

    /** The texts are in another language now. */
    void translate();

Q_SIGNALS:
    void refused(const QString& sentence); ///< why an edit has not been made

private:
    struct Row {
        QString name, folder, sdks, package;
        bool isKnown = false;
    };

    const Row& row(int channel) const;
    QString text(int channel, int column) const;
    QString sortKey(int channel) const;
    QString outcomeText(int channel) const;
    QString objectionTo(int channel, int column, const QString& text) const;
    bool setSdks(int channel, const QStringList& sdks);
    bool setText(int channel, int column, const QString& given);
    bool matches(int channel) const;
    void sortChannels();
    void arrange();
    void begin();
    void update(const QVector<int>& channels);

    JobDocument& m_document;
    ChannelIcons& m_icons;
    const ChannelOutcomes& m_outcomes;
    mutable QVector<Row> m_texts; // by channel, each as soon as it is wanted
    QVector<int> m_channels; // by row
    QVector<int> m_rows; // by channel; -1 for those that the filter hides
    QString m_filter;
    int m_column = Position;
    Qt::SortOrder m_order = Qt::AscendingOrder;
};

#endif
