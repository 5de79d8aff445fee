#include "browser/BookmarkFile.h"

#include "platform/files/FileReplacement.h"
#include "platform/files/KeptCopy.h"
#include "platform/files/Paths.h"
#include "platform/files/PropertyList.h"

#include <QDir>
#include <QFileInfo>
#include <QUuid>

namespace
{
const QString typeKey = QStringLiteral("WebBookmarkType");
const QString uuidKey = QStringLiteral("WebBookmarkUUID");
const QString versionKey = QStringLiteral("WebBookmarkFileVersion");
const QString titleKey = QStringLiteral("Title");
const QString childrenKey = QStringLiteral("Children");
const QString addressKey = QStringLiteral("URLString");
const QString linkKey = QStringLiteral("URIDictionary");
const QString linkTitleKey = QStringLiteral("title");
const QString linkAddressKey = QStringLiteral("");
const QString folderType = QStringLiteral("WebBookmarkTypeList");
const QString linkType = QStringLiteral("WebBookmarkTypeLeaf");

constexpr int deepestFolder = 100;

QString newUuid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

bool isFolder(const QVariantMap &node)
{
    return node.value(typeKey) == folderType;
}

// Empty when the folder's contents are something else than a list.
QVariantList childrenOf(const QVariantMap &folder)
{
    const QVariant children = folder.value(childrenKey);
    return children.typeId() == QMetaType::QVariantList ? children.toList() : QVariantList();
}

QVariantMap newFolder(const QString &title)
{
    return {{typeKey, folderType}, {uuidKey, newUuid()}, {titleKey, title}, {childrenKey, QVariantList()}};
}

QVariantMap newLink(const QString &title, const QString &address)
{
    const QVariantMap link{{linkAddressKey, address}, {linkTitleKey, title}};
    return {{typeKey, linkType}, {uuidKey, newUuid()}, {addressKey, address}, {linkKey, link}};
}

int indexOfFolder(const QVariantList &children, const QString &title)
{
    for (int i = 0; i < children.size(); ++i) {
        const QVariantMap child = children.at(i).toMap();
        if (isFolder(child) && child.value(titleKey) == title)
            return i;
    }
    return -1;
}

// Puts the bar and the menu where they are missing.
void completeRoot(QVariantMap &root)
{
    QVariantList children = childrenOf(root);
    if (indexOfFolder(children, BookmarkFile::barTitle()) < 0)
        children.prepend(newFolder(BookmarkFile::barTitle()));
    if (indexOfFolder(children, BookmarkFile::menuTitle()) < 0)
        children.insert(indexOfFolder(children, BookmarkFile::barTitle()) + 1, newFolder(BookmarkFile::menuTitle()));
    root.insert(childrenKey, children);
    if (!root.contains(typeKey))
        root.insert(typeKey, folderType);
    if (!root.contains(uuidKey))
        root.insert(uuidKey, newUuid());
    if (!root.contains(versionKey))
        root.insert(versionKey, qlonglong(1));
}

QList<BookmarkFile::Node> nodesOf(const QVariantMap &folder, int depth)
{
    QList<BookmarkFile::Node> nodes;
    if (depth > deepestFolder)
        return nodes;
    for (const QVariant &value : childrenOf(folder)) {
        const QVariantMap child = value.toMap();
        if (isFolder(child))
            nodes.append({true, child.value(titleKey).toString(), QString(), nodesOf(child, depth + 1)});
        else if (child.value(typeKey) == linkType)
            nodes.append({false,
                          child.value(linkKey).toMap().value(linkTitleKey).toString(),
                          child.value(addressKey).toString(),
                          {}});
    }
    return nodes;
}

void collectFolders(const QVariantMap &parent, const QList<int> &path, QList<BookmarkFile::Folder> &folders)
{
    const QVariantList children = childrenOf(parent);
    for (int i = 0; i < children.size() && path.size() < deepestFolder; ++i) {
        const QVariantMap child = children.at(i).toMap();
        if (!isFolder(child))
            continue;
        const QList<int> childPath = path + QList<int>{i};
        folders.append({child.value(titleKey).toString(), static_cast<int>(path.size()), childPath});
        collectFolders(child, childPath, folders);
    }
}

// The parent with `link` appended to the folder at the end of the path; empty when the path does not lead to a folder
// of that title.
QVariantMap withLink(QVariantMap parent, const QVariantMap &link, QList<int> path, const QString &title)
{
    QVariantList children = childrenOf(parent);
    if (path.isEmpty()) {
        const bool hasOtherChildren = parent.contains(childrenKey) && parent.value(childrenKey) != QVariant(children);
        if (parent.value(titleKey) != title || hasOtherChildren)
            return {};
        children.append(link);
    } else {
        const int index = path.takeFirst();
        if (index >= children.size() || !isFolder(children.at(index).toMap()))
            return {};
        const QVariantMap child = withLink(children.at(index).toMap(), link, path, title);
        if (child.isEmpty())
            return {};
        children[index] = child;
    }
    parent.insert(childrenKey, children);
    return parent;
}
} // namespace

