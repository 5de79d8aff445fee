#include "platform/contacts/DesktopContacts.h"

#include "platform/contacts/ContactCards.h"
#include "platform/contacts/ContactPrograms.h"
#include "platform/contacts/DesktopAddressBooks.h"
#include "platform/contacts/FetchedCards.h"
#include "platform/contacts/KeptCard.h"
#include "platform/contacts/OwnContactSetting.h"

#include <QElapsedTimer>
#include <QHash>
#include <QSet>
#include <QUuid>
#include <algorithm>
#include <deque>
#include <optional>
#include <utility>

namespace
{
constexpr int readingTime = 4; // milliseconds of a pass of the event loop
} // namespace

struct DesktopContacts::Shelf
{
    struct Place
    {
        KeptCard card;
        int round = 0;
    };

    std::shared_ptr<DesktopAddressBook> book;
    QHash<QString, Place> cards;
    int round = 0; // of the cards that have come since the book began last
    // While it is loading, of the list and of those that came: that have not come yet, and that nobody can read.
    QSet<QString> awaited;
    QSet<QString> unreadable;
    bool isLoading = true; // more is to come
    bool hasEnded = false; // once at least
    bool hasCome = false;  // whole, once at least
};

struct DesktopContacts::Step
{
    enum Kind { Begin, Come, Go, End, List };

    ShelfPtr shelf;
    Kind kind;
    DesktopAddressBook::ContactPtr contact;    // that comes
    QString uniqueId = {};                     // that goes
    bool isWhole = false;                      // what ends
    std::optional<QStringList> uniqueIds = {}; // of the list; none: it could not be had
};

struct DesktopContacts::Steps : std::deque<Step>
{};

struct DesktopContacts::Adding
{
    ShelfPtr shelf;
    QString uniqueId;
    std::function<void(const QString &)> done;
    bool isAnswered = false; // the service has it, and will tell so like of any card
};

DesktopContacts::DesktopContacts()
    : _steps(std::make_unique<Steps>())
    , _fetched(
          std::make_unique<FetchedCards>([this](const QString &id, const FetchedCards::Done &done) { fetch(id, done); },
                                         [this](const QString & /*id*/) { tellChange(false); }))
    , _books(std::make_unique<DesktopAddressBooks>())
{
    QObject::connect(&_reading, &QTimer::timeout, &_reading, [this] { takeSteps(); });
    QObject::connect(_books.get(), &DesktopAddressBooks::changed, &_reading, [this] { booksChanged(); });
    _toldState = DesktopContacts::state();
}

DesktopContacts::~DesktopContacts() = default;

void DesktopContacts::lookForService(const std::function<void(bool)> &found)
{
    DesktopAddressBooks::lookForService(found);
}

ContactStore::State DesktopContacts::state() const
{
    if (!_books->isServiceThere())
        return Absent;
    const bool isReady = _books->areKnown() && std::all_of(_shelves.cbegin(), _shelves.cend(),
                                                           [](const ShelfPtr &shelf) { return shelf->hasEnded; });
    return isReady ? Ready : Loading;
}

void DesktopContacts::booksChanged()
{
    std::vector<ShelfPtr> shelves;
    for (const auto &book : _books->books()) {
        const auto known = std::find_if(_shelves.cbegin(), _shelves.cend(),
                                        [&](const ShelfPtr &shelf) { return shelf->book == book; });
        shelves.push_back(known == _shelves.cend() ? newShelf(book) : *known);
    }
    std::swap(_shelves, shelves);
    if (!_ownContact && !_shelves.empty()) // not before, as reading settings may start a bus where there is none
        _ownContact = std::make_unique<OwnContactSetting>([this] { tellChange(false); });
    for (const ShelfPtr &shelf : shelves) {
        if (std::find(_shelves.cbegin(), _shelves.cend(), shelf) == _shelves.cend())
            clearShelf(shelf);
    }
    // The books may count in another order now.
    for (const ShelfPtr &shelf : _shelves) {
        for (auto one = shelf->cards.cbegin(); one != shelf->cards.cend(); ++one)
            _touched.append(one.key());
    }
    settle();
}

