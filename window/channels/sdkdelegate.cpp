// SPDX-License-Identifier: MIT
#include "window/channels/sdkdelegate.h"

#include "window/channels/jobdocument.h"

#include <QListWidget>
#include <QScrollBar>

namespace {

constexpr int mostRows = 8;

} // namespace

SdkDelegate::SdkDelegate(const JobDocument& document, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_document(document)
{
}

QWidget* SdkDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                   const QModelIndex& index) const
{
    auto* const list = new QListWidget(parent);
    list->setObjectName(QStringLiteral("sdkPicker"));
    list->setAccessibleName(tr("SDKs of the channel"));
    list->addItems(m_document.sdkNames());
    for (const QString& sdk : index.data(Qt::EditRole).toStringList()) {
        if (list->findItems(sdk, Qt::MatchExactly | Qt::MatchCaseSensitive).isEmpty())
            list->addItem(sdk); // which the job does not have any more
    }
    for (int i = 0; i < list->count(); ++i) {
        list->item(i)->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        list->item(i)->setCheckState(Qt::Unchecked);
    }
    list->setCurrentRow(0);
    return list;
}

void SdkDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    auto* const list = static_cast<QListWidget*>(editor);
    const QStringList chosen = index.data(Qt::EditRole).toStringList();
    for (int i = 0; i < list->count(); ++i) {
        QListWidgetItem* const item = list->item(i);
        item->setCheckState(chosen.contains(item->text()) ? Qt::Checked : Qt::Unchecked);
    }
}

// Those that stay keep their order, which is the one in which a run lays them over each other.
void SdkDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    const auto* const list = static_cast<QListWidget*>(editor);
    QStringList chosen = index.data(Qt::EditRole).toStringList();
    for (int i = 0; i < list->count(); ++i) {
        const QListWidgetItem* const item = list->item(i);
        if (item->checkState() == Qt::Unchecked)
            chosen.removeAll(item->text());
        else if (!chosen.contains(item->text()))
            chosen.append(item->text());
    }
    model->setData(index, chosen, Qt::EditRole);
}

void SdkDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                       const QModelIndex& /*index*/) const
{
    const auto* const list = static_cast<const QListWidget*>(editor);
    const int frame = 2 * list->frameWidth();
    const int names = list->sizeHintForColumn(0) + list->verticalScrollBar()->sizeHint().width();
    QRect place(option.rect.bottomLeft(),
                QSize(qMax(option.rect.width(), names + frame),
                      list->sizeHintForRow(0) * qBound(1, list->count(), mostRows) + frame));
    const QRect room = editor->parentWidget()->rect();
    place.moveBottom(qMin(place.bottom(), room.bottom()));
    place.moveRight(qMin(place.right(), room.right()));
    editor->setGeometry(place);
}
