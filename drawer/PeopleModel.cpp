#include "drawer/PeopleModel.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/contacts/ContactStore.h"
#include "platform/widgets/Image.h"
#include "platform/widgets/ToolTipText.h"

namespace
{
constexpr auto betweenLooks = std::chrono::milliseconds(250); // at the store
constexpr int mostPictures = 500;
constexpr qsizetype mostWantedPictures = 100; // what was scrolled past is wanted no more

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

QString noteOf(const PeopleRows::Row &row)
{
    if (row.type == WayfoldABEntry::Group)
        return localized("Group");
    const std::vector<ContactValue> &emails = row.record->emails;
    if (!emails.empty())
        return emails[std::size_t(std::clamp(row.record->primaryEmail, 0, int(emails.size()) - 1))].value;
    return row.type == WayfoldABEntry::Person ? row.record->organization : QString();
}

// For those who have no picture of their own.
QIcon commonPicture(WayfoldABEntry::EntryType type)
{
    const QString name = type == WayfoldABEntry::Group          ? QStringLiteral("WayfoldBookmarkImageGroup")
                         : type == WayfoldABEntry::Organization ? QStringLiteral("WayfoldBookmarkImageCompany")
                                                                : QStringLiteral("WayfoldBookmarkImagePerson");
    static QHash<QString, QIcon> icons;
    if (!icons.contains(name)) {
        const std::shared_ptr<Image> image = WayfoldToolkit::loadImageNamed(name);
        icons.insert(name, image ? image->icon() : QIcon());
    }
    return icons.value(name);
}
} // namespace

PeopleModel::PeopleModel(QObject *parent) : QAbstractListModel(parent), _pictures(mostPictures)
{
    // While a dialog runs no notifications come, so this looks by itself.
    _storeTimer.setInterval(betweenLooks);
    connect(&_storeTimer, &QTimer::timeout, this, &PeopleModel::followStore);
    connect(&_rowTimer, &QTimer::timeout, this, &PeopleModel::makeRows);
    _pictureTimer.setSingleShot(true);
    connect(&_pictureTimer, &QTimer::timeout, this, &PeopleModel::makePicture);
    _storeTimer.start();
    followStore();
}

void PeopleModel::followStore()
{
    const ContactStore &store = ContactStore::sharedAddressBook();
    if (std::exchange(_generation, store.generation()) != store.generation() || _state < 0) {
        _rows.takeFrom(store);
        _rowTimer.start();
        makeRows(); // nobody need wait for a few
    }
    if (std::exchange(_state, store.state()) != store.state())
        Q_EMIT stateChanged();
}

void PeopleModel::makeRows()
{
    if (!_rows.makeSome())
        return;
    _rowTimer.stop();
    beginResetModel();
    _rows.takeOver();
    _found = _rows.rowsMatching(_search);
    endResetModel();
    Q_EMIT stateChanged();
}

void PeopleModel::setSearch(const QString &search)
{
    beginResetModel();
    _search = search;
    _found = _rows.rowsMatching(search);
    endResetModel();
}

bool PeopleModel::isLoading() const
{
    return !_rows.isMade() || ContactStore::sharedAddressBook().state() == ContactStore::Loading;
}

WayfoldABEntryPtr PeopleModel::entry(const QModelIndex &index) const
{
    return index.isValid() ? WayfoldABEntry::AddressBookEntryFromABRecord(row(index).record) : nullptr;
}

const PeopleRows::Row &PeopleModel::row(const QModelIndex &index) const
{
    return _rows.row(_found[std::size_t(index.row())]);
}

int PeopleModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(_found.size());
}

QVariant PeopleModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const PeopleRows::Row &shown = row(index);
    switch (role) {
    case Qt::DisplayRole:
        return shown.name;
    case Qt::DecorationRole:
        return picture(shown);
    case Qt::AccessibleDescriptionRole:
    case NoteRole:
        return noteOf(shown);
    case Qt::ToolTipRole:
        return ToolTipText::shown(entry(index)->summaryText());
    case IdentifierRole:
        return shown.record->uniqueId;
    default:
        return {};
    }
}

QIcon PeopleModel::picture(const PeopleRows::Row &row) const
{
    const Picture *made = _pictures.object(row.record->uniqueId);
    if (made && made->record == row.record && (made->isOwn || made->generation == _generation))
        return made->icon;
    if (row.type == WayfoldABEntry::Group)
        return commonPicture(row.type);
    _wantedPictures.removeOne(row.record->uniqueId);
    _wantedPictures.append(row.record->uniqueId);
    if (_wantedPictures.size() > mostWantedPictures)
        _wantedPictures.removeFirst();
    _pictureTimer.start();
    return made && made->isOwn ? made->icon : commonPicture(row.type);
}

// One at a time, as a picture may be large.
void PeopleModel::makePicture()
{
    const QString wanted = _wantedPictures.takeLast();
    if (!_wantedPictures.isEmpty())
        _pictureTimer.start();
    const auto found = std::find_if(_found.cbegin(), _found.cend(),
                                    [&](int place) { return _rows.row(place).record->uniqueId == wanted; });
    if (found == _found.cend())
        return;
    const PeopleRows::Row &row = _rows.row(*found);
    const std::shared_ptr<Image> own = WayfoldABEntry::AddressBookEntryFromABRecord(row.record)->image();
    const QIcon icon = own ? own->icon() : commonPicture(row.type);
    _pictures.insert(wanted, new Picture{row.record, _generation, own != nullptr, icon});
    const QModelIndex changed = index(int(found - _found.cbegin()));
    Q_EMIT dataChanged(changed, changed, {Qt::DecorationRole});
}
