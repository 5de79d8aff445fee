#include "core/settings/WayfoldDefaults.h"

#include "core/settings/SettingKeys.h"
#include "core/settings/WayfoldToolkit.h"
#include "platform/base/StringRules.h"
#include "platform/files/DictionaryMerge.h"
#include "platform/files/UserDefaults.h"
#include "platform/host/CurrentHost.h"
#include "platform/host/HostApplication.h"
#include "platform/host/HostSettings.h"
#include "platform/widgets/MenuItem.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <limits>

using namespace SettingKeys;

const QString WayfoldDefaults::domainName = QStringLiteral("org.wayfold.Wayfold");
const QString WayfoldDefaults::changedElsewhereNotification = QStringLiteral("SettingsChangedElsewhereNotification");

namespace
{
// The forms in which settings are stored, the same that a property list gives back.
const QVariant storedOff = qlonglong(0);
const QVariant storedOn = qlonglong(1);

constexpr qreal smallFontRatio = 0.85; // of the small font to the normal one, where the desktop names none

struct Shortcut
{
    unsigned item;
    unsigned modifierMask;
    QString key;
};

constexpr unsigned Command = MenuItem::NSCommandKeyMask;
constexpr unsigned CommandShift = MenuItem::NSCommandKeyMask | MenuItem::NSShiftKeyMask;

const Shortcut defaultShortcuts[] = {
    {0, Command, QStringLiteral("0")},
    {10, CommandShift, QStringLiteral("*")},
    {11, CommandShift, QStringLiteral("-")},
    {12, CommandShift, QStringLiteral("+")},
    {1, 0, QStringLiteral("")},
    {2, 0, QStringLiteral("")},
    {3, 0, QStringLiteral("")},
    {4, CommandShift, QStringLiteral("O")},
    {5, CommandShift, QStringLiteral("E")},
    {6, 0, QStringLiteral("")},
    {13, 0, QStringLiteral("")},
    {14, 0, QStringLiteral("")},
    {7, CommandShift, QStringLiteral("J")},
    {8, CommandShift, QStringLiteral("K")},
    {9, CommandShift, QStringLiteral("L")},
};

QString keyEntry(unsigned item)
{
    return QString::number(item) + QStringLiteral("_KEY");
}

QString modifierEntry(unsigned item)
{
    return QString::number(item) + QStringLiteral("_MODIFIER");
}

// A property list in XML has no room for control characters: Escape is stored as "U+001B". Keys are single characters
// otherwise, so that none is taken for another.
const QString codePrefix = QStringLiteral("U+");
constexpr int codeDigits = 4;

QString storedForm(const QString &key)
{
    if (key.size() != 1 || key.front().category() != QChar::Other_Control)
        return key;
    return codePrefix + QString::number(key.front().unicode(), 16).rightJustified(codeDigits, u'0').toUpper();
}

QString keyOfStoredForm(const QString &stored)
{
    if (!stored.startsWith(codePrefix) || stored.size() != codePrefix.size() + codeDigits)
        return stored;
    const QChar character(stored.mid(codePrefix.size()).toUShort(nullptr, 16));
    return storedForm(character) == stored ? QString(character) : stored;
}

float floatValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return float(StringRules::doubleValue(value.toString()));
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return value.toFloat();
    default:
        return 0;
    }
}

unsigned unsignedValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return unsigned(StringRules::integerValue(value.toString()));
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return unsigned(value.toULongLong());
    case QMetaType::Float:
    case QMetaType::Double: {
        const double number = value.toDouble();
        return number >= 0 && number <= std::numeric_limits<unsigned>::max() ? unsigned(number) : 0;
    }
    default:
        return 0;
    }
}

bool boolValue(const QVariant &value)
{
    if (value.typeId() != QMetaType::QString)
        return floatValue(value) != 0;
    const QString text = value.toString();
    return StringRules::compareIgnoringCase(text, QStringLiteral("yes")) == 0 ||
           StringRules::compareIgnoringCase(text, QStringLiteral("true")) == 0 || StringRules::integerValue(text) != 0;
}

