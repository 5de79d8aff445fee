#include "platform/contacts/PersonName.h"

#include <memory>

#undef signals
#include <libebook-contacts/libebook-contacts.h>

namespace
{
struct Free
{
    void operator()(EContactName *name) const { e_contact_name_free(name); }
};

constexpr int maximumCommas = 10;

QString textOf(const char *part)
{
    return part && *part ? QString::fromUtf8(part) : QString();
}
} // namespace

PersonName PersonName::fromText(const QString &text)
{
    if (text.isEmpty())
        return {};
    // Each comma costs a whole look at what the library knows of names.
    if (text.count(u',') > maximumCommas)
        return {text, QString(), QString()};
    const std::unique_ptr<EContactName, Free> name(e_contact_name_from_string(text.toUtf8().constData()));
    if (!name)
        return {};
    PersonName parts = {textOf(name->given), textOf(name->family), textOf(name->suffixes)};
    if (parts.isNone())
        parts.first = text; // a title alone
    return parts;
}
