#include "drawer/ContactsInUse.h"

#include "core/ContactSource.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "platform/files/Paths.h"

#include <QApplication>
#include <QFontMetrics>
#include <QLocale>

namespace
{
constexpr int widestFolder = 150; // pixels

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

QString filledIn(QString format, const QString &value)
{
    return format.replace(format.indexOf(QStringLiteral("%@")), 2, value);
}

QString shownFolder(const QString &folder)
{
    const QString home = Paths::homeDirectory();
    const bool isInHome = folder == home || folder.startsWith(home + u'/');
    const QString shown = isInHome ? u'~' + folder.mid(home.size()) : folder;
    return QFontMetrics(QApplication::font()).elidedText(shown, Qt::ElideMiddle, widestFolder);
}

QString describeDesktop(std::size_t count)
{
    if (count == 0)
        return localized("Nobody in the desktop's contacts yet.");
    if (count == 1)
        return localized("1 person from the desktop's contacts");
    return filledIn(localized("%@ people from the desktop's contacts"), QLocale().toString(qulonglong(count)));
}

QString describeFolder(std::size_t count, const QString &folder)
{
    if (count == 0)
        return filledIn(localized("Nobody in %@ yet."), folder);
    if (count == 1)
        return filledIn(localized("1 person from %@"), folder);
    return filledIn(filledIn(localized("%@ people from %@"), QLocale().toString(qulonglong(count))), folder);
}

QString describeAbsence(const QString &folder)
{
    const QString chosen = WayfoldDefaults::sharedInstance().contactSource();
    if (chosen == u"desktop")
        return localized("The desktop has no contacts.");
    if (chosen == u"folder")
        return filledIn(localized("There is no folder %@."), folder);
    return localized("No contacts on this machine.");
}
} // namespace

QString ContactsInUse::describe()
{
    const ContactSource *source = ContactSource::current();
    if (!source || source->place() == ContactSource::Nowhere)
        return localized("No contacts are shown.");
    const ContactStore &store = ContactStore::sharedAddressBook();
    const QString folder = shownFolder(source->folder());
    switch (store.state()) {
    case ContactStore::Loading:
        return localized("Looking for contacts...");
    case ContactStore::Absent:
        return describeAbsence(folder);
    default:
        return source->place() == ContactSource::Desktop ? describeDesktop(store.people().size())
                                                         : describeFolder(store.people().size(), folder);
    }
}
