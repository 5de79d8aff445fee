#pragma once

#include <QObject>
#include <QPointer>

class QKeyEvent;
class QLineEdit;
class WayfoldOutlineView;

// Makes one of a list and the search field above it for the keyboard. What is typed in the list goes on in the field;
// Down goes from the field to the list, Return opens the first page found, Escape ends the search. Ctrl+F anywhere in
// `area` begins one, as long as the field can be seen there.
class ListSearch : public QObject
{
    Q_OBJECT

public:
    // Belongs to the field.
    ListSearch(QLineEdit *field, WayfoldOutlineView *list, QWidget *area);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using KeyHandler = void (ListSearch::*)(QKeyEvent &event);

    KeyHandler handlerOf(QObject *watched, const QKeyEvent &event) const;
    void begin(QKeyEvent &event);
    void typeIntoField(QKeyEvent &event);
    void end(QKeyEvent &event);
    void goToList(QKeyEvent &event);
    void openFirstMatch(QKeyEvent &event);
    int firstPageRow() const;

    QLineEdit *_field;
    QPointer<WayfoldOutlineView> _list;
    QPointer<QWidget> _area;
};
