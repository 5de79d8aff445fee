#pragma once

#include "platform/files/PlainXml.h"

#include <QFile>
#include <chrono>
#include <optional>
#include <vector>

// What an item file holds, counted in slices and without making an item:
//
//     ItemCount count(path);
//     while (!count.advance(4ms)) ...    // something else comes between
//     if (count.holding()) ...
class ItemCount
{
public:
    struct Holding
    {
        int items = 0; // at every depth, folders among them
        int sites = 0; // folders at the top
    };

    explicit ItemCount(const QString &path);

    // Goes on counting for about that long; true when it is done.
    bool advance(std::chrono::milliseconds most);
    // None before it is done, and for what cannot be read, or is so unusual and large that reading it would take long.
    std::optional<Holding> holding() const;

private:
    // What an element that has begun is.
    enum Container { Item, Children, Root };

    bool readTag();
    bool readKey(PlainXml::Tag tag);
    bool readValue(PlainXml::Tag tag);
    bool begin(Container container);
    bool finish(bool isReadable);
    void countInGeneral();
    bool isAtTop() const { return _open.size() == 3; } // root, its children, one of them

    QString _path;
    QFile _file;
    std::optional<PlainXml> _xml;
    std::vector<Container> _open;
    QByteArray _key; // whose value comes next
    bool _isDone = false;
    bool _isReadable = false;
    Holding _holding;
};
