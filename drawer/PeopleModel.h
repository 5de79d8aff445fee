#pragma once

#include "drawer/PeopleRows.h"

#include <QAbstractListModel>
#include <QCache>
#include <QIcon>
#include <QTimer>

// The people and groups that a search finds in the contacts, a row each. It follows the contacts as they change, and
// makes a picture only for a row that is drawn.
class PeopleModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        NoteRole = Qt::UserRole, // an address or what else tells people of one name apart; may be empty
        IdentifierRole,
    };

    explicit PeopleModel(QObject *parent);

    void setSearch(const QString &search);
    QString search() const { return _search; }
    // Whether there is anybody, found or not.
    bool isEmpty() const { return _rows.size() == 0; }
    // Whether more is to come.
    bool isLoading() const;
    // None for an invalid index.
    WayfoldABEntryPtr entry(const QModelIndex &index) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

Q_SIGNALS:
    // What isEmpty() or isLoading() answer may be another.
    void stateChanged();

private:
    struct Picture
    {
        ContactRecordPtr record;
        quint64 generation; // of the store that had none
        bool isOwn;
        QIcon icon;
    };

    const PeopleRows::Row &row(const QModelIndex &index) const;
    void followStore();
    void makeRows();
    QIcon picture(const PeopleRows::Row &row) const;
    void makePicture();

    PeopleRows _rows;
    std::vector<int> _found; // positions in there
    QString _search;
    quint64 _generation = 0;
    int _state = -1; // of the store, when it was last looked at
    QTimer _storeTimer;
    QTimer _rowTimer;
    mutable QTimer _pictureTimer;
    mutable QStringList _wantedPictures; // identifiers, the latest last
    QCache<QString, Picture> _pictures;
};
