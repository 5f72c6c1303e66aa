// SPDX-License-Identifier: MIT
#include "window/channels/markpreview.h"

#include "icons/iconset.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

#include <cmath>

namespace {

constexpr double snap = 8; // pixels of the screen within which the mark jumps to the edge

// What shows that a picture is not opaque.
QBrush chequered(const QPalette& palette)
{
    QPixmap square(16, 16);
    square.fill(palette.color(QPalette::Base));
    QPainter painter(&square);
    painter.fillRect(0, 0, 8, 8, palette.color(QPalette::AlternateBase));
    painter.fillRect(8, 8, 8, 8, palette.color(QPalette::AlternateBase));
    return {square};
}

// The nearest pixel within an icon; none where the mark lies flush all the same.
std::optional<int> snapped(double wanted, int flush, int most, double scale)
{
    const int pixel = qBound(0, int(std::lround(wanted)), qMax(most, 0));
    return std::abs(pixel - flush) * scale <= snap ? std::nullopt : std::optional<int>(pixel);
}

} // namespace

MarkPreview::MarkPreview(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize MarkPreview::sizeHint() const
{
    const int side = fontMetrics().height() * 15;
    return {side, side};
}

QSize MarkPreview::minimumSizeHint() const
{
    const int side = fontMetrics().height() * 8;
    return {side, side};
}

void MarkPreview::setPictures(const MarkPictures& pictures)
{
    endDrag();
    m_pictures = pictures;
    m_icon = QPixmap();
    update();
}

void MarkPreview::setPlace(const MarkPlace& place)
{
    endDrag();
    m_place = place;
    update();
}

QSize MarkPreview::markSize(int corner) const
{
    return m_pictures.marks.at(size_t(corner)).size();
}

double MarkPreview::scale() const
{
    return m_pictures.iconSize.isEmpty() ? 1 : iconRect().width() / m_pictures.iconSize.width();
}

QRectF MarkPreview::iconRect() const
{
    const int margin = style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
    const QRectF room = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
    QRectF icon({}, QSizeF(m_pictures.iconSize).scaled(room.size(), Qt::KeepAspectRatio));
    icon.moveCenter(room.center());
    return icon;
}

QPoint MarkPreview::markPosition() const
{
    return m_place.cornerIn(m_pictures.iconSize, markSize(m_place.corner));
}

QRectF MarkPreview::markRect() const
{
    return {iconRect().topLeft() + QPointF(markPosition()) * scale(),
            QSizeF(markSize(m_place.corner)) * scale()};
}

void MarkPreview::resizeEvent(QResizeEvent* event)
{
    m_icon = QPixmap();
    QWidget::resizeEvent(event);
}

void MarkPreview::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        m_icon = QPixmap();
    QWidget::changeEvent(event);
}

void MarkPreview::drawIcon(QPainter& painter)
{
    const QRectF shown = iconRect();
    if (m_icon.isNull()) {
        const QSize pixels = (shown.size() * devicePixelRatioF()).toSize();
        m_icon = QPixmap::fromImage(
            m_pictures.icon.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    painter.setBrushOrigin(shown.topLeft());
    painter.fillRect(shown, chequered(palette()));
    painter.drawPixmap(shown, m_icon, m_icon.rect());
}

// Where the mark may go, while it is on its way.
void MarkPreview::drawCorners(QPainter& painter) const
{
    QColor guide = palette().color(QPalette::Highlight);
    const QRectF icon = iconRect();
    for (int corner = 0; corner <= IconSet::RightBottom; ++corner) {
        MarkPlace flush;
        flush.corner = corner;
        const QSize mark = markSize(corner);
        const QPointF at = icon.topLeft() + QPointF(flush.cornerIn(m_pictures.iconSize, mark)) * scale();
        guide.setAlphaF(corner == m_place.corner ? 1 : 0.45);
        painter.setPen(QPen(guide, 1, Qt::DashLine));
        painter.drawRect(QRectF(at, QSizeF(mark) * scale()));
    }
}

void MarkPreview::paintEvent(QPaintEvent*)
{
    if (m_pictures.icon.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    drawIcon(painter);
    painter.setClipRect(iconRect());
    painter.drawImage(markRect(), m_pictures.marks.at(size_t(m_place.corner)));
    painter.setClipping(false);
    if (m_isDragged)
        drawCorners(painter);
    if (!hasFocus() || markSize(m_place.corner).isEmpty())
        return;
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(markRect());
}

// The corner is the one that the mark's middle is nearest to.
MarkPlace MarkPreview::placeAt(const QPointF& topLeft) const
{
    const QSize icon = m_pictures.iconSize;
    const QSize mark = markSize(m_place.corner);
    const bool isRight = topLeft.x() + mark.width() / 2.0 > icon.width() / 2.0;
    const bool isBottom = topLeft.y() + mark.height() / 2.0 > icon.height() / 2.0;
    MarkPlace place;
    place.corner = isRight ? (isBottom ? IconSet::RightBottom : IconSet::RightTop)
                           : (isBottom ? IconSet::LeftBottom : IconSet::LeftTop);
    const QSize room = icon - markSize(place.corner);
    place.x = snapped(topLeft.x(), isRight ? room.width() : 0, room.width(), scale());
    place.y = snapped(topLeft.y(), isBottom ? room.height() : 0, room.height(), scale());
    if (place.y)
        place.y = -*place.y; // the job counts heights
    return place;
}

void MarkPreview::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !markRect().contains(event->localPos()))
        return;
    m_isDragged = true;
    m_start = m_place;
    m_grip = (event->localPos() - markRect().topLeft()) / scale();
    setCursor(Qt::ClosedHandCursor);
    update();
}

void MarkPreview::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_isDragged) {
        setCursor(markRect().contains(event->localPos()) ? Qt::OpenHandCursor : Qt::ArrowCursor);
        return;
    }
    const MarkPlace place = placeAt((event->localPos() - iconRect().topLeft()) / scale() - m_grip);
    if (place == m_place)
        return;
    m_place = place;
    update();
    Q_EMIT moved(m_place);
}

void MarkPreview::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_isDragged || event->button() != Qt::LeftButton)
        return;
    const bool isChanged = m_place != m_start;
    endDrag();
    if (isChanged)
        Q_EMIT chosen(m_place, false);
}

void MarkPreview::endDrag()
{
    m_isDragged = false;
    setCursor(Qt::ArrowCursor);
    update();
}

void MarkPreview::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && m_isDragged) {
        m_place = m_start;
        endDrag();
        Q_EMIT moved(m_place);
        return;
    }
    const int pixels = event->modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1;
    const int right =
        (event->key() == Qt::Key_Right ? pixels : 0) - (event->key() == Qt::Key_Left ? pixels : 0);
    const int down = (event->key() == Qt::Key_Down ? pixels : 0) - (event->key() == Qt::Key_Up ? pixels : 0);
    if ((right == 0 && down == 0) || m_isDragged || markSize(m_place.corner).isEmpty()) {
        QWidget::keyPressEvent(event);
        return;
    }
    const QPoint at = markPosition();
    if (right != 0)
        m_place.x = at.x() + right;
    if (down != 0)
        m_place.y = -(at.y() + down);
    update();
    Q_EMIT chosen(m_place, true);
}
