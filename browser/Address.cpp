#include "browser/Address.h"

#include "platform/files/Paths.h"

#include <QHostAddress>
#include <QRegularExpression>

namespace
{
// Whether "word:" in front of the text is a scheme, not a host with a port ("localhost:8000").
bool hasScheme(const QString &text)
{
    static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]*:(?!\\d+(?:[/?#]|$))"));
    return scheme.match(text).hasMatch();
}

bool hasBlanks(const QString &text)
{
    static const QRegularExpression blanks(QStringLiteral("\\s"));
    return blanks.match(text).hasMatch();
}

// Hosts that are most likely this machine or one in the same house, where certificates are rare.
bool isNearby(const QString &host)
{
    return !host.contains('.') || !QHostAddress(host).isNull() || host.endsWith(QLatin1String(".localhost")) ||
           host.endsWith(QLatin1String(".local")) || host.endsWith(QLatin1String(".test"));
}
} // namespace

QUrl Address::fromUserInput(const QString &text)
{
    const QString input = text.trimmed();
    if (input.isEmpty())
        return {};
    if (input.startsWith('/') || input == '~' || input.startsWith(QLatin1String("~/")))
        return QUrl::fromLocalFile(Paths::standardized(input));
    if (hasScheme(input)) {
        const QUrl url(input);
        return url.scheme() == QLatin1String("javascript") ? QUrl() : url;
    }
    if (hasBlanks(input.section(QRegularExpression(QStringLiteral("[/?#]")), 0, 0)))
        return {};
    QUrl url(QStringLiteral("https://") + input);
    if (!url.isValid() || url.host().isEmpty())
        return {};
    if (isNearby(url.host()))
        url.setScheme(QStringLiteral("http"));
    if (url.path().isEmpty())
        url.setPath(QStringLiteral("/"));
    return url;
}

QString Address::displayText(const QUrl &url)
{
    if (url.scheme() == QLatin1String("wayfold") || url == QUrl(QStringLiteral("about:blank")))
        return QStringLiteral("");
    return url.toDisplayString();
}
