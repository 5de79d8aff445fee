#include "lists/WayfoldSitePopupButton.h"

#include "lists/DroppedData.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"

#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QWheelEvent>

WayfoldSitePopupButton::WayfoldSitePopupButton(QWidget *parent) : QComboBox(parent)
{
    // As wide as there is room, whatever the sites are called.
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(1);
    connect(this, &QComboBox::currentIndexChanged, this, &WayfoldSitePopupButton::takeTitle);
    connect(this, &QComboBox::currentTextChanged, this, &WayfoldSitePopupButton::takeTitle); // the entry is renamed
    connect(this, &QComboBox::activated, this, &WayfoldSitePopupButton::siteChangeRequested);
}

void WayfoldSitePopupButton::takeTitle()
{
    _title = currentIndex() < 0 ? QString() : currentText();
}

void WayfoldSitePopupButton::setTitle(const QString &title)
{
    int index = findText(title, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index < 0) {
        index = count();
        addItem(title);
    }
    setCurrentIndex(index);
}

void WayfoldSitePopupButton::setEntries(const QStringList &titles, const QString &selected)
{
    {
        const QSignalBlocker quiet(this);
        clear();
        for (const QString &title : titles) {
            if (findText(title, Qt::MatchExactly | Qt::MatchCaseSensitive) < 0)
                addItem(title);
        }
        setCurrentIndex(findText(selected, Qt::MatchExactly | Qt::MatchCaseSensitive));
    }
    takeTitle();
    update();
}

QStringList WayfoldSitePopupButton::itemTitles() const
{
    QStringList titles;
    for (int i = 0; i < count(); ++i)
        titles.append(itemText(i));
    return titles;
}

void WayfoldSitePopupButton::registerForDraggedTypes(const QStringList &types)
{
    _draggedTypes = types;
    setAcceptDrops(!types.isEmpty());
}

void WayfoldSitePopupButton::willPopUp()
{
    NotificationCenter::defaultCenter().postNotificationName(PlatformNotifications::NSPopUpButtonWillPopUpNotification,
                                                             this);
}

void WayfoldSitePopupButton::showPopup()
{
    willPopUp();
    QComboBox::showPopup();
}

// The closed pop-up holds old entries: the keys that step through them open it, and what picks an entry by its letters
// looks at new ones.
void WayfoldSitePopupButton::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        showPopup();
        event->accept();
        return;
    default:
        if (!event->text().trimmed().isEmpty())
            willPopUp();
        QComboBox::keyPressEvent(event);
    }
}

// Scrolling past the pop-up is no wish for another site.
void WayfoldSitePopupButton::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

void WayfoldSitePopupButton::dragEnterEvent(QDragEnterEvent *event)
{
    event->ignore(); // nothing is ever dropped here
    if (!DroppedData(*event->mimeData()).offersAnyOf(_draggedTypes) || currentIndex() == 0 || count() == 0)
        return;
    setCurrentIndex(0);
    Q_EMIT siteChangeRequested();
}
