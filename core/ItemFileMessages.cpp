#include "core/ItemFileMessages.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/widgets/Workspace.h"

#include <utility>

namespace
{
constexpr auto timeOfSaved = std::chrono::seconds(6);
constexpr auto timeOfMerged = std::chrono::seconds(20);

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

Messages::Button showFile(const QString &path)
{
    return {localized("Show File"), localized("Show where the file lies"), [path] { Workspace::showFile(path); }};
}

// "2 added, 1 deleted": what did not happen is left out.
QString listOf(const ItemFileMessages::Changes &changes)
{
    QStringList parts;
    const auto append = [&parts](int count, const QString &format) {
        if (count > 0)
            parts.append(QString(format).replace(QStringLiteral("%u"), QString::number(count)));
    };
    append(changes.added, localized("%u added"));
    append(changes.changed, localized("%u changed"));
    append(changes.deleted, localized("%u deleted"));
    append(changes.moved, localized("%u moved"));
    append(changes.twice, localized("%u kept in both versions"));
    return parts.join(QStringLiteral(", "));
}
} // namespace

ItemFileMessages::ItemFileMessages(Messages &messages, Commands commands)
    : _messages(messages)
    , _commands(std::move(commands))
{}

void ItemFileMessages::saveFailed(const QString &path)
{
    sayNotSaved(localized("Your last changes could not be saved; Wayfold keeps them and goes on trying."), path);
}

void ItemFileMessages::fileIsLocked(const QString &path)
{
    sayNotSaved(
        localized("Another program does not let go of your file; Wayfold keeps your last changes and goes on trying."),
        path);
}

void ItemFileMessages::sayNotSaved(const QString &text, const QString &path)
{
    _isSaveOwed = true;
    _messages.clear(Messages::SavedAgain);
    _messages.say({Messages::NotSaved,
                   Messages::Error,
                   text,
                   {{localized("Try Again"), localized("Save your changes now"), _commands.save}, showFile(path)}});
}

void ItemFileMessages::saved()
{
    if (!std::exchange(_isSaveOwed, false))
        return;
    // In this order, or the bar would leave in between.
    _messages.say(
        {Messages::SavedAgain, Messages::Information, localized("Your changes are saved now."), {}, timeOfSaved});
    _messages.clear(Messages::NotSaved);
}

void ItemFileMessages::keptAside(const QString &copy)
{
    _messages.say(
        {Messages::KeptAside,
         Messages::Warning,
         localized("Your file held something that the lists do not have, so a copy of it was kept."),
         {showFile(copy), {localized("Restore..."), localized("Look at what earlier files hold"), _commands.restore}}});
}

void ItemFileMessages::settingsKeptAside(const QString &copy)
{
    _messages.say({Messages::KeptAside,
                   Messages::Warning,
                   localized("Your settings could not be read whole, so a copy of their file was kept."),
                   {showFile(copy)}});
}

void ItemFileMessages::merged(const QString &path, const Changes &changes)
{
    if (!_messages.about(Messages::Merged))
        _merged = {};
    _merged.added += changes.added;
    _merged.changed += changes.changed;
    _merged.deleted += changes.deleted;
    _merged.moved += changes.moved;
    _merged.twice += changes.twice;
    const QString list = listOf(_merged);
    if (list.isEmpty())
        return;
    // Of two versions the user has to choose, so this waits.
    const bool waits = _merged.twice > 0;
    _messages.say({Messages::Merged,
                   waits ? Messages::Warning : Messages::Information,
                   localized("Another program has changed your items: %@.").replace(QStringLiteral("%@"), list),
                   {showFile(path)},
                   waits ? std::chrono::milliseconds(0) : timeOfMerged});
}

void ItemFileMessages::backupFailed(const QString &folder)
{
    _messages.say({Messages::NoBackup,
                   Messages::Warning,
                   localized("Today's backup could not be made; your items themselves are not concerned."),
                   {showFile(folder)}});
}

void ItemFileMessages::backupMade()
{
    _messages.clear(Messages::NoBackup);
}
