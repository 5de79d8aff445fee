#pragma once

#include "model/KDRBookmark.h"
#include "platform/base/Url.h"

class WayfoldBookmarkURL;
using WayfoldBookmarkURLPtr = std::shared_ptr<WayfoldBookmarkURL>;

// A link to a web page, and the base of the other links. Its value is the address, a Url.
class WayfoldBookmarkURL : public KDRBookmark
{
public:
    using KDRBookmark::KDRBookmark;

    static WayfoldBookmarkURLPtr bookmarkWithTitle(const QString &title);
    // A file link or an e-mail link where the address says so.
    static WayfoldBookmarkURLPtr bookmarkWithTitleAndURL(const QString &title, const Url &url);
    static WayfoldBookmarkURLPtr bookmarkFromDictionary(const QVariantMap &dictionary);

    void init() override;
    void initWithTitleAndURL(const QString &title, const Url &url);
    void initFromDictionary(const QVariantMap &dictionary);

    Url url() const { return _url; }
    void setURL(const Url &url);

    Type type() const override { return WebLinkType; }
    QString typeDescription() const override { return QStringLiteral("Bookmark"); }
    QVariant value() const override { return QVariant::fromValue(_url); }
    QString valueAsString() const override { return _url.absoluteString(); }
    void setValue(const QVariant &value) override;
    QString tooltipText() const override { return _url.absoluteString(); }
    void loadFromDictionary(const QVariantMap &dictionary) override;
    void writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const override;
    bool isEqual(const KDRBookmark &other) const override;
    using KDRBookmark::isEqual;
    // The site's icon or, as the user wishes, one image for all.
    std::shared_ptr<Image> imageForCellSize(const QSizeF &size) override;
    bool editViaDialog() override;

    QString classNameForCoder() const override { return QStringLiteral("WayfoldBookmarkURL"); }
    void encodeWithCoder(KeyedArchiver &coder) const override;
    void initWithCoder(const KeyedUnarchiver &coder) override;

protected:
    QString searchedText() const override { return _url.absoluteString(); }
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;
    void copyTo(KDRBookmark &copy) const override;

private:
    Url _url;
};
