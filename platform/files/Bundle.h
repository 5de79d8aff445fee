#pragma once

#include <QString>
#include <QVariantMap>

// The plug-in's folder on disk, wherever it is installed:
//
//     Wayfold.plugin/Contents/Info.plist
//     Wayfold.plugin/Contents/Resources/    interface files, images, translations
//     Wayfold.plugin/Contents/Plugin/       the library itself
namespace Bundle
{
// Found from where this code was loaded; `$WAYFOLD_BUNDLE` when that is set (tests).
QString path();
// "Contents/Info.plist", read anew each time; empty when it cannot be read.
QVariantMap infoDictionary();
// "Contents/Resources/<name>" when that file exists, else null.
QString pathForResource(const QString &name);
// The image resource of that name, with or without its ending: .svg, .png, .jpg, .gif are tried in this order. Null
// when there is none.
QString pathForImageResource(const QString &name);
// The text for the English `key` in the user's language, from the catalogue "wayfold_<language>.qm" of the resources
// (the host's own catalogues are not asked); the key itself when there is no translation.
QString localizedString(const QString &key);
} // namespace Bundle
