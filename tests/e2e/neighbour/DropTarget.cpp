// Another program of the desktop: a small window in the upper left corner of the screen that takes whatever is dropped
// on it, and writes the dropped text and addresses to its standard output, a line each.

#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>
#include <cstdio>

namespace
{
void write(const QByteArray &line)
{
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

class DropTarget : public QWidget
{
public:
    DropTarget() : QWidget(nullptr, Qt::X11BypassWindowManagerHint | Qt::WindowStaysOnTopHint)
    {
        setAcceptDrops(true);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setGeometry(0, 0, 160, 120);
    }

protected:
    void dragEnterEvent(QDragEnterEvent *event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent *event) override
    {
        event->acceptProposedAction();
        const QList<QUrl> urls = event->mimeData()->urls();
        write("text: " + event->mimeData()->text().toUtf8());
        for (const QUrl &url : urls)
            write("address: " + url.toEncoded());
        write("dropped");
    }
    void paintEvent(QPaintEvent *event) override
    {
        QWidget::paintEvent(event);
        if (!std::exchange(_isPainted, true))
            write("ready");
    }

private:
    bool _isPainted = false;
};
} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    DropTarget target;
    target.show();
    return QApplication::exec();
}
