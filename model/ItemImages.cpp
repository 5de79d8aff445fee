#include "model/ItemImages.h"

#include "core/settings/WayfoldToolkit.h"

ItemImages &ItemImages::shared()
{
    // Never released: images must not outlive the application, and static objects do.
    static auto *const images = new ItemImages;
    return *images;
}

void ItemImages::reset()
{
    shared() = ItemImages();
}

std::shared_ptr<Image> ItemImages::neverCached(std::shared_ptr<Image> image)
{
    if (image)
        image->setCacheMode(Image::NSImageCacheNever);
    return image;
}

std::shared_ptr<Image> ItemImages::loadedOnce(std::shared_ptr<Image> &image, const QString &name)
{
    if (!image)
        image = neverCached(WayfoldToolkit::loadImageNamed(name));
    return image;
}
