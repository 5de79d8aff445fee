#include "browser/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

// There is an English catalogue as well: for what is said of one and of several, and so that who puts English first
// gets English, whatever comes next.
Language::Language()
{
    if (_own.load(QLocale(), QStringLiteral("browser"), QStringLiteral("_"), QStringLiteral(":/wayfold-browser")))
        QCoreApplication::installTranslator(&_own);
    // The toolkit's in the same language, not in another one that only it speaks.
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (!_own.isEmpty() && _toolkit.load(QStringLiteral("qtbase_") + _own.language(), folder))
        QCoreApplication::installTranslator(&_toolkit);
}
