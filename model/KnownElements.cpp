#include "model/KnownElements.h"

#include "platform/files/PlainXml.h"

#include <QHashFunctions>
#include <QRandomGenerator>
#include <algorithm>

namespace
{
quint64 hashOf(QByteArrayView bytes)
{
    // Not to be foreseen by whoever writes the file.
    static const std::size_t seed = QRandomGenerator::global()->generate64() | 1;
    return qHashBits(bytes.data(), std::size_t(bytes.size()), seed);
}

bool isAhead(PlainXml &xml, const KnownElements::Element &element)
{
    const QByteArrayView bytes = xml.peek(element.length);
    // The end tells most of those that are not, at no cost.
    return bytes.size() == qsizetype(element.length) && bytes.back() == '>' && hashOf(bytes) == element.hash;
}
} // namespace

void KnownElements::start()
{
    _known = std::move(_noted);
    _noted.clear();
    _noted.reserve(_known.size() + mostGone);
    _next = 0;
}

const KnownElements::Element *KnownElements::passOver(PlainXml &xml)
{
    const Element *element = next([&xml](const Element &known) { return isAhead(xml, known); });
    if (element)
        xml.pass(element->length);
    return element;
}

const KnownElements::Element *KnownElements::withHash(quint64 hash)
{
    return next([hash](const Element &known) { return known.hash == hash; });
}

void KnownElements::note(QByteArrayView bytes, quint32 record)
{
    note({hashOf(bytes), quint32(bytes.size()), record});
}

template <class Predicate>
const KnownElements::Element *KnownElements::next(Predicate isNext)
{
    const auto first = _known.begin() + std::ptrdiff_t(_next);
    const auto last = first + std::ptrdiff_t(std::min(_known.size() - _next, mostGone));
    const auto found = std::find_if(first, last, isNext);
    if (found == last)
        return nullptr;
    _next = std::size_t(found - _known.begin()) + 1;
    return &*found;
}
