#pragma once

#include "platform/contacts/ContactStore.h"

#include <QTimer>
#include <memory>

class DesktopAddressBook;
class DesktopAddressBooks;
class FetchedCards;
class KeptCard;
class OwnContactSetting;

// The contacts of the desktop (Evolution Data Server): all address books that the user has switched on are one store.
// When the service dies or does not answer, the store goes on with what it has, and follows when the service is back.
//
// Of two cards with one identifier in two books, the default book's counts, else that of the book whose identifier
// comes first; the other takes over when it goes.
class DesktopContacts : public ContactStore
{
public:
    DesktopContacts();
    ~DesktopContacts() override;

    // Whether this desktop has such contacts: the service is there or could be started. `found` is called later, or at
    // once where there is no bus.
    static void lookForService(const std::function<void(bool isThere)> &found);

    State state() const override;
    ContactRecordPtr me() const override;
    QByteArray imageData(const ContactRecord &record) const override;
    QByteArray vCardRepresentation(const ContactRecord &record) const override;
    Opening opening(const ContactRecord &record, Purpose purpose) const override;
    // Cards are added to the default book.
    bool canAdd() const override;
    void add(const QByteArray &vCard, const std::function<void(const QString &uniqueId)> &done) override;

    // Cards that are read in one pass of the event loop, at most.
    static constexpr int cardsAPass = 50;

private:
    struct Shelf;  // the cards of one book
    struct Step;   // what a book has told
    struct Adding; // a card that is being added
    struct Steps;
    using ShelfPtr = std::shared_ptr<Shelf>;

    void booksChanged();
    ShelfPtr newShelf(const std::shared_ptr<DesktopAddressBook> &book);
    void clearShelf(const ShelfPtr &shelf);

    void enqueue(std::vector<Step> steps);
    void takeSteps();
    void take(const Step &step);
    void takeCard(const Step &step);
    void takeEnd(const Step &step);
    void takeList(const Step &step);
    static void awaitNoMore(Shelf &shelf, const QString &uniqueId);
    static void endLoading(Shelf &shelf, bool isWhole);

    void settle();
    bool isReading() const override;
    bool mayLackCards() const override;
    void tellState();

    std::shared_ptr<Adding> addingOf(const QString &uniqueId) const;
    void added(const std::shared_ptr<Adding> &adding, const QString &uniqueId);
    void endAdding(const std::shared_ptr<Adding> &adding, const QString &uniqueId);
    void endAddingTo(const ShelfPtr &shelf);

    ShelfPtr shelfOf(const QString &uniqueId) const;
    const KeptCard *kept(const QString &uniqueId) const;
    void fetch(const QString &uniqueId, const std::function<void(const QByteArray &)> &done) const;

    QTimer _reading;
    std::unique_ptr<Steps> _steps;
    std::vector<ShelfPtr> _shelves; // in the order in which the books count
    std::vector<std::shared_ptr<Adding>> _adding;
    std::unique_ptr<FetchedCards> _fetched;
    QStringList _touched; // cards that may be others than the index has
    State _toldState = Loading;
    bool _wasReading = false;
    std::unique_ptr<OwnContactSetting> _ownContact; // none: not known yet
    std::unique_ptr<DesktopAddressBooks> _books;
};
