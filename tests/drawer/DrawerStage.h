#pragma once

#include "core/KDRDrawerBundle.h"
#include "core/settings/WayfoldDefaults.h"
#include "drawer/DrawerRoom.h"
#include "drawer/KDRDrawer.h"
#include "drawer/KDRDrawerController.h"
#include "drawer/WayfoldTabView.h"
#include "lists/WayfoldScratchDataSource.h"
#include "lists/WayfoldScratchOutlineView.h"
#include "lists/WayfoldSitePopupButton.h"
#include "model/ItemImages.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldBookmarkURL.h"
#include "platform/files/UserDefaults.h"
#include "platform/widgets/Workspace.h"
#include "tests/support/FakeHost.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/TemporaryHome.h"

#include <QtTest>

// A fresh user's home, settings and store, with the real drawers. Windows stand in for those of a browser.
class DrawerStage
{
public:
    DrawerStage()
    {
        UserDefaults::standardUserDefaults().reset();
        settings().loadDefaults();
        ItemImages::reset();
        installDrawerRoom();
    }
    ~DrawerStage()
    {
        for (const std::shared_ptr<FakeHostWindow> &window : host.windows)
            window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Workspace::setURLHandler({});
        KDRDrawerBundle::releaseSharedInstance();
        UserDefaults::standardUserDefaults().reset();
    }

    TemporaryHome home;
    FakeHostApplication host;

    static KDRDrawerBundle &store() { return KDRDrawerBundle::sharedInstance(); }
    static WayfoldDefaults &settings() { return WayfoldDefaults::sharedInstance(); }
    QByteArray savedFile() const { return home.read(QStringLiteral("Library/Wayfold/Bookmarks.plist")); }
    void removeSavedFile() const { QFile::remove(home.path(QStringLiteral("Library/Wayfold/Bookmarks.plist"))); }

    // A browser window in front, with its drawer (closed), on a page. Without a widget it is one of another process.
    std::shared_ptr<FakeHostWindow> openWindow(const QRectF &frame = QRectF(100, 100, 800, 600), bool widget = false)
    {
        store();
        std::shared_ptr<FakeHostWindow> window = host.openWindow(frame);
        if (widget)
            window->makeWidget();
        window->addTab(QStringLiteral("http://news.example.com/story"));
        window->becomeKey();
        drawer(*window)->setSlideDuration(0);
        return window;
    }
    static KDRDrawer *drawer(const HostWindow &window)
    {
        return qobject_cast<KDRDrawer *>(store().drawerForWindow(&window));
    }
    static KDRDrawerController *controller(const HostWindow &window)
    {
        const KDRDrawer *found = drawer(window);
        return found ? static_cast<KDRDrawerController *>(found->controller()) : nullptr;
    }
    static WayfoldBookmarkNotePtr note(const QString &title, const QString &text = QStringLiteral("text"))
    {
        return WayfoldBookmarkNote::bookmarkWithTitleAndNote(title, text);
    }
    static WayfoldBookmarkURLPtr link(const QString &title, const QString &address = QStringLiteral("http://a.org/b"))
    {
        return WayfoldBookmarkURL::bookmarkWithTitleAndURL(title, Url::URLWithString(address));
    }
    static QStringList rows(const OutlineView &view)
    {
        QStringList rows;
        for (int row = 0; row < view.numberOfRows(); ++row)
            rows.append(std::static_pointer_cast<KDRBookmark>(view.itemAtRow(row))->title());
        return rows;
    }
    // Acts on the dialog that opens next, as soon as it stands.
    template <class Dialog>
    static void whenDialogOpens(QObject *context, std::function<void(Dialog *)> act)
    {
        QTimer::singleShot(0, context, [context, act] {
            if (auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget()))
                act(dialog);
            else
                whenDialogOpens<Dialog>(context, act);
        });
    }
};
