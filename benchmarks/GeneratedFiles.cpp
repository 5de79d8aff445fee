#include "benchmarks/GeneratedFiles.h"

#include "benchmarks/LifelikeBrowser.h"
#include "platform/files/PropertyList.h"

#include <QProcess>

GeneratedFiles::GeneratedFiles(const QString &folder, int entries) : _folder(folder), _entries(entries) {}

QString GeneratedFiles::fileNamed(const char *name) const
{
    return _folder + QLatin1Char('/') + QLatin1String(name);
}

bool GeneratedFiles::write()
{
    LifelikeBrowser browser;
    _history = browser.history(_entries);
    return PropertyList::writeFile(_history, history()) &&
           PropertyList::writeFile(browser.bookmarks(_entries / 5), bookmarks()) && writeBinaryForm();
}

// By a library of others: ours writes XML alone.
bool GeneratedFiles::writeBinaryForm() const
{
    static const char script[] =
        "import plistlib, sys\n"
        "plistlib.dump(plistlib.load(open(sys.argv[1], 'rb')), open(sys.argv[2], 'wb'), fmt=plistlib.FMT_BINARY)\n";
    QProcess python;
    python.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"), QString::fromLatin1(script), history(), binaryHistory()});
    return python.waitForFinished(600'000) && python.exitCode() == 0;
}

bool GeneratedFiles::addVisit()
{
    const QString key = QStringLiteral("WebHistoryDates");
    QVariantList entries = _history.take(key).toList();
    entries.prepend(LifelikeBrowser::visitNow(++_added));
    _history.insert(key, entries);
    return PropertyList::writeFile(_history, history());
}
