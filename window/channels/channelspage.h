// SPDX-License-Identifier: MIT
#ifndef CHANNELSPAGE_H
#define CHANNELSPAGE_H

#include "window/channels/channelicons.h"
#include "window/channels/channeloutcomes.h"
#include "window/channels/channeltable.h"
#include "window/page.h"

class MarkPanel;
QT_BEGIN_NAMESPACE
class QAction;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
class QSplitter;
class QStackedLayout;
class QTableView;
QT_END_NAMESPACE

/** The channels of the open job: a table of them, and the mark of the chosen ones beside it. */
class ChannelsPage : public Page {
    Q_OBJECT

public:
    /** @param document outlives what is done on the page, not the page itself */
    explicit ChannelsPage(JobDocument& document, QWidget* parent = nullptr);
    ~ChannelsPage() override;

    QString title() const override;

    /** The chosen channels, by their rows in the job, in its order. */
    const QVector<int>& chosen() const { return m_chosen; }
    const ChannelIcons& icons() const { return m_icons; }

Q_SIGNALS:
    void chosenChanged();

protected:
    void setTexts() override;
    void showEvent(QShowEvent* event) override;

private:
    QLayout* toolRow();
    QWidget* tableStack();
    QAction* action(const char* name, const QKeySequence& keys, void (ChannelsPage::*run)());
    void setUpTable();
    void connectDocument();
    void begin();
    void refresh();
    void takeSelection();
    void choose(const QVector<int>& channels);
    void tell(const QString& sentence);
    void addChannel();
    void copyChannels();
    void removeChannels();
    void moveUp();
    void moveDown();

    JobDocument& m_document;
    ChannelIcons m_icons;
    ChannelOutcomes m_outcomes;
    ChannelTable m_table;
    QVector<int> m_chosen;
    bool m_isArranging = false; // the table begins anew and has forgotten what is chosen
    QLabel* m_banner;
    QLineEdit* m_filter;
    QTableView* m_view;
    QAction* m_add;
    QAction* m_copy;
    QAction* m_remove;
    QAction* m_up;
    QAction* m_down;
    QVector<QPair<QPushButton*, QAction*>> m_buttons;
    QStackedLayout* m_stack = nullptr;
    QLabel* m_empty;
    QLabel* m_count;
    MarkPanel* m_mark;
    QSplitter* m_splitter;
};

#endif
