#include "browser/FindBar.h"

#include "browser/SymbolIcon.h"
#include "browser/WebView.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QWebEngineFindTextResult>

FindBar::FindBar(QWidget *parent) : QWidget(parent), _text(new QLineEdit), _matches(new QLabel)
{
    setObjectName(QStringLiteral("findBar"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 3, 6, 3);

    _text->setObjectName(QStringLiteral("findField"));
    _text->setAccessibleName(tr("Find in page"));
    _text->setToolTip(tr("Text to find in this page"));
    _text->setPlaceholderText(tr("Find in page"));
    _text->setClearButtonEnabled(true);
    _text->setMaximumWidth(320);
    _matches->setObjectName(QStringLiteral("findMatches"));
    _matches->setAccessibleName(tr("Matches"));
    connect(_text, &QLineEdit::textChanged, this, [this] { find(false); });

    layout->addWidget(_text, 1);
    layout->addWidget(addButton(QStringLiteral("findPreviousButton"), QStringLiteral("up"), tr("Previous match"),
                                tr("Find the previous match (Ctrl+Shift+G)")));
    layout->addWidget(addButton(QStringLiteral("findNextButton"), QStringLiteral("down"), tr("Next match"),
                                tr("Find the next match (Ctrl+G)")));
    layout->addWidget(_matches);
    layout->addStretch(1);
    layout->addWidget(
        addButton(QStringLiteral("closeFindButton"), QStringLiteral("close"), tr("Close"), tr("Close the find bar")));
    connect(findChild<QToolButton *>(QStringLiteral("findPreviousButton")), &QToolButton::clicked, this,
            &FindBar::findPrevious);
    connect(findChild<QToolButton *>(QStringLiteral("findNextButton")), &QToolButton::clicked, this,
            &FindBar::findNext);
    connect(findChild<QToolButton *>(QStringLiteral("closeFindButton")), &QToolButton::clicked, this, &FindBar::close);
    hide();
}

void FindBar::setView(WebView *view)
{
    if (view == _view)
        return;
    if (_view && isVisible())
        _view->findText(QString());
    _view = view;
    if (isVisible())
        find(false);
}

void FindBar::open()
{
    show();
    _text->setFocus(Qt::ShortcutFocusReason);
    _text->selectAll();
}

void FindBar::close()
{
    hide();
    if (!_view)
        return;
    _view->findText(QString());
    _view->setFocus();
}

void FindBar::findNext()
{
    find(false);
}

void FindBar::findPrevious()
{
    find(true);
}

void FindBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        find(event->modifiers() & Qt::ShiftModifier);
    else
        QWidget::keyPressEvent(event);
}

QToolButton *FindBar::addButton(const QString &name, const QString &icon, const QString &text, const QString &toolTip)
{
    auto *button = new QToolButton(this);
    button->setObjectName(name);
    button->setIcon(SymbolIcon::named(icon));
    button->setAccessibleName(text);
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

void FindBar::find(bool backward)
{
    if (!_view)
        return;
    if (_text->text().isEmpty())
        _matches->clear();
    const auto flags = backward ? QWebEnginePage::FindBackward : QWebEnginePage::FindFlags();
    _view->findText(_text->text(), flags, [bar = QPointer<FindBar>(this)](const QWebEngineFindTextResult &result) {
        if (bar)
            bar->showResult(result);
    });
}

void FindBar::showResult(const QWebEngineFindTextResult &result)
{
    if (_text->text().isEmpty())
        _matches->clear();
    else if (result.numberOfMatches() == 0)
        _matches->setText(tr("Not found"));
    else
        _matches->setText(tr("%1 of %2").arg(result.activeMatch()).arg(result.numberOfMatches()));
}
