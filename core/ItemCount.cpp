#include "core/ItemCount.h"

#include "model/ItemDictionary.h"
#include "platform/files/PropertyList.h"

#include <QElapsedTimer>

using Tag = PlainXml::Tag;

namespace
{
constexpr int tagsBetweenLooksAtTheClock = 256;
constexpr qint64 quicklyReadInGeneral = qint64(256) * 1024; // bytes

bool isFolder(const QString &type)
{
    return type == ItemDictionary::listType;
}

int itemsIn(const QVariantMap &folder)
{
    const QVariantList children = ItemDictionary::list(folder, ItemDictionary::childrenKey);
    int items = 0;
    for (const QVariant &child : children) {
        if (child.typeId() == QMetaType::QVariantMap)
            items += 1 + itemsIn(child.toMap());
    }
    return items;
}
} // namespace

ItemCount::ItemCount(const QString &path) : _path(path)
{
    if (PropertyList::openFile(path, &_file))
        _xml.emplace(_file);
    else
        _isDone = true;
}

std::optional<ItemCount::Holding> ItemCount::holding() const
{
    return _isDone && _isReadable ? std::optional(_holding) : std::nullopt;
}

bool ItemCount::advance(std::chrono::milliseconds most)
{
    QElapsedTimer timer;
    timer.start();
    if (_isDone)
        return true;
    if (_open.empty() && !(_xml->readProlog() && _xml->readTag() == Tag::Dictionary && begin(Root)))
        return finish(false);
    for (int tags = 1; readTag(); ++tags) {
        if (tags % tagsBetweenLooksAtTheClock == 0 && timer.elapsed() >= most.count())
            return false;
    }
    return finish(_open.empty() && _xml->readEpilog());
}

bool ItemCount::finish(bool isReadable)
{
    _isDone = true;
    _isReadable = isReadable;
    if (!_isReadable)
        countInGeneral();
    _xml.reset();
    _file.close();
    return true;
}

// False at the end, and when there is something unusual.
bool ItemCount::readTag()
{
    const Tag tag = _xml->readTag();
    const bool isInDictionary = _open.back() != Children;
    if (tag == Tag::EndDictionary || tag == Tag::EndArray) {
        if ((tag == Tag::EndDictionary) != isInDictionary || !_key.isNull())
            return false;
        _open.pop_back();
        return !_open.empty();
    }
    if (!isInDictionary) {
        if (tag != Tag::Dictionary && tag != Tag::EmptyDictionary)
            return _xml->skipValue(tag);
        ++_holding.items;
        return tag == Tag::EmptyDictionary || begin(Item);
    }
    return _key.isNull() ? readKey(tag) : readValue(tag);
}

bool ItemCount::readKey(Tag tag)
{
    if (tag != Tag::Key && tag != Tag::EmptyKey)
        return false;
    const QByteArrayView key = _xml->readText(tag);
    _key = QByteArray(key.isEmpty() ? "" : key.data(), key.size());
    return !_xml->failed();
}

bool ItemCount::readValue(Tag tag)
{
    const QString key = QString::fromUtf8(std::exchange(_key, {}));
    if (key == ItemDictionary::childrenKey && tag == Tag::Array)
        return begin(Children);
    if (key != ItemDictionary::typeKey || tag != Tag::String || !isAtTop())
        return _xml->skipValue(tag);
    if (isFolder(QString::fromUtf8(_xml->readText(tag))))
        ++_holding.sites;
    return !_xml->failed();
}

bool ItemCount::begin(Container container)
{
    _open.push_back(container);
    return true;
}

void ItemCount::countInGeneral()
{
    _holding = {};
    if (_file.size() > quicklyReadInGeneral)
        return;
    PropertyList::Reading reading;
    const QVariantMap root = PropertyList::readDictionaryFile(_path, &reading, PropertyList::Xml::General);
    _isReadable = reading.ok;
    _holding.items = itemsIn(root);
    const QVariantList children = ItemDictionary::list(root, ItemDictionary::childrenKey);
    for (const QVariant &child : children)
        _holding.sites += isFolder(ItemDictionary::string(child.toMap(), ItemDictionary::typeKey)) ? 1 : 0;
}
