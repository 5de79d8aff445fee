#pragma once

#include "lists/WayfoldOutlineView.h"

// The list of the History tab.
class WayfoldHistoryOutlineView : public WayfoldOutlineView
{
    Q_OBJECT

public:
    using WayfoldOutlineView::WayfoldOutlineView;
};
