#pragma once

#include "model/KDRBookmark.h"
#include "platform/base/Url.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <optional>

class QMimeData;

// What a drop brings, by the pasteboard types of the lists. Data of another application, which knows only the desktop's
// types, is read as the type that comes closest. Its addresses are asked for once: each time, the other application has
// to answer.
class DroppedData
{
public:
    explicit DroppedData(const QMimeData &data) : _data(data) {}

    bool offers(const QString &type) const;
    // Cards, which come as none of the types, count for any of them.
    bool offersAnyOf(const QStringList &types) const;
    // Null when the type is not offered or holds no text.
    QString stringForType(const QString &type) const;
    // The address in a text; some applications write characters that may not stand in one, they are escaped. None for
    // an empty text and for what is no address even so.
    static Url urlFromText(const QString &text);
    // Empty when the type is not offered or holds no list.
    QVariantList propertyListForType(const QString &type) const;
    // The dictionaries of items, with visited pages as links when the data knows of them.
    QVariantList itemDictionaries() const;
    // The item of that place in a drag of this very process; null when there is none, or none any more.
    KDRBookmarkPtr draggedItem(std::size_t place) const;
    // Whether another application brings something as people's cards, and what it brings; empty when it does not. That
    // may be anything.
    bool offersCards() const;
    QByteArray cards() const;
    // Whether the file name of that place comes from another application, and names a file of this machine.
    bool isForeignFileHere(qsizetype place) const;
    // The addresses that the data has in the desktop's types, and the titles of these, in two lists; a title is empty
    // when there is none.
    QVariantList links() const;

private:
    struct Links
    {
        QStringList addresses;
        QStringList titles; // one for each address; null: none
    };

    static Links linksFromUriList(const QString &text);
    static Links linksFromLines(const QString &text);
    QString textForType(const QString &type) const;
    QString wideTextForType(const QString &type) const;
    QString titleBeside(const QString &address) const;
    Links readLinks() const;
    const Links &foreignLinks() const;
    bool areAllFiles() const;
    bool isForeign() const;
    QString cardFormat() const;
    bool foreignDataOffers(const QString &type) const;
    QVariantList foreignPropertyList(const QString &type) const;

    const QMimeData &_data;
    mutable std::optional<Links> _links; // none: not asked for yet
};
