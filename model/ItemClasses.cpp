#include "model/ItemClasses.h"

#include "model/WayfoldABEntry.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkAutoFolder.h"
#include "model/WayfoldBookmarkEmail.h"
#include "model/WayfoldBookmarkFile.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldHistoryAutoFolder.h"
#include "model/WayfoldHistoryURL.h"

namespace
{
template <class Item>
void registerItemClass()
{
    KeyedUnarchiver::registerClass(Item().classNameForCoder(), [] { return std::make_shared<Item>(); });
}
} // namespace

void registerItemClasses()
{
    registerItemClass<KDRBookmark>();
    registerItemClass<WayfoldBookmarkFolder>();
    registerItemClass<WayfoldBookmarkURL>();
    registerItemClass<WayfoldBookmarkFile>();
    registerItemClass<WayfoldBookmarkEmail>();
    registerItemClass<WayfoldBookmarkNote>();
    registerItemClass<WayfoldHistoryURL>();
    registerItemClass<WayfoldAutoFolder>();
    registerItemClass<WayfoldBookmarkAutoFolder>();
    registerItemClass<WayfoldHistoryAutoFolder>();
    registerItemClass<WayfoldABEntry>();
    registerItemClass<WayfoldBookmarkABPerson>();
    registerItemClass<WayfoldBookmarkABGroup>();
}
