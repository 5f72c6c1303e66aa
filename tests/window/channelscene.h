// SPDX-License-Identifier: MIT
#ifndef CHANNELSCENE_H
#define CHANNELSCENE_H

#include "window/channels/channelspage.h"

#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/** The page of the channels over the sample, or over a job of one's own, in a window of its own. */
class ChannelScene {
public:
    /** Settings and caches go below a folder of the test. */
    static void prepare(const QTemporaryDir& folder);

    /** @param job what the job file holds in place of the sample's; empty for the sample's. */
    explicit ChannelScene(const QByteArray& job = {});

    /** Shows it; why that failed, empty when it did not. */
    QString show();

    JobDocument& document() { return m_document; }
    ChannelsPage& page() { return *m_page; }
    QTableView* table() const { return find<QTableView>("channels"); }
    QString folder() const { return m_folder.path() + QStringLiteral("/sample"); }
    const QByteArray& job() const { return m_job; } ///< as it was opened

    template <class Widget> Widget* find(const char* name) const
    {
        return m_page->findChild<Widget*>(QLatin1String(name));
    }

    QString cell(int row, int column) const;
    QStringList column(int column) const;
    void clickCell(int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    /** Presses, moves in steps and releases, as a hand does. */
    void drag(QWidget* widget, const QPointF& from, const QPointF& to) const;
    void press(QWidget* widget, const QPointF& at) const;
    void moveTo(QWidget* widget, const QPointF& at) const;
    void release(QWidget* widget, const QPointF& at) const;

private:
    QPoint inWindow(const QWidget* widget, const QPointF& at) const;

    QTemporaryDir m_folder;
    QByteArray m_job;
    QString m_fault;
    JobDocument m_document;
    std::unique_ptr<ChannelsPage> m_page;
};

#endif
