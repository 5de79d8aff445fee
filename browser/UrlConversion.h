#pragma once

#include "platform/base/Url.h"

#include <QUrl>

// Between the plug-in's addresses, which keep their text, and Qt's.
namespace UrlConversion
{
// None for an empty address.
Url fromQUrl(const QUrl &url);
// Empty for none.
QUrl toQUrl(const Url &url);
} // namespace UrlConversion
