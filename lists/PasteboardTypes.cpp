#include "lists/PasteboardTypes.h"

const QStringList &PasteboardTypes::acceptableDragTypes()
{
    static const QStringList types = {NSURLPboardType,       WebURLsWithTitles, BookmarkDictionaryList,
                                      NSFilenamesPboardType, KDRBookmark,       KDRBookmarkList,
                                      NSStringPboardType,    ABPeopleUIDs,      ABGroupsUIDs};
    return types;
}
