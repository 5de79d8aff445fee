#include "core/KDRDrawerBundle.h"

#include "core/Notifications.h"
#include "model/WayfoldHistoryURL.h"
#include "platform/files/PropertyList.h"
#include "platform/host/CurrentHost.h"
#include "tests/core/StoreInTemporaryHome.h"
#include "tests/support/BinaryPropertyList.h"
#include "tests/support/LoggedMessages.h"

#include <QDir>
#include <QFile>
#include <QStringConverter>
#include <functional>
#include <optional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// The browser's two files as they must not be, and as they may be at the very moment when they are read.

namespace
{
// Something that happens to a file while it is read: just before the system is asked for a piece of it.
struct Meddling
{
    QByteArray path;
    int pieces = 0; // to be read before
    std::function<void()> action;
    int failures = 0; // of the reading, one after the other, instead of the action
    bool isDone = false;
};
Meddling *meddling = nullptr;

bool isOfFile(int descriptor, const QByteArray &path)
{
    char target[4096];
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
    const ssize_t length = ::readlink(link.constData(), target, sizeof target);
    return length > 0 && QByteArrayView(target, length) == path;
}
} // namespace

// In place of the system's, for all libraries.
extern "C" __attribute__((visibility("default"))) ssize_t read(int descriptor, void *buffer, size_t size)
{
    if (Meddling *const present = meddling; present && !present->isDone && isOfFile(descriptor, present->path)) {
        if (present->pieces > 0) {
            --present->pieces;
        } else if (present->failures > 0) {
            --present->failures;
            errno = EIO;
            return -1;
        } else {
            present->isDone = true;
            if (present->action)
                present->action();
        }
    }
    return ::syscall(SYS_read, descriptor, buffer, size);
}

