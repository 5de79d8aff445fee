#include "model/WayfoldBookmarkNote.h"

#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/ItemDialogs.h"
#include "model/ItemDictionary.h"
#include "model/ItemImages.h"
#include "platform/base/StringRules.h"

namespace
{
constexpr qsizetype maximumLength = 32768;
constexpr qsizetype maximumTooltipLength = 2048;
} // namespace

WayfoldBookmarkNotePtr WayfoldBookmarkNote::bookmarkWithTitle(const QString &title)
{
    auto note = std::make_shared<WayfoldBookmarkNote>();
    note->setTitle(title);
    return note;
}

WayfoldBookmarkNotePtr WayfoldBookmarkNote::bookmarkWithTitleAndNote(const QString &title, const QString &text)
{
    WayfoldBookmarkNotePtr note = bookmarkWithTitle(title);
    note->setValue(text);
    return note;
}

WayfoldBookmarkNotePtr WayfoldBookmarkNote::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    auto note = std::make_shared<WayfoldBookmarkNote>(Blank());
    note->loadFromDictionary(dictionary);
    return note;
}

WayfoldBookmarkNotePtr WayfoldBookmarkNote::newViaDialog()
{
    WayfoldBookmarkNotePtr note = bookmarkWithTitleAndNote(
        WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Untitled Note"))), QStringLiteral(""));
    ItemDialogs *const dialogs = ItemDialogs::current();
    return dialogs && dialogs->newNote(note) ? note : nullptr;
}

void WayfoldBookmarkNote::init()
{
    KDRBookmark::init();
    setNoteText(QString());
}

void WayfoldBookmarkNote::initWithTitleAndNote(const QString &title, const QString &note)
{
    initWithTitle(title);
    setValue(note);
}

void WayfoldBookmarkNote::initFromDictionary(const QVariantMap &dictionary)
{
    init();
    loadFromDictionary(dictionary);
}

void WayfoldBookmarkNote::setValue(const QVariant &value)
{
    if (!value.isValid() || value.typeId() == QMetaType::QString)
        setNoteText(StringRules::beginning(value.toString(), maximumLength));
}

void WayfoldBookmarkNote::setNoteText(const QString &text)
{
    if (!ItemDictionary::isSameText(text, _noteText))
        changeField(TreeObserver::Field::Value, [this, text] { _noteText = text; });
}

QString WayfoldBookmarkNote::tooltipText() const
{
    return StringRules::beginning(_noteText, maximumTooltipLength);
}

void WayfoldBookmarkNote::loadFromDictionary(const QVariantMap &dictionary)
{
    using namespace ItemDictionary;
    const QVariantMap uriDictionary = ItemDictionary::dictionary(dictionary, uriDictionaryKey);
    initWithTitleAndNote(string(uriDictionary, uriTitleKey), string(dictionary, noteKey));
    const QString storedUUID = string(dictionary, uuidKey);
    if (!storedUUID.isEmpty())
        setUUID(storedUUID);
    keepUnknown(dictionary);
}

void WayfoldBookmarkNote::writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const
{
    Q_UNUSED(forSaving)
    using namespace ItemDictionary;
    dictionary.insert(typeKey, noteType);
    dictionary.insert(noteKey, textOrEmpty(_noteText));
    dictionary.insert(uuidKey, textOrEmpty(uuid()));
    dictionary.insert(uriDictionaryKey,
                      QVariantMap{{uriTitleKey, textOrEmpty(title())}, {uriAddressKey, QStringLiteral("")}});
}

bool WayfoldBookmarkNote::isEqual(const KDRBookmark &other) const
{
    return KDRBookmark::isEqual(other) &&
           ItemDictionary::isSameText(_noteText, static_cast<const WayfoldBookmarkNote &>(other)._noteText);
}

std::shared_ptr<Image> WayfoldBookmarkNote::imageForCellSize(const QSizeF &size)
{
    Q_UNUSED(size)
    std::shared_ptr<Image> &image = ItemImages::shared().note;
    if (!image && WayfoldDefaults::sharedInstance().showBookmarkIcons())
        image = ItemImages::neverCached(WayfoldToolkit::loadImageNamed(QStringLiteral("WayfoldBookmarkImageNote")));
    return image;
}

bool WayfoldBookmarkNote::editViaDialog()
{
    ItemDialogs *const dialogs = ItemDialogs::current();
    return dialogs && dialogs->editNote(std::static_pointer_cast<WayfoldBookmarkNote>(shared_from_this()));
}

void WayfoldBookmarkNote::encodeWithCoder(KeyedArchiver &coder) const
{
    KDRBookmark::encodeWithCoder(coder);
    coder.encodeValueForKey(_noteText, QStringLiteral("_noteText"));
}

void WayfoldBookmarkNote::initWithCoder(const KeyedUnarchiver &coder)
{
    KDRBookmark::initWithCoder(coder);
    setValue(coder.decodeStringForKey(QStringLiteral("_noteText")));
}

KDRBookmarkPtr WayfoldBookmarkNote::makeNew() const
{
    return std::make_shared<WayfoldBookmarkNote>(Blank());
}

bool WayfoldBookmarkNote::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldBookmarkNote *>(&other);
}

void WayfoldBookmarkNote::copyTo(KDRBookmark &copy) const
{
    KDRBookmark::copyTo(copy);
    copy.setValue(_noteText);
}
