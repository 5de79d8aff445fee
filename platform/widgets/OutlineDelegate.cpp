#include "platform/widgets/OutlineDelegate.h"

#include "platform/widgets/OutlineModel.h"
#include "platform/widgets/OutlineView.h"
#include "platform/widgets/OutlineViewDataSource.h"
#include "platform/widgets/TextFieldCell.h"

#include <QStyle>
#include <QtMath>

OutlineDelegate::OutlineDelegate(OutlineView &view) : QStyledItemDelegate(&view), _view(view) {}

void OutlineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    OutlineViewDataSource *source = _view.outlineDataSource();
    const OutlineItemPtr item = static_cast<const OutlineModel *>(index.model())->itemOfIndex(index);
    if (!source || !item)
        return;
    TextFieldCell &cell = _view.dataCell();
    // The value first: asking for it may bring the item up to date.
    cell.setStringValue(source->outlineViewObjectValueByItem(_view, item));
    cell.setFont(option.font);
    source->outlineViewWillDisplayCell(_view, cell, item);
    _view.style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, &_view);
    cell.drawWithFrameInView(option.rect, *painter, option);
}

QSize OutlineDelegate::sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const
{
    const int height = qCeil(_view.rowHeight());
    return {height, height};
}
