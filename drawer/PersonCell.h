#pragma once

#include <QStyledItemDelegate>

// Draws a row of the people to choose from: picture, name, and below it, quietly, what else is told.
class PersonCell : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