// What the family calls the weight and slant of the font; null for the plain style, or when it has no such style.
QString styleOfFont(const QFont &font)
{
    if (font.weight() == QFont::Normal && !font.italic())
        return {};
    QString shortest; // beside "Bold" there may be a "Condensed Bold"
    const QStringList styles = QFontDatabase::styles(font.family());
    for (const QString &style : styles) {
        const QFont styled = QFontDatabase::font(font.family(), style, 0);
        const bool fits = styled.weight() == font.weight() && styled.italic() == font.italic();
        if (fits && (shortest.isNull() || style.size() < shortest.size()))
            shortest = style;
    }
    return shortest;
}

// Many desktops name no small font of their own, and Qt's stand-in for it may be larger than the normal one.
QFont smallSystemFont()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    const qreal normalSize = QFontInfo(font).pointSizeF();
    const qreal smallSize = QFontInfo(QFontDatabase::systemFont(QFontDatabase::SmallestReadableFont)).pointSizeF();
    font.setPointSizeF(smallSize < normalSize ? smallSize : normalSize * smallFontRatio);
    return font;
}
} // namespace

WayfoldDefaults &WayfoldDefaults::sharedInstance()
{
    static WayfoldDefaults *const instance = [] {
        auto *defaults = new WayfoldDefaults;
        defaults->loadDefaults();
        UserDefaults *store = &UserDefaults::standardUserDefaults();
        QObject::connect(store, &UserDefaults::domainChangedElsewhere, store, [defaults](const QString &name) {
            if (name == domainName)
                defaults->followDomain();
        });
        return defaults;
    }();
    return *instance;
}

void WayfoldDefaults::loadDefaults()
{
    _prefs = UserDefaults::standardUserDefaults().persistentDomainForName(domainName);
    fillInDefaults();
    writeDefaults();
}

void WayfoldDefaults::fillInDefaults()
{
    setDefaultForKey(250.0, DefaultDrawerContentWidth);
    setDefaultForKey(storedOff, AutoFocusOnSiteChange);
    setDefaultForKey(storedOn, ShowBookmarkIcons);
    setDefaultForKey(storedOff, OpenDrawerForKnownSite);
    setDefaultForKey(storedOff, OpenDrawerOnNewWindow);
    setDefaultForKey(storedOff, CloseDrawerForUnknownSite);
    setDefaultForKey(QStringLiteral("4"), HistoryGroupingKey);
    setDefaultForKey(QStringLiteral("LucidaGrande"), ListViewFontName);
    setDefaultForKey(12.0, ListViewFontSize);
    setDefaultForKey(storedOn, ConfirmItemDelete);
    setDefaultForKey(defaultMenuItemShortcuts(), MenuItemShortcuts);

    // A table of a foreign type holds no shortcuts, so all of them get their defaults.
    QVariantMap shortcuts = _prefs.value(MenuItemShortcuts).toMap();
    verifyDefaultMenuItemShortcuts(shortcuts);
    _prefs.insert(MenuItemShortcuts, shortcuts);

    setDefaultForKey(QStringLiteral("0"), DefaultFirstTab);
    setDefaultForKey(storedOn, CreateAutoFolders);
    setDefaultForKey(_prefs.value(ShowBookmarkIcons), ShowFavIcons);
}

void WayfoldDefaults::writeDefaults()
{
    UserDefaults &store = UserDefaults::standardUserDefaults();
    store.removePersistentDomainForName(domainName);
    store.setPersistentDomainForName(_prefs, domainName);
    _domain = _prefs;
}

// Shortcuts that only the host has yet stay as they are here. Nothing is written: the others would have to follow.
void WayfoldDefaults::followDomain()
{
    const QVariantMap before = _prefs;
    const QVariantMap domain = UserDefaults::standardUserDefaults().persistentDomainForName(domainName);
    _prefs = mergedDictionary(_domain, _prefs, domain);
    _domain = domain;
    fillInDefaults();
    QVariantMap known = before;
    known.insert(_prefs);
    for (auto entry = known.cbegin(); entry != known.cend(); ++entry) {
        if (before.value(entry.key()) != _prefs.value(entry.key()))
            _keysChangedElsewhere.insert(entry.key());
    }
    if (!_keysChangedElsewhere.isEmpty())
        WayfoldToolkit::postNotificationNameObject(changedElsewhereNotification, this);
}

QSet<QString> WayfoldDefaults::takeKeysChangedElsewhere()
{
    return std::exchange(_keysChangedElsewhere, {});
}

bool WayfoldDefaults::autoFocusOnSiteChange() const
{
    return boolForKey(AutoFocusOnSiteChange);
}

