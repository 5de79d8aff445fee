#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <memory>

class Image;
class QEvent;
class QLineEdit;
class QObject;
class QPainter;
class QStyleOptionViewItem;
class QWidget;

// What an outline view draws its rows with: one cell for all of them, which is given a row's text, font and image and
// is then drawn into the row's frame. A plain one has text alone, which takes the whole frame; it takes no image.
class TextFieldCell
{
public:
    TextFieldCell() = default;
    virtual ~TextFieldCell() = default;
    TextFieldCell &operator=(const TextFieldCell &) = delete;

    // Of the same class; an image is shared.
    virtual std::unique_ptr<TextFieldCell> copy() const;

    QString stringValue() const { return _stringValue; }
    void setStringValue(const QString &text) { _stringValue = text; }
    QFont font() const { return _font; }
    void setFont(const QFont &font) { _font = font; }
    // The colour is painted only while the cell draws a background.
    bool drawsBackground() const { return _drawsBackground; }
    void setDrawsBackground(bool draws) { _drawsBackground = draws; }
    QColor backgroundColor() const { return _backgroundColor; }
    void setBackgroundColor(const QColor &color) { _backgroundColor = color; }
    virtual std::shared_ptr<Image> image() const { return nullptr; }
    virtual void setImage(const std::shared_ptr<Image> & /*image*/) {}

    // What the cell needs to show all of its text.
    virtual QSizeF cellSize() const;
    // `view` is how the view draws the row: its palette, direction and state (selected, focused).
    virtual void drawWithFrameInView(const QRectF &frame, QPainter &painter, const QStyleOptionViewItem &view) const;
    // Opens the editor on the cell's text. The delegate (null: none) gets the editor's events first; a press of the
    // mouse (null: there was none) puts the cursor where it points.
    virtual void editWithFrameInViewEditorDelegateEvent(const QRectF &frame, QWidget &view, QLineEdit &editor,
                                                        QObject *delegate, const QEvent *event) const;
    // The same with some of the text selected.
    virtual void selectWithFrameInViewEditorDelegateStartLength(const QRectF &frame, QWidget &view, QLineEdit &editor,
                                                                QObject *delegate, int start, int length) const;

protected:
    TextFieldCell(const TextFieldCell &) = default;

private:
    void drawText(const QRectF &frame, QPainter &painter, const QStyleOptionViewItem &view) const;
    void openEditor(const QRectF &frame, QWidget &view, QLineEdit &editor, QObject *delegate) const;

    QString _stringValue;
    QFont _font;
    bool _drawsBackground = false;
    QColor _backgroundColor;
};
