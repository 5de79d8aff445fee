#pragma once

#include "platform/widgets/OutlineViewDataSource.h"
#include "platform/widgets/TextFieldCell.h"

#include "tests/support/ModelChecks.h"

#include <QHash>
#include <QMimeData>
#include <QStringList>

// A tree of titles for outline views to show, and a record of what the views asked and told.
//
//     OutlineTree tree;
//     auto fruit = tree.add("fruit");        // a folder at the top level
//     auto pear = tree.add("pear", fruit);   // and an entry in it
struct OutlineTreeItem : OutlineItem
{
    QString title;
    bool isFolder = false;
    std::vector<std::shared_ptr<OutlineTreeItem>> children;
};

class OutlineTree : public OutlineViewDataSource
{
public:
    using Node = std::shared_ptr<OutlineTreeItem>;

    Node root = std::make_shared<OutlineTreeItem>();
    std::function<void(TextFieldCell &)> decorate; // a cell before it is drawn
    std::function<QString(const QString &title)> describe;
    int descriptions = 0;
    int countCalls = 0;
    int childCalls = 0;
    int selectionChanges = 0;

    bool refusesDrag = false;
    std::vector<OutlineItemPtr> dragged;
    int draggingEnded = 0;

    Qt::DropAction answer = Qt::CopyAction;
    std::function<void(OutlineDropTarget &)> retarget;
    bool accepts = true;
    bool takesData = true;
    std::vector<OutlineDropTarget> validated;
    std::vector<OutlineDropTarget> accepted;

    // Adds an item; what it is added to is a folder from then on. No parent: the top level.
    Node add(const QString &title, const Node &parent = nullptr)
    {
        auto node = std::make_shared<OutlineTreeItem>();
        node->title = title;
        Node above = parent ? parent : root;
        above->isFolder = true;
        above->children.push_back(node);
        return node;
    }

    int outlineViewNumberOfChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr &item) override
    {
        ++countCalls;
        return int(nodeOf(item).children.size());
    }
    bool outlineViewIsItemExpandable(OutlineView & /*view*/, const OutlineItemPtr &item) override
    {
        return nodeOf(item).isFolder;
    }
    OutlineItemPtr outlineViewChildOfItem(OutlineView & /*view*/, int index, const OutlineItemPtr &item) override
    {
        ++childCalls;
        return nodeOf(item).children.at(std::size_t(index));
    }
    QString outlineViewObjectValueByItem(OutlineView & /*view*/, const OutlineItemPtr &item) override
    {
        return nodeOf(item).title;
    }
    QString outlineViewDescriptionOfItem(OutlineView & /*view*/, const OutlineItemPtr &item) override
    {
        ++descriptions;
        return describe ? describe(nodeOf(item).title) : QString();
    }
    void outlineViewWillDisplayCell(OutlineView & /*view*/, TextFieldCell &cell,
                                    const OutlineItemPtr & /*item*/) override
    {
        if (decorate)
            decorate(cell);
    }
    bool outlineViewShouldEdit(OutlineView & /*view*/, const OutlineItemPtr & /*item*/) override { return false; }
    void outlineViewSelectionDidChange(OutlineView & /*view*/) override { ++selectionChanges; }

    QMimeData *outlineViewWriteItems(OutlineView & /*view*/, const std::vector<OutlineItemPtr> &items) override
    {
        dragged = items;
        if (refusesDrag)
            return nullptr;
        auto *data = new QMimeData;
        data->setText(nodeOf(items.front()).title);
        return data;
    }
    void outlineViewDraggingEnded(OutlineView & /*view*/) override { ++draggingEnded; }
    bool outlineViewTakesData(OutlineView & /*view*/, const QMimeData & /*data*/) override { return takesData; }
    Qt::DropAction outlineViewValidateDrop(OutlineView & /*view*/, const QMimeData & /*data*/, bool /*isLocal*/,
                                           OutlineDropTarget &target) override
    {
        validated.push_back(target);
        if (retarget)
            retarget(target);
        return answer;
    }
    bool outlineViewAcceptDrop(OutlineView & /*view*/, const QMimeData & /*data*/,
                               const OutlineDropTarget &target) override
    {
        accepted.push_back(target);
        return accepts;
    }

    OutlineTreeItem &nodeOf(const OutlineItemPtr &item) const
    {
        return item ? static_cast<OutlineTreeItem &>(*item) : *root;
    }
};
