#pragma once

#include <QPaintEvent>
#include <QTreeView>

// Tells when one row of a tree has been painted.
class PaintedRow : public QObject
{
public:
    PaintedRow(QTreeView &view, const QRect &row) : _row(row) { view.viewport()->installEventFilter(this); }

    bool isPainted() const { return _isPainted; }
    void forget() { _isPainted = false; }

private:
    bool eventFilter(QObject * /*viewport*/, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            _isPainted = _isPainted || static_cast<QPaintEvent *>(event)->region().intersects(_row);
        return false;
    }

    QRect _row;
    bool _isPainted = false;
};
