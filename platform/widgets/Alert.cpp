#include "platform/widgets/Alert.h"

#include "platform/files/Bundle.h"
#include "platform/widgets/ModalDialog.h"

#include <QCloseEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <algorithm>

namespace
{
// A message box that can always be left by Escape and by its window's close button, with no button pressed.
class AlertBox : public QMessageBox
{
public:
    using QMessageBox::QMessageBox;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->matches(QKeySequence::Cancel))
            reject();
        else
            QMessageBox::keyPressEvent(event);
    }
    void closeEvent(QCloseEvent *event) override
    {
        event->accept();
        reject();
    }
};

QMessageBox::Icon iconForStyle(Alert::Style style)
{
    switch (style) {
    case Alert::NSInformationalAlertStyle:
        return QMessageBox::Information;
    case Alert::NSCriticalAlertStyle:
        return QMessageBox::Critical;
    default:
        return QMessageBox::Warning;
    }
}

// A message box by itself is as narrow as its heading, which breaks the text below into a column. A question that is
// only somewhat longer than a line is not broken at all.
void widen(QMessageBox &box)
{
    constexpr int characters = 48;
    constexpr int most = 68;
    auto *text = box.findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel"));
    if (!text)
        return;
    const QFontMetrics metrics = text->fontMetrics();
    const int character = metrics.averageCharWidth();
    const int margins = text->width() - text->contentsRect().width();
    const int line = metrics.horizontalAdvance(text->text()) + margins + character;
    text->setMinimumWidth(line <= most * character ? std::max(line, characters * character) : characters * character);
}
} // namespace

int Alert::runModal(QWidget *parent) const
{
    // The parent may go, and take the box with it, while the box is up.
    const QPointer<AlertBox> box = new AlertBox(parent);
    box->setObjectName(QStringLiteral("Alert"));
    box->setIcon(iconForStyle(style));
    box->setText(messageText);
    box->setInformativeText(informativeText);
    box->setTextFormat(Qt::PlainText);
    // Which leaves the second text out.
    for (QLabel *label : box->findChildren<QLabel *>())
        label->setTextFormat(Qt::PlainText);

    widen(*box);

    const QString defaultTitle = defaultButton.isNull() ? Bundle::localizedString(QStringLiteral("OK")) : defaultButton;
    QPushButton *first = box->addButton(defaultTitle, QMessageBox::AcceptRole);
    const QPushButton *alternate =
        alternateButton.isNull() ? nullptr : box->addButton(alternateButton, QMessageBox::RejectRole);
    const QPushButton *other =
        otherButton.isNull() ? nullptr : box->addButton(otherButton, QMessageBox::DestructiveRole);
    box->setDefaultButton(first);

    ModalDialog::run(box);
    if (!box)
        return NSAlertAlternateReturn;
    const QAbstractButton *clicked = box->clickedButton();
    const bool isAlone = !alternate && !other;
    int result = isAlone ? NSAlertDefaultReturn : NSAlertAlternateReturn;
    if (clicked && clicked == first)
        result = NSAlertDefaultReturn;
    else if (clicked && clicked == other)
        result = NSAlertOtherReturn;
    delete box;
    return result;
}
