#pragma once

#include "model/FileIcons.h"
#include "platform/widgets/Image.h"

#include <memory>

// The images that all items of a kind share, none until the first item that needs one loads it.
struct ItemImages
{
    std::shared_ptr<Image> folder;
    std::shared_ptr<Image> autoFolder;
    std::shared_ptr<Image> emptyAutoFolder;
    std::shared_ptr<Image> webLink;
    std::shared_ptr<Image> mail;
    std::shared_ptr<Image> note;
    std::shared_ptr<Image> person;
    std::shared_ptr<Image> company;
    std::shared_ptr<Image> group;
    std::shared_ptr<Image> ownCard;
    FileIcons files;

    static ItemImages &shared();
    // As before the first use, for tests.
    static void reset();
    // The image, set to be rendered afresh at every drawing.
    static std::shared_ptr<Image> neverCached(std::shared_ptr<Image> image);
    // One of the images above, loaded when there is none yet.
    static std::shared_ptr<Image> loadedOnce(std::shared_ptr<Image> &image, const QString &name);
};