void WayfoldDefaults::setAutoFocusOnSiteChange(bool on)
{
    setBoolForKey(on, AutoFocusOnSiteChange);
}

bool WayfoldDefaults::showBookmarkIcons() const
{
    return boolForKey(ShowBookmarkIcons);
}

void WayfoldDefaults::setShowBookmarkIcons(bool on)
{
    setBoolForKey(on, ShowBookmarkIcons);
}

bool WayfoldDefaults::openDrawerForKnownSite() const
{
    return boolForKey(OpenDrawerForKnownSite);
}

void WayfoldDefaults::setOpenDrawerForKnownSite(bool on)
{
    setBoolForKey(on, OpenDrawerForKnownSite);
}

bool WayfoldDefaults::openDrawerOnNewWindow() const
{
    return boolForKey(OpenDrawerOnNewWindow);
}

void WayfoldDefaults::setOpenDrawerOnNewWindow(bool on)
{
    setBoolForKey(on, OpenDrawerOnNewWindow);
}

bool WayfoldDefaults::closeDrawerForUnknownSite() const
{
    return boolForKey(CloseDrawerForUnknownSite);
}

void WayfoldDefaults::setCloseDrawerForUnknownSite(bool on)
{
    setBoolForKey(on, CloseDrawerForUnknownSite);
}

bool WayfoldDefaults::confirmItemDelete() const
{
    return boolForKey(ConfirmItemDelete);
}

void WayfoldDefaults::setConfirmItemDelete(bool on)
{
    setBoolForKey(on, ConfirmItemDelete);
}

bool WayfoldDefaults::createAutoFolders() const
{
    return boolForKey(CreateAutoFolders);
}

void WayfoldDefaults::setCreateAutoFolders(bool on)
{
    setBoolForKey(on, CreateAutoFolders);
}

bool WayfoldDefaults::showFavicons() const
{
    return boolForKey(ShowFavIcons);
}

void WayfoldDefaults::setShowFavicons(bool on)
{
    setBoolForKey(on, ShowFavIcons);
}

float WayfoldDefaults::defaultDrawerContentWidth() const
{
    return floatForKey(DefaultDrawerContentWidth);
}

void WayfoldDefaults::setDefaultDrawerContentWidth(float width)
{
    setFloatForKey(width, DefaultDrawerContentWidth);
}

float WayfoldDefaults::listViewFontSize() const
{
    return floatForKey(ListViewFontSize);
}

void WayfoldDefaults::setListViewFontSize(float size)
{
    setFloatForKey(size, ListViewFontSize);
}

QString WayfoldDefaults::historyGroupingStyle() const
{
    return stringForKey(HistoryGroupingKey);
}

void WayfoldDefaults::setHistoryGroupingStyle(const QString &style)
{
    setStringForKey(style, HistoryGroupingKey);
}

QString WayfoldDefaults::listViewFontName() const
{
    return stringForKey(ListViewFontName);
}

void WayfoldDefaults::setListViewFontName(const QString &name)
{
    setStringForKey(name, ListViewFontName);
}

QString WayfoldDefaults::defaultFirstTabIdentifier() const
{
    return stringForKey(DefaultFirstTab);
}

void WayfoldDefaults::setDefaultFirstTabIdentifier(const QString &identifier)
{
    setStringForKey(identifier, DefaultFirstTab);
}

QString WayfoldDefaults::contactSource() const
{
    return stringForKey(SourceOfContacts);
}

void WayfoldDefaults::setContactSource(const QString &source)
{
    setStringForKey(source, SourceOfContacts);
}

QString WayfoldDefaults::contactFolder() const
{
    return stringForKey(FolderOfContacts);
}

void WayfoldDefaults::setContactFolder(const QString &path)
{
    setStringForKey(path, FolderOfContacts);
}

std::optional<QFont> WayfoldDefaults::listViewFont() const
{
    const QString name = listViewFontName();
    if (!name.isEmpty())
        return fontWithNameSize(name, listViewFontSize());
    return smallSystemFont();
}