namespace
{
enum Kind { Bookmarks, History };

QString fileOf(Kind kind)
{
    return kind == Bookmarks ? QStringLiteral("Library/Safari/Bookmarks.plist")
                             : QStringLiteral("Library/Safari/History.plist");
}

QVariantMap link(const QString &title, const QString &address)
{
    return {{"WebBookmarkType", "WebBookmarkTypeLeaf"},
            {"WebBookmarkUUID", "id of " + title},
            {"URLString", address},
            {"URIDictionary", QVariantMap{{"title", title}}}};
}

QVariantMap entry(const QString &title, const QString &address)
{
    return {{"", address}, {"title", title}, {"lastVisitedDate", "100.5"}, {"visitCount", qlonglong(2)}};
}

QVariant sample(Kind kind)
{
    if (kind == History)
        return QVariantMap{{"WebHistoryDates", QVariantList{entry("A", "http://www.a.example/"),
                                                            entry("B", "http://www.b.example/?c=d&e")}},
                           {"WebHistoryFileVersion", qlonglong(1)}};
    return QVariantMap{
        {"WebBookmarkFileVersion", qlonglong(1)},
        {"WebBookmarkType", "WebBookmarkTypeList"},
        {"Children", QVariantList{QVariantMap{{"WebBookmarkType", "WebBookmarkTypeList"},
                                              {"Title", "Bar"},
                                              {"Children", QVariantList{link("A", "http://www.a.example/")}}},
                                  link("B", "file:///etc/hosts")}}};
}

QByteArray inForm(const QVariant &value, bool isBinary)
{
    return isBinary ? binaryPropertyList(value) : PropertyList::toXml(value);
}

// --- What the files say, read in the simplest way

QString text(const QVariantMap &dictionary, const QString &key)
{
    const QVariant value = dictionary.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

QVariantMap dictionaryIn(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantMap ? value.toMap() : QVariantMap();
}

QVariantList listIn(const QVariantMap &dictionary, const QString &key)
{
    const QVariant value = dictionary.value(key);
    return value.typeId() == QMetaType::QVariantList ? value.toList() : QVariantList();
}

QStringList bookmarksIn(const QVariantMap &folder)
{
    QStringList lines;
    for (const QVariant &value : listIn(folder, "Children")) {
        const QVariantMap item = dictionaryIn(value);
        const QString type = text(item, "WebBookmarkType");
        if (type == "WebBookmarkTypeList" && !text(item, "Title").isEmpty())
            lines << text(item, "Title") + "(" + bookmarksIn(item).join(", ") + ")";
        const QString title = text(dictionaryIn(item.value("URIDictionary")), "title");
        if (type == "WebBookmarkTypeLeaf" && !title.isEmpty())
            lines << title + " " + text(item, "URLString");
    }
    return lines;
}

// "A", its address, and when it was visited; 0 seconds are none.
QString visitLine(const QString &title, const QString &address, double seconds)
{
    return title + " " + address + (seconds != 0 ? " " + QString::number(seconds, 'f', 1) : QString());
}

QStringList historyIn(const QVariantMap &file)
{
    QStringList lines;
    for (const QVariant &value : listIn(file, "WebHistoryDates")) {
        const QVariantMap item = dictionaryIn(value);
        if (!text(item, "").isEmpty() && !text(item, "title").isEmpty())
            lines << visitLine(text(item, "title"), text(item, ""), text(item, "lastVisitedDate").toDouble());
    }
    return lines;
}

// None: the file is no dictionary.
std::optional<QStringList> expectedOf(Kind kind, const QVariant &file)
{
    if (file.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    return kind == Bookmarks ? bookmarksIn(file.toMap()) : historyIn(file.toMap());
}

// --- What the store has

QStringList bookmarksOf(const WayfoldBookmarkFolder &folder)
{
    QStringList lines;
    for (const KDRBookmarkPtr &child : folder.children()) {
        const auto sub = WayfoldBookmarkFolder::fromItem(child);
        lines << child->title() + (sub ? "(" + bookmarksOf(*sub).join(", ") + ")" : " " + child->valueAsString());
    }
    return lines;
}

QStringList historyOf(const WayfoldBookmarkFolder &folder)
{
    QStringList lines;
    for (const KDRBookmarkPtr &child : folder.children()) {
        const double seconds = double(child->timestamp().toMSecsSinceEpoch() - 978307200000) / 1000;
        lines << visitLine(child->title(), child->uuid(), seconds);
    }
    return lines;
}

KDRDrawerBundle &store()
{
    return StoreInTemporaryHome::store();
}

bool load(Kind kind)
{
    return kind == Bookmarks ? store().loadSafariBookmarkFile() : store().loadHistoryBookmarkFile();
}

WayfoldBookmarkFolderPtr rootOf(Kind kind)
{
    return kind == Bookmarks ? store().safariBookmarkRoot() : store().historyBookmarkRoot();
}

std::optional<QStringList> contentsOf(Kind kind)
{
    const WayfoldBookmarkFolderPtr root = rootOf(kind);
    if (root->title().isNull() && root->isEmpty())
        return std::nullopt;
    return kind == Bookmarks ? bookmarksOf(*root) : historyOf(*root);
}

// A host that is asked for the place of a file, and has something happen at that moment.
class MeddlingHost : public FakeHostApplication
{
public:
    mutable int asked = 0;
    std::function<void(int)> whenAsked;

    QString bookmarkFilePath() const override { return answer(bookmarkPath); }
    QString historyFilePath() const override { return answer(historyPath); }

private:
    QString answer(const QString &path) const
    {
        if (whenAsked)
            whenAsked(++asked);
        return path;
    }
};
} // namespace

class DamagedFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void samplesAreRead_data() { kindsAndForms(); }
    void samplesAreRead();
    void cutOffAnywhere_data() { kindsAndForms(); }
    void cutOffAnywhere();
    void anyByteChanged_data() { kindsAndForms(); }
    void anyByteChanged();
    void valuesOfOtherTypes_data() { kindsAndForms(); }
    void valuesOfOtherTypes();
    void encodings_data();
    void encodings();
    void brokenCharacters_data();
    void brokenCharacters();
    void notAFile_data();
    void notAFile();
    void vanishesBeforeItIsRead_data() { kindsAndForms(); }
    void vanishesBeforeItIsRead();
    void becomesAPipeBeforeItIsRead_data() { kindsAndForms(); }
    void becomesAPipeBeforeItIsRead();
    void changesWhileItIsRead_data();
    void changesWhileItIsRead();
    void diskFails_data();
    void diskFails();
    void checkDuringAWriteBack();

private:
    static void kindsAndForms()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<bool>("isBinary");
        QTest::newRow("bookmarks") << Bookmarks << false;
        QTest::newRow("binary bookmarks") << Bookmarks << true;
        QTest::newRow("history") << History << false;
        QTest::newRow("binary history") << History << true;
    }
    void write(Kind kind, const QByteArray &contents)
    {
        QFile::remove(path(kind)); // a file that is cut and filled again goes to the disk at once, which takes time
        _fresh->home.write(fileOf(kind), contents);
    }
    QString path(Kind kind) const { return _fresh->home.path(fileOf(kind)); }
    // So that any later change gives it another date.
    void makeOld(Kind kind)
    {
        QFile file(path(kind));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(1000000000), QFile::FileModificationTime));
    }
    // The result of loading, and the tree, are what such a file gives.
    void checkLoading(Kind kind, const std::optional<QStringList> &expected)
    {
        QCOMPARE(load(kind), expected.has_value());
        QVERIFY(rootOf(kind));
        const QString title = kind == Bookmarks ? QStringLiteral("Bookmarks") : QStringLiteral("History");
        QCOMPARE(rootOf(kind)->title(), expected ? title : QString());
        QCOMPARE(contentsOf(kind), expected);
    }

    std::optional<StoreInTemporaryHome> _fresh;
    std::optional<LoggedMessages> _log;
};

