#include "drawer/PersonCell.h"

#include "drawer/PeopleModel.h"
#include "platform/widgets/ElidedText.h"

#include <QApplication>
#include <QPainter>

namespace
{
constexpr int pictureSize = 28;
constexpr int margin = 4;
constexpr int gap = 8; // between picture and text
constexpr qreal quietOpacity = 0.6;

int textHeight(const QStyleOptionViewItem &option)
{
    return 2 * option.fontMetrics.height();
}

void drawLine(QPainter &painter, const QStyleOptionViewItem &option, const QRect &line, const QString &text)
{
    const QRect place = QStyle::visualRect(option.direction, option.rect, line);
    painter.drawText(place, int(Qt::AlignVCenter | QStyle::visualAlignment(option.direction, Qt::AlignLeft)),
                     ElidedText::inWidth(text.simplified(), option.fontMetrics, Qt::ElideRight, place.width()));
}
} // namespace

QSize PersonCell::sizeHint(const QStyleOptionViewItem &option, const QModelIndex & /*index*/) const
{
    return {pictureSize, std::max(pictureSize, textHeight(option)) + 2 * margin};
}

void PersonCell::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QString name = row.text;
    row.text.clear();
    row.icon = QIcon();
    row.features &= ~(QStyleOptionViewItem::HasDisplay | QStyleOptionViewItem::HasDecoration);
    row.state |= QStyle::State_Active; // the keyboard stays in the search field
    const QStyle *style = row.widget ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    const QRect inside = row.rect.adjusted(margin, margin, -margin, -margin);
    const QRect picture(inside.left(), inside.center().y() - pictureSize / 2 + 1, pictureSize, pictureSize);
    index.data(Qt::DecorationRole).value<QIcon>().paint(painter, QStyle::visualRect(row.direction, row.rect, picture));

    const QString note = index.data(PeopleModel::NoteRole).toString();
    const QRect text = inside.adjusted(pictureSize + gap, 0, 0, 0);
    const int height = row.fontMetrics.height();
    const int top = text.top() + (text.height() - (note.isEmpty() ? height : 2 * height)) / 2;
    const bool isSelected = row.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setPen(row.palette.color(QPalette::Active, isSelected ? QPalette::HighlightedText : QPalette::Text));
    drawLine(*painter, row, QRect(text.left(), top, text.width(), height), name);
    painter->setOpacity(quietOpacity);
    drawLine(*painter, row, QRect(text.left(), top + height, text.width(), height), note);
    painter->restore();
}
