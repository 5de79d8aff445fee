#pragma once

#include "tests/e2e/support/Stage.h"

#include <QAbstractItemView>
#include <QPoint>
#include <QStringList>
#include <QWidget>
#include <optional>

class QAbstractButton;
class QTreeView;

// What the user sees of the application's own widgets, and where on the display it is. Asked from the user's thread.
namespace Eyes
{
// The visible widget of that name within another; null when there is none.
template <class T>
T *widgetNamed(QWidget *within, const QString &name)
{
    return Stage::onMain([&]() -> T * {
        const auto found = within ? within->findChildren<T *>(name) : QList<T *>();
        for (T *widget : found) {
            if (widget->isVisible())
                return widget;
        }
        return nullptr;
    });
}

// The first visible widget of a kind within another, in the order of the tab key; null when there is none.
template <class T>
T *firstOf(QWidget *within)
{
    return Stage::onMain([&]() -> T * {
        for (QWidget *widget = within; widget;) {
            T *found = qobject_cast<T *>(widget);
            if (found && found->isVisible() && within->isAncestorOf(found))
                return found;
            widget = widget->nextInFocusChain();
            if (widget == within)
                break;
        }
        return nullptr;
    });
}

// In global coordinates; (0, 0) for null.
QPoint middleOf(QWidget *widget);
// The dialog that is to be answered first; null when there is none.
QWidget *dialog();
// The button of that dialog with this text; null when there is none.
QAbstractButton *dialogButton(const QString &text);
// All that the dialog says, a label a line.
QString dialogText();

// The texts of the rows that can be seen, from the top to the bottom.
QStringList rowTexts(QTreeView *list);
// The first row with that text, in global coordinates.
std::optional<QRect> rectOfRow(QTreeView *list, const QString &text);
// Its middle.
std::optional<QPoint> rowWithText(QTreeView *list, const QString &text);
} // namespace Eyes
