#include "platform/contacts/FetchedCards.h"

QByteArray FetchedCards::card(const QString &uniqueId)
{
    if (const QByteArray *known = _cards.object(uniqueId))
        return *known;
    if (!_underWay.contains(uniqueId) && !_isWaiting.contains(uniqueId)) {
        _waiting.append(uniqueId);
        _isWaiting.insert(uniqueId);
        fetchNext();
    }
    return {};
}

void FetchedCards::forget(const QString &uniqueId)
{
    _cards.remove(uniqueId);
    _told.remove(uniqueId);
    _underWay.remove(uniqueId);
    if (_isWaiting.remove(uniqueId))
        _waiting.removeOne(uniqueId);
    fetchNext(); // whoever was to answer may be gone
}

void FetchedCards::fetchNext()
{
    if (_isFetching) // what is answered at once comes back here
        return;
    _isFetching = true;
    while (_underWay.size() < atOnce && !_waiting.isEmpty()) {
        const QString uniqueId = _waiting.takeFirst();
        _isWaiting.remove(uniqueId);
        const quint64 round = ++_lastRound;
        _underWay.insert(uniqueId, round);
        _fetch(uniqueId, [this, uniqueId, round](const QByteArray &card) { take(uniqueId, round, card); });
    }
    _isFetching = false;
}

void FetchedCards::take(const QString &uniqueId, quint64 round, const QByteArray &card)
{
    if (_underWay.value(uniqueId) == round) {
        _underWay.remove(uniqueId);
        if (!card.isNull())
            _cards.insert(uniqueId, new QByteArray(card), card.size());
        if (!card.isNull() && !_told.contains(uniqueId)) {
            _told.insert(uniqueId);
            _came(uniqueId);
        }
    }
    fetchNext();
}