std::optional<QFont> WayfoldDefaults::fontWithNameSize(const QString &name, float size)
{
    std::optional<QFont> font;
    const QStringList families = QFontDatabase::families();
    const qsizetype dash = name.lastIndexOf(QLatin1Char('-'));
    const QString family = name.left(dash);
    const QString style = name.mid(dash + 1);
    if (families.contains(name, Qt::CaseInsensitive))
        font = QFont(name);
    else if (dash > 0 && families.contains(family, Qt::CaseInsensitive) &&
             QFontDatabase::styles(family).contains(style))
        font = QFontDatabase::font(family, style, 0);
    if (font && size > 0)
        font->setPointSizeF(size);
    return font;
}

QString WayfoldDefaults::nameOfFont(const QFont &font)
{
    const QString style = font.styleName().isEmpty() ? styleOfFont(font) : font.styleName();
    return style.isEmpty() ? font.family() : font.family() + QLatin1Char('-') + style;
}

QString WayfoldDefaults::shortcutKeyForItem(unsigned item) const
{
    return keyOfStoredForm(_prefs.value(MenuItemShortcuts).toMap().value(keyEntry(item)).toString());
}

unsigned WayfoldDefaults::shortcutModifierMaskForItem(unsigned item) const
{
    return unsignedValue(_prefs.value(MenuItemShortcuts).toMap().value(modifierEntry(item)));
}

void WayfoldDefaults::setShortcutKeyForItem(const QString &key, unsigned item)
{
    setShortcutEntry(key.isNull() ? QVariant() : QVariant(storedForm(key)), keyEntry(item));
}

void WayfoldDefaults::setShortcutModifierMaskForItemForItem(unsigned modifierMask, unsigned item)
{
    setShortcutEntry(qlonglong(modifierMask), modifierEntry(item));
}

QVariantMap WayfoldDefaults::defaultMenuItemShortcuts()
{
    QVariantMap shortcuts;
    verifyDefaultMenuItemShortcuts(shortcuts);
    return shortcuts;
}

void WayfoldDefaults::verifyDefaultMenuItemShortcuts(QVariantMap &shortcuts)
{
    for (const Shortcut &shortcut : defaultShortcuts) {
        if (shortcuts.contains(keyEntry(shortcut.item)))
            continue;
        shortcuts.insert(keyEntry(shortcut.item), shortcut.key);
        shortcuts.insert(modifierEntry(shortcut.item), qlonglong(shortcut.modifierMask));
    }
}

QVariant WayfoldDefaults::fetchPrefObjectForKey(const QString &key)
{
    HostApplication *host = currentHost();
    return host ? host->settings().objectForKey(key) : QVariant();
}

bool WayfoldDefaults::fetchPrefBooleanForKey(const QString &key)
{
    return boolValue(fetchPrefObjectForKey(key));
}

bool WayfoldDefaults::tabbedBrowsingEnabled()
{
    return fetchPrefBooleanForKey(QStringLiteral("TabbedBrowsing"));
}

void WayfoldDefaults::setDefaultForKey(const QVariant &value, const QString &key)
{
    if (!_prefs.contains(key))
        _prefs.insert(key, value);
}

float WayfoldDefaults::floatForKey(const QString &key) const
{
    return floatValue(_prefs.value(key));
}

bool WayfoldDefaults::boolForKey(const QString &key) const
{
    return floatForKey(key) == 1.0F;
}

QString WayfoldDefaults::stringForKey(const QString &key) const
{
    return _prefs.value(key).toString();
}

void WayfoldDefaults::setValueForKey(const QVariant &value, const QString &key)
{
    if (value.isValid())
        _prefs.insert(key, value);
    else
        _prefs.remove(key);
    writeDefaults();
}

void WayfoldDefaults::setBoolForKey(bool on, const QString &key)
{
    setValueForKey(on ? storedOn : storedOff, key);
}

void WayfoldDefaults::setStringForKey(const QString &text, const QString &key)
{
    setValueForKey(text.isNull() ? QVariant() : QVariant(text), key);
}

void WayfoldDefaults::setFloatForKey(float number, const QString &key)
{
    setValueForKey(double(number), key);
}

void WayfoldDefaults::setShortcutEntry(const QVariant &value, const QString &entry)
{
    QVariantMap shortcuts = _prefs.value(MenuItemShortcuts).toMap();
    if (value.isValid())
        shortcuts.insert(entry, value);
    else
        shortcuts.remove(entry);
    _prefs.insert(MenuItemShortcuts, shortcuts);
    if (HostApplication *host = currentHost())
        host->settings().setObjectForKey(shortcuts, MenuItemShortcuts);
}
