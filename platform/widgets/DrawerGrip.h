#pragma once

#include <QWidget>

// The strip along a drawer's free edge by which the user makes it wider and narrower: by dragging, or by the Left and
// Right keys once Tab has led there.
class DrawerGrip : public QWidget
{
    Q_OBJECT

public:
    static constexpr int keyStep = 10; // of one key stroke, in device-independent pixels

    explicit DrawerGrip(QWidget *parent);

Q_SIGNALS:
    // The edge is taken hold of; `dragged` tells how far it is to go from there, in device-independent pixels to the
    // right. A key does both at once.
    void grabbed();
    void dragged(int distance);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int _start = 0; // on the screen: the strip itself moves along
};
