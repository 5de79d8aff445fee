#pragma once

#include <memory>

// What an outline view shows a row for. The view knows nothing else of it; none stands for the tree's invisible root.
class OutlineItem
{
public:
    virtual ~OutlineItem() = default;
};

using OutlineItemPtr = std::shared_ptr<OutlineItem>;

// A folder that stands open, or that is closed but has something open in it.
struct OutlineExpansion
{
    OutlineItemPtr item;
    bool isOpen = false;
};
