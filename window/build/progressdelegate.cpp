// SPDX-License-Identifier: MIT
#include "window/build/progressdelegate.h"

#include "window/build/buildmodel.h"

#include <QApplication>

void ProgressDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    const int percent = index.data(BuildModel::PercentRole).toInt();
    if (percent < 0)
        return;
    constexpr int margin = 2;
    QStyleOptionProgressBar bar;
    bar.rect = option.rect.adjusted(margin, margin, -margin, -margin);
    bar.state = option.state | QStyle::State_Horizontal;
    bar.direction = option.direction;
    bar.fontMetrics = option.fontMetrics;
    bar.palette = option.palette;
    bar.minimum = 0;
    bar.maximum = 100;
    bar.progress = percent;
    const QStyle* const style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ProgressBar, &bar, painter, option.widget);
}
