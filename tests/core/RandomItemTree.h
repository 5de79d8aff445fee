#pragma once

#include "model/ItemDictionary.h"

#include <QRandomGenerator>
#include <QVariant>
#include <algorithm>
#include <memory>
#include <set>
#include <vector>

// A made-up tree of the item file that two sides edit. Every entry has a key that stands in no dictionary and stays
// with it through all edits, so that what must become of it can be said without recognising it.
class RandomItemTree
{
public:
    struct Node;
    using NodePtr = std::shared_ptr<Node>;
    struct Node
    {
        int key = 0;
        QVariant value; // without what it lists
        bool isFolder = false;
        std::vector<NodePtr> children;
    };

    // Texts that are made are never made again: `count` goes on over all trees of one round.
    RandomItemTree(QRandomGenerator &random, int &count) : _random(&random), _count(&count)
    {
        root = std::make_shared<Node>();
        root->isFolder = true;
        root->value = QVariantMap{{ItemDictionary::typeKey, ItemDictionary::listType},
                                  {ItemDictionary::uuidKey, "ROOT"},
                                  {ItemDictionary::titleKey, ""},
                                  {ItemDictionary::searchStringKey, ""},
                                  {ItemDictionary::childrenKey, QVariantList()}};
    }
    RandomItemTree copy() const
    {
        RandomItemTree copied(*_random, *_count);
        copied.isLifelike = isLifelike;
        copied.root = copyOf(root, false);
        return copied;
    }

    NodePtr root;
    // Nothing but what an item can hold in memory.
    bool isLifelike = false;

    QVariantMap dictionary() const { return dictionaryOf(*root).toMap(); }
    static QVariant dictionaryOf(const Node &node)
    {
        if (!node.isFolder || node.value.typeId() != QMetaType::QVariantMap)
            return node.value;
        QVariantMap fields = node.value.toMap();
        QVariantList list;
        for (const NodePtr &child : node.children)
            list.append(dictionaryOf(*child));
        if (!list.isEmpty() || fields.contains(ItemDictionary::childrenKey))
            fields.insert(ItemDictionary::childrenKey, list);
        return fields;
    }

    struct Place
    {
        NodePtr node;
        NodePtr parent;
    };
    std::vector<Place> places() const
    {
        std::vector<Place> found;
        std::vector<NodePtr> pending = {root};
        while (!pending.empty()) {
            const NodePtr folder = pending.back();
            pending.pop_back();
            for (const NodePtr &child : folder->children) {
                found.push_back({child, folder});
                if (child->isFolder)
                    pending.push_back(child);
            }
        }
        return found;
    }
    NodePtr nodeWithKey(int key) const
    {
        if (key == root->key)
            return root;
        for (const Place &place : places()) {
            if (place.node->key == key)
                return place.node;
        }
        return nullptr;
    }

    void grow(int size)
    {
        for (int i = 0; i < size; ++i)
            insert(makeNode(), anyFolder());
    }
    // One thing that a user, or another program, does.
    void edit()
    {
        const std::vector<Place> all = places();
        const Place place = all.empty() ? Place{} : all[std::size_t(below(int(all.size())))];
        switch (below(14)) {
        case 0:
        case 1:
        case 2:
            return insert(makeNode(), anyFolder());
        case 3:
        case 4:
        case 5:
            if (place.node)
                change(*place.node);
            return;
        case 6:
        case 7:
            return move(place, anyFolder());
        case 8:
        case 9:
            return remove(place);
        case 10:
            return sort(*anyFolder());
        case 11:
            if (place.node) // what is copied keeps its identifiers
                insert(copyOf(place.node, true), anyFolder());
            return;
        case 12:
            return moveWithin(place);
        default:
            if (place.node && !isLifelike && below(3) == 0)
                changeIdentifier(*place.node);
            return;
        }
    }

