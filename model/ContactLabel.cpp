#include "model/ContactLabel.h"

#include "core/settings/WayfoldToolkit.h"

#include <QStringList>

QString ContactLabel::readable(const QString &label, const QString &kind)
{
    static const QStringList common = {
        QStringLiteral("home"),     QStringLiteral("work"),  QStringLiteral("mobile"), QStringLiteral("main"),
        QStringLiteral("fax"),      QStringLiteral("other"), QStringLiteral("video"),  QStringLiteral("home fax"),
        QStringLiteral("work fax"), QStringLiteral("pager"), QStringLiteral("car"),    QStringLiteral("text"),
    };
    if (label.isEmpty())
        return WayfoldToolkit::localizedString(kind);
    return common.contains(label) ? WayfoldToolkit::localizedString(label) : label;
}
