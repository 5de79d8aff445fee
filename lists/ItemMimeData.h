#pragma once

#include "model/KDRBookmark.h"

#include <QMimeData>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

// Dragged items. The data of a type is made when somebody asks for it, from values as the pasteboard knows them
// (a text, or a property list); the desktop's types are made from those.
class ItemMimeData : public QMimeData
{
    Q_OBJECT

public:
    // Answers the value of one declared type (a QString or a QVariantList), invalid for none; and for
    // PasteboardTypes::mozillaUrl the addresses of all dragged items that have one and the titles of these, in two
    // lists; for PasteboardTypes::plainText the titles of all dragged people and groups.
    using Provider = std::function<QVariant(const QString &type)>;

    // `types` are the lists' own; the desktop's are added to them.
    ItemMimeData(const QStringList &types, Provider provider, const std::vector<KDRBookmarkPtr> &items = {});

    // The dragged items themselves, in order, for a drop in this process.
    const std::vector<std::weak_ptr<KDRBookmark>> &items() const { return _items; }

    // Without the desktop's.
    const QStringList &declaredTypes() const { return _types; }

    QStringList formats() const override;
    bool hasFormat(const QString &mimeType) const override;

    // An address list as the desktop writes it.
    static QByteArray uriListData(const QStringList &addresses);

protected:
    QVariant retrieveData(const QString &mimeType, QMetaType type) const override;

private:
    bool declares(const QString &type) const { return _types.contains(type); }
    bool hasAddresses() const;
    QStringList addresses() const;
    QStringList titles() const;
    QByteArray mozillaUrlData() const;
    bool hasNames() const;
    QStringList names() const;
    const QByteArray &cards() const;
    QByteArray cardFileData() const;

    QStringList _types;
    Provider _provider;
    std::vector<std::weak_ptr<KDRBookmark>> _items;
    // Whether there are addresses is asked at every move of a drag.
    mutable std::optional<bool> _hasAddresses;
    mutable std::optional<QByteArray> _cards; // and so are these
};
