#include "tests/e2e/support/Eyes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
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

QWidget *Eyes::dialog()
{
    return Stage::onMain([] { return QApplication::activeModalWidget(); });
}

QString Eyes::dialogText()
{
    return Stage::onMain([] {
        const QWidget *front = dialog();
        QStringList texts;
        for (const QLabel *label : front ? front->findChildren<QLabel *>() : QList<QLabel *>()) {
            if (label->isVisible() && !label->text().isEmpty())
                texts += label->text();
        }
        return texts.join(QLatin1Char('\n'));
    });
}

QAbstractButton *Eyes::dialogButton(const QString &text)
{
    return Stage::onMain([&]() -> QAbstractButton * {
        const QWidget *front = dialog();
        const auto buttons = front ? front->findChildren<QAbstractButton *>() : QList<QAbstractButton *>();
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

std::optional<QRect> Eyes::rectOfRow(QTreeView *list, const QString &text)
{
    return Stage::onMain([&] {
        std::optional<QRect> rect;
        lookAtRows(list, [&](const QModelIndex &row) {
            if (row.data().toString() != text)
                return false;
            const QRect place = list->visualRect(row);
            rect = QRect(list->viewport()->mapToGlobal(place.topLeft()), place.size());
            return true;
        });
        return rect;
    });
}

std::optional<QPoint> Eyes::rowWithText(QTreeView *list, const QString &text)
{
    const std::optional<QRect> row = rectOfRow(list, text);
    return row ? std::optional(row->center()) : std::nullopt;
}
