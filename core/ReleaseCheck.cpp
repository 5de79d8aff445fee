#include "core/ReleaseCheck.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/base/StringRules.h"
#include "platform/files/Bundle.h"
#include "platform/files/PropertyList.h"
#include "platform/network/WebFetch.h"
#include "platform/widgets/Alert.h"
#include "platform/widgets/Workspace.h"

#include <QApplication>
#include <QRegularExpression>
#include <QScopedValueRollback>

namespace
{
// What the server says.
struct Release
{
    QString version;     // null: unknown
    unsigned number = 0; // as WayfoldToolkit::versionAsNumber makes it; 0: unknown
    Url download;        // none: there is no such address, or not one of the web
};

enum class Verdict { UpToDate, NewerThanAvailable, NewVersion };

QString textValue(const QVariantMap &dictionary, const QString &key)
{
    const QVariant value = dictionary.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

int integerValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return StringRules::integerValue(value.toString());
    case QMetaType::Double:
        return StringRules::integerValue(QString::number(value.toDouble(), 'f')); // without an exponent
    default:
        return 0;
    }
}

// None for what would not open in a web browser.
Url webAddress(const QString &text)
{
    const Url url = Url::URLWithString(text);
    const QString scheme = url.scheme().toLower();
    const bool isOfTheWeb = scheme == u"http" || scheme == u"https";
    return isOfTheWeb && !url.host().isNull() ? url : Url();
}

QString bundleText(const QString &key)
{
    return textValue(Bundle::infoDictionary(), key);
}

// Empty when there is no good answer.
QVariantMap fetchAnswer()
{
    const Url address = webAddress(bundleText(QStringLiteral("WayfoldVersionCheckAddress")));
    const std::optional<QByteArray> contents = WebFetch::contentsOfURL(address);
    return contents ? PropertyList::fromData(*contents).toMap() : QVariantMap();
}

Release releaseInAnswer(const QVariantMap &answer)
{
    Release release;
    release.version = textValue(answer, QStringLiteral("CurrentVersion"));
    release.number = unsigned(integerValue(answer.value(QStringLiteral("CurrentVersionNumber"))));
    release.download = webAddress(textValue(answer, QStringLiteral("DownloadURLString")));
    return release;
}

Verdict verdictOn(const Release &release, const QString &localVersion)
{
    if (release.number == 0) {
        const bool areKnown = !release.version.isEmpty() && !localVersion.isEmpty();
        return areKnown && release.version != localVersion ? Verdict::NewVersion : Verdict::UpToDate;
    }
    const unsigned localNumber = WayfoldToolkit::versionAsNumber(localVersion);
    if (localNumber == 0 || localNumber == release.number)
        return Verdict::UpToDate;
    return localNumber < release.number ? Verdict::NewVersion : Verdict::NewerThanAvailable;
}

// As the alerts show a version: what cannot be one is cut, or the alert's buttons would lie beyond the screen.
QString shown(const QString &version)
{
    constexpr qsizetype longest = 40;
    static const QRegularExpression lineEnd(QStringLiteral("\\R"));
    if (version.isNull())
        return QStringLiteral("(null)");
    const QString beginning = StringRules::beginning(version, longest).section(lineEnd, 0, 0);
    return beginning == version ? version : beginning + QChar(0x2026);
}

// In English in every language.
int runAlert(const QString &title, const QString &message, const QString &cancelButton = {})
{
    Alert alert;
    alert.style = Alert::NSInformationalAlertStyle;
    alert.messageText = title;
    alert.informativeText = message;
    alert.defaultButton = QStringLiteral("OK");
    alert.alternateButton = cancelButton;
    return alert.runModal(QApplication::activeWindow());
}

void offer(const Release &release)
{
    const QString webPage = bundleText(QStringLiteral("WayfoldWebPageAddress"));
    const QString message =
        release.download.isNull()
            ? QStringLiteral("Wayfold %1 is now available. Click OK to visit %2 and download the new version.")
                  .arg(shown(release.version), webPage)
            : QStringLiteral("Wayfold %1 is now available. Click OK to download the new version.")
                  .arg(shown(release.version));
    if (runAlert(QStringLiteral("New Wayfold Version"), message, QStringLiteral("Cancel")) ==
        Alert::NSAlertDefaultReturn)
        Workspace::openURL(release.download.isNull() ? webAddress(webPage) : release.download);
}

void tell(const Release &release, const QString &localVersion)
{
    switch (verdictOn(release, localVersion)) {
    case Verdict::UpToDate:
        runAlert(QStringLiteral("Up To Date"),
                 QStringLiteral("Your Wayfold version %1 is up to date.").arg(shown(localVersion)));
        break;
    case Verdict::NewerThanAvailable:
        runAlert(QStringLiteral("Time Warp"),
                 QStringLiteral("Your Wayfold version %1 is newer than the version available on the Internet (%2).")
                     .arg(shown(localVersion), shown(release.version)));
        break;
    case Verdict::NewVersion:
        offer(release);
        break;
    }
}
} // namespace

void ReleaseCheck::checkForNewRelease()
{
    static bool isRunning = false;
    if (isRunning)
        return;
    const QScopedValueRollback<bool> running(isRunning, true);
    tell(releaseInAnswer(fetchAnswer()), WayfoldToolkit::getCurrentVersion());
}
