#pragma once

#include <QFont>
#include <QSet>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <optional>

// Every setting of the drawer, the user's keyboard shortcuts included, and a look at the host's own settings. The
// settings are a domain of their own in the user-defaults store; every setter but the two for shortcuts writes it.
class WayfoldDefaults
{
public:
    // The domain's name.
    static const QString domainName;
    // Posted as soon as possible after another process has changed settings, which count here already; object: the one
    // instance.
    static const QString changedElsewhereNotification;

    // The one instance; the first call loads it.
    static WayfoldDefaults &sharedInstance();

    // Reads the domain, fills in a default for whatever it lacks, and writes it back. May be called again.
    void loadDefaults();
    void writeDefaults();
    // The keys (see SettingKeys) of what other processes have changed since this was last asked. The store asks, and
    // has the lists, the menu and the contacts follow.
    QSet<QString> takeKeysChangedElsewhere();

    // On only when the stored value is exactly 1 (as a number or as text).
    bool autoFocusOnSiteChange() const;
    void setAutoFocusOnSiteChange(bool on);
    bool showBookmarkIcons() const;
    void setShowBookmarkIcons(bool on);
    bool openDrawerForKnownSite() const;
    void setOpenDrawerForKnownSite(bool on);
    bool openDrawerOnNewWindow() const;
    void setOpenDrawerOnNewWindow(bool on);
    bool closeDrawerForUnknownSite() const;
    void setCloseDrawerForUnknownSite(bool on);
    bool confirmItemDelete() const;
    void setConfirmItemDelete(bool on);
    bool createAutoFolders() const;
    void setCreateAutoFolders(bool on);
    bool showFavicons() const;
    void setShowFavicons(bool on);

    // In device-independent pixels; 0 or less means that no width was stored.
    float defaultDrawerContentWidth() const;
    void setDefaultDrawerContentWidth(float width);
    // In points.
    float listViewFontSize() const;
    void setListViewFontSize(float size);

    // Null when nothing, or nothing that has a text, is stored. Setting null takes the stored value away.
    QString historyGroupingStyle() const;
    void setHistoryGroupingStyle(const QString &style);
    QString listViewFontName() const;
    void setListViewFontName(const QString &name);
    // The tab that a new drawer shows: "0", "1" or "2".
    QString defaultFirstTabIdentifier() const;
    void setDefaultFirstTabIdentifier(const QString &identifier);

    // Whose people are shown: the desktop's ("desktop"), those of a folder of cards ("folder") or nobody ("none"). Any
    // other text, and null, which it is until something is chosen: whichever there are.
    QString contactSource() const;
    void setContactSource(const QString &source);
    // The folder of cards, a path as the user writes it; null until one is named.
    QString contactFolder() const;
    void setContactFolder(const QString &path);

    // The desktop's small font when no name is stored; none when the stored name is not known here.
    std::optional<QFont> listViewFont() const;
    // The font of a stored name, which is a family ("DejaVu Sans") or a family and a style ("DejaVu Sans-Bold"); none
    // when it is not known here. A size of 0 or less gives the desktop's usual size.
    static std::optional<QFont> fontWithNameSize(const QString &name, float size);
    // The name to store for a font, of a style that its family has.
    static QString nameOfFont(const QFont &font);

    // Shortcuts by menu-item number: a key ("O", "" for none) and a mask of MenuItem::ModifierMask bits, 0 for none.
    // Null and 0 when nothing is stored. The setters store the whole table among the host's settings and leave the
    // domain alone; the next setter of another kind writes it there too.
    QString shortcutKeyForItem(unsigned item) const;
    unsigned shortcutModifierMaskForItem(unsigned item) const;
    void setShortcutKeyForItem(const QString &key, unsigned item);
    void setShortcutModifierMaskForItemForItem(unsigned modifierMask, unsigned item);
    static QVariantMap defaultMenuItemShortcuts();
    // Gives key and mask of the default table to every item that has no key.
    static void verifyDefaultMenuItemShortcuts(QVariantMap &shortcuts);

    // The host's own settings: invalid and false when there is no such value, or no host.
    static QVariant fetchPrefObjectForKey(const QString &key);
    static bool fetchPrefBooleanForKey(const QString &key);
    // Whether the host opens pages in tabs.
    static bool tabbedBrowsingEnabled();

private:
    WayfoldDefaults() = default;

    void fillInDefaults();
    void followDomain();
    void setDefaultForKey(const QVariant &value, const QString &key);
    float floatForKey(const QString &key) const;
    bool boolForKey(const QString &key) const;
    QString stringForKey(const QString &key) const;
    // An invalid value takes the stored one away.
    void setValueForKey(const QVariant &value, const QString &key);
    void setBoolForKey(bool on, const QString &key);
    void setStringForKey(const QString &text, const QString &key);
    void setFloatForKey(float number, const QString &key);
    void setShortcutEntry(const QVariant &value, const QString &entry);

    // Every setting by its key, the shortcut table among them.
    QVariantMap _prefs;
    // The domain as it was last read or written.
    QVariantMap _domain;
    QSet<QString> _keysChangedElsewhere;
};
