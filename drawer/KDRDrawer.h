#pragma once

#include "lists/ScratchpadDrawer.h"

#include <QPointer>

class WayfoldScratchOutlineView;

// The drawer of a browser window. The store knows it by its class name.
class KDRDrawer : public ScratchpadDrawer
{
    Q_OBJECT

public:
    using ScratchpadDrawer::ScratchpadDrawer;

    void setOutlineView(WayfoldScratchOutlineView *view);

    QString className() const override { return QStringLiteral("KDRDrawer"); }
    // Shows the Scratchpad's tree anew.
    void reloadBookmarks() override;
    void handleNewSubFolderRequest(QObject *sender) override;
    void handleNewNoteRequest(QObject *sender) override;
    void handleNewEmailRequest(QObject *sender) override;
    void handleNewPersonRequest(QObject *sender) override;
    // Closes the front drawer. Nothing in the drawer as it comes asks for that: the menu and its key do.
    void handleCloseKDRDrawer(QObject *sender);

private:
    QPointer<WayfoldScratchOutlineView> _outlineView;
};