Q_DECLARE_METATYPE(Kind)

void DamagedFilesTest::init()
{
    _log.emplace();
    _fresh.emplace();
}

void DamagedFilesTest::cleanup()
{
    meddling = nullptr;
    _fresh.reset();
    _log.reset();
}

void DamagedFilesTest::samplesAreRead()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isBinary);
    write(kind, inForm(sample(kind), isBinary));
    checkLoading(kind, expectedOf(kind, sample(kind)));
    QCOMPARE(contentsOf(kind),
             kind == Bookmarks ? QStringList({"Bar(A http://www.a.example/)", "B file:///etc/hosts"})
                               : QStringList({"A http://www.a.example/ 100.5", "B http://www.b.example/?c=d&e 100.5"}));
}

void DamagedFilesTest::cutOffAnywhere()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isBinary);
    const QByteArray whole = inForm(sample(kind), isBinary);
    const qsizetype end = isBinary ? whole.size() : whole.lastIndexOf('>') + 1;
    for (qsizetype length = 0; length < end; ++length) {
        write(kind, whole.left(length));
        checkLoading(kind, std::nullopt);
        if (QTest::currentTestFailed())
            QFAIL(QByteArray::number(length));
    }
    write(kind, whole.left(end));
    checkLoading(kind, expectedOf(kind, sample(kind)));
}

// Whatever becomes of it, it is read as what it is by now, or not at all.
void DamagedFilesTest::anyByteChanged()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isBinary);
    const QByteArray whole = inForm(sample(kind), isBinary);
    for (qsizetype at = 0; at < whole.size(); ++at) {
        static const char changes[] = {'\x01', '\x20', '\x80'};
        QByteArray contents = whole;
        contents[at] = char(contents[at] ^ changes[at % 3]);
        write(kind, contents);
        const bool isRead = load(kind);
        QCOMPARE(rootOf(kind)->title().isNull(), !isRead);
        const QVariant value = PropertyList::readFile(path(kind));
        QCOMPARE(isRead, value.typeId() == QMetaType::QVariantMap);
        QVERIFY(isRead || rootOf(kind)->isEmpty());
    }
}

