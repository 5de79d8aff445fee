#include "benchmarks/LibebookPeer.h"

#include <libebook/libebook.h>

namespace
{
struct Unref
{
    void operator()(void *object) const { g_object_unref(object); }
};
template <class Type>
using Owner = std::unique_ptr<Type, Unref>;

constexpr auto dontWait = guint32(-1);
constexpr auto anyCard = R"((contains "x-evolution-any-field" ""))";
constexpr auto searchedFields = {"given_name", "family_name", "org", "homepage_url", "email"};
} // namespace

struct LibebookPeer::Objects
{
    Owner<ESourceRegistry> registry;
    Owner<EClient> client;

    EBookClient *book() const { return E_BOOK_CLIENT(client.get()); }
};

LibebookPeer::LibebookPeer() : _objects(std::make_unique<Objects>()) {}

LibebookPeer::~LibebookPeer() = default;

bool LibebookPeer::open()
{
    _objects->registry.reset(e_source_registry_new_sync(nullptr, nullptr));
    if (!_objects->registry)
        return false;
    const Owner<ESource> source(e_source_registry_ref_builtin_address_book(_objects->registry.get()));
    _objects->client.reset(e_book_client_connect_sync(source.get(), dontWait, nullptr, nullptr));
    return _objects->client != nullptr;
}

bool LibebookPeer::add(const QByteArrayList &cards)
{
    GSList *contacts = nullptr;
    for (auto card = cards.crbegin(); card != cards.crend(); ++card)
        contacts = g_slist_prepend(contacts, e_contact_new_from_vcard(card->constData()));
    const bool isAdded = e_book_client_add_contacts_sync(_objects->book(), contacts, E_BOOK_OPERATION_FLAG_NONE,
                                                         nullptr, nullptr, nullptr);
    g_slist_free_full(contacts, g_object_unref);
    return isAdded;
}

bool LibebookPeer::change(const QByteArray &card)
{
    const Owner<EContact> contact(e_contact_new_from_vcard(card.constData()));
    return e_book_client_modify_contact_sync(_objects->book(), contact.get(), E_BOOK_OPERATION_FLAG_NONE, nullptr,
                                             nullptr);
}

int LibebookPeer::countOfAll() const
{
    return count(anyCard);
}

int LibebookPeer::countContaining(const QByteArray &text) const
{
    QByteArray query = "(or";
    for (const char *field : searchedFields)
        query += QByteArray(" (contains \"") + field + "\" \"" + text + "\")";
    return count(query + ')');
}

bool LibebookPeer::hasCard(const QByteArray &uniqueId) const
{
    return count("(is \"id\" \"" + uniqueId + "\")") == 1;
}

int LibebookPeer::count(const QByteArray &query) const
{
    GSList *contacts = nullptr;
    e_book_client_get_contacts_sync(_objects->book(), query.constData(), &contacts, nullptr, nullptr);
    const int found = int(g_slist_length(contacts));
    g_slist_free_full(contacts, g_object_unref);
    return found;
}
