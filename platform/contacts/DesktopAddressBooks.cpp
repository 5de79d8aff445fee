#include "platform/contacts/DesktopAddressBooks.h"

#include "platform/base/Log.h"
#include "platform/contacts/GObjectOwner.h"

#include <QFileInfo>
#include <algorithm>
#include <libebook/libebook.h>

namespace
{
constexpr auto sourcesName = "org.gnome.evolution.dataserver.Sources5";
constexpr auto booksName = "org.gnome.evolution.dataserver.AddressBook10";

// Whether asking for the session's bus would find one. Without this GLib starts a bus of its own, on which nobody is.
bool isBusThere()
{
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty())
        return !address.startsWith("autolaunch:");
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !folder.isEmpty() && QFileInfo::exists(folder + QStringLiteral("/bus"));
}

// All who ask get the same one, so whoever goes must not cancel it for the others.
void getBus(const std::function<void(GObjectOwner<GDBusConnection>)> &then)
{
    const auto got = [then](GObject *, GAsyncResult *result) {
        GErrorOwner error;
        GObjectOwner<GDBusConnection> bus(g_bus_get_finish(result, error.out()));
        if (bus)
            g_dbus_connection_set_exit_on_close(bus.get(), FALSE); // this program goes on without the bus
        else
            qCInfo(logWayfold, "the session's bus does not answer: %s", error.message());
        then(std::move(bus));
    };
    g_bus_get(G_BUS_TYPE_SESSION, nullptr, GLater::call, GLater::with(got));
}

// Calls an operation of the bus itself that answers one value; none when it fails.
void askBus(GDBusConnection *bus, const char *method, GVariant *argument, GCancellable *cancellable,
            const std::function<void(GVariant *value)> &then)
{
    const auto answered = [then](GObject *source, GAsyncResult *result) {
        GVariant *answer = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr);
        GVariant *value = answer ? g_variant_get_child_value(answer, 0) : nullptr;
        then(value);
        g_clear_pointer(&value, g_variant_unref);
        g_clear_pointer(&answer, g_variant_unref);
    };
    g_dbus_connection_call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
                           argument, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, cancellable, GLater::call,
                           GLater::with(answered));
}

// A list that is kept from a service that has died is empty until it has seen the new one. The service always has a
// book of its own, which nobody can remove.
bool isFilled(ESourceRegistry *registry)
{
    const GObjectOwner<ESource> own(e_source_registry_ref_source(registry, "system-address-book"));
    return bool(own);
}

bool holds(GVariant *names, const char *name)
{
    const gchar **all = g_variant_get_strv(names, nullptr);
    const bool isThere = g_strv_contains(all, name);
    g_free(all);
    return isThere;
}

// Whether somebody has the name, or would be started for it.
void lookForName(GDBusConnection *bus, GCancellable *cancellable, const std::function<void(bool)> &found)
{
    GObjectOwner<GDBusConnection> owner(G_DBUS_CONNECTION(g_object_ref(bus)));
    const auto canBeStarted = [found](GVariant *names) { found(names && holds(names, sourcesName)); };
    const auto isOwned = [found, canBeStarted, bus = std::shared_ptr(std::move(owner)),
                          cancellable = std::shared_ptr<GCancellable>(
                              cancellable ? static_cast<GCancellable *>(g_object_ref(cancellable)) : nullptr,
                              [](GCancellable *one) { g_clear_object(&one); })](GVariant *answer) {
        if (answer && g_variant_get_boolean(answer))
            return found(true);
        askBus(bus.get(), "ListActivatableNames", nullptr, cancellable.get(), canBeStarted);
    };
    askBus(bus, "NameHasOwner", g_variant_new("(s)", sourcesName), cancellable, isOwned);
}
} // namespace

struct DesktopAddressBooks::Connection
{
    explicit Connection(DesktopAddressBooks *owner) : books(owner) {}
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    // Nothing is called any more, but for the ends of calls that are not over yet.
    void leave()
    {
        g_cancellable_cancel(cancellable.get());
        leaveRegistry();
        for (const guint watch : {sourcesWatch, booksWatch}) {
            if (watch)
                g_bus_unwatch_name(watch);
        }
    }

    void watch(GDBusConnection *bus)
    {
        sourcesWatch = g_bus_watch_name_on_connection(bus, sourcesName, G_BUS_NAME_WATCHER_FLAGS_NONE, sourcesCame,
                                                      sourcesWent, this, nullptr);
        booksWatch = g_bus_watch_name_on_connection(bus, booksName, G_BUS_NAME_WATCHER_FLAGS_NONE, booksCame, nullptr,
                                                    this, nullptr);
    }

    void follow(GObjectOwner<ESourceRegistry> known)
    {
        leaveRegistry();
        registry = std::move(known);
        for (const char *signal : {"source-added", "source-removed", "source-enabled", "source-disabled",
                                   "source-changed", "notify::default-address-book"})
            g_signal_connect_swapped(registry.get(), signal, G_CALLBACK(listChanged), this);
    }

    void leaveRegistry()
    {
        if (registry)
            g_signal_handlers_disconnect_by_data(registry.get(), this);
        registry.reset();
    }

    static void listChanged(Connection *self) { self->books->_update.start(0); }
    static void sourcesCame(GDBusConnection * /*bus*/, const gchar * /*name*/, const gchar * /*owner*/, gpointer self)
    {
        static_cast<Connection *>(self)->books->serviceCame();
    }
    static void sourcesWent(GDBusConnection * /*bus*/, const gchar * /*name*/, gpointer self)
    {
        static_cast<Connection *>(self)->books->serviceWent();
    }
    static void booksCame(GDBusConnection * /*bus*/, const gchar * /*name*/, const gchar * /*owner*/, gpointer self)
    {
        for (const auto &book : static_cast<Connection *>(self)->books->_books)
            book->tryNow();
    }

