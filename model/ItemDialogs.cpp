#include "model/ItemDialogs.h"

namespace
{
ItemDialogs *currentDialogs = nullptr;
}

ItemDialogs *ItemDialogs::current()
{
    return currentDialogs;
}

void ItemDialogs::setCurrent(ItemDialogs *dialogs)
{
    currentDialogs = dialogs;
}
