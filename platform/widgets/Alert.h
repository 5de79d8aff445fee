#pragma once

#include <QString>

class QWidget;

// A modal message with up to three buttons.
class Alert
{
public:
    enum Style { NSWarningAlertStyle = 0, NSInformationalAlertStyle = 1, NSCriticalAlertStyle = 2 };
    enum Result { NSAlertDefaultReturn = 1, NSAlertAlternateReturn = 0, NSAlertOtherReturn = -1 };

    QString messageText;
    QString informativeText;
    QString defaultButton;
    QString alternateButton; // null: none
    QString otherButton;     // null: none
    Style style = NSWarningAlertStyle;

    // Shows the alert above `parent` (may be null) and waits. Return presses the default button; Escape, and closing
    // the alert, count as the alternate button (as the default one when it is alone).
    int runModal(QWidget *parent = nullptr) const;
};
