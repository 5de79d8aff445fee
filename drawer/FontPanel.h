#pragma once

#include <QFontDialog>

// The panel in which a font is chosen while everything else goes on: each choice is told at once by currentFontChanged,
// so it has no buttons.
class FontPanel : public QFontDialog
{
    Q_OBJECT

public:
    explicit FontPanel(QWidget *parent);

    // Proposes a font; this is no choice, and is not told.
    void setSelectedFont(const QFont &font);
};
