// Another program of the desktop: a small window in the upper left corner of the screen from which something can be
// dragged. It is offered in the formats that are named, each with the file in which its contents lie. Tells on its
// standard output whether it may be dropped where it is.
//
//     wayfold-drag-source text/x-vcard=FILE text/uri-list=FILE...

#include "NeighbourWindow.h"

#include <QApplication>
#include <QDrag>
#include <QFile>
#include <QMimeData>
#include <QMouseEvent>

namespace
{
class DragSource : public NeighbourWindow
{
protected:
    void mouseMoveEvent(QMouseEvent *event) override
    {
        if (event->buttons() == Qt::NoButton)
            return;
        auto *data = new QMimeData;
        for (const QString &offer : QCoreApplication::arguments().mid(1)) {
            QFile file(offer.section(u'=', 1));
            if (file.open(QIODevice::ReadOnly))
                data->setData(offer.section(u'=', 0, 0), file.readAll());
        }
        auto *drag = new QDrag(this);
        drag->setMimeData(data);
        connect(drag, &QDrag::actionChanged, this,
                [](Qt::DropAction action) { write(action == Qt::CopyAction ? "welcome" : "not welcome"); });
        connect(drag, &QObject::destroyed, this, [] { write("over"); }); // nobody asks for the data any more
        drag->exec(Qt::CopyAction);
    }
};
} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    DragSource source;
    source.show();
    return QApplication::exec();
}
