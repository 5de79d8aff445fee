#pragma once

#include <QStyledItemDelegate>

class OutlineView;

// Draws an outline view's rows with the view's data cell.
class OutlineDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit OutlineDelegate(OutlineView &view);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    // Only the height counts, the same for every row: a list's column is as wide as the list.
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    OutlineView &_view;
};