namespace
{
// Calls `check` once for every value of the file and every other type, with that value replaced.
void forEachReplacement(const QVariant &value, const std::function<void(const QVariant &)> &check)
{
    static const QVariantList others = {qlonglong(7),
                                        1.5,
                                        true,
                                        QDateTime::fromSecsSinceEpoch(1000000000, Qt::UTC),
                                        QByteArray("data"),
                                        "",
                                        "text",
                                        QVariantList(),
                                        QVariantList{"text", QVariantMap{{"title", "x"}, {"", "http://x.example/"}}},
                                        QVariantMap(),
                                        QVariantMap{{"title", "x"}, {"", "http://x.example/"}}};
    for (const QVariant &other : others)
        check(other);
    if (value.typeId() == QMetaType::QVariantMap) {
        const QVariantMap dictionary = value.toMap();
        for (const QString &key : dictionary.keys()) {
            QVariantMap changed = dictionary;
            changed.remove(key);
            check(changed);
            forEachReplacement(dictionary.value(key), [&](const QVariant &replacement) {
                changed.insert(key, replacement);
                check(changed);
            });
        }
    } else if (value.typeId() == QMetaType::QVariantList) {
        QVariantList list = value.toList();
        for (qsizetype i = 0; i < list.size(); ++i) {
            const QVariant old = list.at(i);
            forEachReplacement(old, [&](const QVariant &replacement) {
                list[i] = replacement;
                check(list);
            });
            list[i] = old;
        }
    }
}
} // namespace

void DamagedFilesTest::valuesOfOtherTypes()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isBinary);
    int count = 0;
    forEachReplacement(sample(kind), [&](const QVariant &file) {
        if (QTest::currentTestFailed())
            return;
        ++count;
        write(kind, inForm(file, isBinary));
        checkLoading(kind, expectedOf(kind, file));
        if (QTest::currentTestFailed())
            qCritical().noquote() << PropertyList::toXml(file);
    });
    QVERIFY(count > 100);
}

void DamagedFilesTest::encodings_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<bool>("isRead");
    for (const Kind kind : {Bookmarks, History}) {
        const char *const name = kind == Bookmarks ? "bookmarks" : "history";
        const QString xml = QString::fromUtf8(PropertyList::toXml(sample(kind)));
        const QString accented = QString(xml).replace(">A<", QString::fromUtf8(">A\xc3\xa9<"));
        const auto row = [&](const char *form, const QByteArray &contents, bool isRead) {
            QTest::addRow("%s, %s", name, form) << kind << contents << isRead;
        };
        for (const char *encoding : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
            QString declared = accented;
            declared.replace("UTF-8", encoding);
            row(encoding, QStringEncoder(encoding, QStringEncoder::Flag::WriteBom)(declared), false);
            row((QByteArray(encoding) + " without mark").constData(), QStringEncoder(encoding)(declared), false);
        }
        row("UTF-8 with mark", "\xef\xbb\xbf" + xml.toUtf8(), true);
        row("Latin-1 declared", QString(xml).replace("UTF-8", "ISO-8859-1").toLatin1(), true);
        row("unknown encoding", QString(xml).replace("UTF-8", "X-NONE").toUtf8(), false);
        row("NUL", accented.toUtf8().replace("\xc3\xa9", QByteArray(1, '\0')), false);
        row("NULs behind", xml.toUtf8() + QByteArray(512, '\0'), false);
        row("zeros only", QByteArray(4096, '\0'), false);
    }
}

void DamagedFilesTest::encodings()
{
    QFETCH(Kind, kind);
    QFETCH(QByteArray, contents);
    QFETCH(bool, isRead);
    write(kind, contents);
    checkLoading(kind, isRead ? expectedOf(kind, sample(kind)) : std::nullopt);
}

