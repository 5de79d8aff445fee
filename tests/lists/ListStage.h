#pragma once

#include "core/settings/WayfoldDefaults.h"
#include "lists/ScratchpadDrawer.h"
#include "lists/WayfoldScratchDataSource.h"
#include "lists/WayfoldScratchOutlineView.h"
#include "lists/WayfoldSitePopupButton.h"
#include "model/ItemDialogs.h"
#include "model/ItemImages.h"
#include "model/WayfoldAutoFolder.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkEmail.h"
#include "model/WayfoldBookmarkFile.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldHistoryURL.h"
#include "platform/files/UserDefaults.h"
#include "platform/widgets/Workspace.h"
#include "tests/core/FakeSiteDrawer.h"
#include "tests/support/FakeHost.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/MemoryContacts.h"
#include "tests/support/ModelChecks.h"
#include "tests/support/TemporaryHome.h"

#include <QToolButton>
#include <QtTest>
#include <set>

// Dialogs that are answered at once: `answer` stands for the user. None: cancelled.
class AnsweredDialogs : public ItemDialogs
{
public:
    std::function<bool(KDRBookmark &)> answer;
    std::function<std::vector<KDRBookmarkPtr>()> chosen; // people and groups; none: cancelled
    int opened = 0;

    AnsweredDialogs() { setCurrent(this); }
    ~AnsweredDialogs() override { setCurrent(nullptr); }

    bool editURL(const std::shared_ptr<WayfoldBookmarkURL> &link) override { return run(*link); }
    bool editFile(const std::shared_ptr<WayfoldBookmarkFile> &link) override { return run(*link); }
    bool editEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link) override { return run(*link); }
    bool editNote(const std::shared_ptr<WayfoldBookmarkNote> &note) override { return run(*note); }
    bool editFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder) override { return run(*folder); }
    bool newEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link) override { return run(*link); }
    bool newNote(const std::shared_ptr<WayfoldBookmarkNote> &note) override { return run(*note); }
    bool newFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder) override { return run(*folder); }
    std::vector<KDRBookmarkPtr> newPeople() override
    {
        ++opened;
        return chosen ? chosen() : std::vector<KDRBookmarkPtr>();
    }

    QStringList cardsNotShown;
    void tellCardIsNotShown(const QString &name) override { cardsNotShown.append(name); }

private:
    bool run(KDRBookmark &item)
    {
        ++opened;
        return answer && answer(item);
    }
};

// A home, settings, a host and a store of a user who starts for the first time.
class ListStage
{
public:
    ListStage()
    {
        UserDefaults::standardUserDefaults().reset();
        settings().loadDefaults();
        ItemImages::reset();
        resetContacts();
        Workspace::setURLHandler([this](const Url &url) {
            openedURLs.append(url.absoluteString());
            return true;
        });
    }
    ~ListStage()
    {
        Workspace::setURLHandler({});
        KDRDrawerBundle::releaseSharedInstance();
        UserDefaults::standardUserDefaults().reset();
    }

    TemporaryHome home;
    FakeHostApplication host;
    AnsweredDialogs dialogs;
    QStringList openedURLs; // by the desktop

    static KDRDrawerBundle &store() { return KDRDrawerBundle::sharedInstance(); }
    static WayfoldDefaults &settings() { return WayfoldDefaults::sharedInstance(); }
    QByteArray savedFile() const { return home.read(QStringLiteral("Library/Wayfold/Bookmarks.plist")); }
    // With everything saved, so that only what changes from now on brings it back.
    void removeSavedFile() const
    {
        store().saveBookmarkFile();
        QFile::remove(home.path(QStringLiteral("Library/Wayfold/Bookmarks.plist")));
    }

