// Another program of the desktop: a small window in the upper left corner of the screen that takes whatever is dropped
// on it, and writes the dropped text and addresses to its standard output, a line each; of cards all lines.

#include "NeighbourWindow.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QFile>
#include <QMimeData>
#include <QUrl>

namespace
{
void writeCard(const QByteArray &origin, const QByteArray &card)
{
    for (const QByteArray &line : card.split('\n'))
        NeighbourWindow::write(origin + ": " + line.trimmed());
}

class DropTarget : public NeighbourWindow
{
public:
    DropTarget() { setAcceptDrops(true); }

protected:
    void dragEnterEvent(QDragEnterEvent *event) override
    {
        event->acceptProposedAction();
        write("entered");
    }
    void dropEvent(QDropEvent *event) override
    {
        event->acceptProposedAction();
        const QList<QUrl> urls = event->mimeData()->urls();
        write("text: " + event->mimeData()->text().toUtf8());
        for (const QUrl &url : urls)
            write("address: " + url.toEncoded());
        for (const QString &format : event->mimeData()->formats()) {
            if (format.startsWith(u"text/vcard") || format.startsWith(u"text/x-vcard"))
                writeCard(format.toUtf8(), event->mimeData()->data(format));
        }
        for (const QUrl &url : urls) {
            QFile file(url.toLocalFile());
            if (file.fileName().endsWith(u".vcf") && file.open(QIODevice::ReadOnly))
                writeCard("file", file.readAll());
        }
        write("dropped");
    }
};
} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    DropTarget target;
    target.show();
    return QApplication::exec();
}
