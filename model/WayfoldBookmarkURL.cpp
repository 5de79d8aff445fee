#include "model/WayfoldBookmarkURL.h"

#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/ItemDialogs.h"
#include "model/ItemDictionary.h"
#include "model/ItemImages.h"
#include "model/ItemKinds.h"
#include "platform/host/CurrentHost.h"
#include "platform/host/HostApplication.h"

#include <QGuiApplication>

namespace
{
Url addressIn(const QVariantMap &dictionary)
{
    return Url::URLWithString(ItemDictionary::string(dictionary, ItemDictionary::urlStringKey));
}

std::shared_ptr<Image> siteIconForAddress(const QString &address)
{
    const HostApplication *const host = currentHost();
    if (!host)
        return nullptr;
    // A size in points, so that the icon is as sharp as the screen.
    const qreal density = qGuiApp->devicePixelRatio();
    QImage picture = host->siteIconForAddress(address, (QSizeF(16, 16) * density).toSize());
    picture.setDevicePixelRatio(density);
    return ItemImages::neverCached(Image::imageWithPicture(picture));
}

// The host's, or our own where the host has none.
std::shared_ptr<Image> imageOfAllLinks()
{
    std::shared_ptr<Image> &image = ItemImages::shared().webLink;
    if (!image)
        image = ItemImages::neverCached(WayfoldToolkit::loadAppImageNamed(QStringLiteral("BookmarkPreferences")));
    if (!image)
        image = ItemImages::neverCached(WayfoldToolkit::loadImageNamed(QStringLiteral("WayfoldBookmarkImageLink")));
    return image;
}
} // namespace

WayfoldBookmarkURLPtr WayfoldBookmarkURL::bookmarkWithTitle(const QString &title)
{
    auto link = std::make_shared<WayfoldBookmarkURL>();
    link->setTitle(title);
    return link;
}

WayfoldBookmarkURLPtr WayfoldBookmarkURL::bookmarkWithTitleAndURL(const QString &title, const Url &url)
{
    WayfoldBookmarkURLPtr link = ItemKinds::current().linkForURL(url);
    link->setTitle(title);
    link->setURL(url);
    return link;
}

WayfoldBookmarkURLPtr WayfoldBookmarkURL::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    WayfoldBookmarkURLPtr link = ItemKinds::current().linkForURL(addressIn(dictionary));
    link->loadFromDictionary(dictionary);
    return link;
}

void WayfoldBookmarkURL::init()
{
    KDRBookmark::init();
    setURL(Url());
}

void WayfoldBookmarkURL::setURL(const Url &url)
{
    if (url == _url)
        return;
    changeField(TreeObserver::Field::Value, [this, url] {
        _url = url;
        searchedTextChanged();
    });
}

void WayfoldBookmarkURL::initWithTitleAndURL(const QString &title, const Url &url)
{
    initWithTitle(title);
    setURL(url);
}

void WayfoldBookmarkURL::initFromDictionary(const QVariantMap &dictionary)
{
    init();
    loadFromDictionary(dictionary);
}

void WayfoldBookmarkURL::setValue(const QVariant &value)
{
    if (!value.isValid() || value.metaType() == QMetaType::fromType<Url>())
        setURL(value.value<Url>());
}

void WayfoldBookmarkURL::loadFromDictionary(const QVariantMap &dictionary)
{
    using namespace ItemDictionary;
    const QVariantMap uriDictionary = ItemDictionary::dictionary(dictionary, uriDictionaryKey);
    initWithTitleAndURL(string(uriDictionary, uriTitleKey), addressIn(dictionary));
    const QString storedUUID = string(dictionary, uuidKey);
    if (!storedUUID.isEmpty())
        setUUID(storedUUID);
    keepUnknown(dictionary);
}

void WayfoldBookmarkURL::writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const
{
    Q_UNUSED(forSaving)
    using namespace ItemDictionary;
    const QString address = textOrEmpty(_url.absoluteString());
    dictionary.insert(typeKey, leafType);
    dictionary.insert(urlStringKey, address);
    dictionary.insert(uuidKey, textOrEmpty(uuid()));
    dictionary.insert(uriDictionaryKey, QVariantMap{{uriTitleKey, textOrEmpty(title())}, {uriAddressKey, address}});
}

bool WayfoldBookmarkURL::isEqual(const KDRBookmark &other) const
{
    return KDRBookmark::isEqual(other) && static_cast<const WayfoldBookmarkURL &>(other)._url == _url;
}

std::shared_ptr<Image> WayfoldBookmarkURL::imageForCellSize(const QSizeF &size)
{
    Q_UNUSED(size)
    const WayfoldDefaults &defaults = WayfoldDefaults::sharedInstance();
    if (!defaults.showBookmarkIcons())
        return nullptr;
    // Every link has an image, or its title would stand left of the others.
    const std::shared_ptr<Image> siteIcon =
        defaults.showFavicons() ? siteIconForAddress(_url.absoluteString()) : nullptr;
    return siteIcon ? siteIcon : imageOfAllLinks();
}

bool WayfoldBookmarkURL::editViaDialog()
{
    ItemDialogs *const dialogs = ItemDialogs::current();
    return dialogs && dialogs->editURL(std::static_pointer_cast<WayfoldBookmarkURL>(shared_from_this()));
}

void WayfoldBookmarkURL::encodeWithCoder(KeyedArchiver &coder) const
{
    KDRBookmark::encodeWithCoder(coder);
    coder.encodeValueForKey(_url.absoluteString(), QStringLiteral("_url"));
}

void WayfoldBookmarkURL::initWithCoder(const KeyedUnarchiver &coder)
{
    KDRBookmark::initWithCoder(coder);
    setURL(Url::URLWithString(coder.decodeStringForKey(QStringLiteral("_url"))));
}

KDRBookmarkPtr WayfoldBookmarkURL::makeNew() const
{
    return std::make_shared<WayfoldBookmarkURL>(Blank());
}

bool WayfoldBookmarkURL::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldBookmarkURL *>(&other);
}

void WayfoldBookmarkURL::copyTo(KDRBookmark &copy) const
{
    KDRBookmark::copyTo(copy);
    static_cast<WayfoldBookmarkURL &>(copy).setURL(_url);
}
