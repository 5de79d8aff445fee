#include "core/settings/WayfoldToolkit.h"

#include "platform/base/NotificationQueue.h"
#include "platform/base/StringRules.h"
#include "platform/files/Bundle.h"
#include "platform/host/CurrentHost.h"
#include "platform/host/HostApplication.h"
#include "platform/host/HostFrame.h"
#include "platform/widgets/Image.h"

#include <QGuiApplication>

namespace
{
std::shared_ptr<Image> scaledTo(std::shared_ptr<Image> image, const QSizeF &size)
{
    if (image && !size.isNull()) {
        image->setScalesWhenResized(true);
        image->setSize(size);
    }
    return image;
}

// By Unicode's general categories: the letters, and the marks that go with them.
bool isLetter(char32_t character)
{
    return QChar::isLetter(character) || QChar::isMark(character);
}

bool isAllLetters(QStringView text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        char32_t character = text.at(i).unicode();
        if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            character = QChar::surrogateToUcs4(text.at(i), text.at(i + 1));
            ++i;
        }
        if (!isLetter(character))
            return false;
    }
    return true;
}

QStringView hostNameViewFromWebFrame(const HostFrame *frame)
{
    const HostDataSource *dataSource = frame ? frame->dataSource() : nullptr;
    return dataSource ? dataSource->requestUrl.hostView() : QStringView();
}
} // namespace

QString WayfoldToolkit::localizedString(const QString &key)
{
    return Bundle::localizedString(key);
}

bool WayfoldToolkit::stringContainsString(const QString &a, const QString &b)
{
    return StringRules::containsIgnoringCase(a, b);
}

std::shared_ptr<Image> WayfoldToolkit::loadImageNamed(const QString &name)
{
    const QString path = Bundle::pathForImageResource(name);
    return path.isNull() ? nullptr : Image::imageWithContentsOfFile(path);
}

std::shared_ptr<Image> WayfoldToolkit::loadImageNamedScaledTo(const QString &name, const QSizeF &size)
{
    return scaledTo(loadImageNamed(name), size);
}

std::shared_ptr<Image> WayfoldToolkit::loadAppImageNamed(const QString &name)
{
    return loadAppImageNamedScaledTo(name, QSizeF(0, 0));
}

std::shared_ptr<Image> WayfoldToolkit::loadAppImageNamedScaledTo(const QString &name, const QSizeF &size)
{
    HostApplication *host = currentHost();
    if (!host)
        return nullptr;
    const QSize pixels = size.isNull() ? QSize() : (size * qGuiApp->devicePixelRatio()).toSize();
    return scaledTo(Image::imageWithPicture(host->imageNamed(name, pixels)), size);
}

QString WayfoldToolkit::getCurrentVersion()
{
    return Bundle::infoDictionary().value(QStringLiteral("CFBundleVersion")).toString();
}

unsigned WayfoldToolkit::getCurrentVersionAsNumber()
{
    return versionAsNumber(getCurrentVersion());
}

unsigned WayfoldToolkit::versionAsNumber(const QString &version)
{
    const QStringList parts = version.split(QLatin1Char('.'));
    if (parts.size() != 3)
        return 0;
    const auto part = [&parts](int index) { return unsigned(StringRules::integerValue(parts.at(index))); };
    return part(0) * 10000 + part(1) * 100 + part(2);
}

QString WayfoldToolkit::hostNameFromWebFrame(const HostFrame *frame)
{
    return hostNameViewFromWebFrame(frame).toString();
}

QString WayfoldToolkit::hostNameToTrackFromWebFrame(const HostFrame *frame)
{
    return siteKeyInWebFrame(frame).toString();
}

QString WayfoldToolkit::hostNameToTrackFromHostName(const QString &hostName)
{
    return siteKeyInHostName(hostName).toString();
}

QStringView WayfoldToolkit::siteKeyInHostName(QStringView hostName)
{
    const qsizetype lastDot = hostName.lastIndexOf(u'.');
    const qsizetype firstDot = hostName.indexOf(u'.');
    const bool hasThreeLabels = firstDot != lastDot;
    if (!hasThreeLabels || !isAllLetters(hostName.mid(lastDot + 1)))
        return hostName;
    return hostName.mid(firstDot + 1);
}

QStringView WayfoldToolkit::siteKeyInWebFrame(const HostFrame *frame)
{
    return siteKeyInHostName(hostNameViewFromWebFrame(frame));
}

void WayfoldToolkit::postNotificationNameObject(const QString &name, const void *object)
{
    NotificationQueue::defaultQueue().enqueueNotification({name, object}, NotificationQueue::NSPostASAP);
}

void WayfoldToolkit::postDelayedNotificationNameObject(const QString &name, const void *object)
{
    NotificationQueue::defaultQueue().enqueueNotification({name, object}, NotificationQueue::NSPostWhenIdle);
}
