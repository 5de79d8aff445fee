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

// In global coordinates; (0, 0) for null.
QPoint middleOf(QWidget *widget);
// The button of the dialog in front with that text; null when there is none.
QAbstractButton *dialogButton(const QString &text);

// The texts of the rows that can be seen, from the top to the bottom.
QStringList rowTexts(QTreeView *list);
// The middle of the first such row's text in global coordinates.
std::optional<QPoint> rowWithText(QTreeView *list, const QString &text);
} // namespace Eyes