DesktopContacts::ShelfPtr DesktopContacts::newShelf(const std::shared_ptr<DesktopAddressBook> &book)
{
    auto shelf = std::make_shared<Shelf>();
    shelf->book = book;
    const std::weak_ptr<Shelf> weak = shelf;
    QObject::connect(book.get(), &DesktopAddressBook::began, &_reading, [this, weak] {
        enqueue({{weak.lock(), Step::Begin, {}, {}}});
    });
    QObject::connect(book.get(), &DesktopAddressBook::cardsCame, &_reading, [this, weak](const auto &cards) {
        std::vector<Step> steps;
        steps.reserve(cards.size());
        for (const DesktopAddressBook::ContactPtr &card : cards)
            steps.push_back({weak.lock(), Step::Come, card, {}});
        enqueue(std::move(steps));
    });
    QObject::connect(book.get(), &DesktopAddressBook::cardsWent, &_reading, [this, weak](const QStringList &ids) {
        std::vector<Step> steps;
        steps.reserve(ids.size());
        for (const QString &id : ids)
            steps.push_back({weak.lock(), Step::Go, {}, ContactCards::identifier(id)});
        enqueue(std::move(steps));
    });
    QObject::connect(book.get(), &DesktopAddressBook::ended, &_reading, [this, weak](bool isWhole) {
        enqueue({{weak.lock(), Step::End, {}, {}, isWhole}});
    });
    return shelf;
}

// The book was switched off or removed.
void DesktopContacts::clearShelf(const ShelfPtr &shelf)
{
    QObject::disconnect(shelf->book.get(), nullptr, &_reading, nullptr);
    shelf->book.reset();
    std::vector<Step> steps;
    for (auto one = shelf->cards.cbegin(); one != shelf->cards.cend(); ++one)
        steps.push_back({shelf, Step::Go, {}, one.key()});
    std::erase_if(*_steps, [&](const Step &step) { return step.shelf == shelf; });
    enqueue(std::move(steps));
    endAddingTo(shelf);
}

void DesktopContacts::enqueue(std::vector<Step> steps)
{
    std::move(steps.begin(), steps.end(), std::back_inserter(*_steps));
    if (!_reading.isActive())
        _reading.start(0);
}

void DesktopContacts::takeSteps()
{
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < cardsAPass && !_steps->empty() && clock.elapsed() < readingTime; ++i) {
        const Step step = std::move(_steps->front());
        _steps->pop_front();
        take(step);
    }
    if (_steps->empty())
        _reading.stop();
    settle();
}

void DesktopContacts::take(const Step &step)
{
    Shelf &shelf = *step.shelf;
    switch (step.kind) {
    case Step::Begin:
        ++shelf.round;
        shelf.isLoading = true;
        shelf.awaited.clear();
        shelf.unreadable.clear();
        break;
    case Step::Come:
        takeCard(step);
        if (!shelf.awaited.isEmpty())
            awaitNoMore(shelf, ContactCards::identifier(DesktopAddressBook::identifierOf(step.contact)));
        break;
    case Step::Go:
        shelf.cards.remove(step.uniqueId);
        _fetched->forget(step.uniqueId);
        _touched.append(step.uniqueId);
        awaitNoMore(shelf, step.uniqueId);
        break;
    case Step::End:
        takeEnd(step);
        break;
    case Step::List:
        takeList(step);
        break;
    }
}

void DesktopContacts::takeCard(const Step &step)
{
    std::vector<ContactCards::Card> cards = ContactCards::read(DesktopAddressBook::textOf(step.contact));
    if (cards.empty()) {
        step.shelf->unreadable.insert(ContactCards::identifier(DesktopAddressBook::identifierOf(step.contact)));
        return;
    }
    ContactCards::Card &card = cards.front();
    // Asking the library costs as much as reading the card.
    const bool isOther = card.record.uniqueId.isNull() || card.text.contains("urn:uuid:");
    const QString serviceIdentifier = isOther ? DesktopAddressBook::identifierOf(step.contact) : card.record.uniqueId;
    const QString id = ContactCards::identifier(serviceIdentifier);
    if (id.isNull())
        return;
    card.record.uniqueId = id;
    KeptCard kept(std::move(card), serviceIdentifier);
    Shelf::Place &place = step.shelf->cards[id];
    place.round = step.shelf->round;
    if (place.card.record() && place.card.isSameAs(kept))
        return;
    place.card = std::move(kept);
    _fetched->forget(id);
    _touched.append(id);
}

