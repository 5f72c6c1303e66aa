// SPDX-License-Identifier: MIT
#ifndef MARKPREVIEW_H
#define MARKPREVIEW_H

#include "window/channels/jobdocument.h"
#include "window/channels/markpictures.h"

#include <QPixmap>
#include <QWidget>

/**
 * The game's icon, large, with the mark on it: the mouse drags it, the arrow keys move it by a pixel, or by
 * ten with Shift. Near an edge it lies flush in the corner.
 */
class MarkPreview : public QWidget {
    Q_OBJECT

public:
    explicit MarkPreview(QWidget* parent = nullptr);

    void setPictures(const MarkPictures& pictures);
    void setPlace(const MarkPlace& place);
    const MarkPlace& place() const { return m_place; }

    /** Where the icon and the mark are shown, in the widget's coordinates. */
    QRectF iconRect() const;
    QRectF markRect() const;
    /** The mark's top left on the icon, in the icon's pixels. */
    QPoint markPosition() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void moved(const MarkPlace& place); ///< on the way
    void chosen(const MarkPlace& place, bool isContinued); ///< for good

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QSize markSize(int corner) const;
    double scale() const;
    MarkPlace placeAt(const QPointF& topLeft) const;
    void drawIcon(QPainter& painter);
    void drawCorners(QPainter& painter) const;
    void endDrag();

    MarkPictures m_pictures;
    MarkPlace m_place;
    MarkPlace m_start; // of the drag
    QPointF m_grip; // from the mark's top left, in the icon's pixels
    QPixmap m_icon; // as large as it is shown
    bool m_isDragged = false;
};

#endif
