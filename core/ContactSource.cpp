#include "core/ContactSource.h"

#include "core/settings/WayfoldDefaults.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/contacts/ContactFolder.h"
#include "platform/contacts/DesktopContacts.h"
#include "platform/contacts/KnownContacts.h"
#include "platform/files/Paths.h"

#include <QFileInfo>

namespace
{
ContactSource *currentSource = nullptr;

// Stands in for the contacts of the desktop until it is known whether there are any.
class SoughtContacts : public ContactStore
{
public:
    State state() const override { return Loading; }
};

// One that the user names may be empty still; of the usual ones, one that holds a card.
bool isThereAFolder()
{
    const QString named = WayfoldDefaults::sharedInstance().contactFolder();
    return named.isEmpty() ? !ContactFolder::defaultFolder().isNull() : QFileInfo(Paths::standardized(named)).isDir();
}
} // namespace

ContactSource::ContactSource(Makers makers) : _makers(std::move(makers))
{
    currentSource = this;
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification & /*notification*/) { contactsDidChange(); },
        PlatformNotifications::kABDatabaseChangedExternallyNotification);
    followSettings();
}

ContactSource::~ContactSource()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    if (currentSource == this)
        currentSource = nullptr;
}

ContactSource *ContactSource::current()
{
    return currentSource;
}

QString ContactSource::chosenFolder()
{
    const QString named = WayfoldDefaults::sharedInstance().contactFolder();
    if (!named.isEmpty())
        return Paths::standardized(named);
    const QString found = ContactFolder::defaultFolder();
    return found.isNull() ? Paths::standardized(QStringLiteral("~/.contacts")) : found;
}

void ContactSource::followSettings()
{
    _search.reset();
    const QString chosen = WayfoldDefaults::sharedInstance().contactSource();
    _isAutomatic = chosen != u"desktop" && chosen != u"folder" && chosen != u"none";
    if (chosen == u"desktop")
        use(Desktop);
    else if (chosen == u"folder")
        use(Folder, chosenFolder());
    else if (chosen == u"none")
        use(Nowhere);
    else
        search();
}

void ContactSource::search()
{
    if (_place != Desktop) // which is what would be found
        use(Search);
    _search = std::make_shared<const bool>(true);
    _makers.lookForDesktop([this, search = std::weak_ptr(_search)](bool isThere) {
        if (search.expired())
            return;
        _search.reset();
        if (isThere)
            use(Desktop);
        else
            use(Folder, chosenFolder());
    });
}

void ContactSource::contactsDidChange()
{
    if (!_isAutomatic || _place != Desktop || _store->state() == ContactStore::Loading)
        return;
    if (_store->people().empty() && _store->groups().empty() && isThereAFolder())
        use(Folder, chosenFolder());
}

void ContactSource::use(Place place, const QString &folder)
{
    if (place == _place && folder == _folder)
        return;
    _place = place;
    _folder = folder;
    const std::unique_ptr<ContactStore> before = std::exchange(_store, makeStore(place, folder));
    if (_store)
        _store->rememberIn(KnownContacts::defaultPath());
    ContactStore::setSharedAddressBook(_store.get());
}

std::unique_ptr<ContactStore> ContactSource::makeStore(Place place, const QString &folder) const
{
    switch (place) {
    case Search:
        return std::make_unique<SoughtContacts>();
    case Desktop:
        return _makers.desktop();
    case Folder:
        return _makers.folder(folder);
    default:
        return nullptr;
    }
}

ContactSource::Makers ContactSource::realMakers()
{
    Makers makers;
    makers.lookForDesktop = &DesktopContacts::lookForService;
    makers.desktop = [] { return std::make_unique<DesktopContacts>(); };
    makers.folder = [](const QString &folder) { return std::make_unique<ContactFolder>(folder); };
    return makers;
}
