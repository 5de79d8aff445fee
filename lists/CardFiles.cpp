#include "lists/CardFiles.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/base/Log.h"
#include "platform/base/StringRules.h"
#include "platform/files/FileStamp.h"
#include "platform/files/Paths.h"
#include "platform/files/PropertyList.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <algorithm>

namespace
{
constexpr qint64 secondsOfADay = 24 * 60 * 60;
constexpr qsizetype longestName = 60; // characters, at most three bytes each, of the 255 bytes that a name may have
constexpr int mostOfAName = 100;
constexpr QFileDevice::Permissions ownersAlone = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

QString folder()
{
    return Paths::homeDirectory() + QStringLiteral("/Library/Caches/Wayfold/Cards");
}

bool isNamedAsCards(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix();
    return suffix.compare(QLatin1String("vcf"), Qt::CaseInsensitive) == 0 ||
           suffix.compare(QLatin1String("vcard"), Qt::CaseInsensitive) == 0;
}

bool isControl(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        // Those that turn the direction of text make a name look like another.
        return (character >= QChar(0x202A) && character <= QChar(0x202E)) ||
               (character >= QChar(0x2066) && character <= QChar(0x2069));
    }
}

// Without what a file system, this one or that of a stick, cannot have in a name.
QString fileName(QString name)
{
    static const QString forbidden = QStringLiteral("/\\:*?\"<>|");
    for (QChar &character : name) {
        if (isControl(character) || forbidden.contains(character))
            character = u' ';
    }
    name = StringRules::trimmed(StringRules::beginning(name.simplified(), longestName));
    while (name.startsWith(u'.') || name.startsWith(u' '))
        name.remove(0, 1);
    return name.isEmpty() ? WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Contact"))) : name;
}

bool holds(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    return QFileInfo(path).size() == contents.size() && PropertyList::openFile(path, &file) &&
           file.readAll() == contents;
}

// Nobody has to be asked for a name: a file that is there already is never opened.
QString writeNew(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, ownersAlone))
        return file.errorString();
    if (file.write(contents) == contents.size() && file.flush())
        return {};
    const QString reason = file.errorString();
    file.remove();
    return reason;
}

void renew(const QString &path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadWrite))
        file.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
}
} // namespace

bool CardFiles::isOnAnotherMachine(const QByteArray &fileSystem)
{
    static const QByteArrayList kinds = {"nfs", "nfs4", "cifs", "smb3", "smbfs", "afs", "ceph", "9p", "autofs"};
    const bool isOwnFuse = fileSystem == "fuse.portal"; // files that the desktop shows to a program in a sandbox
    return kinds.contains(fileSystem) || (fileSystem.startsWith("fuse.") && !isOwnFuse);
}

std::vector<ContactCards::Card> CardFiles::read(const QString &path, Allowance &left)
{
    if (!isNamedAsCards(path) || isOnAnotherMachine(QStorageInfo(path).fileSystemType()))
        return {};
    const std::optional<FileStamp> stamp = FileStamp::ofFile(path);
    QFile file(path);
    if (!stamp || !stamp->isPlainFile || stamp->size > left.bytes || !PropertyList::openFile(path, &file))
        return {};
    return fromData(file.read(left.bytes), left);
}

std::vector<ContactCards::Card> CardFiles::fromData(const QByteArray &data, Allowance &left)
{
    if (data.size() > left.bytes)
        return {};
    std::vector<ContactCards::Card> cards;
    CardText text(data);
    qsizetype count = 0;
    while (const std::optional<CardText::Card> next = text.next()) {
        if (++count > left.cards)
            return {};
        if (std::optional<ContactCards::Card> card = ContactCards::read(*next))
            cards.push_back(std::move(*card));
    }
    left.bytes -= data.size();
    left.cards -= count;
    return cards;
}

QString CardFiles::nameForPeople(const QStringList &names)
{
    if (names.size() <= 1)
        return names.value(0);
    return WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("%@ and %u more")))
        .replace(QStringLiteral("%u"), QString::number(names.size() - 1))
        .replace(QStringLiteral("%@"), StringRules::beginning(names.first(), longestName / 2));
}

QString CardFiles::write(const QString &name, const QByteArray &cards)
{
    QDir().mkpath(QFileInfo(folder()).path());
    QDir().mkdir(folder());
    QFile::setPermissions(folder(), ownersAlone | QFileDevice::ExeOwner);
    removeOld();
    const QString base = folder() + u'/' + fileName(name);
    QString path = base + QStringLiteral(".vcf");
    for (int number = 2; number < mostOfAName && QFileInfo::exists(path); ++number) {
        if (holds(path, cards)) {
            renew(path);
            return path;
        }
        path = base + u' ' + QString::number(number) + QStringLiteral(".vcf");
    }
    if (const QString reason = writeNew(path, cards); !reason.isNull()) {
        qCWarning(logFiles).noquote() << "Could not write a card to" << path << "-" << reason;
        return {};
    }
    return path;
}

void CardFiles::removeOld()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QFileInfoList files = QDir(folder()).entryInfoList({QStringLiteral("*.vcf")}, QDir::Files | QDir::System);
    for (const QFileInfo &file : files) {
        if (file.lastModified().secsTo(now) >= secondsOfADay)
            QFile::remove(file.filePath());
    }
}
