#pragma once

#include "model/WayfoldABEntry.h"
#include "model/WayfoldAutoFolder.h"

class WayfoldBookmarkAutoFolder;
using WayfoldBookmarkAutoFolderPtr = std::shared_ptr<WayfoldBookmarkAutoFolder>;

// "Related Bookmarks": the browser's bookmarks and the contacts that its search string finds, by title.
class WayfoldBookmarkAutoFolder : public WayfoldAutoFolder
{
public:
    using WayfoldAutoFolder::WayfoldAutoFolder;

    static WayfoldBookmarkAutoFolderPtr bookmarkWithTitle(const QString &title);
    static WayfoldBookmarkAutoFolderPtr bookmarkFromDictionary(const QVariantMap &dictionary);

    bool refresh() override;
    void refreshFromBookmarkRoot(const WayfoldBookmarkFolderPtr &root) override;
    QString classNameForCoder() const override { return QStringLiteral("WayfoldBookmarkAutoFolder"); }

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;

private:
    bool isSearched(const WayfoldBookmarkFolderPtr &root) const;
    void search(const WayfoldBookmarkFolderPtr &root);
    std::vector<KDRBookmarkPtr> found() const;
    void searchContacts();

    // What was found last, and where. History changes with every page, and bookmarks hardly ever. The
    // folder of a site that is not shown holds nothing of a tree that was replaced.
    std::vector<std::weak_ptr<KDRBookmark>> _found;
    std::weak_ptr<WayfoldBookmarkFolder> _searchedRoot;
    QString _searchedText;
    // The same of the contacts, and of which of their generations.
    std::vector<WayfoldABEntryPtr> _foundContacts;
    quint64 _searchedGeneration = 0;
    QString _searchedContactsText;
};
