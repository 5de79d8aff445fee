#include "model/UUIDSearch.h"

#include "platform/base/StringRules.h"

#include <algorithm>

namespace
{
std::size_t firstByte(QByteArrayView bytes)
{
    return bytes.isEmpty() ? 0 : static_cast<unsigned char>(bytes.front());
}
} // namespace

UUIDSearch::UUIDSearch(const QStringList &uuids) : _wanted(uuids.cbegin(), uuids.cend())
{
    _wanted.remove(QString());
    for (const QString &uuid : std::as_const(_wanted)) {
        const QByteArray bytes = uuid.toUtf8();
        _lengths.set(std::min(std::size_t(bytes.size()), longest));
        _firstBytes.set(firstByte(bytes));
    }
}

bool UUIDSearch::isWanted(QByteArrayView uuid) const
{
    return _lengths.test(std::min(std::size_t(uuid.size()), longest)) && _firstBytes.test(firstByte(uuid)) &&
           isWanted(StringRules::fromUtf8(uuid));
}

void UUIDSearch::offer(const KDRBookmarkPtr &item)
{
    const QString uuid = item->uuid();
    if (isWanted(uuid))
        _found.insert(uuid, item);
}
