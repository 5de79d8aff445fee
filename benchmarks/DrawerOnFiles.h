#pragma once

#include "benchmarks/GeneratedFiles.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "tests/drawer/DrawerStage.h"

#include <QLineEdit>

// An open drawer of a window, with the lists as a user sees them, over the browser's files.
class DrawerOnFiles
{
public:
    explicit DrawerOnFiles(const GeneratedFiles &files);

    DrawerStage stage; // with a home of its own

    KDRDrawerController *controller() const { return DrawerStage::controller(*_window); }
    WayfoldHistoryOutlineView &history() const { return *controller()->historyOutlineView(); }
    WayfoldBookmarkOutlineView &bookmarks() const { return *controller()->bookmarkOutlineView(); }
    QLineEdit &historyField() const { return *field("historySearchField"); }
    QLineEdit &bookmarkField() const { return *field("bookmarkSearchField"); }

    // Does what the view puts off until it paints.
    static void layOut(QAbstractItemView &view);

private:
    QLineEdit *field(const char *name) const;

    std::shared_ptr<FakeHostWindow> _window;
};
