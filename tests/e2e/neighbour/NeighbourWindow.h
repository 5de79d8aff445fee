#pragma once

#include <QWidget>
#include <cstdio>

// Another program's small window in the upper left corner of the screen, which no window manager moves. It writes a
// line to the standard output for each thing that happens, "ready" when it can be seen.
class NeighbourWindow : public QWidget
{
public:
    NeighbourWindow() : QWidget(nullptr, Qt::X11BypassWindowManagerHint | Qt::WindowStaysOnTopHint)
    {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setGeometry(0, 0, 160, 120);
    }

    static void write(const QByteArray &line)
    {
        std::printf("%s\n", line.constData());
        std::fflush(stdout);
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QWidget::paintEvent(event);
        if (!std::exchange(_isPainted, true))
            write("ready");
    }

private:
    bool _isPainted = false;
};
