#include "drawer/KDRNewPersonController.h"

#include "core/PreferencesWindow.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "drawer/PeopleModel.h"
#include "drawer/PersonCell.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "platform/contacts/ContactStore.h"
#include "platform/widgets/ModalDialog.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QPushButton>

namespace
{
QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

void describe(QAbstractButton *button, const char *text, const char *toolTip)
{
    button->setText(localized(text));
    button->setAccessibleName(localized(text));
    button->setToolTip(localized(toolTip));
}

// Those that mean the list even while the keyboard is in the search field. All are selected where there is no text
// that could be.
bool isForTheList(const QKeyEvent &event, const QLineEdit &field)
{
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return true;
    default:
        return event.matches(QKeySequence::SelectAll) && field.selectedText() == field.text();
    }
}

// What is typed in the list goes on in the field.
bool isTyping(const QKeyEvent &event)
{
    const bool isCommand = event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const QString text = event.text();
    return event.key() == Qt::Key_Backspace || (!text.isEmpty() && text.front().isPrint() && !isCommand);
}

std::shared_ptr<KDRBookmark> newItem(const WayfoldABEntryPtr &entry)
{
    if (entry->entryType() == WayfoldABEntry::Group)
        return WayfoldBookmarkABGroup::bookmarkWithRecord(entry);
    return WayfoldBookmarkABPerson::bookmarkWithRecord(entry);
}
} // namespace

KDRNewPersonController::KDRNewPersonController()
{
    if (loadInterface())
        connectPanel();
    else
        delete _editWindow;
}

KDRNewPersonController::~KDRNewPersonController()
{
    delete _editWindow;
}

// False when the interface file, or something in it, is missing.
bool KDRNewPersonController::loadInterface()
{
    _interface = std::make_unique<InterfaceFile>(QStringLiteral("KDRNewPerson"));
    _editWindow = qobject_cast<QDialog *>(_interface->topLevelWidget());
    _searchField = _interface->outlet<QLineEdit>(QStringLiteral("searchField"));
    _pages = _interface->outlet<QStackedWidget>(QStringLiteral("pages"));
    _peopleView = _interface->outlet<QListView>(QStringLiteral("peopleView"));
    _emptyField = _interface->outlet<QLabel>(QStringLiteral("emptyField"));
    _preferencesButton = _interface->outlet<QAbstractButton>(QStringLiteral("preferencesButton"));
    auto *buttons = _interface->outlet<QDialogButtonBox>(QStringLiteral("buttonBox"));
    if (!_editWindow || !_searchField || !_pages || !_peopleView || !_emptyField || !_preferencesButton || !buttons)
        return false;
    _addButton = buttons->button(QDialogButtonBox::Ok);
    describe(_addButton, "Add", QT_TRID_NOOP("Add the selected people to the list"));
    describe(buttons->button(QDialogButtonBox::Cancel), "Cancel", QT_TRID_NOOP("Close without changing anything"));
    connect(buttons, &QDialogButtonBox::accepted, _editWindow, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, _editWindow, &QDialog::reject);
    return true;
}

void KDRNewPersonController::connectPanel()
{
    _editWindow->setAttribute(Qt::WA_QuitOnClose, false);
    _people = new PeopleModel(_editWindow);
    _peopleView->setItemDelegate(new PersonCell(_peopleView));
    _peopleView->setModel(_people);
    connect(_people, &QAbstractItemModel::modelAboutToBeReset, this, &KDRNewPersonController::rememberSelection);
    connect(_people, &QAbstractItemModel::modelReset, this, &KDRNewPersonController::restoreSelection);
    connect(_people, &PeopleModel::stateChanged, this, &KDRNewPersonController::showState);
    connect(_peopleView->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        _choseByHand = _choseByHand || !_isRestoring;
        _addButton->setEnabled(_peopleView->selectionModel()->hasSelection());
    });
    connect(_peopleView, &QAbstractItemView::doubleClicked, _editWindow, &QDialog::accept);
    connect(_searchField, &QLineEdit::textChanged, this, &KDRNewPersonController::search);
    _interface->connectAction(QStringLiteral("handleShowPrefsWindow:"), [this](QObject *) { showPreferences(); });
    _emptyField->setForegroundRole(QPalette::PlaceholderText);
    _searchField->installEventFilter(this);
    _peopleView->installEventFilter(this);
    _searchField->setFocus();
    _addButton->setEnabled(false);
    showState();
}

bool KDRNewPersonController::doEdit()
{
    if (!_editWindow)
        return false;
    ModalDialog::attachToActiveWindow(_editWindow);
    ModalDialog::fitIntoScreen(_editWindow);
    const bool accepted = ModalDialog::run(_editWindow) == QDialog::Accepted;
    if (_wantsPreferences)
        PreferencesWindow::show();
    return accepted && !chosenEntries().empty();
}

std::vector<WayfoldABEntryPtr> KDRNewPersonController::chosenEntries() const
{
    if (!_editWindow)
        return {};
    QModelIndexList rows = _peopleView->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    std::vector<WayfoldABEntryPtr> entries;
    for (const QModelIndex &row : std::as_const(rows))
        entries.push_back(_people->entry(row));
    return entries;
}

