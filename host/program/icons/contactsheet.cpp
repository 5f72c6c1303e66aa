// SPDX-License-Identifier: MIT
#include "icons/contactsheet.h"

#include <QFileInfo>
#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <cmath>

namespace {

constexpr int tile = 144; // a size that both platforms have
constexpr int gap = 20;
constexpr int captionHeight = 40;
constexpr int titleHeight = 44;
constexpr int captionPixels = 15;
constexpr int titlePixels = 20;

QFont fontOf(int pixels, bool bold)
{
    QFont font;
    font.setPixelSize(pixels);
    font.setBold(bold);
    return font;
}

// Transparent corners show as such on it.
void drawChequers(QPainter& painter, const QRect& area)
{
    constexpr int side = 12;
    painter.fillRect(area, QColor(250, 250, 250));
    for (int y = 0; y < area.height(); y += side) {
        for (int x = (y / side) % 2 * side; x < area.width(); x += 2 * side)
            painter.fillRect(QRect(area.topLeft() + QPoint(x, y), QSize(side, side)), QColor(228, 228, 228));
    }
}

void drawCross(QPainter& painter, const QRect& area)
{
    painter.setPen(QPen(Qt::red, 4));
    painter.drawRect(area.adjusted(2, 2, -2, -2));
    painter.drawLine(area.topLeft(), area.bottomRight());
    painter.drawLine(area.topRight(), area.bottomLeft());
}

void drawEntry(QPainter& painter, const QRect& area, const SheetEntry& entry)
{
    // What is no file, like a pipe, would be waited for.
    QImage picture = QFileInfo(entry.path).isFile() ? QImage(entry.path) : QImage();
    picture.setDevicePixelRatio(1);
    if (picture.isNull()) {
        drawCross(painter, area);
    } else {
        picture = picture.scaled(picture.size().boundedTo(area.size()), Qt::KeepAspectRatio,
                                 Qt::SmoothTransformation);
        QRect place = picture.rect();
        place.moveCenter(area.center());
        drawChequers(painter, place);
        painter.drawImage(place.topLeft(), picture);
    }
    painter.setPen(Qt::black);
    const QRect caption(area.left() - gap / 2, area.bottom() + 4, area.width() + gap, captionHeight);
    const QFontMetrics metrics(painter.font());
    painter.drawText(caption, Qt::AlignHCenter | Qt::AlignTop,
                     metrics.elidedText(entry.name, Qt::ElideMiddle, caption.width() - 4));
}

} // namespace

bool canWriteOnSheets()
{
    // Families are named even where there is no font.
    return QFontMetrics(fontOf(captionPixels, false)).inFont(QLatin1Char('0'));
}

QString lettersWithoutFont(const QString& text)
{
    const QFontMetrics metrics(fontOf(captionPixels, false));
    QString letters;
    for (const uint letter : text.toUcs4()) {
        // Marks that only join or steer their neighbours have no shape of their own.
        const bool isSeen = QChar::isPrint(letter) && !QChar::isSpace(letter)
            && QChar::category(letter) != QChar::Other_Format && !(letter >= 0xfe00 && letter <= 0xfe0f);
        const QString shown = QString::fromUcs4(&letter, 1);
        if (isSeen && !metrics.inFontUcs4(letter) && !letters.contains(shown))
            letters += shown;
    }
    return letters;
}

QImage drawContactSheet(const QString& title, const QVector<SheetEntry>& entries)
{
    // A little wider than high, as screens are.
    const int columns = qMax(1, static_cast<int>(std::ceil(std::sqrt(1.6 * entries.size()))));
    const int rows = (entries.size() + columns - 1) / columns;
    const QSize cell(tile + gap, tile + captionHeight);
    const QFont titleFont = fontOf(titlePixels, true);
    const int width =
        qMax(columns * cell.width() + gap, QFontMetrics(titleFont).horizontalAdvance(title) + 2 * gap);

    QImage sheet(width, titleHeight + rows * cell.height() + gap, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    painter.setFont(titleFont);
    painter.drawText(QRect(gap, 0, width - 2 * gap, titleHeight), Qt::AlignLeft | Qt::AlignVCenter, title);
    painter.setFont(fontOf(captionPixels, false));
    for (int i = 0; i < entries.size(); ++i) {
        const QPoint corner(gap + i % columns * cell.width(), titleHeight + i / columns * cell.height());
        drawEntry(painter, QRect(corner, QSize(tile, tile)), entries.at(i));
    }
    painter.end();
    return sheet;
}