void DamagedFilesTest::brokenCharacters_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QByteArray>("bytes");
    for (const Kind kind : {Bookmarks, History}) {
        const char *const name = kind == Bookmarks ? "bookmarks" : "history";
        QTest::addRow("%s, Latin-1, not declared", name) << kind << QByteArray("\xe9");
        QTest::addRow("%s, half a character", name) << kind << QByteArray("\xc3");
        QTest::addRow("%s, half a surrogate pair", name) << kind << QByteArray("\xed\xa0\x80");
    }
}

// They are shown as such, and nothing else is missing.
void DamagedFilesTest::brokenCharacters()
{
    QFETCH(Kind, kind);
    QFETCH(QByteArray, bytes);
    write(kind, PropertyList::toXml(sample(kind)).replace(">A<", ">A" + bytes + "<"));
    QVERIFY(load(kind));
    std::optional<QStringList> contents = contentsOf(kind);
    QVERIFY(contents);
    QVERIFY(contents->join(QString()).contains(QChar::ReplacementCharacter));
    contents->replaceInStrings(QString(QChar::ReplacementCharacter), QString());
    QCOMPARE(contents, expectedOf(kind, sample(kind)));
}

void DamagedFilesTest::notAFile_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("what");
    for (const Kind kind : {Bookmarks, History}) {
        for (const char *what :
             {"directory", "dangling link", "link in a circle", "pipe", "device", "file for a folder"})
            QTest::addRow("%s: %s", kind == Bookmarks ? "bookmarks" : "history", what)
                << kind << QString::fromLatin1(what);
    }
}

void DamagedFilesTest::notAFile()
{
    QFETCH(Kind, kind);
    QFETCH(QString, what);
    write(kind, inForm(sample(kind), false));
    QVERIFY(load(kind));
    const QString place = path(kind);
    QVERIFY(QFile::remove(place));
    if (what == "directory")
        QVERIFY(QDir().mkpath(place));
    else if (what == "dangling link")
        QVERIFY(QFile::link(place + ".nowhere", place));
    else if (what == "link in a circle")
        QVERIFY(QFile::link(place, place));
    else if (what == "pipe")
        QCOMPARE(::mkfifo(QFile::encodeName(place).constData(), 0600), 0);
    else if (what == "device")
        QVERIFY(QFile::link("/dev/zero", place));
    else {
        QVERIFY(QDir(_fresh->home.path("Library/Safari")).removeRecursively());
        _fresh->home.write("Library/Safari", "a file");
    }
    store().tagSafariFiles(); // comes back, above all
    checkLoading(kind, std::nullopt);
    if (kind == Bookmarks)
        QVERIFY(!store().saveSafariBookmarkFile(sample(kind).toMap()));
}

void DamagedFilesTest::vanishesBeforeItIsRead()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isBinary);
    store();
    MeddlingHost host;
    const QString place = path(kind);
    // The store asks for the place before every single look at the file.
    bool mayBeLater = true;
    for (int moment = 1; mayBeLater; ++moment) {
        write(kind, inForm(sample(kind), isBinary));
        host.asked = 0;
        host.whenAsked = [&](int asked) {
            if (asked == moment)
                QFile::remove(place);
        };
        QVERIFY(moment < 20);
        store().tagSafariFiles();
        host.whenAsked = nullptr;
        mayBeLater = host.asked >= moment;
        const WayfoldBookmarkFolderPtr root = rootOf(kind);
        if (root && root->title().isNull())
            QVERIFY(root->isEmpty());
        else if (root)
            QCOMPARE(contentsOf(kind), expectedOf(kind, sample(kind)));
        // It comes back, and is read.
        QFile::remove(place);
        store().tagSafariFiles();
        write(kind, inForm(sample(kind), isBinary));
        store().tagSafariFiles();
        QCOMPARE(contentsOf(kind), expectedOf(kind, sample(kind)));
    }
    setCurrentHost(&_fresh->host);
}

