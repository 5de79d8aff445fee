#pragma once

class QMenu;

// The host's main menu. A host with a menu bar in every window shows an appended menu in all of them, and in those
// that it opens later.
class HostMenuBar
{
public:
    virtual ~HostMenuBar() = default;
    // Adds the menu at the right-hand end. The caller keeps it and lets it live as long as the process. A host that
    // explains the drawer finds these items in it by their object names: "toggleDrawerItem", "focusOnSiteItem",
    // "newNoteItem".
    virtual void appendMenu(QMenu *menu) = 0;
};