    DesktopAddressBooks *books;
    GObjectOwner<GCancellable> cancellable{g_cancellable_new()};
    GObjectOwner<GDBusConnection> bus;
    GObjectOwner<ESourceRegistry> registry; // none: not there yet, or died
    bool isAsking = false;                  // for the registry
    guint sourcesWatch = 0;
    guint booksWatch = 0;
};

DesktopAddressBooks::DesktopAddressBooks() : _isThere(isBusThere())
{
    for (QTimer *timer : {&_retry, &_update})
        timer->setSingleShot(true);
    connect(&_retry, &QTimer::timeout, this, &DesktopAddressBooks::askForRegistry);
    connect(&_update, &QTimer::timeout, this, &DesktopAddressBooks::update);
    if (_isThere)
        start();
}

DesktopAddressBooks::~DesktopAddressBooks()
{
    if (_connection)
        _connection->leave();
}

void DesktopAddressBooks::lookForService(const std::function<void(bool)> &found)
{
    if (!isBusThere())
        return found(false);
    const auto answer = [found, events = std::make_shared<GLibEvents>()](bool isThere) { found(isThere); };
    getBus([answer](GObjectOwner<GDBusConnection> bus) {
        if (bus)
            lookForName(bus.get(), nullptr, answer);
        else
            answer(false);
    });
}

void DesktopAddressBooks::start()
{
    _connection = std::make_shared<Connection>(this);
    getBus([weak = std::weak_ptr(_connection)](GObjectOwner<GDBusConnection> bus) {
        const std::shared_ptr<Connection> connection = weak.lock();
        if (!connection)
            return;
        if (!bus) {
            connection->books->_isThere = false;
            Q_EMIT connection->books->changed();
            return;
        }
        connection->bus = std::move(bus);
        connection->watch(connection->bus.get());
    });
}

void DesktopAddressBooks::serviceCame()
{
    if (!_isThere) {
        _isThere = true;
        Q_EMIT changed();
    }
    if (!_connection->registry)
        askForRegistry();
}

// Told at the beginning too, when nobody has the name.
void DesktopAddressBooks::serviceWent()
{
    _connection->leaveRegistry();
    if (_areKnown) {
        _retry.start(_pause.next());
        return;
    }
    lookForName(_connection->bus.get(), _connection->cancellable.get(),
                [weak = std::weak_ptr(_connection)](bool isThere) {
                    const std::shared_ptr<Connection> connection = weak.lock();
                    if (!connection)
                        return;
                    if (isThere)
                        return connection->books->askForRegistry();
                    connection->books->_isThere = false;
                    Q_EMIT connection->books->changed();
                });
}

// Starts the service where it is not running.
void DesktopAddressBooks::askForRegistry()
{
    if (_connection->isAsking)
        return;
    _connection->isAsking = true;
    const auto answered = [weak = std::weak_ptr(_connection)](GObject *, GAsyncResult *result) {
        GErrorOwner error;
        GObjectOwner<ESourceRegistry> registry(e_source_registry_new_finish(result, error.out()));
        const std::shared_ptr<Connection> connection = weak.lock();
        if (!connection)
            return;
        connection->isAsking = false;
        DesktopAddressBooks &books = *connection->books;
        if (registry && isFilled(registry.get())) {
            connection->follow(std::move(registry));
            return books.update();
        }
        books._retry.start(books._pause.next());
        if (registry)
            return;
        qCInfo(logWayfold, "the address books cannot be had now: %s", error.message());
        books._areKnown = true;
        Q_EMIT books.changed();
    };
    // All who ask get the same one, as with the bus.
    e_source_registry_new(nullptr, GLater::call, GLater::with(answered));
}

// The books that there are now; the same objects for those that stay.
void DesktopAddressBooks::update()
{
    ESourceRegistry *registry = _connection->registry.get();
    if (!registry || !isFilled(registry))
        return;
    const GObjectOwner<ESource> first(e_source_registry_ref_default_address_book(registry));
    const QString firstIdentifier = first ? QString::fromUtf8(e_source_get_uid(first.get())) : QString();
    std::vector<std::shared_ptr<DesktopAddressBook>> books;
    GList *const sources = e_source_registry_list_enabled(registry, E_SOURCE_EXTENSION_ADDRESS_BOOK);
    for (const GList *one = sources; one; one = one->next) {
        auto *const source = static_cast<ESource *>(one->data);
        const QString identifier = QString::fromUtf8(e_source_get_uid(source));
        const auto known = std::find_if(_books.cbegin(), _books.cend(),
                                        [&](const auto &book) { return book->identifier() == identifier; });
        books.push_back(known == _books.cend() ? std::make_shared<DesktopAddressBook>(source) : *known);
        books.back()->setSource(source);
    }
    g_list_free_full(sources, g_object_unref);
    std::sort(books.begin(), books.end(), [&](const auto &a, const auto &b) {
        const bool isFirst = a->identifier() == firstIdentifier;
        const bool isOtherFirst = b->identifier() == firstIdentifier;
        return isFirst == isOtherFirst ? a->identifier() < b->identifier() : isFirst;
    });
    const bool isSame = _haveCome && books == _books;
    _books = std::move(books);
    _areKnown = true;
    _haveCome = true;
    if (!isSame)
        Q_EMIT changed();
}
