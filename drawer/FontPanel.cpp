#include "drawer/FontPanel.h"

#include "core/settings/WayfoldToolkit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QSignalBlocker>

namespace
{
constexpr int sampleHeight = 100;
}

FontPanel::FontPanel(QWidget *parent) : QFontDialog(parent)
{
    // The desktops' own panels tell nothing before they are closed.
    setOptions(DontUseNativeDialog | NoButtons);
    setWindowTitle(WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Font of the Lists"))));
    // A font is kept by name and size, which know nothing of a line under or through it.
    for (QCheckBox *effect : findChildren<QCheckBox *>())
        effect->parentWidget()->hide();
    for (QLabel *label : findChildren<QLabel *>())
        label->setText(WayfoldToolkit::localizedString(label->text()));
    for (QComboBox *box : findChildren<QComboBox *>()) {
        for (int i = 0; i < box->count(); ++i)
            box->setItemText(i, WayfoldToolkit::localizedString(box->itemText(i)));
    }
    for (QGroupBox *group : findChildren<QGroupBox *>()) {
        group->setTitle(WayfoldToolkit::localizedString(group->title()));
        group->setMinimumHeight(sampleHeight); // the effects had made room for the sample beside them
    }
}

void FontPanel::setSelectedFont(const QFont &font)
{
    const QSignalBlocker blocker(this);
    setCurrentFont(font);
}
