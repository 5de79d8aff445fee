#pragma once

#include "platform/contacts/DesktopAddressBook.h"
#include "platform/contacts/GLibEvents.h"

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

// The address books of the desktop's service that the user has switched on. Follows the service's list of them, and
// the service itself: when it dies the books stay as they were, until it is back and says which there are.
class DesktopAddressBooks : public QObject
{
    Q_OBJECT

public:
    DesktopAddressBooks();
    ~DesktopAddressBooks() override;

    // Whether the service is there or could be started. `found` is called later, or at once where there is no bus.
    static void lookForService(const std::function<void(bool isThere)> &found);

    // False: it is known that there is no such service at present.
    bool isServiceThere() const { return _isThere; }
    // Whether the service has said which books there are, or failed to.
    bool areKnown() const { return _areKnown; }
    // Whether the service has said so at least once.
    bool haveCome() const { return _haveCome; }
    // The default one first, then by their identifiers.
    const std::vector<std::shared_ptr<DesktopAddressBook>> &books() const { return _books; }

Q_SIGNALS:
    // Something of the above is another than before.
    void changed();

private:
    // The objects of the library, and how they call.
    struct Connection;

    void start();
    void serviceCame();
    void serviceWent();
    void askForRegistry();
    void update();

    GLibEvents _events;
    std::shared_ptr<Connection> _connection;
    std::vector<std::shared_ptr<DesktopAddressBook>> _books;
    GrowingPause _pause;
    QTimer _retry;
    QTimer _update;
    bool _isThere = true;
    bool _areKnown = false;
    bool _haveCome = false;
};
