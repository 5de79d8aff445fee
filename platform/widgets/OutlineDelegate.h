#pragma once

#include <QStyledItemDelegate>

class OutlineView;

// Paints the cells of an outline view: the picture as a square as tall as the row, the text behind it.
class OutlineDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    // Left of the picture; the slot that the text starts after is as wide as the picture and this gap.
    static constexpr int imageGap = 3;

    explicit OutlineDelegate(OutlineView &view);

    // Where the picture stands in a cell, and where the text does, read from left to right.
    static QRect imageFrame(const QRect &cell);
    static QRect textFrame(const QRect &cell, bool hasImage);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    void drawText(QPainter &painter, const QStyleOptionViewItem &option, const QRect &frame, const QFont &font,
                  const QString &text) const;

    OutlineView &_view;
};
