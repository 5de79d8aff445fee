#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

// A telephone number or an e-mail address of a card.
struct ContactValue
{
    // What it is for, whatever program wrote the card: "home", "work", "mobile", "main", "fax", "home fax", "work fax",
    // "pager", "car", "video", "text", "other", or else the user's own words as they stand; empty when it is not said.
    QString label;
    QString value;

    friend bool operator==(const ContactValue &, const ContactValue &) = default;
};

// What a card says, as far as the lists need it. Made once by whoever reads cards, and never changed: a card that
// changes gets another record.
struct ContactRecord
{
    // Of `flags`: how the card is shown, and which of the names stands first.
    enum Flag {
        ShowAsPerson = 0,
        ShowAsCompany = 1,
        ShowAsMask = 7,
        LastNameFirst = 16,
        FirstNameFirst = 32,
        NameOrderingMask = 56, // 0: as the store's default is
    };

    QString uniqueId;
    bool isGroup = false;
    int flags = 0;
    // Null: the card has none.
    QString firstName;
    QString lastName;
    QString suffix;
    QString organization;
    QString homePage;
    std::vector<ContactValue> phones;
    std::vector<ContactValue> emails;
    // Positions in the two lists; 0 unless the card says otherwise. Nothing is to be read there in an empty list.
    int primaryPhone = 0;
    int primaryEmail = 0;
    // A group's own: null for its name, and the identifiers of its people and subgroups in the card's order. One that
    // begins with "mailto:" is an address without a card.
    QString groupName;
    QStringList members;

    friend bool operator==(const ContactRecord &, const ContactRecord &) = default;
};

using ContactRecordPtr = std::shared_ptr<const ContactRecord>;
