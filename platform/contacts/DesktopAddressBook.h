#pragma once

#include "platform/contacts/GrowingPause.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

struct _EContact;
struct _ESource;

// One address book of the desktop's service (Evolution Data Server). Connects by itself, and again when the service
// dies, after pauses that grow. Never waits for the service.
class DesktopAddressBook : public QObject
{
    Q_OBJECT

public:
    using ContactPtr = std::shared_ptr<_EContact>;

    // Takes a reference to the source.
    explicit DesktopAddressBook(_ESource *source);
    ~DesktopAddressBook() override;

    // That of the source.
    QString identifier() const { return _identifier; }
    void setSource(_ESource *source);
    // When it waits before it tries again: tries now.
    void tryNow();

    bool canAdd() const;
    // Gives the card that identifier, none: leaves it as it is. `done` gets the one that it has then, null when it
    // could not be added; it is not called when this goes before.
    void add(const QByteArray &vCard, const QString &uniqueId,
             const std::function<void(const QString &uniqueId)> &done);
    // The whole card, null when it cannot be had; not called when this goes before.
    void fetch(const QString &uniqueId, const std::function<void(const QByteArray &vCard)> &done);

    // The identifiers of all cards that the book has now; none when they cannot be had. Not called when this goes
    // before.
    void list(const std::function<void(const std::optional<QStringList> &uniqueIds)> &done);

    static QByteArray textOf(const ContactPtr &contact);
    static QString identifierOf(const ContactPtr &contact);

Q_SIGNALS:
    // From here on all cards come, known ones too.
    void began();
    void cardsCame(const std::vector<ContactPtr> &cards);
    void cardsWent(const QStringList &uniqueIds);
    // `isWhole`: every card of the book has come since it began, as far as the service says: after a change it says so
    // too early. Otherwise it failed, and may begin again.
    void ended(bool isWhole);

private:
    // The objects of the library, and how they call.
    struct Connection;

    void start();
    void ask();
    void show();
    void lose();

    QString _identifier;
    std::shared_ptr<_ESource> _source;
    std::shared_ptr<Connection> _connection;
    GrowingPause _pause;
    QTimer _retry;
};
