#include "tests/e2e/support/OtherContactsProgram.h"

#include "tests/e2e/support/MessageBus.h"
#include "tests/e2e/support/Stage.h"
#include "tests/e2e/support/Tool.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <csignal>

namespace
{
const QString service = QStringLiteral("org.gnome.evolution.dataserver.AddressBook10");

QString folder()
{
    return QDir::homePath() + QStringLiteral("/.contacts");
}

std::optional<QByteArray> addressBook(const char *command, const QByteArray &argument)
{
    return Tool::run(QStringLiteral(WAYFOLD_ADDRESS_BOOK), {QLatin1String(command), QString::fromUtf8(argument)});
}

QString identifierOf(const QByteArray &card)
{
    static const QRegularExpression line(QStringLiteral("\r\nUID:([^\r]+)"));
    return line.match(QString::fromUtf8(card)).captured(1);
}

// First beside its place, so that nobody ever sees a part of it.
bool write(const QByteArray &card)
{
    const QString place = folder() + u'/' + identifierOf(card) + QStringLiteral(".vcf");
    QFile file(folder() + QStringLiteral("/.new"));
    return QDir().mkpath(folder()) && file.open(QIODevice::WriteOnly) && file.write(card) == card.size() &&
           file.flush() && std::rename(qPrintable(file.fileName()), qPrintable(place)) == 0;
}

// Whoever adds a card names its file.
QString fileOf(const QString &identifier)
{
    for (const QFileInfo &info : QDir(folder()).entryInfoList({QStringLiteral("*.vcf")})) {
        QFile file(info.filePath());
        if (file.open(QIODevice::ReadOnly) && identifierOf(file.readAll()) == identifier)
            return info.filePath();
    }
    return {};
}
} // namespace

bool OtherContactsProgram::isOfDesktop() const
{
    return qgetenv("DBUS_SESSION_BUS_ADDRESS") != "disabled:";
}

bool OtherContactsProgram::add(const QByteArray &card) const
{
    return isOfDesktop() ? addressBook("add", card) == identifierOf(card).toUtf8() : write(card);
}

bool OtherContactsProgram::change(const QByteArray &card) const
{
    return isOfDesktop() ? addressBook("change", card).has_value() : write(card);
}

QByteArray OtherContactsProgram::show(const QString &identifier) const
{
    if (isOfDesktop())
        return addressBook("show", identifier.toUtf8()).value_or(QByteArray());
    QFile file(fileOf(identifier));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool OtherContactsProgram::killService() const
{
    const qint64 process = MessageBus::processOf(service);
    return process > 0 && ::kill(pid_t(process), SIGKILL) == 0 &&
           Stage::eventually([process] { return MessageBus::processOf(service) != process; });
}
