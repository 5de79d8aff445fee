#pragma once

#include "core/settings/WayfoldDefaults.h"
#include "model/ItemDialogs.h"
#include "model/ItemImages.h"
#include "model/SmartFolderSources.h"
#include "model/WayfoldBookmarkEmail.h"
#include "model/WayfoldBookmarkFile.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldHistoryURL.h"
#include "platform/files/UserDefaults.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/TemporaryHome.h"

#include <QLocale>
#include <QPainter>

// A home, settings and images as on the first day.
class FreshHome : public TemporaryHome
{
public:
    FreshHome()
    {
        UserDefaults::standardUserDefaults().reset();
        WayfoldDefaults::sharedInstance().loadDefaults();
        ItemImages::reset();
    }
    ~FreshHome()
    {
        ItemDialogs::setCurrent(nullptr);
        SmartFolderSources::setCurrent(nullptr);
        UserDefaults::standardUserDefaults().reset();
    }
};

// What the user has put first among the languages, until this goes.
class UserLanguage
{
public:
    explicit UserLanguage(const char *name) { QLocale::setDefault(QLocale(QString::fromLatin1(name))); }
    ~UserLanguage() { QLocale::setDefault(QLocale::c()); }
    UserLanguage(const UserLanguage &) = delete;
    UserLanguage &operator=(const UserLanguage &) = delete;
};

// Notes down which dialog was opened on what, and answers as it was told.
class RecordingDialogs : public ItemDialogs
{
public:
    bool accepts = true;
    QStringList opened;
    KDRBookmarkPtr item;

    RecordingDialogs() { setCurrent(this); }
    ~RecordingDialogs() override { setCurrent(nullptr); }

    bool editURL(const std::shared_ptr<WayfoldBookmarkURL> &link) override { return open("editURL", link); }
    bool editFile(const std::shared_ptr<WayfoldBookmarkFile> &link) override { return open("editFile", link); }
    bool editEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link) override { return open("editEmail", link); }
    bool editNote(const std::shared_ptr<WayfoldBookmarkNote> &note) override { return open("editNote", note); }
    bool editFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder) override
    {
        return open("editFolder", folder);
    }
    bool newEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link) override { return open("newEmail", link); }
    bool newNote(const std::shared_ptr<WayfoldBookmarkNote> &note) override { return open("newNote", note); }
    bool newFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder) override { return open("newFolder", folder); }
    std::vector<KDRBookmarkPtr> newPeople() override { return {}; }
    QStringList cardsNotShown;
    void tellCardIsNotShown(const QString &name) override { cardsNotShown.append(name); }

private:
    bool open(const char *dialog, const KDRBookmarkPtr &opened)
    {
        this->opened.append(QString::fromLatin1(dialog));
        item = opened;
        return accepts;
    }
};

// Trees that a test sets. Grouping puts all entries into one folder titled with the style, and keeps what
// folders there are, as the history list does.
class FakeSmartFolderSources : public SmartFolderSources
{
public:
    WayfoldBookmarkFolderPtr bookmarks = WayfoldBookmarkFolder::bookmarkWithTitle("Bookmarks");
    WayfoldBookmarkFolderPtr history = WayfoldBookmarkFolder::bookmarkWithTitle("History");
    mutable int regroupings = 0;
    mutable QString regroupedTitle; // of the folder that the entries came in

    FakeSmartFolderSources() { setCurrent(this); }
    ~FakeSmartFolderSources() override { setCurrent(nullptr); }

    WayfoldBookmarkFolderPtr safariBookmarkRoot() const override { return bookmarks; }
    WayfoldBookmarkFolderPtr historyBookmarkRoot() const override { return history; }
    void regroupBookmarksFromFolderIntoFolderWithGroupingStyle(const WayfoldBookmarkFolderPtr &from,
                                                               const WayfoldBookmarkFolderPtr &into,
                                                               const QString &style) const override
    {
        ++regroupings;
        regroupedTitle = from->title();
        into->removeAllLeafChildren();
        WayfoldBookmarkFolderPtr group = WayfoldBookmarkFolder::fromItem(into->childWithTitle(style));
        if (!group) {
            group = WayfoldBookmarkFolder::bookmarkWithTitle(style);
            into->addChild(group);
        }
        for (const KDRBookmarkPtr &entry : from->children())
            group->addChild(entry);
        into->removeEmptySubfolders();
    }
};

template <class Item>
std::shared_ptr<Item> roundTripThroughArchive(const std::shared_ptr<Item> &item)
{
    const QByteArray archive = KeyedArchiver::archivedDataWithRootObject(*item);
    return std::dynamic_pointer_cast<Item>(KeyedUnarchiver::unarchiveObjectWithData(archive));
}

inline QStringList titlesOf(const std::vector<KDRBookmarkPtr> &items)
{
    QStringList titles;
    for (const KDRBookmarkPtr &item : items)
        titles.append(item->title());
    return titles;
}

inline QStringList childTitles(const WayfoldBookmarkFolder &folder)
{
    return titlesOf(folder.children());
}

// What the image looks like, to tell one from another.
inline QImage pictureOf(const std::shared_ptr<Image> &image)
{
    QImage picture(64, 64, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    if (image) {
        QPainter painter(&picture);
        image->drawInRect(painter, QRectF(0, 0, 64, 64));
    }
    return picture;
}

inline WayfoldBookmarkURLPtr makeLink(const QString &title,
                                      const QString &address = QStringLiteral("http://a.example/"))
{
    return WayfoldBookmarkURL::bookmarkWithTitleAndURL(title, Url::URLWithString(address));
}

inline WayfoldBookmarkFolderPtr makeFolder(const QString &title, const std::vector<KDRBookmarkPtr> &children = {})
{
    WayfoldBookmarkFolderPtr made = WayfoldBookmarkFolder::bookmarkWithTitle(title);
    for (const KDRBookmarkPtr &child : children)
        made->addChild(child);
    return made;
}
