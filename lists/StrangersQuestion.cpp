#include "lists/StrangersQuestion.h"

#include "core/KDRDrawerBundle.h"
#include "core/settings/WayfoldToolkit.h"
#include "lists/WayfoldOutlineView.h"
#include "lists/WayfoldOutlineViewDelegate.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "platform/base/NotificationQueue.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/contacts/ContactStore.h"
#include "platform/widgets/Alert.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>

namespace
{
constexpr int sliceOfAdding = 8; // milliseconds
const QString dueNotification = QStringLiteral("StrangersQuestionDueNotification");

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

// One of the two texts, with the only name or the number of them in it.
QString textAbout(const QStringList &names, QString one, QString several)
{
    if (names.size() == 1)
        return one.replace(QStringLiteral("%@"), names.first());
    return several.replace(QStringLiteral("%u"), QString::number(names.size()));
}

bool standsIn(const KDRBookmarkPtr &item, const WayfoldBookmarkFolderPtr &root)
{
    KDRBookmarkPtr at = item;
    while (at && at != root) {
        const WayfoldBookmarkFolderPtr folder = at->parent();
        if (!folder || folder->indexOfChild(*at) < 0)
            return false;
        at = folder;
    }
    return at != nullptr;
}

bool isInList(const KDRBookmarkPtr &item)
{
    const KDRDrawerBundle &store = KDRDrawerBundle::sharedInstance();
    return standsIn(item, store.bookmarkRoot()) || standsIn(item, store.provisionalBookmarkRoot());
}

// In the place of the old item; at the end of the list when that has none any more.
void put(const KDRBookmarkPtr &item, const KDRBookmarkPtr &old, const WayfoldOutlineView *view)
{
    if (isInList(old)) {
        const WayfoldBookmarkFolderPtr folder = old->parent();
        const int index = old->childIsAtIndex();
        folder->removeChild(old);
        folder->addChildAtIndex(item, index);
        return;
    }
    const WayfoldBookmarkFolderPtr shown = view && view->delegate() ? view->delegate()->localRootFolder() : nullptr;
    (shown ? shown : KDRDrawerBundle::sharedInstance().bookmarkRoot())->addChild(item);
}

void save(const WayfoldOutlineView *view)
{
    if (view && view->delegate())
        view->delegate()->saveScratchBookmarkRoot();
    else
        KDRDrawerBundle::sharedInstance().saveBookmarkFile();
}

QStringList namesOf(const std::vector<Stranger> &strangers)
{
    QStringList names;
    for (const Stranger &stranger : strangers)
        names.append(Stranger::nameOn(stranger.card.record));
    return names;
}

// What becomes of those who are not added.
QString otherWay(const std::vector<Stranger> &strangers)
{
    const bool areLinks = std::all_of(strangers.cbegin(), strangers.cend(), [](const Stranger &stranger) {
        return stranger.standIn->type() == KDRBookmark::EmailLinkType;
    });
    if (!areLinks)
        return localized("Don't Add");
    return localized(strangers.size() == 1 ? QT_TRID_NOOP("Email Link") : QT_TRID_NOOP("Email Links"));
}
} // namespace

// Cards that are being added, and what the contacts answered, one by one. A card may mean a file to be written, so the
// event loop runs between them; what becomes of the question meanwhile changes nothing.
struct StrangersQuestion::Adding : std::enable_shared_from_this<Adding>
{
    void addSome();
    void addNext();
    void answered(const Stranger &stranger, const KDRBookmarkPtr &contact);

    std::vector<Stranger> strangers;
    std::size_t next = 0;
    std::size_t unanswered = 0;
    Replacements replacements;
    QStringList refused;
    QPointer<StrangersQuestion> question;
    QPointer<WayfoldOutlineView> view;
};

void StrangersQuestion::Adding::addSome()
{
    QElapsedTimer time;
    time.start();
    while (next < strangers.size() && !time.hasExpired(sliceOfAdding))
        addNext();
    if (next < strangers.size())
        QTimer::singleShot(0, qApp, [adding = shared_from_this()] { adding->addSome(); });
}

// Who has come into the contacts meanwhile is not added once more.
void StrangersQuestion::Adding::addNext()
{
    const Stranger &stranger = strangers[next++];
    if (const KDRBookmarkPtr contact = Stranger::contactMeantBy(stranger.card)) {
        answered(stranger, contact);
        return;
    }
    const auto done = [adding = shared_from_this(), stranger](const QString &uniqueId) {
        adding->answered(stranger, uniqueId.isNull() ? nullptr : WayfoldBookmarkABPerson::bookmarkWithID(uniqueId));
    };
    ContactStore::sharedAddressBook().add(stranger.card.text, done);
}

