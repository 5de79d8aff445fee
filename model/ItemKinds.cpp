#include "model/ItemKinds.h"

#include <QtGlobal>

namespace
{
const ItemKinds *currentKinds = nullptr;
}

const ItemKinds &ItemKinds::current()
{
    if (!currentKinds)
        qFatal("The kinds of items are not installed; see ItemCodec::install.");
    return *currentKinds;
}

void ItemKinds::setCurrent(const ItemKinds *kinds)
{
    currentKinds = kinds;
}
