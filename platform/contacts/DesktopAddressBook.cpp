#include "platform/contacts/DesktopAddressBook.h"

#include "platform/base/Log.h"
#include "platform/contacts/GObjectOwner.h"

#include <QPointer>
#include <libebook/libebook.h>

namespace
{
constexpr auto allCards = R"((contains "x-evolution-any-field" ""))";
constexpr auto dontWait = static_cast<guint32>(-1);

template <class Type>
std::shared_ptr<Type> shared(Type *object)
{
    return std::shared_ptr<Type>(static_cast<Type *>(g_object_ref(object)), GObjectRelease());
}

// The library's own call waits for the service, which may hang.
void startInThread(GTask *task, gpointer view, gpointer /*data*/, GCancellable * /*cancellable*/)
{
    GError *error = nullptr;
    e_book_client_view_start(E_BOOK_CLIENT_VIEW(view), &error);
    if (error)
        g_task_return_error(task, error);
    else
        g_task_return_boolean(task, TRUE);
}
} // namespace

struct DesktopAddressBook::Connection
{
    explicit Connection(DesktopAddressBook *owner) : book(owner) {}
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    // Nothing is called any more, but for the ends of calls that are not over yet.
    void leave()
    {
        g_cancellable_cancel(cancellable.get());
        leaveView();
        if (client)
            g_signal_handlers_disconnect_by_data(client.get(), this);
    }

    void leaveView()
    {
        if (view)
            g_signal_handlers_disconnect_by_data(view.get(), this);
        view.reset();
    }

    static void died(EClient * /*client*/, Connection *self) { self->book->lose(); }
    static void online(EClient *client, GParamSpec * /*property*/, Connection *self)
    {
        if (self->hasFailed && e_client_is_online(client))
            self->book->ask();
    }
    static void added(EBookClientView * /*view*/, const GSList *contacts, Connection *self)
    {
        std::vector<ContactPtr> cards;
        for (const GSList *one = contacts; one; one = one->next)
            cards.push_back(shared(static_cast<EContact *>(one->data)));
        Q_EMIT self->book->cardsCame(cards);
    }
    static void removed(EBookClientView * /*view*/, const GSList *identifiers, Connection *self)
    {
        QStringList uniqueIds;
        for (const GSList *one = identifiers; one; one = one->next)
            uniqueIds.append(QString::fromUtf8(static_cast<const char *>(one->data)));
        Q_EMIT self->book->cardsWent(uniqueIds);
    }
    static void completed(EBookClientView * /*view*/, const GError *error, Connection *self)
    {
        self->hasFailed = error;
        if (error)
            qCWarning(logWayfold, "not all cards of an address book came: %s", error->message);
        Q_EMIT self->book->ended(!error);
    }

    DesktopAddressBook *book;
    GObjectOwner<GCancellable> cancellable{g_cancellable_new()};
    GObjectOwner<EBookClient> client;   // none: not connected yet
    GObjectOwner<EBookClientView> view; // none: not there yet
    bool hasFailed = false;             // what it shows is not all
};

DesktopAddressBook::DesktopAddressBook(ESource *source)
    : _identifier(QString::fromUtf8(e_source_get_uid(source)))
    , _source(shared(source))
{
    _retry.setSingleShot(true);
    connect(&_retry, &QTimer::timeout, this, &DesktopAddressBook::start);
    _retry.start(0);
}

DesktopAddressBook::~DesktopAddressBook()
{
    if (_connection)
        _connection->leave();
}

void DesktopAddressBook::setSource(ESource *source)
{
    if (source != _source.get())
        _source = shared(source);
}

void DesktopAddressBook::tryNow()
{
    if (_retry.isActive())
        _retry.start(0);
}

void DesktopAddressBook::start()
{
    _connection = std::make_shared<Connection>(this);
    const auto connected = [weak = std::weak_ptr(_connection)](GObject *, GAsyncResult *result) {
        GErrorOwner error;
        GObjectOwner<EClient> client(e_book_client_connect_finish(result, error.out()));
        const std::shared_ptr<Connection> connection = weak.lock();
        if (!connection)
            return;
        if (!client) {
            qCInfo(logWayfold, "an address book cannot be had now: %s", error.message());
            return connection->book->lose();
        }
        connection->client.reset(E_BOOK_CLIENT(client.release()));
        g_signal_connect(connection->client.get(), "backend-died", G_CALLBACK(Connection::died), connection.get());
        g_signal_connect(connection->client.get(), "notify::online", G_CALLBACK(Connection::online), connection.get());
        connection->book->ask();
    };
    e_book_client_connect(_source.get(), dontWait, _connection->cancellable.get(), GLater::call,
                          GLater::with(connected));
}

// Asks for a view, which is how the service tells what there is and what changes.
void DesktopAddressBook::ask()
{
    _connection->leaveView();
    _connection->hasFailed = false;
    const auto answered = [weak = std::weak_ptr(_connection)](GObject *source, GAsyncResult *result) {
        GErrorOwner error;
        EBookClientView *view = nullptr;
        e_book_client_get_view_finish(E_BOOK_CLIENT(source), result, &view, error.out());
        GObjectOwner<EBookClientView> owner(view);
        const std::shared_ptr<Connection> connection = weak.lock();
        if (!connection)
            return;
        if (!owner) {
            qCInfo(logWayfold, "an address book does not show its cards: %s", error.message());
            return connection->book->lose();
        }
        connection->view = std::move(owner);
        connection->book->show();
    };
    e_book_client_get_view(_connection->client.get(), allCards, _connection->cancellable.get(), GLater::call,
                           GLater::with(answered));
}