QString BookmarkFile::defaultPath()
{
    return Paths::expandingTilde(QStringLiteral("~/Library/Safari/Bookmarks.plist"));
}

QString BookmarkFile::barTitle()
{
    return QStringLiteral("BookmarksBar");
}

QString BookmarkFile::menuTitle()
{
    return QStringLiteral("BookmarksMenu");
}

BookmarkFile::BookmarkFile(const QString &path, QObject *parent) : QObject(parent), _path(path) {}

bool BookmarkFile::ensureExists()
{
    if (FileStamp::ofFile(_path))
        return true;
    ensureCurrent();
    return write();
}

QList<BookmarkFile::Node> BookmarkFile::barNodes()
{
    return nodesOfTopFolder(barTitle());
}

QList<BookmarkFile::Node> BookmarkFile::menuNodes()
{
    return nodesOfTopFolder(menuTitle());
}

QList<BookmarkFile::Folder> BookmarkFile::folders()
{
    ensureCurrent();
    QList<Folder> folders;
    collectFolders(_root, {}, folders);
    return folders;
}

bool BookmarkFile::addBookmark(const QString &title, const QString &address, const Folder &folder)
{
    ensureCurrent();
    const QVariantMap before = _root;
    const QVariantMap link = newLink(title, address);
    _root = folder.path.isEmpty() ? QVariantMap() : withLink(before, link, folder.path, folder.title);
    if (_root.isEmpty()) {
        const int menu = indexOfFolder(childrenOf(before), menuTitle());
        _root = withLink(before, link, {menu}, menuTitle());
    }
    if (write())
        return true;
    _root = before;
    return false;
}

void BookmarkFile::ensureCurrent()
{
    if (!_isRead)
        removeAbandonedSaves(_path);
    if (!_isRead || FileStamp::ofFile(_path) != _stamp)
        read();
}

void BookmarkFile::read()
{
    _isRead = true;
    _stamp = FileStamp::ofFile(_path);
    PropertyList::Reading reading;
    _root = PropertyList::readDictionaryFile(_path, &reading);
    const QVariant children = _root.value(childrenKey);
    const bool hasOtherChildren = children.isValid() && children.typeId() != QMetaType::QVariantList;
    _mustKeepCopy = _stamp && (!reading.isWhole || hasOtherChildren);
    completeRoot(_root);
}

bool BookmarkFile::write()
{
    if (_mustKeepCopy && keepCopyOfFile(_path).isNull())
        return false;
    QDir().mkpath(QFileInfo(_path).path());
    if (!PropertyList::writeFile(_root, _path))
        return false;
    _mustKeepCopy = false;
    _stamp = FileStamp::ofFile(_path);
    Q_EMIT changed();
    return true;
}

QList<BookmarkFile::Node> BookmarkFile::nodesOfTopFolder(const QString &title)
{
    ensureCurrent();
    const QVariantList children = childrenOf(_root);
    const int index = indexOfFolder(children, title);
    return index < 0 ? QList<Node>() : nodesOf(children.at(index).toMap(), 0);
}