std::vector<std::shared_ptr<KDRBookmark>> KDRNewPersonController::newItems() const
{
    std::vector<std::shared_ptr<KDRBookmark>> items;
    for (const WayfoldABEntryPtr &entry : chosenEntries())
        items.push_back(newItem(entry));
    return items;
}

void KDRNewPersonController::showPreferences()
{
    _wantsPreferences = true;
    _editWindow->reject();
}

// --- What is shown --------------------------------------------------------------------------------------------------

void KDRNewPersonController::search(const QString &text)
{
    _isSearching = true;
    _people->setSearch(text);
    _isSearching = false;
    showState();
}

void KDRNewPersonController::showState()
{
    const bool hasRows = _people->rowCount() > 0;
    _pages->setCurrentIndex(hasRows ? 0 : 1);
    if (hasRows)
        return;
    _emptyField->setText(textWhenEmpty());
    _preferencesButton->setVisible(_people->isEmpty() && !_people->isLoading());
}

QString KDRNewPersonController::textWhenEmpty() const
{
    if (_people->isLoading())
        return localized("Your contacts are being read...");
    if (!_people->isEmpty())
        return localized("Nobody is found.");
    if (ContactStore::sharedAddressBook().state() == ContactStore::Ready)
        return localized("There is nobody in your contacts yet.");
    if (WayfoldDefaults::sharedInstance().contactSource() == u"none")
        return localized("Contacts are switched off.\n\nThe preferences say where people come from.");
    return localized("No contacts were found on this machine.\n\nPeople come from the desktop's contacts or from a "
                     "folder of cards. The preferences say from which.");
}

// --- Selection ------------------------------------------------------------------------------------------------------

void KDRNewPersonController::rememberSelection()
{
    _remembered.clear();
    const QModelIndexList rows = _peopleView->selectionModel()->selectedRows();
    for (const QModelIndex &row : rows)
        _remembered.append(row.data(PeopleModel::IdentifierRole).toString());
    _rememberedCurrent = _peopleView->currentIndex().data(PeopleModel::IdentifierRole).toString();
}

// As few ranges as there can be: telling many apart takes quadratic time.
QItemSelection KDRNewPersonController::rowsOf(const QSet<QString> &identifiers) const
{
    QItemSelection rows;
    int first = 0;
    for (int row = 0; row <= _people->rowCount(); ++row) {
        if (identifiers.contains(_people->index(row).data(PeopleModel::IdentifierRole).toString()))
            continue;
        if (first < row)
            rows.append(QItemSelectionRange(_people->index(first), _people->index(row - 1)));
        first = row + 1;
    }
    return rows;
}

// Who was selected stays so. But what is searched for selects its first match, unless the user has chosen somebody who
// is still among those found.
void KDRNewPersonController::restoreSelection()
{
    _isRestoring = true;
    const QItemSelection kept = rowsOf({_remembered.cbegin(), _remembered.cend()});
    if (!kept.isEmpty() && (_choseByHand || !_isSearching)) {
        const QItemSelection current = rowsOf({_rememberedCurrent});
        _peopleView->selectionModel()->setCurrentIndex((current.isEmpty() ? kept : current).constLast().bottomRight(),
                                                       QItemSelectionModel::NoUpdate);
        _peopleView->selectionModel()->select(kept, QItemSelectionModel::ClearAndSelect);
        _peopleView->scrollTo(_peopleView->currentIndex());
    } else if (_isSearching || _remembered.isEmpty()) {
        _choseByHand = false;
        selectFirstMatch();
    }
    _addButton->setEnabled(_peopleView->selectionModel()->hasSelection());
    _isRestoring = false;
}

void KDRNewPersonController::selectFirstMatch()
{
    if (_people->search().trimmed().isEmpty() || _people->rowCount() == 0)
        _peopleView->clearSelection();
    else
        _peopleView->setCurrentIndex(_people->index(0));
    _peopleView->scrollToTop();
}

// --- Keyboard -------------------------------------------------------------------------------------------------------

bool KDRNewPersonController::eventFilter(QObject *watched, QEvent *event)
{
    const bool announced = event->type() == QEvent::ShortcutOverride;
    if (!announced && event->type() != QEvent::KeyPress)
        return false;
    const auto &keyEvent = static_cast<QKeyEvent &>(*event);
    const bool toList = watched == _searchField && isForTheList(keyEvent, *_searchField);
    const bool toField = watched == _peopleView && isTyping(keyEvent) && keyEvent.key() != Qt::Key_Space;
    if (!toList && !toField)
        return false;
    event->accept();
    if (announced)
        return true;
    if (toField) {
        _searchField->setFocus(Qt::OtherFocusReason);
        _searchField->end(false);
        QCoreApplication::sendEvent(_searchField, event);
    } else {
        QCoreApplication::sendEvent(_peopleView, event);
    }
    return true;
}