    NodePtr anyFolder() const
    {
        std::vector<NodePtr> folders = {root};
        for (const Place &place : places()) {
            if (place.node->isFolder)
                folders.push_back(place.node);
        }
        return folders[std::size_t(below(int(folders.size())))];
    }
    void insert(const NodePtr &node, const NodePtr &folder)
    {
        std::vector<NodePtr> &list = folder->children;
        list.insert(list.begin() + below(int(list.size()) + 1), node);
    }
    void move(const Place &place, const NodePtr &folder)
    {
        if (!place.node || holds(*place.node, *folder))
            return;
        remove(place);
        insert(place.node, folder);
    }
    static void remove(const Place &place)
    {
        if (place.node)
            std::erase(place.parent->children, place.node);
    }
    static bool holds(const Node &node, const Node &other)
    {
        return &node == &other || std::any_of(node.children.begin(), node.children.end(),
                                              [&](const NodePtr &child) { return holds(*child, other); });
    }
    void change(Node &node)
    {
        if (node.value.typeId() != QMetaType::QVariantMap) {
            node.value = text();
            return;
        }
        QVariantMap fields = node.value.toMap();
        const int what = below(4);
        if (!isLifelike && what == 0) {
            if (below(2))
                fields.insert(QStringLiteral("Colour"), anyValue());
            else
                fields.insert(QStringLiteral("Details"),
                              changedDetails(fields.value(QStringLiteral("Details")).toMap()));
        } else if (!isLifelike && what == 1 && below(4) == 0) {
            fields.remove(QStringLiteral("Colour"));
        } else if (node.isFolder) {
            fields.insert(below(2) ? ItemDictionary::titleKey : ItemDictionary::searchStringKey, text());
        } else if (fields.contains(ItemDictionary::addressBookIDKey)) {
            fields.insert(ItemDictionary::addressBookIDKey, text());
        } else if (fields.contains(ItemDictionary::uriDictionaryKey)) {
            QVariantMap uri = fields.value(ItemDictionary::uriDictionaryKey).toMap();
            if (what == 2) {
                uri.insert(ItemDictionary::uriTitleKey, text());
            } else if (fields.contains(ItemDictionary::noteKey)) {
                fields.insert(ItemDictionary::noteKey, text());
            } else {
                const QString address = QStringLiteral("http://%1.example/").arg(++*_count);
                fields.insert(ItemDictionary::urlStringKey, address);
                uri.insert(ItemDictionary::uriAddressKey, address);
            }
            fields.insert(ItemDictionary::uriDictionaryKey, uri);
        } else {
            fields.insert(QStringLiteral("Note"), text());
        }
        node.value = fields;
    }
    NodePtr makeNode()
    {
        using namespace ItemDictionary;
        auto node = std::make_shared<Node>();
        node->key = ++*_count;
        QVariantMap fields;
        const QString title = text();
        switch (below(isLifelike ? 7 : 10)) {
        case 0:
        case 1:
            node->isFolder = true;
            fields = {{typeKey, listType}, {titleKey, title}, {searchStringKey, title}, {childrenKey, QVariantList()}};
            if (!isLifelike && below(8) == 0)
                fields.insert(typeKey, "BookmarksBar");
            if (!isLifelike && below(8) == 0)
                fields.remove(childrenKey);
            break;
        case 2:
        case 3: {
            const QString address = QStringLiteral("http://%1.example/").arg(++*_count);
            fields = {{typeKey, leafType},
                      {urlStringKey, address},
                      {uriDictionaryKey, QVariantMap{{uriTitleKey, title}, {uriAddressKey, address}}}};
            break;
        }
        case 4:
            fields = {{typeKey, personType}, {addressBookIDKey, text()}};
            break;
        case 5:
        case 6:
            fields = {{typeKey, noteType},
                      {noteKey, below(4) ? text() : QStringLiteral("")},
                      {uriDictionaryKey, QVariantMap{{uriTitleKey, title}, {uriAddressKey, ""}}}};
            break;
        case 7:
            node->value = below(2) ? QVariant(text()) : QVariant(qlonglong(++*_count));
            return node;
        default:
            fields = {{typeKey, "Gadget"}, {titleKey, title}, {"Details", changedDetails({})}};
            break;
        }
        if (isLifelike || below(4))
            fields.insert(uuidKey, QStringLiteral("ID-%1").arg(++*_count));
        else if (below(2))
            fields.insert(uuidKey, "");
        node->value = fields;
        return node;
    }
    QString text() { return QString::fromUtf8(below(5) ? "text %1" : "Täxt %1 \xF0\x9F\x8E\x88 & <b>").arg(++*_count); }

private:
    int below(int bound) const { return int(_random->bounded(bound)); }
    QVariant anyValue()
    {
        switch (below(5)) {
        case 0:
            return QVariant(qlonglong(++*_count));
        case 1:
            return QVariantList{text(), QVariant(true), QVariantMap{{"x", text()}}};
        case 2:
            return QVariant(below(2) == 0);
        case 3:
            return QVariant(double(++*_count) + 0.5);
        default:
            return text();
        }
    }
    QVariantMap changedDetails(QVariantMap details)
    {
        QVariantMap inner = details.value(QStringLiteral("Inner")).toMap();
        inner.insert(below(2) ? QStringLiteral("a") : QStringLiteral("b"), anyValue());
        details.insert(below(2) ? QStringLiteral("x") : QStringLiteral("y"), anyValue());
        details.insert(QStringLiteral("Inner"), inner);
        return details;
    }
    NodePtr copyOf(const NodePtr &node, bool withNewKeys) const
    {
        auto copied = std::make_shared<Node>(*node);
        if (withNewKeys)
            copied->key = ++*_count;
        for (NodePtr &child : copied->children)
            child = copyOf(child, withNewKeys);
        return copied;
    }
    void sort(Node &folder) const
    {
        std::stable_sort(folder.children.begin(), folder.children.end(),
                         [](const NodePtr &a, const NodePtr &b) { return titleOf(*a) < titleOf(*b); });
        if (below(2))
            std::reverse(folder.children.begin(), folder.children.end());
    }
    static QString titleOf(const Node &node)
    {
        const QVariantMap fields = node.value.toMap();
        return fields.value(ItemDictionary::titleKey).toString() +
               fields.value(ItemDictionary::uriDictionaryKey).toMap().value(ItemDictionary::uriTitleKey).toString();
    }
    void moveWithin(const Place &place)
    {
        if (place.node)
            move(place, place.parent);
    }
    void changeIdentifier(Node &node)
    {
        if (node.value.typeId() != QMetaType::QVariantMap)
            return;
        QVariantMap fields = node.value.toMap();
        if (below(2))
            fields.remove(ItemDictionary::uuidKey);
        else
            fields.insert(ItemDictionary::uuidKey, QStringLiteral("ID-%1").arg(++*_count));
        node.value = fields;
    }

    QRandomGenerator *_random;
    int *_count;
};
