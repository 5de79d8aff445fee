#pragma once

#include "tests/platform/contacts/ContactsElsewhere.h"

#include <QObject>
#include <memory>

// What holds for every store that reads the user's contacts, wherever they lie. A store's test derives from this one,
// tells how to make such contacts, and adds what holds for its store alone.
class StoreCases : public QObject
{
    Q_OBJECT

protected:
    // Contacts of its own for each case, that hold nothing.
    virtual std::unique_ptr<ContactsElsewhere> makeContacts() = 0;

    ContactStore &store() const { return _contacts->store(); }
    ContactsElsewhere &elsewhere() const { return *_contacts; }
    // Waits until the store has the card, changed or not; none when it never has.
    ContactRecordPtr awaited(const QString &uniqueId) const;
    ContactRecordPtr written(const QByteArray &vCard) const { return awaited(elsewhere().write(vCard)); }

    int noticesFromHere = 0;
    int noticesFromElsewhere = 0;

protected Q_SLOTS:
    void init();
    void cleanup();

private Q_SLOTS:
    void emptyContactsAreReady();
    void cardIsFoundByItsIdentifier();
    void personHasAllThatTheListsShow();
    void companyIsShownAsOne();
    void cardWithoutNames();
    void signsOfManyScripts();
    void group_data();
    void group();
    void groupTellsEachMemberOnce_data();
    void groupTellsEachMemberOnce();
    void groupInGroup_data();
    void groupInGroup();
    void groupsInACircle_data();
    void groupsInACircle();
    void searchFindsFiveProperties_data();
    void searchFindsFiveProperties();
    void changeByAnotherProgramIsSeen();
    void changedCardIsSearchedAsItIsNow();
    void removalByAnotherProgramIsSeen();
    void cardOfAnotherProgramIsTold();
    void quietContactsTellNothing();
    void addedCardIsThereForAll();
    void addedCardIsToldAsChangedHere();
    void addedCardGetsAnIdentifier();
    void whatIsNoCardIsNotAdded();
    void picture();
    void noPicture();
    void cardIsHandedOutAsItIs();
    void cardThatWasRemovedIsNotHandedOut();
    void cardCanBeOpened();
    void ownCard();
    void noOwnCard();

private:
    std::unique_ptr<ContactsElsewhere> _contacts;
};
