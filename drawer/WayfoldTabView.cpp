#include "drawer/WayfoldTabView.h"

#include "lists/DroppedData.h"
#include "lists/PasteboardTypes.h"

#include <QDragEnterEvent>
#include <QTabBar>

namespace
{
constexpr auto identifierProperty = "identifier";
constexpr auto labelProperty = "label";
constexpr auto responderProperty = "initialFirstResponder";
} // namespace

WayfoldTabView::WayfoldTabView(QWidget *parent) : QTabWidget(parent)
{
    connect(this, &QTabWidget::currentChanged, this, &WayfoldTabView::tellSelection);
}

const QStringList &WayfoldTabView::acceptableDragTypes()
{
    static const QStringList types = {PasteboardTypes::NSURLPboardType,
                                      PasteboardTypes::WebURLsWithTitles,
                                      PasteboardTypes::BookmarkDictionaryList,
                                      PasteboardTypes::NSFilenamesPboardType,
                                      PasteboardTypes::KDRBookmark,
                                      PasteboardTypes::KDRBookmarkList};
    return types;
}

void WayfoldTabView::awakeFromNib()
{
    setAcceptDrops(true);
}

QString WayfoldTabView::identifierOfTab(int index) const
{
    const QWidget *page = widget(index);
    return page ? page->property(identifierProperty).toString() : QString();
}

QString WayfoldTabView::labelOfTab(int index) const
{
    const QWidget *page = widget(index);
    return page ? page->property(labelProperty).toString() : QString();
}

QString WayfoldTabView::currentLabel() const
{
    return labelOfTab(currentIndex());
}

void WayfoldTabView::selectTabWithIdentifier(const QString &identifier)
{
    for (int i = 0; i < count(); ++i) {
        if (identifierOfTab(i) != identifier)
            continue;
        if (i == currentIndex())
            tellSelection(i);
        setCurrentIndex(i);
        return;
    }
}

void WayfoldTabView::tellSelection(int index)
{
    if (index >= 0 && willSelectTab)
        willSelectTab(identifierOfTab(index));
}

QWidget *WayfoldTabView::initialFirstResponderOfTab(int index) const
{
    const QWidget *page = widget(index);
    if (!page)
        return nullptr;
    const QString name = page->property(responderProperty).toString();
    return name.isEmpty() ? nullptr : page->findChild<QWidget *>(name);
}

// Only what is entered is told of moves.
void WayfoldTabView::dragEnterEvent(QDragEnterEvent *event)
{
    event->setAccepted(DroppedData(*event->mimeData()).offersAnyOf(acceptableDragTypes()));
}

void WayfoldTabView::dragMoveEvent(QDragMoveEvent *event)
{
    event->ignore(); // nothing is ever dropped here
    const int index = tabBar()->tabAt(tabBar()->mapFrom(this, event->position().toPoint()));
    if (index >= 0)
        setCurrentIndex(index);
}