    static WayfoldBookmarkFolderPtr folder(const QString &title, const std::vector<KDRBookmarkPtr> &children = {})
    {
        WayfoldBookmarkFolderPtr made = WayfoldBookmarkFolder::bookmarkWithTitle(title);
        for (const KDRBookmarkPtr &child : children)
            made->addChild(child);
        return made;
    }
    static WayfoldBookmarkNotePtr note(const QString &title, const QString &text = QStringLiteral("text"))
    {
        return WayfoldBookmarkNote::bookmarkWithTitleAndNote(title, text);
    }
    static WayfoldBookmarkURLPtr link(const QString &title,
                                      const QString &address = QStringLiteral("http://www.example.com/page"))
    {
        return WayfoldBookmarkURL::bookmarkWithTitleAndURL(title, Url::URLWithString(address));
    }
    static WayfoldBookmarkURLPtr file(const QString &title, const QString &path = QStringLiteral("/tmp/a b.txt"))
    {
        return WayfoldBookmarkURL::bookmarkWithTitleAndURL(title, Url::fileURLWithPath(path));
    }
    static WayfoldBookmarkURLPtr mail(const QString &title, const QString &address = QStringLiteral("mailto:ann"))
    {
        return link(title, address);
    }
    static KDRBookmarkPtr history(const QString &title)
    {
        return WayfoldHistoryURL::bookmarkWithTitleAndURL(
            title, Url::URLWithString(QStringLiteral("http://www.example.com/visited")));
    }
    // The contacts of all stages: rows of a test's table are made before its stage is.
    static MemoryContacts &contacts()
    {
        static auto *const contacts = new MemoryContacts;
        return *contacts;
    }
    // With a card of their own, which has that name.
    static WayfoldBookmarkABPersonPtr person(const QString &title, const QStringList &emails = {})
    {
        const QString id = newContactID();
        contacts().set(MemoryContacts::person(id, title, QString(), emails));
        return WayfoldBookmarkABPerson::bookmarkWithID(id);
    }
    static WayfoldBookmarkABPersonPtr organization(const QString &title)
    {
        const QString id = newContactID();
        contacts().set(MemoryContacts::company(id, title));
        return WayfoldBookmarkABPerson::bookmarkWithID(id);
    }
    static WayfoldBookmarkABGroupPtr group(const QString &title,
                                           const std::vector<WayfoldBookmarkABPersonPtr> &members = {})
    {
        QStringList ids;
        for (const WayfoldBookmarkABPersonPtr &member : members)
            ids.append(member->addressBookEntry()->addressBookID());
        const QString id = newContactID();
        contacts().set(MemoryContacts::group(id, title, ids));
        return WayfoldBookmarkABGroup::bookmarkWithID(id);
    }
    static QStringList titles(const std::vector<KDRBookmarkPtr> &items)
    {
        QStringList titles;
        for (const KDRBookmarkPtr &item : items)
            titles.append(item->title());
        return titles;
    }
    static QStringList titles(const WayfoldBookmarkFolderPtr &folder) { return titles(folder->children()); }
    // Every row, indented by its level.
    static QStringList rows(const OutlineView &view)
    {
        QStringList rows;
        for (int row = 0; row < view.numberOfRows(); ++row)
            rows.append(QString(view.levelForRow(row), u'-') +
                        std::static_pointer_cast<KDRBookmark>(view.itemAtRow(row))->title());
        return rows;
    }

    // A card as other programs write it. An empty identifier, or address: it has none.
    static QByteArray card(const QString &id, const QString &first, const QString &last, const QString &email)
    {
        QStringList lines = {QStringLiteral("BEGIN:VCARD"), QStringLiteral("VERSION:3.0")};
        if (!id.isEmpty())
            lines.append(QStringLiteral("UID:") + id);
        lines.append(QStringLiteral("FN:%1 %2").arg(first, last));
        lines.append(QStringLiteral("N:%2;%1;;;").arg(first, last));
        if (!email.isEmpty())
            lines.append(QStringLiteral("EMAIL;TYPE=WORK:") + email);
        lines.append({QStringLiteral("TEL;TYPE=HOME:123"), QStringLiteral("END:VCARD"), QString()});
        return lines.join(QStringLiteral("\r\n")).toUtf8();
    }

private:
    // The cards stay, since rows of a table may have been made of them.
    static void resetContacts()
    {
        MemoryContacts &contacts = ListStage::contacts();
        contacts.presentState = ContactStore::Ready;
        contacts.ordering = ContactRecord::FirstNameFirst;
        contacts.cards.clear();
        contacts.addedAs.clear();
        contacts.opened.clear();
        contacts.added.clear();
        ContactStore::setSharedAddressBook(&contacts);
    }
    static QString newContactID()
    {
        static int made = 0;
        return QStringLiteral("contact-%1").arg(++made);
    }
};

