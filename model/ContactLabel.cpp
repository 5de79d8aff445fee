#include "model/ContactLabel.h"

#include "core/settings/WayfoldToolkit.h"

#include <QStringList>

QString ContactLabel::readable(const QString &label, const QString &kind)
{
    static const QStringList common = {
        QStringLiteral(QT_TRID_NOOP("home")),     QStringLiteral(QT_TRID_NOOP("work")),
        QStringLiteral(QT_TRID_NOOP("mobile")),   QStringLiteral(QT_TRID_NOOP("main")),
        QStringLiteral(QT_TRID_NOOP("fax")),      QStringLiteral(QT_TRID_NOOP("other")),
        QStringLiteral(QT_TRID_NOOP("video")),    QStringLiteral(QT_TRID_NOOP("home fax")),
        QStringLiteral(QT_TRID_NOOP("work fax")), QStringLiteral(QT_TRID_NOOP("pager")),
        QStringLiteral(QT_TRID_NOOP("car")),      QStringLiteral(QT_TRID_NOOP("text")),
    };
    if (label.isEmpty())
        return WayfoldToolkit::localizedString(kind);
    return common.contains(label) ? WayfoldToolkit::localizedString(label) : label;
}
