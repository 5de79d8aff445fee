#include "lists/ListSearch.h"

#include "lists/WayfoldOutlineView.h"
#include "lists/WayfoldOutlineViewDelegate.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>

namespace
{
bool hasCommandModifier(const QKeyEvent &event)
{
    return event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
}

// The space bar opens what is selected, so a search cannot begin with it.
bool isTyping(const QKeyEvent &event)
{
    const QString text = event.text();
    return !text.isEmpty() && text.front().isPrint() && !text.front().isSpace() && !hasCommandModifier(event);
}
} // namespace

ListSearch::ListSearch(QLineEdit *field, WayfoldOutlineView *list, QWidget *area)
    : QObject(field)
    , _field(field)
    , _list(list)
    , _area(area)
{
    for (QWidget *watched : std::initializer_list<QWidget *>{field, list, area}) {
        if (watched)
            watched->installEventFilter(this);
    }
}

bool ListSearch::eventFilter(QObject *watched, QEvent *event)
{
    const bool announced = event->type() == QEvent::ShortcutOverride; // the host may have a shortcut of that key
    if (!_list || (!announced && event->type() != QEvent::KeyPress))
        return false;
    auto &keyEvent = static_cast<QKeyEvent &>(*event);
    const KeyHandler handler = handlerOf(watched, keyEvent);
    if (!handler)
        return false;
    event->accept();
    if (!announced)
        (this->*handler)(keyEvent);
    return true;
}

// Null: the key has its usual meaning.
ListSearch::KeyHandler ListSearch::handlerOf(QObject *watched, const QKeyEvent &event) const
{
    if (watched == _area)
        return event.matches(QKeySequence::Find) && _field->isVisible() ? &ListSearch::begin : nullptr;
    if (watched == _list) {
        if (event.key() == Qt::Key_Escape && !_field->text().isEmpty())
            return &ListSearch::end;
        return isTyping(event) ? &ListSearch::typeIntoField : nullptr;
    }
    if (hasCommandModifier(event))
        return nullptr;
    switch (event.key()) {
    case Qt::Key_Escape:
        return &ListSearch::end;
    case Qt::Key_Down:
        return &ListSearch::goToList;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return &ListSearch::openFirstMatch;
    default:
        return nullptr;
    }
}

void ListSearch::begin(QKeyEvent & /*event*/)
{
    _field->setFocus(Qt::ShortcutFocusReason);
    _field->selectAll();
}

void ListSearch::typeIntoField(QKeyEvent &event)
{
    _field->setFocus(Qt::OtherFocusReason);
    _field->end(false);
    QCoreApplication::sendEvent(_field, &event);
}

void ListSearch::end(QKeyEvent & /*event*/)
{
    _field->clear();
    _list->setFocus(Qt::OtherFocusReason);
}

void ListSearch::goToList(QKeyEvent & /*event*/)
{
    if (_list->numberOfRows() == 0)
        return;
    _list->setFocus(Qt::OtherFocusReason);
    if (_list->selectedRow() < 0)
        _list->selectIndividualRow(0);
    _list->scrollRowToVisible(_list->selectedRow());
}

void ListSearch::openFirstMatch(QKeyEvent &event)
{
    if (_field->text().isEmpty() || _list->numberOfRows() == 0) {
        goToList(event);
        return;
    }
    _list->selectIndividualRow(firstPageRow());
    goToList(event);
    _list->handleResolveBookmarkRequest(_field);
}

// The first row that is not a folder; the first of all when all are.
int ListSearch::firstPageRow() const
{
    const int rows = _list->numberOfRows();
    for (int row = 0; row < rows; ++row) {
        const auto item = std::static_pointer_cast<KDRBookmark>(_list->itemAtRow(row));
        if (item && !item->isFolder())
            return row;
    }
    return 0;
}
