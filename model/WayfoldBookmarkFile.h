#pragma once

#include "model/WayfoldBookmarkURL.h"

class WayfoldBookmarkFile;
using WayfoldBookmarkFilePtr = std::shared_ptr<WayfoldBookmarkFile>;

// A link to a file or folder on the disk; its address is a file address. The makers do not check that.
class WayfoldBookmarkFile : public WayfoldBookmarkURL
{
public:
    using WayfoldBookmarkURL::WayfoldBookmarkURL;

    static WayfoldBookmarkFilePtr bookmarkWithTitle(const QString &title);
    static WayfoldBookmarkFilePtr bookmarkWithTitleAndURL(const QString &title, const Url &url);
    static WayfoldBookmarkFilePtr bookmarkFromDictionary(const QVariantMap &dictionary);

    Type type() const override { return FileLinkType; }
    QString typeDescription() const override { return QStringLiteral("File Link"); }
    // The path.
    QString tooltipText() const override;
    std::shared_ptr<Image> imageForCellSize(const QSizeF &size) override;
    bool editViaDialog() override;
    QString classNameForCoder() const override { return QStringLiteral("WayfoldBookmarkFile"); }

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;
};
