// Another program with the desktop's contacts: does one thing to the user's own address book and ends.
//
//     wayfold-address-book add CARD       writes the card's identifier to its standard output
//     wayfold-address-book change CARD    in place of the one with that card's identifier
//     wayfold-address-book show IDENTIFIER    writes the card

#include <cstdio>
#include <cstring>
#include <libebook/libebook.h>
#include <memory>

namespace
{
struct Unref
{
    void operator()(void *object) const { g_object_unref(object); }
};
struct Free
{
    void operator()(void *memory) const { g_free(memory); }
};
template <class T>
using Owned = std::unique_ptr<T, Unref>;
using Text = std::unique_ptr<char, Free>;

constexpr auto dontWait = guint32(-1);

Owned<EClient> openBook()
{
    const Owned<ESourceRegistry> registry(e_source_registry_new_sync(nullptr, nullptr));
    if (!registry)
        return nullptr;
    const Owned<ESource> source(e_source_registry_ref_builtin_address_book(registry.get()));
    return Owned<EClient>(e_book_client_connect_sync(source.get(), dontWait, nullptr, nullptr));
}

// What is to be written, null when it could not be done.
Text add(EBookClient *book, const char *card)
{
    const Owned<EContact> contact(e_contact_new_from_vcard(card));
    char *identifier = nullptr;
    e_book_client_add_contact_sync(book, contact.get(), E_BOOK_OPERATION_FLAG_NONE, &identifier, nullptr, nullptr);
    return Text(identifier);
}

Text change(EBookClient *book, const char *card)
{
    const Owned<EContact> contact(e_contact_new_from_vcard(card));
    const bool isDone =
        e_book_client_modify_contact_sync(book, contact.get(), E_BOOK_OPERATION_FLAG_NONE, nullptr, nullptr);
    return Text(isDone ? g_strdup("") : nullptr);
}

Text show(EBookClient *book, const char *identifier)
{
    EContact *found = nullptr;
    if (!e_book_client_get_contact_sync(book, identifier, &found, nullptr, nullptr))
        return nullptr;
    const Owned<EContact> contact(found);
    return Text(e_vcard_to_string(E_VCARD(found), EVC_FORMAT_VCARD_30));
}

Text perform(EBookClient *book, const char *command, const char *argument)
{
    if (!std::strcmp(command, "add"))
        return add(book, argument);
    if (!std::strcmp(command, "change"))
        return change(book, argument);
    return std::strcmp(command, "show") ? nullptr : show(book, argument);
}
} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 64;
    const Owned<EClient> book = openBook();
    const Text text = book ? perform(E_BOOK_CLIENT(book.get()), argv[1], argv[2]) : nullptr;
    std::printf("%s", text ? text.get() : "");
    return text ? 0 : 1;
}
