#include "platform/widgets/HelpText.h"

#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

namespace
{
// A plain tool tip would be a single line, however long; its blanks and line ends stay as they are.
QString wrapped(const QString &text)
{
    return QStringLiteral("<div style=\"white-space: pre-wrap\">%1</div>").arg(text.toHtmlEscaped());
}

class ToolTipWrapper : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::ToolTip)
            return false;
        auto *widget = static_cast<QWidget *>(watched);
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), wrapped(widget->toolTip()), widget);
        return true;
    }
};
} // namespace

void HelpText::prepare(QWidget *window)
{
    auto *wrapper = new ToolTipWrapper(window);
    for (QWidget *widget : window->findChildren<QWidget *>()) {
        if (widget->toolTip().isEmpty())
            continue;
        widget->setWhatsThis(widget->toolTip());
        widget->setAccessibleDescription(widget->toolTip());
        widget->installEventFilter(wrapper);
    }
}
