#pragma once

#include "core/SiteDrawer.h"

// A drawer as the Scratchpad's data source knows it: requests for new items go through the drawer to its list view.
class ScratchpadDrawer : public SiteDrawer
{
    Q_OBJECT

public:
    using SiteDrawer::SiteDrawer;

    virtual void handleNewSubFolderRequest(QObject *sender) = 0;
    virtual void handleNewNoteRequest(QObject *sender) = 0;
    virtual void handleNewEmailRequest(QObject *sender) = 0;
    virtual void handleNewPersonRequest(QObject *sender) = 0;
};
