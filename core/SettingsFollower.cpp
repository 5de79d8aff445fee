#include "core/SettingsFollower.h"

#include "core/ContactSource.h"
#include "core/Notifications.h"
#include "core/settings/SettingKeys.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "platform/base/NotificationCenter.h"

SettingsFollower::SettingsFollower(Reactions reactions) : _reactions(std::move(reactions))
{
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification & /*notification*/) { follow(); },
        WayfoldDefaults::changedElsewhereNotification);
}

SettingsFollower::~SettingsFollower()
{
    NotificationCenter::defaultCenter().removeObserver(this);
}

void SettingsFollower::follow() const
{
    WayfoldDefaults &settings = WayfoldDefaults::sharedInstance();
    const QSet<QString> keys = settings.takeKeysChangedElsewhere();
    const auto hasChanged = [&keys](const QString &key) { return keys.contains(key); };

    if (hasChanged(SettingKeys::CreateAutoFolders))
        settings.createAutoFolders() ? _reactions.addSmartFolders() : _reactions.removeSmartFolders();
    if (hasChanged(SettingKeys::ShowBookmarkIcons) || hasChanged(SettingKeys::ShowFavIcons))
        _reactions.reloadLists();
    if (hasChanged(SettingKeys::HistoryGroupingKey))
        _reactions.regroupHistory();
    if (hasChanged(SettingKeys::ListViewFontName) || hasChanged(SettingKeys::ListViewFontSize))
        WayfoldToolkit::postNotificationNameObject(Notifications::ListViewFontChangeNotification, nullptr);
    if (hasChanged(SettingKeys::MenuItemShortcuts))
        _reactions.showShortcuts();
    const bool areContactsElsewhere =
        hasChanged(SettingKeys::SourceOfContacts) || hasChanged(SettingKeys::FolderOfContacts);
    if (ContactSource *contacts = areContactsElsewhere ? ContactSource::current() : nullptr)
        contacts->followSettings();
}