void DamagedFilesTest::becomesAPipeBeforeItIsRead()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isBinary);
    store();
    MeddlingHost host;
    const QByteArray place = QFile::encodeName(path(kind));
    bool mayBeLater = true;
    for (int moment = 1; mayBeLater; ++moment) {
        ::unlink(place.constData());
        write(kind, inForm(sample(kind), isBinary));
        host.asked = 0;
        host.whenAsked = [&](int asked) {
            if (asked != moment)
                return;
            ::unlink(place.constData());
            ::mkfifo(place.constData(), 0600);
        };
        store().tagSafariFiles(); // waits for nobody
        host.whenAsked = nullptr;
        mayBeLater = host.asked >= moment;
        const WayfoldBookmarkFolderPtr root = rootOf(kind);
        QVERIFY(!root || !root->title().isNull() || root->isEmpty());
    }
    setCurrentHost(&_fresh->host);
}

void DamagedFilesTest::changesWhileItIsRead_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<bool>("isBinary");
    QTest::addColumn<QString>("change");
    for (const Kind kind : {Bookmarks, History}) {
        for (const bool isBinary : {false, true}) {
            for (const char *change : {"grows", "shrinks", "is emptied", "is rewritten", "is replaced", "vanishes"})
                QTest::addRow("%s%s %s", isBinary ? "binary " : "", kind == Bookmarks ? "bookmarks" : "history", change)
                    << kind << isBinary << QString::fromLatin1(change);
        }
    }
}

void DamagedFilesTest::changesWhileItIsRead()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isBinary);
    QFETCH(QString, change);
    // Far more than is read in one piece.
    const auto large = [&](const QString &name) {
        QVariantList items;
        for (int i = 0; i < 4000; ++i) {
            const QString title = name + QString::number(10000 + i);
            const QString address = "http://www." + name + ".example/" + QString(100, 'x') + QString::number(10000 + i);
            items.append(kind == Bookmarks ? link(title, address) : entry(title, address));
        }
        return QVariantMap{{kind == Bookmarks ? "Children" : "WebHistoryDates", items}};
    };
    const QVariantMap before = large("old");
    const QVariantMap after = large("new");
    const QByteArray oldContents = inForm(before, isBinary);
    const QByteArray newContents = inForm(after, isBinary);
    QCOMPARE(oldContents.size(), newContents.size());
    store();
    for (int pieces = 0; pieces < 3; ++pieces) {
        QFile::remove(path(kind));
        store().tagSafariFiles();
        write(kind, oldContents);
        makeOld(kind);
        std::optional<QStringList> expected = expectedOf(kind, before);
        Meddling meddled;
        meddled.path = QFile::encodeName(path(kind));
        meddled.pieces = pieces;
        meddled.action = [&] {
            QFile file(path(kind));
            if (change == "grows") {
                if (file.open(QIODevice::Append))
                    file.write("<more/>");
                expected = std::nullopt;
            } else if (change == "shrinks") {
                file.resize(oldContents.size() / 2);
                expected = std::nullopt;
            } else if (change == "is emptied") {
                file.resize(0);
                expected = std::nullopt;
            } else if (change == "vanishes") {
                file.remove();
            } else {
                if (change == "is replaced")
                    file.remove();
                if (file.open(QIODevice::ReadWrite))
                    file.write(newContents);
                expected = expectedOf(kind, after);
            }
        };
        meddling = &meddled;
        store().tagSafariFiles();
        meddling = nullptr;
        QVERIFY(meddled.isDone || pieces > 0);
        if (!meddled.isDone)
            break; // read in fewer pieces
        QVERIFY(rootOf(kind));
        QVERIFY(!rootOf(kind)->title().isNull() || rootOf(kind)->isEmpty());
        if (change == "is replaced" || change == "vanishes") // the open file is what it was
            QCOMPARE(contentsOf(kind), expectedOf(kind, before));
        // The next look sets right whatever was read; of a file that is gone the tree stays.
        store().tagSafariFiles();
        if (contentsOf(kind) != expected)
            QFAIL(qPrintable(QString::number(pieces)));
        QCOMPARE(rootOf(kind)->title().isNull(), !expected);
    }
    // And it has not become confused by it.
    write(kind, oldContents);
    QVERIFY(load(kind));
    QCOMPARE(contentsOf(kind), expectedOf(kind, before));
}

