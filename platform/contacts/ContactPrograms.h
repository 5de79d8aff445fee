#pragma once

#include "platform/contacts/ContactStore.h"

// The desktop's programs for its contacts.
namespace ContactPrograms
{
// How one that is installed shows the card: GNOME Contacts, where it can be edited too; else Evolution, which opens all
// contacts, since it has no way to name one. None: neither is installed.
ContactStore::Opening opening(const ContactStore &store, const ContactRecord &record);
} // namespace ContactPrograms