// A drawer that hands requests for new items to the list, as the real one does.
class StageDrawer : public ScratchpadDrawer
{
public:
    QPointer<WayfoldScratchOutlineView> view;
    int reloadCount = 0;

    StageDrawer() { setSlideDuration(0); }
    QString className() const override { return QStringLiteral("KDRDrawer"); }
    void reloadBookmarks() override
    {
        ++reloadCount;
        if (view)
            view->reloadData();
    }
    void handleNewSubFolderRequest(QObject *sender) override { view->handleNewSubFolderRequest(sender); }
    void handleNewNoteRequest(QObject *sender) override { view->handleNewNoteRequest(sender); }
    void handleNewEmailRequest(QObject *sender) override { view->handleNewEmailRequest(sender); }
    void handleNewPersonRequest(QObject *sender) override { view->handleNewPersonRequest(sender); }
};

// The Scratchpad of one browser window: list, pop-up, buttons, data source, and an open drawer around them.
class Scratchpad
{
public:
    explicit Scratchpad(ListStage &stage, const QRectF &frame = QRectF(100, 100, 800, 600))
    {
        ListStage::store();
        window = stage.host.openWindow(frame);
        web = window->addTab(QStringLiteral("http://news.example.com/story"));
        controller = std::make_unique<FakeDrawerController>(window);
        drawer.setParentWindow(window);
        drawer.setController(controller.get());
        drawer.view = &view;
        popup.addItem(QStringLiteral("Sites"));

        WayfoldScratchDataSource::Outlets outlets;
        outlets.scratchOutlineView = &view;
        outlets.drawer = &drawer;
        outlets.newSubfolderButton = &newSubfolderButton;
        outlets.newNoteButton = &newNoteButton;
        outlets.newEmailButton = &newEmailButton;
        outlets.newPersonButton = &newPersonButton;
        outlets.deleteItemButton = &deleteItemButton;
        outlets.editItemButton = &editItemButton;
        outlets.switchbackButton = &switchbackButton;
        switchbackButton.setEnabled(false);
        source = std::make_unique<WayfoldScratchDataSource>(outlets);
        view.setSitePopupMenu(&popup);
        view.setDelegate(source.get());
        view.awakeFromNib();
        view.setOutlineDataSource(source.get());
        QObject::connect(&popup, &WayfoldSitePopupButton::siteChangeRequested, source.get(),
                         [this] { source->handleSiteChange(&popup); });
        source->awakeFromNib();
        view.resize(300, 400);
        view.show();
        drawer.open();
    }

    std::shared_ptr<FakeHostWindow> window;
    std::shared_ptr<FakeHostWebView> web;
    std::unique_ptr<FakeDrawerController> controller;
    StageDrawer drawer;
    WayfoldSitePopupButton popup;
    QToolButton newSubfolderButton;
    QToolButton newNoteButton;
    QToolButton newEmailButton;
    QToolButton newPersonButton;
    QToolButton deleteItemButton;
    QToolButton editItemButton;
    QToolButton switchbackButton;
    WayfoldScratchOutlineView view;
    std::unique_ptr<WayfoldScratchDataSource> source; // goes before the view does

    void show(const QString &label) { source->setDrawerLabelUsingFrame(label, web->frame); }
    // The whole tree shows these items and nothing else.
    void showItems(const std::vector<KDRBookmarkPtr> &items)
    {
        WayfoldBookmarkFolder &root = *ListStage::store().bookmarkRoot();
        const std::set<KDRBookmarkPtr> wanted(items.cbegin(), items.cend());
        std::vector<KDRBookmarkPtr> gone = root.children();
        std::erase_if(gone, [&wanted](const KDRBookmarkPtr &item) { return wanted.count(item) > 0; });
        root.removeChildren(gone);
        for (int i = 0; i < int(items.size()); ++i) {
            const KDRBookmarkPtr &item = items[std::size_t(i)];
            if (i < int(root.childCount()) && root.childAtIndex(unsigned(i)) == item)
                continue;
            if (root.indexOfMadeChild(*item) >= 0)
                root.removeChild(item);
            root.addChildAtIndex(item, i);
        }
        view.reloadData();
    }
    void select(const std::vector<KDRBookmarkPtr> &items)
    {
        view.deselectAll();
        for (const KDRBookmarkPtr &item : items)
            view.selectItem(item);
    }
};
