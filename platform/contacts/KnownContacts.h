#pragma once

#include "platform/contacts/ContactRecord.h"

#include <QHash>
#include <QObject>
#include <QTimer>
#include <functional>

// The cards that the lists asked for by their identifiers, as they were last seen, kept in a file: what they show until
// the store has come. Never the whole of the user's contacts, and no pictures; of very many, those that were asked for
// last. The file is the owner's alone and may be thrown away at any time.
class KnownContacts : public QObject
{
    Q_OBJECT

public:
    // Reads the file; one that is missing, damaged or too large holds nothing.
    explicit KnownContacts(const QString &path);
    // Writes what has changed.
    ~KnownContacts() override;

    // `~/Library/Caches/Wayfold/Contacts.plist`
    static QString defaultPath();

    // None: it was not asked for, or has been forgotten.
    ContactRecordPtr record(const QString &uniqueId) const;
    // It was asked for; written when the event loop has been idle for a while.
    void note(const ContactRecordPtr &record);
    void forget(const QString &uniqueId);
    // Each as it is now; those of which there is none are forgotten.
    void refresh(const std::function<ContactRecordPtr(const QString &uniqueId)> &now);
    // Writes what has changed. False when that failed; then it stays to be written.
    bool synchronize();

    static constexpr qsizetype mostRecords = 1000;
    static constexpr qsizetype mostMembers = 1000; // of a group

private:
    struct Known
    {
        ContactRecordPtr record;
        quint64 asked = 0; // grows with every question
    };

    void read();
    void forgetOldest();
    void changed();

    QString _path;
    QHash<QString, Known> _known;
    quint64 _questions = 0;
    bool _isChanged = false;
    QTimer _writeTimer;
};
