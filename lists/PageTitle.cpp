#include "lists/PageTitle.h"

QString PageTitle::forURL(const Url &url)
{
    const QString path = url.scheme() == u"mailto" ? QString() : url.path();
    return path.isEmpty() ? url.absoluteString() : path;
}
