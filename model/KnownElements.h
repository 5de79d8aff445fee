#pragma once

#include <QByteArrayView>
#include <vector>

class PlainXml;

// The elements of a file's lists, as a reader saw them: each with a hash of what it holds and with the record that came
// of it. When the file is read again, those that have not changed are told by their hashes, without reading them.
//
//     elements.start();
//     while (...) {
//         if (const auto *element = elements.passOver(xml))
//             ... take over element->record of the former reading, and note() where it is now
//         else
//             ... read, and note()
//     }
class KnownElements
{
public:
    static constexpr quint32 noRecord = ~0U;
    // How many elements in a row may be gone: what is visited again moves to the front, and old things are dropped.
    static constexpr std::size_t mostGone = 16;

    struct Element
    {
        quint64 hash = 0;
        quint32 length = 0; // in the plain form, in bytes, from the end of the one before
        quint32 record = noRecord;
    };

    // A new reading: what was noted in the one before is known from now on.
    void start();
    // Nothing is known, or nothing noted.
    void forgetKnown() { _known.clear(); }
    void forgetNoted() { _noted.clear(); }
    bool knowsAny() const { return !_known.empty(); }

    // The element that is next in the file, passed over, or that has this hash; null when it is not known, and has to
    // be read.
    const Element *passOver(PlainXml &xml);
    const Element *withHash(quint64 hash);

    void note(const Element &element) { _noted.push_back(element); }
    // An element of the plain form that has been read.
    void note(QByteArrayView bytes, quint32 record);
    std::size_t notedCount() const { return _noted.size(); }
    // Takes back what was noted after the first `count`.
    void keepNoted(std::size_t count) { _noted.resize(count); }

private:
    template <class Predicate>
    const Element *next(Predicate isNext);

    std::vector<Element> _known;
    std::vector<Element> _noted;
    std::size_t _next = 0; // the first known one that may still follow
};
