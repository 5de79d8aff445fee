#include "tests/e2e/support/Eyes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTreeView>
#include <functional>

namespace
{
// Shows every row that is in sight to `see`, from the top, until it answers true.
void lookAtRows(QTreeView *list, const std::function<bool(const QModelIndex &)> &see)
{
    if (!list || !list->model() || !list->isVisible())
        return;
    for (QModelIndex row = list->indexAt(QPoint(1, 1)); row.isValid(); row = list->indexBelow(row)) {
        if (list->visualRect(row).top() >= list->viewport()->height() || see(row))
            return;
    }
}
} // namespace

QPoint Eyes::middleOf(QWidget *widget)
{
    return Stage::onMain([&] { return widget ? widget->mapToGlobal(widget->rect().center()) : QPoint(); });
}

QAbstractButton *Eyes::dialogButton(const QString &text)
{
    return Stage::onMain([&]() -> QAbstractButton * {
        const QWidget *dialog = QApplication::activeModalWidget();
        const auto buttons = dialog ? dialog->findChildren<QAbstractButton *>() : QList<QAbstractButton *>();
        for (QAbstractButton *button : buttons) {
            if (button->isVisible() && button->text().remove(QLatin1Char('&')) == text)
                return button;
        }
        return nullptr;
    });
}

QStringList Eyes::rowTexts(QTreeView *list)
{
    return Stage::onMain([&] {
        QStringList texts;
        lookAtRows(list, [&](const QModelIndex &row) {
            texts += row.data().toString();
            return false;
        });
        return texts;
    });
}

std::optional<QPoint> Eyes::rowWithText(QTreeView *list, const QString &text)
{
    return Stage::onMain([&] {
        std::optional<QPoint> middle;
        lookAtRows(list, [&](const QModelIndex &row) {
            if (row.data().toString() != text)
                return false;
            middle = list->viewport()->mapToGlobal(list->visualRect(row).center());
            return true;
        });
        return middle;
    });
}
