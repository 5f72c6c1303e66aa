// SPDX-License-Identifier: MIT
#ifndef RECORDSPAGE_H
#define RECORDSPAGE_H

#include "window/page.h"

QT_BEGIN_NAMESPACE
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QStackedWidget;
class QTableView;
class QToolButton;
QT_END_NAMESPACE
class RecordsBase;
class JobDocument;
class RowModel;

/** What a records file holds, table by table. */
class RecordsPage : public Page {
    Q_OBJECT

public:
    /** @param document whose job's records are shown as soon as it is opened, or built for the first time;
     * outlives the page */
    explicit RecordsPage(const JobDocument& document, QWidget* parent = nullptr);

    QString title() const override;
    QString workAtHand() const override;

    /** Shows a file, or says why it cannot be shown. */
    void open(const QString& file);

protected:
    void setTexts() override;
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeChoice();
    QWidget* makeFilter();
    void showRecordsOfJob();
    void choose();
    void reload();
    bool openNext();
    void offerTables(const QStringList& tables);
    void offerColumns();
    void tell();
    void complain(const QString& fault);
    void save();

    const JobDocument& m_document;
    RecordsBase* m_base;
    RowModel* m_model;
    QLabel* m_fileLabel;
    QLineEdit* m_file;
    QPushButton* m_choose;
    QPushButton* m_reload;
    QLabel* m_tableLabel;
    QComboBox* m_table;
    QLabel* m_filterLabel;
    QLineEdit* m_filter;
    QToolButton* m_scrambled;
    QMenu* m_columns;
    QPushButton* m_save;
    QLabel* m_fault;
    QLabel* m_empty;
    QTableView* m_view;
    QStackedWidget* m_shown;
    QLabel* m_count;
    QString m_next; ///< the file that is opened as soon as the one at hand is read
    QString m_saving; ///< the file that is being written
};

#endif
