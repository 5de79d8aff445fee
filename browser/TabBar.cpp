#include "browser/TabBar.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QStyle>
#include <QTextDocument>

namespace
{
constexpr int widestTab = 220;
constexpr int narrowestTab = 90;

QString withoutMnemonic(QString title)
{
    return title.replace('&', QLatin1String("&&"));
}
} // namespace

TabBar::TabBar(QWidget *parent) : QTabBar(parent)
{
    setObjectName(QStringLiteral("tabBar"));
    setAccessibleName(tr("Tabs"));
    setDocumentMode(true);
    setMovable(true);
    setTabsClosable(true);
    setExpanding(false);
    setElideMode(Qt::ElideRight);
    setUsesScrollButtons(true);
    setDrawBase(false);
    setAcceptDrops(true);
    setSelectionBehaviorOnRemove(QTabBar::SelectRightTab);
}

void TabBar::setTab(int index, const QString &title, const QIcon &icon)
{
    const QString text = withoutMnemonic(title.simplified());
    if (tabText(index) != text) {
        setTabText(index, text);
        setTabToolTip(index, Qt::convertFromPlainText(title));
    }
    setTabIcon(index, icon);
}

void TabBar::mousePressEvent(QMouseEvent *event)
{
    _middlePressed = event->button() == Qt::MiddleButton ? tabAt(event->pos()) : -1;
    if (event->button() != Qt::MiddleButton)
        QTabBar::mousePressEvent(event);
}

void TabBar::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::MiddleButton) {
        QTabBar::mouseReleaseEvent(event);
        return;
    }
    if (_middlePressed >= 0 && _middlePressed == tabAt(event->pos()))
        Q_EMIT tabCloseRequested(_middlePressed);
    _middlePressed = -1;
}

void TabBar::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && tabAt(event->pos()) < 0)
        Q_EMIT newTabWanted();
    else
        QTabBar::mouseDoubleClickEvent(event);
}

void TabBar::contextMenuEvent(QContextMenuEvent *event)
{
    const int index = tabAt(event->pos());
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("&New Tab"), this, &TabBar::newTabWanted);
    if (index >= 0) {
        menu->addAction(tr("&Duplicate Tab"), this, [this, index] { Q_EMIT duplicateWanted(index); });
        menu->addAction(tr("&Reload Tab"), this, [this, index] { Q_EMIT reloadWanted(index); });
        menu->addSeparator();
        menu->addAction(tr("&Close Tab"), this, [this, index] { Q_EMIT tabCloseRequested(index); });
        menu->addAction(tr("Close &Other Tabs"), this, [this, index] { closeOthers(index); })->setEnabled(count() > 1);
    }
    menu->popup(event->globalPos());
}

void TabBar::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void TabBar::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    for (const QUrl &url : event->mimeData()->urls())
        Q_EMIT linkDropped(url);
}

QSize TabBar::tabSizeHint(int index) const
{
    const int share = count() > 0 ? width() / count() : widestTab;
    return QSize(qBound(narrowestTab, share, widestTab), QTabBar::tabSizeHint(index).height());
}

void TabBar::tabInserted(int index)
{
    QTabBar::tabInserted(index);
    const auto side =
        static_cast<ButtonPosition>(style()->styleHint(QStyle::SH_TabBar_CloseButtonPosition, nullptr, this));
    if (QWidget *button = tabButton(index, side)) {
        button->setObjectName(QStringLiteral("closeTabButton"));
        button->setAccessibleName(tr("Close tab"));
        button->setToolTip(tr("Close this tab"));
    }
}

void TabBar::closeOthers(int index)
{
    for (int other = count() - 1; other >= 0; --other) {
        if (other != index)
            Q_EMIT tabCloseRequested(other);
    }
}
