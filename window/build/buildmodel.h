// SPDX-License-Identifier: MIT
#ifndef BUILDMODEL_H
#define BUILDMODEL_H

#include <QAbstractTableModel>
#include <QHash>
#include <QSet>

class JobDocument;

/** The channels of the open job, a row each: which are to be built, how far each is, and what became of it.
 */
class BuildModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column : int { NameColumn, FolderColumn, ProgressColumn, ResultColumn, ColumnCount };
    enum Role : int { PercentRole = Qt::UserRole, MessageRole }; ///< MessageRole: all that is to be said

    explicit BuildModel(JobDocument& document, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /** The folders of those that are to be built. */
    QStringList chosen() const;
    void chooseAll(bool all);
    void choose(const QStringList& folders); ///< these alone

    /** Forgets earlier runs: the chosen ones wait. */
    void begin();
    void showStep(const QString& folder, const QString& step);
    void showEnd(const QString& folder, const QString& outcome, const QString& message);
    /** What has not ended by then is not going on any more. */
    void end();

    int countOf(const QString& outcome) const;

    /** To be called when the language has changed. */
    void setTexts();

Q_SIGNALS:
    void chosenChanged();

private:
    struct State {
        bool isWaiting = false;
        QString step;
        QString outcome;
        QString message;
    };

    void connectDocument();
    QStringList allFolders() const;
    int rowOf(const QString& folder);
    void showRow(const QString& folder);
    QString resultOf(const State& state) const;
    static int percentOf(const State& state);

    JobDocument& m_document;
    QSet<QString> m_left; ///< folders of those that are not to be built
    QHash<QString, State> m_states; ///< by folder
    QHash<QString, int> m_rows; ///< by folder; empty when it has to be made anew
};

#endif
