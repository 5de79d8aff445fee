#include "browser/AddressField.h"

#include "browser/Address.h"

#include <QAction>
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QToolButton>

namespace
{
constexpr int progressLineHeight = 2;
constexpr int iconSize = 16;

QMimeData *linkData(const QUrl &url, const QString &title)
{
    auto *data = new QMimeData;
    data->setUrls({url});
    data->setText(url.toString(QUrl::FullyEncoded));
    const QString withTitle = url.toString(QUrl::FullyEncoded) + QLatin1Char('\n') + title;
    data->setData(QStringLiteral("text/x-moz-url"),
                  QByteArray(reinterpret_cast<const char *>(withTitle.utf16()), withTitle.size() * 2));
    return data;
}
} // namespace

AddressField::AddressField(QWidget *parent)
    : QLineEdit(parent)
    , _iconAction(addAction(QIcon(), QLineEdit::LeadingPosition))
{
    setObjectName(QStringLiteral("addressField"));
    setAccessibleName(tr("Address"));
    setToolTip(tr("The address of this page (Ctrl+L)"));
    setPlaceholderText(tr("Enter an address"));
    setInputMethodHints(Qt::ImhUrlCharactersOnly | Qt::ImhNoAutoUppercase);
    connect(this, &QLineEdit::returnPressed, this, &AddressField::enter);

    _iconAction->setToolTip(tr("Drag this page to keep it somewhere"));
    const auto buttons = findChildren<QToolButton *>();
    if (!buttons.isEmpty()) {
        _iconButton = buttons.first();
        _iconButton->setObjectName(QStringLiteral("pageIcon"));
        _iconButton->setAccessibleName(tr("This page"));
        _iconButton->installEventFilter(this);
    }
}

void AddressField::showPage(const QUrl &url, const QString &title, const QIcon &icon)
{
    const bool isTyping = hasFocus() && isModified();
    _url = url;
    _title = title;
    _icon = icon;
    _iconAction->setIcon(icon);
    const QString text = Address::displayText(url);
    if (isTyping || text == this->text())
        return;
    const bool wasSelected = hasFocus() && (selectedText() == this->text());
    setText(text);
    setCursorPosition(0);
    if (wasSelected)
        selectAll();
}

void AddressField::showOtherPage(const QUrl &url, const QString &title, const QIcon &icon)
{
    setModified(false);
    showPage(url, title, icon);
}

void AddressField::setProgress(int percent)
{
    if (percent == _progress)
        return;
    _progress = percent;
    setAccessibleDescription(percent < 100 ? tr("Loading, %1 per cent").arg(percent) : QString());
    update();
}

void AddressField::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    if (event->reason() == Qt::MouseFocusReason)
        _selectOnRelease = true;
    else
        selectAll();
}

void AddressField::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        _selectOnRelease = false;
    QLineEdit::mousePressEvent(event);
}

void AddressField::mouseReleaseEvent(QMouseEvent *event)
{
    QLineEdit::mouseReleaseEvent(event);
    // The click that brings the field the keyboard takes all of it, unless it has selected a part already.
    if (_selectOnRelease && !hasSelectedText())
        selectAll();
    _selectOnRelease = false;
}

void AddressField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        showOtherPage(_url, _title, _icon);
        Q_EMIT editingGivenUp();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void AddressField::paintEvent(QPaintEvent *event)
{
    QLineEdit::paintEvent(event);
    if (_progress >= 100)
        return;
    QPainter painter(this);
    const int margin = 2;
    const int width = (this->width() - 2 * margin) * qMax(_progress, 3) / 100;
    const QRect line(margin, height() - progressLineHeight - 1, width, progressLineHeight);
    painter.fillRect(QStyle::visualRect(layoutDirection(), rect(), line), palette().highlight());
}

bool AddressField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != _iconButton)
        return QLineEdit::eventFilter(watched, event);
    auto *mouse = static_cast<QMouseEvent *>(event);
    if (event->type() == QEvent::MouseButtonPress && mouse->button() == Qt::LeftButton) {
        _dragStart = mouse->pos();
    } else if (event->type() == QEvent::MouseMove && (mouse->buttons() & Qt::LeftButton) &&
               (mouse->pos() - _dragStart).manhattanLength() >= QApplication::startDragDistance()) {
        dragPage();
        return true;
    }
    return QLineEdit::eventFilter(watched, event);
}

void AddressField::enter()
{
    const QUrl url = Address::fromUserInput(text());
    if (url.isValid()) {
        setModified(false);
        Q_EMIT addressEntered(url);
    } else if (!text().trimmed().isEmpty()) {
        Q_EMIT nonsenseEntered(text());
    }
}

void AddressField::dragPage()
{
    if (Address::displayText(_url).isEmpty())
        return;
    auto *drag = new QDrag(this);
    drag->setMimeData(linkData(_url, _title));
    drag->setPixmap(_icon.pixmap(iconSize));
    drag->exec(Qt::CopyAction | Qt::LinkAction, Qt::CopyAction);
}