// None: the card could not be added.
void StrangersQuestion::Adding::answered(const Stranger &stranger, const KDRBookmarkPtr &contact)
{
    if (contact)
        replacements.emplace_back(stranger.standIn, contact);
    else
        refused.append(Stranger::nameOn(stranger.card.record));
    if (--unanswered > 0)
        return;
    replace(replacements, view);
    if (question)
        question->refuse(refused);
}

StrangersQuestion::StrangersQuestion()
{
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(
        this, [this](const Notification & /*notification*/) { proceed(); }, dueNotification, this);
    for (const QString &name : {PlatformNotifications::kABDatabaseChangedNotification,
                                PlatformNotifications::kABDatabaseChangedExternallyNotification}) {
        center.addObserver(
            this,
            [this](const Notification & /*notification*/) {
                if (!_strangers.empty())
                    later();
            },
            name);
    }
}

StrangersQuestion::~StrangersQuestion()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    NotificationQueue::defaultQueue().dequeueNotificationsForObject(this);
}

void StrangersQuestion::askAbout(const std::vector<Stranger> &strangers, WayfoldOutlineView *view)
{
    if (strangers.empty())
        return;
    _view = view;
    _strangers.insert(_strangers.end(), strangers.cbegin(), strangers.cend());
    later();
}

void StrangersQuestion::later()
{
    NotificationQueue::defaultQueue().enqueueNotification({dueNotification, this}, NotificationQueue::NSPostASAP);
}

// Contacts that are still coming may hold somebody who seems to be none of them: the change that ends that is awaited.
void StrangersQuestion::proceed()
{
    const std::shared_ptr<const void> keeper = _view && _view->delegate() ? _view->delegate()->keptAlive() : nullptr;
    tellRefused();
    const ContactStore &contacts = ContactStore::sharedAddressBook();
    if (contacts.state() == ContactStore::Loading)
        return;
    Replacements known;
    std::vector<Stranger> unknown;
    for (const Stranger &stranger : std::exchange(_strangers, {})) {
        if (!isInList(stranger.standIn))
            continue;
        if (const KDRBookmarkPtr contact = Stranger::contactMeantBy(stranger.card))
            known.emplace_back(stranger.standIn, contact);
        else if (!stranger.card.record.isGroup)
            unknown.push_back(stranger);
    }
    replace(known, _view);
    if (!unknown.empty() && contacts.canAdd())
        ask(unknown);
}

void StrangersQuestion::ask(const std::vector<Stranger> &strangers)
{
    Alert alert;
    alert.style = Alert::NSInformationalAlertStyle;
    alert.messageText = localized("Add to Contacts?");
    alert.informativeText =
        textAbout(namesOf(strangers), localized("\"%@\" is not in your contacts. Do you want to add the card?"),
                  localized("%u people are not in your contacts. Do you want to add their cards?"));
    alert.defaultButton = localized("Add");
    alert.alternateButton = otherWay(strangers); // for Escape, and when the window goes, as well
    if (alert.runModal(_view ? _view->window() : nullptr) == Alert::NSAlertDefaultReturn)
        add(strangers);
    else
        putBack(strangers);
}

// What the folder that held it took along when it went, while the question was asked.
void StrangersQuestion::putBack(const std::vector<Stranger> &strangers)
{
    Replacements gone;
    for (const Stranger &stranger : strangers) {
        if (!isInList(stranger.standIn))
            gone.emplace_back(stranger.standIn, stranger.standIn);
    }
    replace(gone, _view);
}

void StrangersQuestion::add(const std::vector<Stranger> &strangers)
{
    const auto adding = std::make_shared<Adding>();
    adding->strangers = strangers;
    adding->unanswered = strangers.size();
    adding->question = this;
    adding->view = _view;
    adding->addSome();
}

// All at once, with one saving. Those that were selected are so afterwards.
void StrangersQuestion::replace(const Replacements &replacements, WayfoldOutlineView *view)
{
    if (replacements.empty())
        return;
    const std::vector<KDRBookmarkPtr> selected = view ? view->selectedItemList() : std::vector<KDRBookmarkPtr>();
    std::vector<KDRBookmarkPtr> toSelect;
    for (const auto &[old, item] : replacements) {
        put(item, old, view);
        if (std::find(selected.cbegin(), selected.cend(), old) != selected.cend())
            toSelect.push_back(item);
    }
    if (view && !toSelect.empty())
        view->selectItems(toSelect);
    save(view);
}

void StrangersQuestion::refuse(const QStringList &names)
{
    _refused += names;
    if (!_refused.isEmpty())
        later();
}

void StrangersQuestion::tellRefused()
{
    const QStringList names = std::exchange(_refused, {});
    if (names.isEmpty())
        return;
    Alert alert;
    alert.messageText = localized("Not Added");
    alert.informativeText = textAbout(
        names, localized("The card of \"%@\" could not be added to your contacts. It stays in the list as it is."),
        localized("%u cards could not be added to your contacts. They stay in the list as they are."));
    alert.runModal(_view ? _view->window() : nullptr);
}