void DesktopAddressBook::show()
{
    EBookClientView *view = _connection->view.get();
    g_signal_connect(view, "objects-added", G_CALLBACK(Connection::added), _connection.get());
    g_signal_connect(view, "objects-modified", G_CALLBACK(Connection::added), _connection.get());
    g_signal_connect(view, "objects-removed", G_CALLBACK(Connection::removed), _connection.get());
    g_signal_connect(view, "complete", G_CALLBACK(Connection::completed), _connection.get());
    const auto started = [weak = std::weak_ptr(_connection)](GObject *source, GAsyncResult *result) {
        GErrorOwner error;
        g_task_propagate_boolean(G_TASK(result), error.out());
        const std::shared_ptr<Connection> connection = weak.lock();
        if (error && connection && connection->view.get() == E_BOOK_CLIENT_VIEW(source))
            connection->book->lose();
    };
    Q_EMIT began();
    const GObjectOwner<GTask> task(g_task_new(view, nullptr, GLater::call, GLater::with(started)));
    g_task_run_in_thread(task.get(), startInThread);
}

// What was shown stays: when the service dies, nobody has removed the cards.
void DesktopAddressBook::lose()
{
    _connection->leave();
    _connection.reset();
    _retry.start(_pause.next());
    Q_EMIT ended(false);
}

bool DesktopAddressBook::canAdd() const
{
    return _connection && _connection->client && !e_client_is_readonly(E_CLIENT(_connection->client.get()));
}

void DesktopAddressBook::add(const QByteArray &vCard, const QString &uniqueId,
                             const std::function<void(const QString &)> &done)
{
    if (!canAdd())
        return done(QString());
    const auto added = [self = QPointer(this), done](GObject *source, GAsyncResult *result) {
        GErrorOwner error;
        gchar *given = nullptr;
        e_book_client_add_contact_finish(E_BOOK_CLIENT(source), result, &given, error.out());
        const QString id = QString::fromUtf8(GTextOwner(given).get());
        if (!self)
            return;
        if (error)
            qCWarning(logWayfold, "a card cannot be added: %s", error.message());
        done(id);
    };
    const GObjectOwner<EContact> contact(e_contact_new_from_vcard(vCard.constData()));
    if (!uniqueId.isNull())
        e_contact_set(contact.get(), E_CONTACT_UID, uniqueId.toUtf8().constData());
    e_book_client_add_contact(_connection->client.get(), contact.get(), E_BOOK_OPERATION_FLAG_NONE,
                              _connection->cancellable.get(), GLater::call, GLater::with(added));
}

void DesktopAddressBook::fetch(const QString &uniqueId, const std::function<void(const QByteArray &)> &done)
{
    if (!_connection || !_connection->client)
        return done(QByteArray());
    const auto fetched = [self = QPointer(this), done](GObject *source, GAsyncResult *result) {
        GErrorOwner error;
        EContact *contact = nullptr;
        e_book_client_get_contact_finish(E_BOOK_CLIENT(source), result, &contact, error.out());
        const ContactPtr owner(contact, [](EContact *one) { g_clear_object(&one); });
        if (self)
            done(contact ? textOf(owner) : QByteArray());
    };
    e_book_client_get_contact(_connection->client.get(), uniqueId.toUtf8().constData(), _connection->cancellable.get(),
                              GLater::call, GLater::with(fetched));
}

void DesktopAddressBook::list(const std::function<void(const std::optional<QStringList> &)> &done)
{
    if (!_connection || !_connection->client)
        return done(std::nullopt);
    const auto listed = [self = QPointer(this), done](GObject *source, GAsyncResult *result) {
        GErrorOwner error;
        GSList *identifiers = nullptr;
        e_book_client_get_contacts_uids_finish(E_BOOK_CLIENT(source), result, &identifiers, error.out());
        QStringList uniqueIds;
        for (const GSList *one = identifiers; one; one = one->next)
            uniqueIds.append(QString::fromUtf8(static_cast<const char *>(one->data)));
        g_slist_free_full(identifiers, g_free);
        if (self)
            done(error ? std::nullopt : std::optional(uniqueIds));
    };
    e_book_client_get_contacts_uids(_connection->client.get(), allCards, _connection->cancellable.get(), GLater::call,
                                    GLater::with(listed));
}

QByteArray DesktopAddressBook::textOf(const ContactPtr &contact)
{
    const GTextOwner text(e_vcard_to_string(E_VCARD(contact.get()), EVC_FORMAT_VCARD_30));
    return text.get();
}

QString DesktopAddressBook::identifierOf(const ContactPtr &contact)
{
    return QString::fromUtf8(static_cast<const char *>(e_contact_get_const(contact.get(), E_CONTACT_UID)));
}
