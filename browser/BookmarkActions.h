#pragma once

#include "browser/BookmarkFile.h"

#include <QUrl>
#include <functional>

class QMenu;
class SiteIcons;

// Bookmarks as menu items.
namespace BookmarkActions
{
using Opener = std::function<void(const QUrl &)>;

// Appends an item for each link and a submenu for each folder.
void fillMenu(QMenu *menu, const QList<BookmarkFile::Node> &nodes, SiteIcons *icons, const Opener &open);
// The text of an item: short, and with nothing in it that a menu would take for a shortcut.
QString menuText(const QString &title);
} // namespace BookmarkActions
