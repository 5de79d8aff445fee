#include "browser/BookmarkActions.h"

#include "browser/SiteIcons.h"
#include "browser/SymbolIcon.h"

#include <QApplication>
#include <QMenu>

namespace
{
constexpr int widestItem = 400;
} // namespace

void BookmarkActions::fillMenu(QMenu *menu, const QList<BookmarkFile::Node> &nodes, SiteIcons *icons,
                               const Opener &open)
{
    for (const BookmarkFile::Node &node : nodes) {
        if (node.isFolder) {
            QMenu *submenu = menu->addMenu(SymbolIcon::named(QStringLiteral("folder")), menuText(node.title));
            fillMenu(submenu, node.children, icons, open);
            submenu->setEnabled(!submenu->isEmpty());
            continue;
        }
        const QUrl url(node.address);
        const QIcon icon = icons->iconForHost(url.host());
        QAction *action = menu->addAction(icon.isNull() ? SymbolIcon::named(QStringLiteral("page")) : icon,
                                          menuText(node.title.isEmpty() ? node.address : node.title));
        QObject::connect(action, &QAction::triggered, menu, [open, url] { open(url); });
    }
}

QString BookmarkActions::menuText(const QString &title)
{
    const QFontMetrics metrics(QApplication::font("QMenu"));
    return metrics.elidedText(title.simplified(), Qt::ElideMiddle, widestItem).replace('&', QLatin1String("&&"));
}
