#include "platform/files/Bundle.h"

#include "platform/files/Paths.h"
#include "platform/files/PropertyList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTranslator>
#include <dlfcn.h>
#include <optional>

namespace
{
// The folder "<something>.plugin" that holds the library or program which this code is part of.
QString findPath()
{
    static const char anchor = 0;
    Dl_info info;
    if (!dladdr(&anchor, &info) || !info.dli_fname)
        return {};
    QFileInfo place(QFileInfo(QFile::decodeName(info.dli_fname)).absoluteFilePath());
    while (!place.isRoot() && place.filePath() != place.path()) {
        if (place.fileName().endsWith(QLatin1String(".plugin")) && place.isDir())
            return place.filePath();
        place = QFileInfo(place.path());
    }
    return {};
}

bool isPlainFile(const QString &path)
{
    return QFileInfo(path).isFile();
}

// The texts of one bundle in one language.
class Catalogue
{
public:
    Catalogue(const QString &bundle, const QLocale &locale) : _bundle(bundle), _locale(locale)
    {
        const QStringList languages = locale.uiLanguages();
        for (const QString &language : languages) {
            // Who puts English first wants the keys as they are, whatever comes next.
            if (language == u"C" || language.startsWith(u"en") || load(language))
                return;
        }
    }

    bool isOf(const QString &bundle, const QLocale &locale) const { return bundle == _bundle && locale == _locale; }
    QString text(const char *key) const { return _translator.translate("Wayfold", key); }

private:
    // The language's own catalogue or, for one of a country, the one for all of them.
    bool load(QString language)
    {
        const QString name = QStringLiteral("wayfold_") + language.replace(u'-', u'_');
        return _translator.load(name, _bundle + QStringLiteral("/Contents/Resources"));
    }

    QString _bundle;
    QLocale _locale;
    QTranslator _translator;
};

// Loaded once, and again when the language or the bundle is another one.
const Catalogue &currentCatalogue()
{
    static std::optional<Catalogue> catalogue;
    const QString bundle = Bundle::path();
    const QLocale locale;
    if (!catalogue || !catalogue->isOf(bundle, locale))
        catalogue.emplace(bundle, locale);
    return *catalogue;
}
} // namespace

QString Bundle::path()
{
    const QByteArray given = qgetenv("WAYFOLD_BUNDLE");
    if (!given.isEmpty())
        return QDir::cleanPath(QFile::decodeName(given));
    static const QString found = findPath();
    return found;
}

QVariantMap Bundle::infoDictionary()
{
    const QString bundle = path();
    if (bundle.isNull())
        return {};
    return PropertyList::readDictionaryFile(Paths::standardized(bundle + QStringLiteral("/Contents/Info.plist")));
}

QString Bundle::pathForResource(const QString &name)
{
    const QString bundle = path();
    if (bundle.isNull() || name.isEmpty())
        return {};
    const QString resource = bundle + QLatin1String("/Contents/Resources/") + name;
    return isPlainFile(resource) ? resource : QString();
}

QString Bundle::pathForImageResource(const QString &name)
{
    static const char *const endings[] = {".svg", ".png", ".jpg", ".gif"};
    for (const char *ending : endings) {
        if (name.endsWith(QLatin1String(ending)))
            return pathForResource(name);
    }
    for (const char *ending : endings) {
        QString resource = name.isEmpty() ? QString() : pathForResource(name + QLatin1String(ending));
        if (!resource.isNull())
            return resource;
    }
    return {};
}

QString Bundle::localizedString(const QString &key)
{
    const QString text = currentCatalogue().text(key.toUtf8().constData());
    return text.isEmpty() ? key : text;
}