void DesktopContacts::takeEnd(const Step &step)
{
    Shelf &shelf = *step.shelf;
    if (!step.isWhole) {
        endLoading(shelf, false);
        endAddingTo(step.shelf);
    } else if (shelf.isLoading) { // services say it again after later changes
        shelf.book->list([this, weak = std::weak_ptr(step.shelf), round = shelf.round](const auto &uniqueIds) {
            if (const ShelfPtr listed = weak.lock(); listed && listed->book && listed->round == round)
                enqueue({{listed, Step::List, {}, {}, true, uniqueIds}});
        });
    }
}

// A service that was told of a change says that all has come when it has not, so its list counts: what was there before
// and is not any more was removed meanwhile, and what has not come yet is awaited.
void DesktopContacts::takeList(const Step &step)
{
    Shelf &shelf = *step.shelf;
    if (!shelf.isLoading)
        return;
    if (!step.uniqueIds)
        return endLoading(shelf, true);
    const bool isSecond = !shelf.awaited.isEmpty();
    shelf.awaited.clear();
    for (const QString &id : *step.uniqueIds)
        shelf.awaited.insert(ContactCards::identifier(id));
    for (auto one = shelf.cards.cbegin(); one != shelf.cards.cend(); ++one) {
        const bool isThere = shelf.awaited.contains(one.key());
        if (one->round == shelf.round)
            shelf.awaited.remove(one.key());
        else if (!isThere)
            _steps->push_front({step.shelf, Step::Go, {}, one.key()});
    }
    shelf.awaited -= shelf.unreadable;
    if (shelf.awaited.isEmpty() || isSecond)
        endLoading(shelf, true);
}

void DesktopContacts::awaitNoMore(Shelf &shelf, const QString &uniqueId)
{
    if (shelf.awaited.remove(uniqueId) && shelf.awaited.isEmpty())
        endLoading(shelf, true);
}

void DesktopContacts::endLoading(Shelf &shelf, bool isWhole)
{
    shelf.isLoading = false;
    shelf.hasEnded = true;
    shelf.hasCome = shelf.hasCome || isWhole;
    shelf.awaited.clear();
    shelf.unreadable.clear();
}

// Has the index hold the cards that count, of those that may be others now, and tells it.
void DesktopContacts::settle()
{
    const QStringList touched = std::exchange(_touched, {});
    std::vector<ContactRecordPtr> come;
    std::vector<ContactRecordPtr> addedHere;
    QStringList gone;
    for (const QString &id : touched) {
        const KeptCard *card = kept(id);
        if (!card && index().record(id))
            gone.append(id);
        else if (card && card->record() != index().record(id))
            (addingOf(id) ? addedHere : come).push_back(card->record());
    }
    if (!gone.isEmpty())
        remove(gone);
    if (!come.empty())
        put(come);
    if (!addedHere.empty())
        put(addedHere, true);
    tellState();
    for (const ContactRecordPtr &record : addedHere) {
        if (const auto adding = addingOf(record->uniqueId); adding && adding->isAnswered)
            endAdding(adding, adding->uniqueId);
    }
}

bool DesktopContacts::isReading() const
{
    return !_steps->empty() ||
           std::any_of(_shelves.cbegin(), _shelves.cend(), [](const ShelfPtr &shelf) { return shelf->isLoading; });
}

bool DesktopContacts::mayLackCards() const
{
    return !_books->haveCome() ||
           std::any_of(_shelves.cbegin(), _shelves.cend(), [](const ShelfPtr &shelf) { return !shelf->hasCome; });
}

void DesktopContacts::tellState()
{
    const bool isOther = state() != _toldState || (_wasReading && !isReading());
    _toldState = state();
    _wasReading = isReading();
    if (isOther)
        tellChange(false);
}

ContactRecordPtr DesktopContacts::me() const
{
    if (!_ownContact)
        return nullptr;
    return index().record(ContactCards::identifier(_ownContact->uniqueId()));
}

