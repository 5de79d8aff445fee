#pragma once

#include <QWidget>

// The strip along a drawer's free edge by which the user drags it wider and narrower.
class DrawerGrip : public QWidget
{
    Q_OBJECT

public:
    explicit DrawerGrip(QWidget *parent);

Q_SIGNALS:
    // The drag begins; `dragged` tells how far it is from here, in device-independent pixels to the right.
    void grabbed();
    void dragged(int distance);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int _start = 0; // on the screen: the strip itself moves along
};
