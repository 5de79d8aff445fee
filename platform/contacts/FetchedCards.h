#pragma once

#include <QByteArray>
#include <QCache>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>

// Whole cards that are fetched when somebody asks for them: as many as there is room for, and a few at a time.
class FetchedCards
{
public:
    using Done = std::function<void(const QByteArray &card)>; // null: it could not be had
    using Fetch = std::function<void(const QString &uniqueId, const Done &done)>;
    using Came = std::function<void(const QString &uniqueId)>;

    // `came` is told once for a card: when it had to be fetched again, whoever asked finds it at his next look.
    FetchedCards(Fetch fetch, Came came) : _fetch(std::move(fetch)), _came(std::move(came)) {}

    // Null: it is not here, and will be fetched.
    QByteArray card(const QString &uniqueId);
    // The card is another one now, or has gone.
    void forget(const QString &uniqueId);

    static constexpr qsizetype room = 16'777'216; // bytes
    static constexpr int atOnce = 4;

private:
    void fetchNext();
    void take(const QString &uniqueId, quint64 round, const QByteArray &card);

    Fetch _fetch;
    Came _came;
    QCache<QString, QByteArray> _cards{room};
    QStringList _waiting;
    QSet<QString> _isWaiting;
    bool _isFetching = false;
    QHash<QString, quint64> _underWay; // what was asked for is told from what was forgotten meanwhile
    QSet<QString> _told;
    quint64 _lastRound = 0;
};