QByteArray DesktopContacts::imageData(const ContactRecord &record) const
{
    const KeptCard *card = kept(record.uniqueId);
    if (!card || !card->hasPicture())
        return {};
    const QByteArray picture = ContactCards::picture(card->text());
    return picture.isEmpty() && card->isCut() ? ContactCards::picture(_fetched->card(record.uniqueId)) : picture;
}

QByteArray DesktopContacts::vCardRepresentation(const ContactRecord &record) const
{
    const KeptCard *card = kept(record.uniqueId);
    if (!card)
        return {};
    const QByteArray whole = card->isCut() ? _fetched->card(record.uniqueId) : QByteArray();
    const QByteArray text = whole.isEmpty() ? card->text() : whole;
    const QByteArray picture = imageData(record);
    return picture.isEmpty() ? text : KeptCard::withPicture(text, picture);
}

ContactStore::Opening DesktopContacts::opening(const ContactRecord &record, Purpose /*purpose*/) const
{
    return ContactPrograms::opening(*this, record);
}

bool DesktopContacts::canAdd() const
{
    return !_shelves.empty() && _shelves.front()->book->canAdd();
}

void DesktopContacts::add(const QByteArray &vCard, const std::function<void(const QString &)> &done)
{
    const std::vector<ContactCards::Card> cards = ContactCards::read(vCard);
    if (cards.empty() || !canAdd())
        return done(QString());
    const QString own = cards.front().record.uniqueId;
    const bool isTaken = own.isNull() || kept(own) || addingOf(own);
    const QString given = isTaken ? QUuid::createUuid().toString(QUuid::WithoutBraces) : QString();
    const auto adding = std::make_shared<Adding>();
    adding->shelf = _shelves.front();
    adding->uniqueId = isTaken ? given : own;
    adding->done = done;
    _adding.push_back(adding);
    adding->shelf->book->add(cards.front().text, given, [this, weak = std::weak_ptr(adding)](const QString &id) {
        if (const auto adding = weak.lock())
            added(adding, id);
    });
}

std::shared_ptr<DesktopContacts::Adding> DesktopContacts::addingOf(const QString &uniqueId) const
{
    const auto found = std::find_if(_adding.cbegin(), _adding.cend(),
                                    [&](const auto &adding) { return adding->uniqueId == uniqueId; });
    return found == _adding.cend() ? nullptr : *found;
}

// The card is there for whoever asked for it when it can be looked up.
void DesktopContacts::added(const std::shared_ptr<Adding> &adding, const QString &uniqueId)
{
    adding->uniqueId = ContactCards::identifier(uniqueId);
    adding->isAnswered = true;
    if (adding->uniqueId.isNull() || kept(adding->uniqueId))
        endAdding(adding, adding->uniqueId);
}

void DesktopContacts::endAdding(const std::shared_ptr<Adding> &adding, const QString &uniqueId)
{
    if (std::erase(_adding, adding) > 0)
        adding->done(uniqueId);
}

// The book has gone, or its service.
void DesktopContacts::endAddingTo(const ShelfPtr &shelf)
{
    const auto all = _adding;
    for (const auto &adding : all) {
        if (adding->shelf == shelf)
            endAdding(adding, adding->isAnswered ? adding->uniqueId : QString());
    }
}

DesktopContacts::ShelfPtr DesktopContacts::shelfOf(const QString &uniqueId) const
{
    const auto found = std::find_if(_shelves.cbegin(), _shelves.cend(),
                                    [&](const ShelfPtr &shelf) { return shelf->cards.contains(uniqueId); });
    return found == _shelves.cend() ? nullptr : *found;
}

// The card that counts; none: there is no such card. Holds until cards are taken.
const KeptCard *DesktopContacts::kept(const QString &uniqueId) const
{
    for (const ShelfPtr &shelf : _shelves) {
        const auto place = shelf->cards.constFind(uniqueId);
        if (place != shelf->cards.cend())
            return &place->card;
    }
    return nullptr;
}

void DesktopContacts::fetch(const QString &uniqueId, const std::function<void(const QByteArray &)> &done) const
{
    if (const ShelfPtr shelf = shelfOf(uniqueId))
        shelf->book->fetch(shelf->cards.value(uniqueId).card.serviceIdentifier(), done);
    else
        done(QByteArray());
}