void DamagedFilesTest::diskFails_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<bool>("isBinary");
    QTest::addColumn<int>("failures");
    for (const Kind kind : {Bookmarks, History}) {
        for (const bool isBinary : {false, true}) {
            for (const int failures : {1, 2, 1000})
                QTest::addRow("%s%s %d", isBinary ? "binary " : "", kind == Bookmarks ? "bookmarks" : "history",
                              failures)
                    << kind << isBinary << failures;
        }
    }
}

// What is read then is the old list or the new one, and never anything else.
void DamagedFilesTest::diskFails()
{
    QFETCH(Kind, kind);
    QFETCH(bool, isBinary);
    QFETCH(int, failures);
    QVariantList items;
    for (int i = 0; i < 2500; ++i) { // more than is read in one piece
        const QString title = "new" + QString::number(10000 + i);
        items.append(kind == Bookmarks ? link(title, "http://www.new.example/")
                                       : entry(title, "http://www.new.example/" + QString::number(i)));
    }
    const QVariantMap after{{kind == Bookmarks ? "Children" : "WebHistoryDates", items}};
    for (int pieces = 0; pieces < 3; ++pieces) {
        write(kind, inForm(sample(kind), isBinary));
        store().tagSafariFiles();
        QCOMPARE(contentsOf(kind), expectedOf(kind, sample(kind)));
        const WayfoldBookmarkFolderPtr before = rootOf(kind);
        write(kind, inForm(after, isBinary));
        Meddling meddled;
        meddled.path = QFile::encodeName(path(kind));
        meddled.pieces = pieces;
        meddled.failures = failures;
        meddling = &meddled;
        store().tagSafariFiles();
        meddling = nullptr;
        if (rootOf(kind) != before)
            QCOMPARE(contentsOf(kind), expectedOf(kind, after));
        QVERIFY(failures < 1000 || pieces > 0 || rootOf(kind) == before);
        store().tagSafariFiles();
        QCOMPARE(contentsOf(kind), expectedOf(kind, after));
    }
}

void DamagedFilesTest::checkDuringAWriteBack()
{
    for (const Kind kind : {Bookmarks, History}) {
        write(kind, inForm(sample(kind), false));
        makeOld(kind);
    }
    store();
    NotificationLog::deliverPending();
    NotificationLog log(
        {Notifications::SafariBookmarkFileModNotification, Notifications::SafariHistoryFileModNotification});
    const WayfoldBookmarkFolderPtr bookmarks = rootOf(Bookmarks);
    const WayfoldBookmarkFolderPtr history = rootOf(History);
    Meddling meddled;
    meddled.path = QFile::encodeName(path(Bookmarks));
    meddled.action = [&] {
        const QVariantMap newer{{"WebHistoryDates", QVariantList{entry("New", "http://www.new.example/")}}};
        write(History, inForm(newer, false));
        store().tagSafariFiles(); // does not wait for the write-back, which waits for it
    };
    meddling = &meddled;
    const QVariantMap item = link(QStringLiteral("Written"), QStringLiteral("http://www.written.example/"));
    const QVariantMap written{{"Children", QVariantList{item}}};
    QVERIFY(store().saveSafariBookmarkFile(written));
    meddling = nullptr;
    QVERIFY(meddled.isDone);
    NotificationLog::deliverPending();
    QVERIFY(log.received.empty());
    QCOMPARE(rootOf(Bookmarks), bookmarks);
    QCOMPARE(rootOf(History), history);
    // The next one finds both changes.
    store().tagSafariFiles();
    QCOMPARE(contentsOf(Bookmarks), QStringList{"Written http://www.written.example/"});
    QCOMPARE(contentsOf(History), QStringList{"New http://www.new.example/ 100.5"});
}

QTEST_MAIN(DamagedFilesTest)
#include "DamagedFilesTest.moc"
