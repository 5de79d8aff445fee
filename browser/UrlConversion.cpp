#include "browser/UrlConversion.h"

Url UrlConversion::fromQUrl(const QUrl &url)
{
    return Url::URLWithString(QString::fromLatin1(url.toEncoded()));
}

QUrl UrlConversion::toQUrl(const Url &url)
{
    return QUrl::fromEncoded(url.absoluteString().toLatin1());
}
