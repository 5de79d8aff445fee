#pragma once

#include "platform/widgets/TextFieldCell.h"

class QMenu;

// The cell of the lists: the item's icon, as tall as the row, and its title. While the setting `showBookmarkIcons` is
// off, which is looked at every time, it is a plain text cell whatever its image is.
class WayfoldBookmarkTextCell : public TextFieldCell
{
public:
    // Left of the icon. The slot that the text starts after is as wide as the icon and this gap.
    static constexpr qreal imageGap = 3;

    // The plug-in's own.
    static QMenu *defaultMenu();

    std::unique_ptr<TextFieldCell> copy() const override;

    // None while icons are off.
    std::shared_ptr<Image> image() const override;
    // Another image than before is scaled from then on to the size that it is given.
    void setImage(const std::shared_ptr<Image> &image) override;

    QSizeF cellSize() const override;
    // Read from left to right. Without an icon the text has the whole rectangle, and the image frame is empty.
    void divideRectIntoImageFrameAndTextFrame(const QRectF &rect, QRectF &imageFrame, QRectF &textFrame) const;
    QRectF computeTextFrame(const QRectF &rect) const;
    // Where an icon of its present size stands; the zero rectangle without one. Says in the log that it was called.
    QRectF imageFrameForCellFrame(const QRectF &cellFrame) const;

    // Gives the image the size that it is drawn with.
    void drawWithFrameInView(const QRectF &cellFrame, QPainter &painter,
                             const QStyleOptionViewItem &view) const override;
    void editWithFrameInViewEditorDelegateEvent(const QRectF &frame, QWidget &view, QLineEdit &editor,
                                                QObject *delegate, const QEvent *event) const override;
    void selectWithFrameInViewEditorDelegateStartLength(const QRectF &frame, QWidget &view, QLineEdit &editor,
                                                        QObject *delegate, int start, int length) const override;

private:
    std::shared_ptr<Image> _image;
};
