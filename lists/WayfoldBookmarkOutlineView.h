#pragma once

#include "lists/WayfoldOutlineView.h"

// The list of the Bookmarks tab.
class WayfoldBookmarkOutlineView : public WayfoldOutlineView
{
    Q_OBJECT

public:
    using WayfoldOutlineView::WayfoldOutlineView;
};
