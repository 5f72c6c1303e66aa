// SPDX-License-Identifier: MIT
#ifndef PAGE_H
#define PAGE_H

#include <QWidget>

/**
 * One side of the window's work: the channels, the build, the devices and so on.
 *
 * A page does its own work and never blocks the event loop with it: workers run on their threads, programs in
 * their processes.
 */
class Page : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /** Its name in the list of pages, in the language of the moment. */
    virtual QString title() const = 0;

    /** What is being done, as a sentence for whoever closes the window: "Harbor is being installed."; empty
     * where nothing is. */
    virtual QString workAtHand() const;

    /** Asks the work at hand to end as soon as it can; workChanged() follows. */
    virtual void stopWork();

Q_SIGNALS:
    void workChanged(); ///< workAtHand() has begun, ended, or become something else

protected:
    /** Sets every text that stands on the page: called by the page's constructor, and when the language
     * changes. */
    virtual void setTexts() = 0;

    void changeEvent(QEvent* event) override;
};

#endif
