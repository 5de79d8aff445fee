#include "platform/files/PropertyList.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/PythonScript.h"
#include "tests/support/TemporaryHome.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QStringConverter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>
#include <QtEndian>
#include <bit>
#include <cmath>
#include <csignal>
#include <limits>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// Puts a binary property list together, sound or not. Offsets and references take four bytes.
class BinaryList
{
public:
    quint32 add(const QByteArray &object)
    {
        _offsets.append(quint32(_bytes.size()));
        _bytes += object;
        return quint32(_offsets.size() - 1);
    }
    // Another object at the place of one that is there.
    void addAgain(quint32 object) { _offsets.append(_offsets.at(object)); }
    quint32 addArray(const QList<quint32> &references)
    {
        return add(sized(0xa, references.size()) + packed(references));
    }
    quint32 addDictionary(const QList<quint32> &keys, const QList<quint32> &values)
    {
        return add(sized(0xd, keys.size()) + packed(keys) + packed(values));
    }
    quint32 addText(const QByteArray &text) { return add(sized(0x5, text.size()) + text); }
    quint32 count() const { return quint32(_offsets.size()); }

    QByteArray finished(quint64 top, int offsetSize = 4, int referenceSize = 4) const
    {
        QByteArray result = _bytes + packed(_offsets);
        result += QByteArray(6, 0) + char(offsetSize) + char(referenceSize);
        result += number(quint64(_offsets.size())) + number(top) + number(quint64(_bytes.size()));
        return result;
    }

    template <class T>
    static QByteArray number(T value)
    {
        QByteArray bytes(sizeof(T), 0);
        qToBigEndian(value, bytes.data());
        return bytes;
    }
    static QByteArray sized(int kind, qsizetype size)
    {
        if (size < 15)
            return QByteArray(1, char(kind << 4 | size));
        return QByteArray(1, char(kind << 4 | 0xf)) + char(0x12) + number(quint32(size));
    }

private:
    static QByteArray packed(const QList<quint32> &numbers)
    {
        QByteArray bytes;
        for (const quint32 value : numbers)
            bytes += number(value);
        return bytes;
    }

    QByteArray _bytes = "bplist00";
    QList<quint32> _offsets;
};

QByteArray xml(const QByteArray &body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + body + "</plist>\n";
}

QVariantMap sampleItem(int number)
{
    return {{"WebBookmarkType", "WebBookmarkTypeLeaf"},
            {"URLString", QStringLiteral("http://example.com/?a=%1&b=<c>").arg(number)},
            {"URIDictionary", QVariantMap{{"title", QStringLiteral("Caf\u00e9 %1").arg(number)}, {"", "empty key"}}}};
}

QVariantMap sampleFile()
{
    return {{"WebBookmarkType", "WebBookmarkTypeList"},
            {"Title", ""},
            {"Children", QVariantList{sampleItem(1), sampleItem(2)}},
            {"", "top"},
            {"count", qlonglong(-3)},
            {"width", 250.25},
            {"flag", true},
            {"data", QByteArray("\0\1\2", 3)},
            {"date", QDateTime(QDate(2004, 2, 29), QTime(12, 34, 56), Qt::UTC)}};
}

// Values with their types, which QVariant's own comparison is too lenient about.
void compare(const QVariant &value, const QVariant &expected)
{
    QCOMPARE(value.metaType(), expected.metaType());
    QCOMPARE(value, expected);
    if (expected.metaType().id() == QMetaType::QString)
        QCOMPARE(value.toString().isNull(), expected.toString().isNull());
}

// Refused, and for that reason.
void verifyRefused(const QByteArray &data, const char *reason)
{
    const LoggedMessages messages;
    QVERIFY(!PropertyList::fromData(data).isValid());
    QCOMPARE(messages.texts().size(), 1);
    QVERIFY2(messages.contain(reason), qPrintable(messages.texts().join(u'\n')));
}

// As JSON, each unit of UTF-16 as an escape, so that nobody on the way can take it for something else.
QByteArray json(const QStringList &texts)
{
    QByteArrayList items;
    for (const QString &text : texts) {
        QByteArray item;
        for (const QChar unit : text)
            item += "\\u" + QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
        items.append('"' + item + '"');
    }
    return '[' + items.join(',') + ']';
}

QString programPath()
{
    return QCoreApplication::applicationFilePath();
}

// What the program does when it is started as its own child; the answer is its exit code.
enum ChildAnswer { AsExpected = 0, NotAsExpected = 1, NotPermitted = 2 };

// Saves one version after the other until it is killed, and tells each that is saved.
int saveForever(const QString &path, int version)
{
    for (;; version++) {
        const QVariantMap contents{{"version", version},
                                   {"payload", QString(20000 + version % 7 * 5000, QChar('a' + version % 26))}};
        if (!PropertyList::writeFile(contents, path))
            return NotAsExpected;
        const QByteArray line = QByteArray::number(version) + '\n';
        if (::write(STDOUT_FILENO, line.constData(), size_t(line.size())) != line.size())
            return NotAsExpected;
    }
}

int writeBeyondALimit(const QString &path)
{
    const rlimit limit{1000, 1000};
    ::signal(SIGXFSZ, SIG_IGN);
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
        return NotPermitted;
    return PropertyList::writeFile(QString(5000, u'a'), path) ? NotAsExpected : AsExpected;
}

int writeToAFullDisk(const QString &directory)
{
    // Mounted for this process only; it goes with it.
    if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", qPrintable(directory), "tmpfs", 0, "size=64k") != 0)
        return NotPermitted;
    const QString path = directory + "/file.plist";
    const bool isAsExpected =
        PropertyList::writeFile("old", path) && !PropertyList::writeFile(QString(500000, u'a'), path) &&
        PropertyList::readFile(path) == QVariant("old") && QDir(directory).entryList(QDir::Files).size() == 1;
    return isAsExpected ? AsExpected : NotAsExpected;
}

// As a user who may not do it; for the superuser permissions do not count.
int writeWithoutPermission(const QString &path)
{
    if (::geteuid() == 0 && ::seteuid(65534) != 0)
        return NotPermitted;
    return PropertyList::writeFile("new", path) ? NotAsExpected : AsExpected;
}

int readWithoutPermission(const QString &path)
{
    if (::geteuid() == 0 && ::seteuid(65534) != 0)
        return NotPermitted;
    return PropertyList::readFile(path).isValid() ? NotAsExpected : AsExpected;
}

int runAsChild(const QByteArray &task, const QStringList &arguments)
{
    if (task == "--save-forever")
        return saveForever(arguments.at(0), arguments.at(1).toInt());
    if (task == "--beyond-a-limit")
        return writeBeyondALimit(arguments.at(0));
    if (task == "--full-disk")
        return writeToAFullDisk(arguments.at(0));
    if (task == "--write-without-permission")
        return writeWithoutPermission(arguments.at(0));
    if (task == "--read-without-permission")
        return readWithoutPermission(arguments.at(0));
    return -1;
}

// Runs the task in a child; what it logs is added to `log`.
int runChild(const QStringList &arguments, QString *log)
{
    QProcess child;
    child.start(programPath(), arguments);
    if (!child.waitForFinished() || child.exitStatus() != QProcess::NormalExit)
        return -1;
    *log = QString::fromUtf8(child.readAllStandardError());
    return child.exitCode();
}
} // namespace

class PropertyListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void values_data();
    void values();
    void manyRealsStayExact();
    void textThatXmlCannotHold_data();
    void textThatXmlCannotHold();
    void keysThatXmlCannotHold();
    void cannotBeWritten_data();
    void cannotBeWritten();
    void otherTypesAreWritten_data();
    void otherTypesAreWritten();
    void nullStringIsWrittenAsEmpty();
    void xmlForm();
    void otherReadersAgree();
    void otherReadersReadTheSameTexts();
    void textsOfOtherWritersAreRead_data();
    void textsOfOtherWritersAreRead();

    void xmlIsRead_data();
    void xmlIsRead();
    void xmlIsRefused_data();
    void xmlIsRefused();
    void realsAreReadWithoutTheLocale();
    void encodings_data();
    void encodings();
    void wholeOrNot_data();
    void wholeOrNot();
    void whatCannotBeHeldIsLeftOut_data();
    void whatCannotBeHeldIsLeftOut();
    void whatOtherWritersCanHoldIsLeftOut();
    void entitiesDoNotUnfold_data();
    void entitiesDoNotUnfold();
    void longTextOfEntitiesIsReadInTime();
    void xmlDepth_data();
    void xmlDepth();
    void xmlHundredThousandDeep_data();
    void xmlHundredThousandDeep();
    void xmlCutShort();

    void binaryIsRead();
    void binaryScalars_data();
    void binaryScalars();
    void binaryObjectsMayBeShared();
    void binaryIsRefused_data();
    void binaryIsRefused();
    void binaryDepth();
    void binaryCutShort();
    void binaryWithAnyByteChanged();

    void missingFileIsNotLogged();
    void otherThanPlainFilesAreNotRead_data();
    void otherThanPlainFilesAreNotRead();
    void tooLargeAFileIsRefused();
    void fileWithoutPermissionIsLogged();
    void readDictionaryFile();

    void writesAndReplaces();
    void permissionsAreKept();
    void linksStayLinks();
    void linkToNothingGetsItsFile();
    void writeFails_data();
    void writeFails();
    void valueThatCannotBeWrittenLeavesTheFile();
    void withoutPermission();
    void beyondALimit();
    void fullDisk();
    void killedWhileSaving();
};

void PropertyListTest::initTestCase()
{
    qRegisterMetaType<QVariantMap>();
}

void PropertyListTest::values_data()
{
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char *name, const QVariant &value) { QTest::newRow(name) << value; };
    row("empty string", QStringLiteral(""));
    row("string", "abc");
    row("blanks around", "  a \n\t b ");
    row("markup", "<a href=\"b\">&amp;'</a>");
    row("end of a CDATA section", "]]>");
    row("carriage returns", "a\rb\r\nc\n");
    row("beyond ASCII", QStringLiteral("caf\u00e9 \u65e5\u672c \U0001f600"));
    row("line separators", QStringLiteral("a\u0085b\u2028c"));
    row("delete character", QStringLiteral("a\u007fb"));
    row("combining form", QStringLiteral("e\u0301"));
    row("long string", QString(100000, u'x'));
    row("zero", qlonglong(0));
    row("negative", qlonglong(-1));
    row("largest", std::numeric_limits<qlonglong>::max());
    row("least", std::numeric_limits<qlonglong>::min());
    row("beyond the largest", quint64(1) << 63);
    row("largest without a sign", std::numeric_limits<quint64>::max());
    row("real", 0.1);
    row("whole real", 250.0);
    row("tiny real", std::numeric_limits<double>::denorm_min());
    row("huge real", std::numeric_limits<double>::max());
    row("real with many digits", 0.1 + 0.2);
    row("infinite", std::numeric_limits<double>::infinity());
    row("negatively infinite", -std::numeric_limits<double>::infinity());
    row("true", true);
    row("false", false);
    row("date", QDateTime(QDate(2004, 2, 29), QTime(12, 34, 56), Qt::UTC));
    row("date before 1970", QDateTime(QDate(1901, 1, 1), QTime(0, 0), Qt::UTC));
    row("distant past", QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC));
    row("distant future", QDateTime(QDate(4001, 1, 1), QTime(0, 0), Qt::UTC));
    row("empty data", QByteArray(""));
    row("data", QByteArray("\0\1\xff", 3));
    row("long data", QByteArray(100000, '\xa5'));
    row("empty array", QVariantList());
    row("array", QVariantList{"a", qlonglong(1), QVariantList{"b"}});
    row("empty dictionary", QVariantMap());
    row("empty key", QVariantMap{{"", "a"}, {"b", QVariantMap{{"", ""}}}});
    row("odd keys", QVariantMap{{"<&>", "a"}, {" ", "b"}, {"a\rb", "c"}, {QStringLiteral("\u00e9"), "d"}});
    row("file", sampleFile());
}

void PropertyListTest::values()
{
    QFETCH(QVariant, value);
    const QByteArray written = PropertyList::toXml(value);
    QVERIFY(!written.isEmpty());
    QVERIFY(written.endsWith('\n'));
    compare(PropertyList::fromData(written), value);
    // Inside of a container as well, in which each value stands on a line of its own.
    const QVariantMap around{{"", QVariantList{value, value}}};
    compare(PropertyList::fromData(PropertyList::toXml(around)), around);
}

void PropertyListTest::manyRealsStayExact()
{
    QRandomGenerator random(1);
    QVariantList reals{-0.0};
    while (reals.size() < 2000) {
        const double real = std::bit_cast<double>(random.generate64());
        if (std::isfinite(real))
            reals.append(real);
    }
    const QVariantList read = PropertyList::fromData(PropertyList::toXml(reals)).toList();
    QCOMPARE(read.size(), reals.size());
    for (qsizetype i = 0; i < reals.size(); i++)
        QCOMPARE(std::bit_cast<quint64>(read[i].toDouble()), std::bit_cast<quint64>(reals[i].toDouble()));
    QVERIFY(std::isnan(PropertyList::fromData(PropertyList::toXml(qQNaN())).toDouble()));
}

void PropertyListTest::textThatXmlCannotHold_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("read");
    // Of these a reader sees the new line at most.
    QTest::newRow("vertical tab") << QStringLiteral("a\u000bb") << QStringLiteral("a\nb");
    QTest::newRow("form feed") << QStringLiteral("a\u000cb") << QStringLiteral("a\nb");
    QTest::newRow("NUL") << QStringLiteral("a") + QChar(0) << QStringLiteral("a");
    QTest::newRow("nothing else") << QStringLiteral("\u0018\u0001") << QStringLiteral("\ufffd");
    QTest::newRow("empty") << QStringLiteral("") << QStringLiteral("");
    QTest::newRow("control characters") << QStringLiteral("a \u0001\u0008\u001b[1m\u001fb\t\n\r")
                                        << QStringLiteral("a [1mb\t\n\r");
    QTest::newRow("among markup") << QStringLiteral("<\u0007\u00e9&\u000b>") << QStringLiteral("<\u00e9&\n>");
    QTest::newRow("not a character") << QStringLiteral("\ufffe\uffff") << QStringLiteral("\ufffd\ufffd");
    QTest::newRow("lone high surrogate") << QString(QChar(0xd800)) + 'a' << QStringLiteral("\ufffda");
    QTest::newRow("high surrogate at the end") << 'a' + QString(QChar(0xdbff)) << QStringLiteral("a\ufffd");
    QTest::newRow("lone low surrogate") << QString(QChar(0xdc00)) + 'a' << QStringLiteral("\ufffda");
    QTest::newRow("two high surrogates") << QString(QChar(0xd83d)) + QStringLiteral("\U0001f600")
                                         << QStringLiteral("\ufffd\U0001f600");
}

void PropertyListTest::textThatXmlCannotHold()
{
    QFETCH(QString, text);
    QFETCH(QString, read);
    const QByteArray written = PropertyList::toXml(text);
    QVERIFY(written.isValidUtf8());
    QCOMPARE(PropertyList::fromData(written).toString(), read);
}

void PropertyListTest::keysThatXmlCannotHold()
{
    const QVariantMap read = PropertyList::fromData(PropertyList::toXml(QVariantMap{{"a\1", "b"}})).toMap();
    QCOMPARE(read, QVariantMap({{"a", "b"}}));
}

void PropertyListTest::cannotBeWritten_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("invalid") << QVariant();
    QTest::newRow("foreign type") << QVariant(QSize(1, 2));
    QTest::newRow("invalid date") << QVariant(QDateTime());
    QTest::newRow("date before all others") << QVariant(QDateTime(QDate(-1, 1, 1), QTime(0, 0), Qt::UTC));
    QTest::newRow("date far off") << QVariant(QDateTime(QDate(10000, 1, 1), QTime(0, 0), Qt::UTC));
    QTest::newRow("inside an array") << QVariant(QVariantList{"a", QVariant()});
    QTest::newRow("inside a dictionary") << QVariant(QVariantMap{{"a", QVariant()}});
}

void PropertyListTest::cannotBeWritten()
{
    QFETCH(QVariant, value);
    QVERIFY(PropertyList::toXml(value).isEmpty());
}

void PropertyListTest::otherTypesAreWritten_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("read");
    const auto row = [](const char *name, const QVariant &value, const QVariant &read) {
        QTest::newRow(name) << value << read;
    };
    row("short", QVariant::fromValue(short(-3)), qlonglong(-3));
    row("int", -3, qlonglong(-3));
    row("long", QVariant::fromValue(-3L), qlonglong(-3));
    row("short without a sign", QVariant::fromValue(quint16(65535)), qlonglong(65535));
    row("int without a sign", 4294967295U, qlonglong(4294967295));
    row("long without a sign", QVariant::fromValue(std::numeric_limits<unsigned long>::max()),
        std::numeric_limits<quint64>::max());
    row("short real", QVariant::fromValue(0.5F), 0.5);
    row("list of texts", QStringList{"a", "b"}, QVariantList{"a", "b"});
    row("date of the user's own zone", QDateTime(QDate(2004, 2, 29), QTime(12, 0), QTimeZone("Asia/Tokyo")),
        QDateTime(QDate(2004, 2, 29), QTime(3, 0), Qt::UTC));
    row("last date", QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59), Qt::UTC),
        QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59), Qt::UTC));
}

void PropertyListTest::otherTypesAreWritten()
{
    QFETCH(QVariant, value);
    QFETCH(QVariant, read);
    compare(PropertyList::fromData(PropertyList::toXml(value)), read);
}

void PropertyListTest::nullStringIsWrittenAsEmpty()
{
    compare(PropertyList::fromData(PropertyList::toXml(QVariantMap{{"a", QString()}})), QVariantMap{{"a", ""}});
}

void PropertyListTest::xmlForm()
{
    const QVariantMap value{{"", "a&b"}, {"list", QVariantList{qlonglong(1), true, 0.5, QVariantMap()}}};
    const QByteArray written = PropertyList::toXml(value);
    QVERIFY(written.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC "));
    const QByteArray expected = "<plist version=\"1.0\">\n"
                                "<dict>\n"
                                "\t<key></key>\n"
                                "\t<string>a&amp;b</string>\n"
                                "\t<key>list</key>\n"
                                "\t<array>\n"
                                "\t\t<integer>1</integer>\n"
                                "\t\t<true/>\n"
                                "\t\t<real>0.5</real>\n"
                                "\t\t<dict/>\n"
                                "\t</array>\n"
                                "</dict>\n"
                                "</plist>\n";
    QCOMPARE(written.mid(written.indexOf("<plist ")), expected);
}

void PropertyListTest::otherReadersAgree()
{
    const TemporaryHome home;
    QVariantMap value = sampleFile();
    value.insert("odd", "a\rb\t\1]]>");
    QVERIFY(PropertyList::writeFile(value, home.path("file.plist")));
    QCOMPARE(home.read("file.plist"), PropertyList::toXml(value));
    const QString failure =
        runPython(home, "d = plistlib.load(open('file.plist', 'rb'))\n"
                        "assert d['Title'] == '' and d[''] == 'top', d\n"
                        "assert d['Children'][1]['URIDictionary'] == {'title': 'Caf\\u00e9 2', '': 'empty key'}, d\n"
                        "assert d['Children'][0]['URLString'] == 'http://example.com/?a=1&b=<c>', d\n"
                        "assert d['count'] == -3 and d['width'] == 250.25 and d['flag'] is True, d\n"
                        "assert d['data'] == b'\\x00\\x01\\x02', d\n"
                        "assert d['date'] == datetime.datetime(2004, 2, 29, 12, 34, 56), d\n"
                        "assert d['odd'] == 'a\\rb\\t]]>', d\n"
                        "d.pop('odd')\n"
                        "plistlib.dump(d, open('binary', 'wb'), fmt=plistlib.FMT_BINARY)\n"
                        "plistlib.dump(d, open('xml', 'wb'))\n");
    QVERIFY2(failure.isNull(), qPrintable(failure));
    // And the other way round.
    compare(PropertyList::readFile(home.path("binary")), sampleFile());
    compare(PropertyList::readFile(home.path("xml")), sampleFile());
}

void PropertyListTest::otherReadersReadTheSameTexts()
{
    const TemporaryHome home;
    QVariantList written;
    QStringList expected;
    const auto add = [&](const QString &text, const QString &readAs) {
        // Among others, at both ends, and alone.
        for (const QString &frame : {QStringLiteral("x%1y"), QStringLiteral("%1y%1"), QStringLiteral("%1")}) {
            written.append(frame.arg(text));
            expected.append(frame.arg(readAs));
        }
    };
    for (char32_t c = 0; c < 0x10000; c++) {
        const QChar unit(static_cast<char16_t>(c));
        if (c == '\v' || c == '\f')
            add(unit, QStringLiteral("\n"));
        else if (c < 0x20 && c != '\t' && c != '\n' && c != '\r')
            add(unit, QString());
        else
            add(unit, unit.isSurrogate() || c >= 0xfffe ? QChar(QChar::ReplacementCharacter) : unit);
        // Nothing is not written for something.
        if (expected.last().isEmpty())
            expected.last() = QChar::ReplacementCharacter;
    }
    add(QStringLiteral("\r\n"), QStringLiteral("\r\n"));
    add(QStringLiteral("\ufeff\ufeff"), QStringLiteral("\ufeff\ufeff"));
    add(QStringLiteral("\U0001f600"), QStringLiteral("\U0001f600"));
    const QVariantMap keys{{QStringLiteral("\ufeff"), 1}, {QStringLiteral("\ufeffa\r"), 2}};
    QVERIFY(PropertyList::writeFile(QVariantList{written, keys}, home.path("file")));
    home.write("expected", json(expected));
    const QString failure = runPython(home, "texts, keys = plistlib.load(open('file', 'rb'))\n"
                                            "expected = json.load(open('expected'))\n"
                                            "for text, wanted in zip(texts, expected, strict=True):\n"
                                            "    assert text == wanted, (ascii(text), ascii(wanted))\n"
                                            "assert keys == {'\\ufeff': 1, '\\ufeffa\\r': 2}, ascii(keys)\n");
    QVERIFY2(failure.isNull(), qPrintable(failure));
    const QVariantList read = PropertyList::readFile(home.path("file")).toList();
    QCOMPARE(read.value(0).toStringList(), expected);
    QCOMPARE(read.value(1).toMap(), keys);
}

void PropertyListTest::textsOfOtherWritersAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isInXml"); // or only in the binary form
    QTest::newRow("byte order mark") << QStringLiteral("\ufeff") << true;
    QTest::newRow("byte order mark first") << QStringLiteral("\ufeffa") << true;
    QTest::newRow("byte order marks") << QStringLiteral("\ufeff\ufeff") << true;
    QTest::newRow("byte order mark before what is beyond ASCII") << QStringLiteral("\ufeff\u00e9\U0001f600") << true;
    QTest::newRow("byte order mark behind") << QStringLiteral("a\ufeff") << true;
    QTest::newRow("blanks") << QStringLiteral(" \n\ta ") << true;
    QTest::newRow("carriage returns") << QStringLiteral("a\r\nb\r") << false;
    QTest::newRow("line separators") << QStringLiteral("\u0085\u2028") << true;
}

void PropertyListTest::textsOfOtherWritersAreRead()
{
    QFETCH(QString, text);
    QFETCH(bool, isInXml);
    const TemporaryHome home;
    home.write("text", json({text}));
    const QString failure = runPython(home, "text = json.load(open('text'))[0]\n"
                                            "value = [text, {text: text}]\n"
                                            "plistlib.dump(value, open('binary', 'wb'), fmt=plistlib.FMT_BINARY)\n"
                                            "plistlib.dump(value, open('xml', 'wb'))\n");
    QVERIFY2(failure.isNull(), qPrintable(failure));
    const QVariantList value{text, QVariantMap{{text, text}}};
    PropertyList::Reading reading;
    compare(PropertyList::readFile(home.path("binary"), &reading), value);
    QVERIFY(reading.isWhole);
    if (!isInXml)
        return;
    compare(PropertyList::readFile(home.path("xml"), &reading), value);
    QVERIFY(reading.isWhole);
    compare(PropertyList::readFile(home.path("xml"), nullptr, PropertyList::Xml::General), value);
    // A mark of the file's own is no text.
    home.write("marked", "\xef\xbb\xbf" + home.read("xml"));
    compare(PropertyList::readFile(home.path("marked")), value);
}

void PropertyListTest::xmlIsRead_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char *name, const QByteArray &body, const QVariant &value) {
        QTest::newRow(name) << body << value;
    };
    row("empty elements", "<array><string/><dict/><array/><data/><true/><false></false></array>",
        QVariantList{"", QVariantMap(), QVariantList(), QByteArray(""), true, false});
    row("empty key", "<dict><key></key><string>a</string></dict>", QVariantMap{{"", "a"}});
    row("empty key as an empty element", "<dict><key/><string>a</string></dict>", QVariantMap{{"", "a"}});
    row("comments", "<!-- a --><array><!-- b --><string>a<!-- c -->b</string></array>", QVariantList{"ab"});
    row("CDATA", "<string>a<![CDATA[<&>]]>b</string>", "a<&>b");
    row("entities", "<string>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;</string>", QStringLiteral("<>&\"'A\U0001f600"));
    row("attributes", "<string a='>' b=\"c\">d</string>", "d");
    row("line ends of other systems", "<string>a\r\nb\rc</string>", "a\nb\nc");
    row("the later of two keys", "<dict><key>a</key><true/><key>a</key><false/></dict>", QVariantMap{{"a", false}});
    row("integers",
        "<array><integer> 7\n</integer><integer>+7</integer><integer>0x1F</integer>"
        "<integer>-0x10</integer><integer>007</integer></array>",
        QVariantList{qlonglong(7), qlonglong(7), qlonglong(31), qlonglong(-16), qlonglong(7)});
    row("reals", "<array><real>1</real><real> -1.5e3 </real><real>+infinity</real><real>-INF</real></array>",
        QVariantList{1.0, -1500.0, qInf(), -qInf()});
    row("dates",
        "<array><date>2004-02-29T23:59:59Z</date><date> 0001-01-01T00:00:00Z\n</date>"
        "<date>-0044-03-15T12:00:00Z</date></array>",
        QVariantList{QDateTime(QDate(2004, 2, 29), QTime(23, 59, 59), Qt::UTC),
                     QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC),
                     QDateTime(QDate(-44, 3, 15), QTime(12, 0), Qt::UTC)});
    row("data on several lines", "<data>\n\tAAEC\n\t/w==\n</data>", QByteArray("\0\1\2\xff", 4));
}

void PropertyListTest::xmlIsRead()
{
    QFETCH(QByteArray, body);
    QFETCH(QVariant, value);
    compare(PropertyList::fromData(xml(body)), value);
}

void PropertyListTest::xmlIsRefused_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *name, const QByteArray &data, const char *reason) {
        QTest::newRow(name) << data << reason;
    };
    row("nothing", "", "line 1");
    row("blanks", " \n", "line");
    row("no XML", "hello", "line 1");
    row("another document", "<html><body/></html>", "no property list");
    row("no value", xml(""), "no value");
    row("two values", xml("<true/><true/>"), "more than one value");
    row("two documents", xml("<true/>") + xml("<true/>"), "line 3");
    row("unknown element", xml("<foo>1</foo>"), "unknown element \"foo\"");
    row("unknown element without a key", xml("<dict><foo/></dict>"), "a value without a key");
    row("integer without a key", xml("<dict><integer>abc</integer></dict>"), "a value without a key");
    row("unknown element that is not closed", xml("<array><foo></array>"), "line 2");
    row("plist inside", xml("<plist><true/></plist>"), "unknown element");
    row("value without a key", xml("<dict><string>a</string></dict>"), "a value without a key");
    row("key without a value", xml("<dict><key>a</key></dict>"), "a key without a value");
    row("two keys", xml("<dict><key>a</key><key>b</key><true/></dict>"), "a key out of place");
    row("key in an array", xml("<array><key>a</key></array>"), "a key out of place");
    row("key alone", xml("<key>a</key>"), "a key out of place");
    row("element in a string", xml("<string>a<b/>c</string>"), "an element inside a value");
    row("text between", xml("<array>a<true/></array>"), "text outside of a value");
    row("text in a boolean", xml("<true>a</true>"), "text in a boolean");
    row("crossed elements", xml("<array><dict></array></dict>"), "line 2");
    row("integer of letters", xml("<integer>abc</integer>"), "an integer");
    row("empty integer", xml("<integer></integer>"), "an integer");
    row("integer with a fraction", xml("<integer>1.5</integer>"), "an integer");
    row("integer with two signs", xml("<integer>--1</integer>"), "an integer");
    row("integer too large", xml("<integer>18446744073709551616</integer>"), "an integer");
    row("integer too small", xml("<integer>-9223372036854775809</integer>"), "an integer");
    row("real of letters", xml("<real>abc</real>"), "a real");
    row("date of letters", xml("<date>today</date>"), "a date");
    row("date that is none", xml("<date>2003-02-29T00:00:00Z</date>"), "a date");
    row("date of an hour too many", xml("<date>2003-02-28T24:00:00Z</date>"), "a date");
    row("date without a zone", xml("<date>2003-02-28T12:00:00</date>"), "a date");
    row("data not in base 64", xml("<data>A*EC</data>"), "base 64");
    row("control character in a tag", xml("<str\1ing>a</string>"), "line 2");
    row("control character and a NUL", xml(QByteArray("<string>a\1\0b</string>", 21)), "line 2");
    row("reference to a control character", xml("<string>&#1;</string>"), "line 2");
    row("reference to NUL", xml("<string>&#0;</string>"), "line 2");
    row("unknown entity", xml("<string>&foo;</string>"), "line 2");
    row("binary garbage", QByteArray("\x89PNG\r\n\x1a\n\0\0", 10), "line 1");
}

void PropertyListTest::xmlIsRefused()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, reason);
    verifyRefused(data, qPrintable(reason));
}

void PropertyListTest::realsAreReadWithoutTheLocale()
{
    // A number with a point is that number wherever the user lives.
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    compare(PropertyList::fromData(xml("<real>12.5</real>")), 12.5);
    QVERIFY(PropertyList::toXml(12.5).contains("<real>12.5</real>"));
    QLocale::setDefault(before);
}

void PropertyListTest::encodings_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QVariant>("value");
    const QByteArray body = "<plist><string>caf\xc3\xa9</string></plist>";
    const QString cafe = QStringLiteral("caf\u00e9");
    const auto utf16 = [&](QStringConverter::Encoding encoding, bool withMark) {
        QStringEncoder encode(encoding, withMark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
        return QByteArray(encode(QString::fromUtf8(body)));
    };
    QTest::newRow("not declared") << body << QVariant(cafe);
    QTest::newRow("with a byte order mark") << "\xef\xbb\xbf" + body << QVariant(cafe);
    QTest::newRow("Latin 1") << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
                                           "<plist><string>caf\xe9</string></plist>")
                             << QVariant(cafe);
    QTest::newRow("Latin 1 that is not declared")
        << QByteArray("<plist><string>caf\xe9</string></plist>") << QVariant(QStringLiteral("caf\ufffd"));
    QTest::newRow("Latin 1 that is declared as UTF-8")
        << QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?><plist><string>caf\xe9</string></plist>")
        << QVariant(QStringLiteral("caf\ufffd"));
    QTest::newRow("UTF-8 cut short") << QByteArray("<plist><string>caf\xc3</string></plist>")
                                     << QVariant(QStringLiteral("caf\ufffd"));
    QTest::newRow("damaged after a byte order mark")
        << QByteArray("\xef\xbb\xbf<plist><string>\xe9</string></plist>") << QVariant(QStringLiteral("\ufffd"));
    QTest::newRow("damaged far behind") << "<plist><string>" + QByteArray(100000, 'a') + "\xe9</string></plist>"
                                        << QVariant(QString(100000, u'a') + QChar(QChar::ReplacementCharacter));
    for (const char *character : {"\x01", "\x08", "\x0b", "\x0c", "\x1b", "\x1f", "\xef\xbf\xbe", "\xef\xbf\xbf"})
        QTest::addRow("with %s, which XML cannot hold", QByteArray(character).toHex().constData())
            << "<plist><string>caf" + QByteArray(character) + "</string></plist>"
            << QVariant(QStringLiteral("caf\ufffd"));
    QTest::newRow("with several of them, and damaged") << QByteArray("<plist><string>\x1b\t\xe9\n\x0b</string></plist>")
                                                       << QVariant(QStringLiteral("\ufffd\t\ufffd\n\ufffd"));
    QTest::newRow("damaged inside of a tag") << QByteArray("<plist><str\xe9ing>a</string></plist>") << QVariant();
    QTest::newRow("damaged and cut short") << QByteArray("<plist><string>caf\xe9</string>") << QVariant();
    QTest::newRow("unknown encoding") << "<?xml version=\"1.0\" encoding=\"x-foo\"?>" + body << QVariant();
    QTest::newRow("UTF-16, big end first") << utf16(QStringConverter::Utf16BE, true) << QVariant();
    QTest::newRow("UTF-16, little end first") << utf16(QStringConverter::Utf16LE, true) << QVariant();
    QTest::newRow("UTF-16 without a mark") << utf16(QStringConverter::Utf16LE, false) << QVariant();
    QTest::newRow("UTF-32") << utf16(QStringConverter::Utf32BE, true) << QVariant();
}

void PropertyListTest::encodings()
{
    QFETCH(QByteArray, data);
    QFETCH(QVariant, value);
    const LoggedMessages messages;
    bool isWhole = false;
    compare(PropertyList::fromData(data, &isWhole), value);
    const bool isDamaged = value.toString().contains(QChar(QChar::ReplacementCharacter));
    QCOMPARE(isWhole, value.isValid() && !isDamaged);
    QCOMPARE(messages.texts().size(), isWhole ? 0 : 1);
    const bool isWide = data.left(4).contains('\0') || data.startsWith("\xfe\xff") || data.startsWith("\xff\xfe");
    QCOMPARE(messages.contain(" - not in UTF-8"), isWide);
}

void PropertyListTest::wholeOrNot_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("isWhole");
    const auto dictionary = [](const QList<QByteArray> &keys) {
        BinaryList list;
        QList<quint32> numbers;
        for (const QByteArray &key : keys)
            numbers.append(list.addText(key));
        return list.finished(list.addDictionary(numbers, numbers));
    };
    const auto text = [](const QByteArray &object) {
        BinaryList list;
        const quint32 number = list.add(object);
        return list.finished(list.addArray({list.addArray({number}), number}));
    };
    const auto utf16 = [](const QByteArray &bytes) { return BinaryList::sized(0x6, bytes.size() / 2) + bytes; };
    QTest::newRow("a file") << PropertyList::toXml(sampleFile()) << true;
    QTest::newRow("equal keys side by side")
        << xml("<array><dict><key>a</key><true/></dict><dict><key>a</key><true/></dict></array>") << true;
    QTest::newRow("a key twice") << xml("<dict><key>a</key><true/><key>a</key><true/></dict>") << false;
    QTest::newRow("a key twice, deep down")
        << xml("<array><dict><key>a</key><dict><key/><true/><key></key><true/></dict></dict></array>") << false;
    QTest::newRow("U+FFFD that stands in the file") << xml("<string>\xef\xbf\xbd</string>") << true;
    QTest::newRow("refused") << xml("<string>") << false;
    QTest::newRow("binary") << dictionary({"a", "b"}) << true;
    QTest::newRow("binary, a key twice") << dictionary({"a", "b", "a"}) << false;
    QTest::newRow("binary, text") << text(BinaryList::sized(0x5, 3) + "a\nb") << true;
    QTest::newRow("binary, text with a NUL") << text(BinaryList::sized(0x5, 3) + QByteArray("a\0b", 3)) << false;
    QTest::newRow("binary, text that is not in ASCII") << text(BinaryList::sized(0x5, 1) + "\xe9") << false;
    QTest::newRow("binary, text with a control character") << text(BinaryList::sized(0x5, 2) + "a\x0b") << false;
    QTest::newRow("binary, key with a control character") << dictionary({"a\x01"}) << false;
    QTest::newRow("binary, UTF-16") << text(utf16(QByteArray("\x65\xe5\xd8\x3d\xde\x00", 6))) << true;
    QTest::newRow("binary, UTF-16 with a NUL") << text(utf16(QByteArray("\x65\xe5\0\0", 4))) << false;
    QTest::newRow("binary, half a character at the end") << text(utf16("\x65\xe5\xd8\x3d")) << false;
    QTest::newRow("binary, half a character within") << text(utf16("\xde\x3d\x65\xe5")) << false;
    QTest::newRow("binary, no character") << text(utf16("\xff\xfe")) << false;
    QTest::newRow("binary, refused") << QByteArray("bplist00") << false;
}

void PropertyListTest::wholeOrNot()
{
    QFETCH(QByteArray, data);
    QFETCH(bool, isWhole);
    const LoggedMessages messages;
    bool answer = !isWhole;
    const QVariant value = PropertyList::fromData(data, &answer);
    QCOMPARE(answer, isWhole);
    QCOMPARE(messages.texts().size(), isWhole ? 0 : 1);
    if (isWhole) // and it can be written again just so
        compare(PropertyList::fromData(PropertyList::toXml(value)), value);

    const TemporaryHome home;
    home.write("file", data);
    PropertyList::Reading reading{false, !isWhole, true};
    PropertyList::readFile(home.path("file"), &reading);
    QCOMPARE(reading.isWhole, isWhole);
    QCOMPARE(reading.ok, value.isValid());
    QVERIFY(!reading.isPassing);
    reading.isWhole = !isWhole;
    PropertyList::readDictionaryFile(home.path("file"), &reading);
    QCOMPARE(reading.isWhole, isWhole && value.metaType() == QMetaType::fromType<QVariantMap>());
    PropertyList::readDictionaryFile(home.path("nothing"), &reading);
    QVERIFY(!reading.isWhole);
    QVERIFY(!reading.isPassing);
}

void PropertyListTest::whatCannotBeHeldIsLeftOut_data()
{
    QTest::addColumn<QByteArray>("data");
    const auto row = [](const char *name, const QByteArray &element) {
        QTest::newRow(name) << xml("<dict><key>a</key>" + element + "<key>b</key><array>" + element + "<true/>" +
                                   element + "</array></dict>");
    };
    const auto binaryRow = [](const char *name, const QByteArray &object) {
        BinaryList list;
        const quint32 yes = list.add("\x09");
        const quint32 a = list.addText("a");
        const quint32 b = list.addText("b");
        const quint32 array = list.addArray({yes + 5, yes, yes + 5});
        const quint32 top = list.addDictionary({a, b}, {yes + 5, array});
        list.add(object); // the very last
        QTest::newRow(name) << list.finished(top);
    };
    row("date of the year 0", "<date>0000-01-01T00:00:00Z</date>");
    row("date that is none", "<date>2003-02-29T00:00:00Z</date>");
    row("integer too large", "<integer>18446744073709551616</integer>");
    row("integer of letters", "<integer>abc</integer>");
    row("real of letters", "<real>abc</real>");
    row("data not in base 64", "<data>A*EC</data>");
    row("boolean with a text", "<true>a</true>");
    row("unknown element", "<null/>");
    row("unknown element with others in it", "<set><integer>1</integer><foo>a<bar/></foo><dict/></set>");
    row("many in one another", QByteArray("<foo>").repeated(5000) + QByteArray("</foo>").repeated(5000));
    binaryRow("binary, identifier of an archive", "\x80\x01");
    binaryRow("binary, null", QByteArray(1, 0));
    binaryRow("binary, unknown kind", "\x90");
    binaryRow("binary, set", QByteArray("\xc1\0\0\0\1", 5));
    binaryRow("binary, integer too large", char(0x14) + QByteArray(16, '\x7f'));
    binaryRow("binary, date that is no number", char(0x33) + BinaryList::number(~quint64(0)));
    for (const double date : {1e20, 252460800000.001, -252460800000.001})
        binaryRow(qPrintable(QStringLiteral("binary, date too far off: %1").arg(date)),
                  char(0x33) + BinaryList::number(std::bit_cast<quint64>(date)));
}

void PropertyListTest::whatCannotBeHeldIsLeftOut()
{
    QFETCH(QByteArray, data);
    const LoggedMessages messages;
    bool isWhole = true;
    compare(PropertyList::fromData(data, &isWhole), QVariantMap{{"b", QVariantList{true}}});
    QVERIFY(!isWhole);
    QCOMPARE(messages.texts().size(), 1);
    QVERIFY(messages.contain("a value of an unknown kind"));
}

void PropertyListTest::whatOtherWritersCanHoldIsLeftOut()
{
    const TemporaryHome home;
    const QString failure =
        runPython(home, "value = {'a': plistlib.UID(5), 'b': [plistlib.UID(300), True, 2 ** 64 - 1], '': ''}\n"
                        "plistlib.dump(value, open('binary', 'wb'), fmt=plistlib.FMT_BINARY)\n");
    QVERIFY2(failure.isNull(), qPrintable(failure));
    const LoggedMessages messages;
    PropertyList::Reading reading;
    const QVariantMap expected{{"b", QVariantList{true, std::numeric_limits<quint64>::max()}}, {"", ""}};
    compare(PropertyList::readFile(home.path("binary"), &reading), expected);
    QVERIFY(reading.ok);
    QVERIFY(!reading.isWhole);
}

void PropertyListTest::entitiesDoNotUnfold_data()
{
    QTest::addColumn<QByteArray>("data");
    QByteArray bomb = "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY e0 \"ha\">";
    QByteArray parameterBomb = "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY % p0 \"<!-- ha -->\">";
    for (int i = 1; i < 40; i++) {
        const QByteArray before = QByteArray::number(i - 1);
        const QByteArray now = QByteArray::number(i);
        bomb += "<!ENTITY e" + now + " \"&e" + before + ";&e" + before + ";\">";
        parameterBomb += "<!ENTITY % p" + now + " \"%p" + before + ";%p" + before + ";\">";
    }
    QTest::newRow("entities of entities") << bomb + "]><plist><string>&e39;</string></plist>";
    QTest::newRow("in the declarations") << parameterBomb + "%p39;]><plist><string>a</string></plist>";
    QTest::newRow("declared but not used") << bomb + "]><plist><string>a</string></plist>";
    QTest::newRow("a file") << QByteArray("<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>"
                                          "<plist><string>&a;</string></plist>");
    QTest::newRow("declared elsewhere") << QByteArray("<!DOCTYPE plist SYSTEM \"file:///etc/passwd\">"
                                                      "<plist><string>&a;</string></plist>");
}

void PropertyListTest::entitiesDoNotUnfold()
{
    QFETCH(QByteArray, data);
    const LoggedMessages messages;
    QVERIFY(!PropertyList::fromData(data).isValid());
    QCOMPARE(messages.texts().size(), 1);
    QVERIFY(messages.texts().constFirst().size() < 1000);
}

void PropertyListTest::longTextOfEntitiesIsReadInTime()
{
    // Takes minutes when each of them moves the rest of the text.
    const QString text(2000000, u'&');
    QCOMPARE(PropertyList::fromData(PropertyList::toXml(text)).toString(), text);
}

void PropertyListTest::xmlDepth_data()
{
    QTest::addColumn<bool>("isDictionary");
    QTest::newRow("arrays") << false;
    QTest::newRow("dictionaries") << true;
}

void PropertyListTest::xmlDepth()
{
    QFETCH(bool, isDictionary);
    const auto around = [&](const QVariant &value) {
        return isDictionary ? QVariant(QVariantMap{{"", value}}) : QVariant(QVariantList{value});
    };
    QVariant value = QStringLiteral("bottom");
    for (int i = 0; i < PropertyList::maximumDepth; i++)
        value = around(value);
    const QByteArray written = PropertyList::toXml(value);
    compare(PropertyList::fromData(written), value);
    // One more can be neither written nor read.
    QVERIFY(PropertyList::toXml(around(value)).isEmpty());
    QByteArray deeper = written;
    deeper.replace("<plist version=\"1.0\">",
                   isDictionary ? "<plist version=\"1.0\"><dict><key></key>" : "<plist version=\"1.0\"><array>");
    deeper.replace("</plist>", isDictionary ? "</dict></plist>" : "</array></plist>");
    verifyRefused(deeper, "nested more than 1024 deep");
}

void PropertyListTest::xmlHundredThousandDeep_data()
{
    xmlDepth_data();
}

void PropertyListTest::xmlHundredThousandDeep()
{
    QFETCH(bool, isDictionary);
    const QByteArray open = isDictionary ? "<dict><key>a</key>" : "<array>";
    const QByteArray close = isDictionary ? "</dict>" : "</array>";
    verifyRefused(xml(open.repeated(100000) + "<true/>" + close.repeated(100000)), "nested more than 1024 deep");
}

void PropertyListTest::xmlCutShort()
{
    const QByteArray whole = PropertyList::toXml(sampleFile());
    const LoggedMessages messages;
    for (qsizetype size = 0; size < whole.size() - 1; size++)
        QVERIFY2(!PropertyList::fromData(whole.left(size)).isValid(), qPrintable(QString::number(size)));
    QCOMPARE(messages.texts().size(), whole.size() - 1);
    compare(PropertyList::fromData(whole.chopped(1)), sampleFile());
}

void PropertyListTest::binaryIsRead()
{
    BinaryList list;
    const quint32 key = list.addText("");
    const quint32 otherKey = list.add(BinaryList::sized(0x6, 1) + QByteArray("\0\xe9", 2));
    const quint32 value = list.addText(QByteArray(300, 'x'));
    const quint32 inner = list.addArray({value, list.add("\x09"), list.addText("")});
    const quint32 top = list.addDictionary({key, otherKey}, {inner, list.addDictionary({}, {})});
    const QVariantMap expected{{"", QVariantList{QString(300, u'x'), true, ""}},
                               {QStringLiteral("\u00e9"), QVariantMap()}};
    compare(PropertyList::fromData(list.finished(top)), expected);
}

void PropertyListTest::binaryScalars_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char *name, const QByteArray &object, const QVariant &value) {
        QTest::newRow(name) << object << value;
    };
    const auto integer = [](auto value) {
        return char(0x10 | (sizeof(value) == 8   ? 3
                            : sizeof(value) == 4 ? 2
                            : sizeof(value) == 2 ? 1
                                                 : 0)) +
               BinaryList::number(value);
    };
    const auto real = [](double value) { return char(0x23) + BinaryList::number(std::bit_cast<quint64>(value)); };
    const auto date = [](double value) { return char(0x33) + BinaryList::number(std::bit_cast<quint64>(value)); };
    const auto utf16 = [](const QString &text) {
        QByteArray bytes;
        for (const QChar c : text)
            bytes += BinaryList::number(c.unicode());
        return BinaryList::sized(0x6, text.size()) + bytes;
    };
    row("false", "\x08", false);
    row("true", "\x09", true);
    row("one byte", integer(quint8(255)), qlonglong(255));
    row("two bytes", integer(quint16(65535)), qlonglong(65535));
    row("four bytes", integer(quint32(4294967295)), qlonglong(4294967295));
    row("eight bytes", integer(quint64(1) << 40), qlonglong(1) << 40);
    row("negative", integer(quint64(-5)), qlonglong(-5));
    row("least", integer(quint64(1) << 63), std::numeric_limits<qlonglong>::min());
    row("sixteen bytes", char(0x14) + BinaryList::number(quint64(0)) + BinaryList::number(~quint64(0)),
        std::numeric_limits<quint64>::max());
    row("real", real(0.1), 0.1);
    row("negative zero", real(-0.0), -0.0);
    row("short real", char(0x22) + BinaryList::number(std::bit_cast<quint32>(0.5F)), 0.5);
    row("date", date(99750896), QDateTime(QDate(2004, 2, 29), QTime(12, 34, 56), Qt::UTC));
    row("date with milliseconds", date(0.25), QDateTime(QDate(2001, 1, 1), QTime(0, 0, 0, 250), Qt::UTC));
    row("distant past", date(-63113904000), QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC));
    row("two days before that", date(-63114076800), QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC).addDays(-2));
    row("distant future", date(63113904000), QDateTime(QDate(4001, 1, 1), QTime(0, 0), Qt::UTC));
    row("the furthest", date(252460800000), QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC).addSecs(252460800000));
    row("empty data", BinaryList::sized(0x4, 0), QByteArray(""));
    row("data", BinaryList::sized(0x4, 3) + QByteArray("\0\1\xff", 3), QByteArray("\0\1\xff", 3));
    row("empty text", BinaryList::sized(0x5, 0), "");
    row("empty text in UTF-16", BinaryList::sized(0x6, 0), "");
    row("text", BinaryList::sized(0x5, 20) + QByteArray(20, 'a'), QString(20, u'a'));
    row("text ends at a NUL", BinaryList::sized(0x5, 3) + QByteArray("a\0b", 3), "a");
    row("text in UTF-16", utf16(QStringLiteral("\u65e5\u672c \U0001f600")), QStringLiteral("\u65e5\u672c \U0001f600"));
}

void PropertyListTest::binaryScalars()
{
    QFETCH(QByteArray, object);
    QFETCH(QVariant, value);
    BinaryList alone;
    compare(PropertyList::fromData(alone.finished(alone.add(object))), value);
    BinaryList inside;
    const quint32 number = inside.add(object);
    compare(PropertyList::fromData(inside.finished(inside.addArray({number}))), QVariantList{value});
}

void PropertyListTest::binaryObjectsMayBeShared()
{
    // As writers do that write equal texts and numbers once.
    BinaryList list;
    const quint32 key = list.addText("title");
    const quint32 value = list.addText("Untitled");
    const quint32 item = list.addDictionary({key}, {value});
    const quint32 top = list.addArray(QList<quint32>(5000, item));
    const QVariantList expected(5000, QVariantMap{{"title", "Untitled"}});
    compare(PropertyList::fromData(list.finished(top)), expected);
}

void PropertyListTest::binaryIsRefused_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *name, const QByteArray &data, const char *reason) {
        QTest::newRow(name) << data << reason;
    };
    const auto alone = [](const QByteArray &object) {
        BinaryList list;
        return list.finished(list.add(object));
    };
    row("only the start", "bplist00", "cut short");
    row("newer version", "bplist15" + QByteArray(40, 0), "unknown version");
    row("all zero", "bplist00" + QByteArray(40, 0), "damaged trailer");
    row("null", alone(QByteArray(1, 0)), "unknown kind");
    row("unknown kind", alone("\x90"), "unknown kind");
    row("identifier of an archive", alone("\x80\x01"), "unknown kind");
    row("set", alone(QByteArray("\xc0", 1)), "unknown kind");
    row("integer of seventeen bytes' worth", alone(char(0x14) + QByteArray(16, '\x7f')), "unknown kind");
    row("integer of 32 bytes", alone(char(0x15) + QByteArray(32, 0)), "damaged integer");
    row("real of two bytes", alone(char(0x21) + QByteArray(2, 0)), "damaged real");
    row("text that goes on too long", alone(BinaryList::sized(0x5, 1000) + "a"), "size");
    row("data that goes on for ever", alone(QByteArray("\x4f\x13\x7f\xff\xff\xff\xff\xff\xff\xff", 10)), "size");
    row("text in UTF-16 of a size that overflows", alone(QByteArray("\x6f\x13\x80\0\0\0\0\0\0\0", 10)), "size");
    row("size that is no integer", alone("\x5f\x51" + QByteArray(100, 'a')), "size");
    row("date that is no number", alone(char(0x33) + BinaryList::number(~quint64(0))), "damaged");

    BinaryList ring;
    ring.addArray({1});
    ring.addArray({0});
    row("a ring", ring.finished(0), "holds itself");
    BinaryList self;
    self.addArray({0});
    row("an array in itself", self.finished(0), "holds itself");
    BinaryList dictionary;
    dictionary.addDictionary({1}, {0});
    dictionary.addText("a");
    row("a dictionary in itself", dictionary.finished(0), "holds itself");
    BinaryList lost;
    lost.addArray({7});
    row("a reference to nothing", lost.finished(0), "reference to nothing");
    row("a top that is not there", lost.finished(1), "damaged trailer");
    row("no offsets", lost.finished(0, 0), "damaged trailer");
    row("offsets of nine bytes", lost.finished(0, 9), "damaged trailer");
    row("references of no bytes", lost.finished(0, 4, 0), "damaged trailer");
    BinaryList key;
    key.addDictionary({1}, {1});
    key.add("\x09");
    row("a key that is no text", key.finished(0), "key that is no text");

    BinaryList nul;
    nul.addDictionary({1}, {1});
    nul.addText(QByteArray("a\0b", 3));
    row("a key with a NUL", nul.finished(0), "holds a NUL");
    BinaryList wideNul;
    wideNul.addDictionary({1}, {1});
    wideNul.add(BinaryList::sized(0x6, 2) + QByteArray("\0\xe9\0\0", 4));
    row("a key with a NUL in UTF-16", wideNul.finished(0), "holds a NUL");
    BinaryList tooShort;
    tooShort.addArray({1});
    tooShort.add(BinaryList::sized(0x5, 14) + "a");
    row("text that is cut short", tooShort.finished(0), "cut short");

    BinaryList crowded; // many objects at the same place
    const quint32 only = crowded.add("\x09");
    for (int i = 0; i < 1000; i++)
        crowded.addAgain(only);
    row("more objects than bytes", crowded.finished(only), "more objects than it has room for");
    row("more objects than one byte tells apart",
        "bplist00" + QByteArray(1000, '\x09') + QByteArray(1000, '\x08') + QByteArray(6, 0) + "\x01\x01" +
            BinaryList::number(quint64(1000)) + BinaryList::number(quint64(0)) + BinaryList::number(quint64(1008)),
        "more objects than it has room for");

    // Each holds the one below it twice: two to the power of sixty of the lowest.
    BinaryList doubling;
    quint32 last = doubling.addText("ha");
    for (int i = 0; i < 60; i++)
        last = doubling.addArray({last, last});
    row("doubling arrays", doubling.finished(last), "over and over");
    BinaryList doublingLess; // what would still fit into memory
    last = doublingLess.addText("ha");
    for (int i = 0; i < 18; i++)
        last = doublingLess.addArray({last, last});
    row("doubling arrays less often", doublingLess.finished(last), "over and over");
    BinaryList doublingNothing;
    last = doublingNothing.addArray({});
    for (int i = 0; i < 60; i++)
        last = doublingNothing.addArray({last, last});
    row("doubling of nothing", doublingNothing.finished(last), "over and over");
    BinaryList longText;
    last = longText.addText(QByteArray(1000000, 'a'));
    row("a long text over and over", longText.finished(longText.addArray(QList<quint32>(1000, last))), "over and over");
}

void PropertyListTest::binaryIsRefused()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, reason);
    verifyRefused(data, qPrintable(reason));
}

void PropertyListTest::binaryDepth()
{
    const auto chain = [](int depth) {
        BinaryList list;
        quint32 last = list.addText("bottom");
        for (int i = 0; i < depth; i++)
            last = i % 2 ? list.addArray({last}) : list.addDictionary({0}, {last});
        return list.finished(last);
    };
    QVariant value = PropertyList::fromData(chain(PropertyList::maximumDepth));
    QVERIFY(value.isValid());
    int depth = 0;
    for (; value.metaType().id() != QMetaType::QString; depth++) {
        const bool isDictionary = value.metaType().id() == QMetaType::QVariantMap;
        value = isDictionary ? value.toMap().value("bottom") : value.toList().value(0);
        QVERIFY(value.isValid());
    }
    QCOMPARE(depth, PropertyList::maximumDepth);
    verifyRefused(chain(PropertyList::maximumDepth + 1), "nested too deep");
    verifyRefused(chain(100000), "nested too deep");

    // Deep by way of a part that was looked at before, where it stood less deep.
    BinaryList list;
    quint32 last = list.addText("bottom");
    for (int i = 0; i < 600; i++)
        last = list.addArray({last});
    const quint32 shared = last;
    for (int i = 0; i < 600; i++)
        last = list.addArray({last});
    verifyRefused(list.finished(list.addArray({shared, last})), "nested too deep");
}

void PropertyListTest::binaryCutShort()
{
    BinaryList list;
    const quint32 key = list.addText("title");
    const quint32 value = list.add(BinaryList::sized(0x6, 2) + QByteArray("\0\xe9\0\xe8", 4));
    const quint32 item = list.addDictionary({key}, {value});
    const QByteArray whole = list.finished(list.addArray({item, list.add("\x09"), item}));
    QVERIFY(PropertyList::fromData(whole).isValid());
    const LoggedMessages messages;
    for (qsizetype size = 0; size < whole.size(); size++)
        QVERIFY2(!PropertyList::fromData(whole.left(size)).isValid(), qPrintable(QString::number(size)));
}

void PropertyListTest::binaryWithAnyByteChanged()
{
    BinaryList list;
    const quint32 key = list.addText("title");
    const quint32 value = list.add(BinaryList::sized(0x6, 2) + QByteArray("\0\xe9\xd8\0", 4));
    const quint32 item = list.addDictionary({key, value}, {value, list.add(QByteArray("\x11\1\2", 3))});
    const quint32 data = list.add(BinaryList::sized(0x4, 20) + QByteArray(20, 'd'));
    const quint32 real = list.add(char(0x23) + BinaryList::number(std::bit_cast<quint64>(0.1)));
    const QByteArray whole = list.finished(list.addArray({item, data, real, item}));
    const LoggedMessages messages;
    int readable = 0;
    for (qsizetype i = 0; i < whole.size(); i++) {
        for (int change = 1; change < 256; change++) {
            QByteArray changed = whole;
            changed[i] = char(changed[i] ^ change);
            readable += PropertyList::fromData(changed).isValid() ? 1 : 0;
        }
    }
    // Some changes only make other values of it; every one of them is survived.
    QVERIFY(readable > 0);
    QVERIFY(!messages.texts().isEmpty());
}

void PropertyListTest::missingFileIsNotLogged()
{
    const TemporaryHome home;
    home.write("file", "");
    QVERIFY(QFile::link(home.path("nothing"), home.path("link")));
    const LoggedMessages messages;
    QVERIFY(!PropertyList::readFile(home.path("nothing")).isValid());
    QVERIFY(!PropertyList::readFile(home.path("no/such/folder")).isValid());
    QVERIFY(!PropertyList::readFile(home.path("file/below")).isValid());
    QVERIFY(!PropertyList::readFile(home.path("link")).isValid());
    QVERIFY(!PropertyList::readFile("").isValid());
    QVERIFY2(messages.texts().isEmpty(), qPrintable(messages.texts().join(u'\n')));
}

void PropertyListTest::otherThanPlainFilesAreNotRead_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("directory") << "directory";
    QTest::newRow("pipe that nobody writes to") << "pipe";
    QTest::newRow("link to the pipe") << "link";
    QTest::newRow("endless device") << "/dev/zero";
    QTest::newRow("empty device") << "/dev/null";
}

void PropertyListTest::otherThanPlainFilesAreNotRead()
{
    QFETCH(QString, path);
    const TemporaryHome home;
    QVERIFY(QDir(home.path()).mkdir("directory"));
    QCOMPARE(::mkfifo(qPrintable(home.path("pipe")), 0600), 0);
    QVERIFY(QFile::link(home.path("pipe"), home.path("link")));
    const LoggedMessages messages;
    QVERIFY(!PropertyList::readFile(path.startsWith(u'/') ? path : home.path(path)).isValid());
    QVERIFY(messages.contain("not a plain file"));
    // Nor is anything put in their place.
    if (!path.startsWith(u'/')) {
        QVERIFY(!PropertyList::writeFile("a", home.path(path)));
        QVERIFY(!QFileInfo(home.path(path)).isFile());
    }
}

void PropertyListTest::tooLargeAFileIsRefused()
{
    const TemporaryHome home;
    QFile file(home.path("large.plist"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(PropertyList::maximumFileSize + 1)); // a file of holes, which takes no room
    file.close();
    const LoggedMessages messages;
    QVERIFY(!PropertyList::readFile(file.fileName()).isValid());
    QVERIFY(messages.contain("larger than 1 GiB"));
}

void PropertyListTest::fileWithoutPermissionIsLogged()
{
    const TemporaryHome home;
    QCOMPARE(::chmod(qPrintable(home.path()), 0755), 0);
    home.write("file.plist", PropertyList::toXml("old"));
    QCOMPARE(::chmod(qPrintable(home.path("file.plist")), 0), 0);
    QString log;
    QCOMPARE(runChild({"--read-without-permission", home.path("file.plist")}, &log), int(AsExpected));
    QVERIFY2(log.contains("Permission denied"), qPrintable(log));
}

void PropertyListTest::readDictionaryFile()
{
    const TemporaryHome home;
    home.write("dictionary", PropertyList::toXml(QVariantMap{{"a", "b"}}));
    home.write("empty", PropertyList::toXml(QVariantMap()));
    home.write("array", PropertyList::toXml(QVariantList{"a"}));
    home.write("damaged", "<plist>");
    PropertyList::Reading reading;
    QCOMPARE(PropertyList::readDictionaryFile(home.path("dictionary"), &reading), QVariantMap({{"a", "b"}}));
    QVERIFY(reading.ok);
    reading.ok = false;
    QVERIFY(PropertyList::readDictionaryFile(home.path("empty"), &reading).isEmpty());
    QVERIFY(reading.ok);
    const LoggedMessages messages;
    QVERIFY(PropertyList::readDictionaryFile(home.path("array"), &reading).isEmpty());
    QVERIFY(!reading.ok);
    QVERIFY(messages.contain("no dictionary"));
    reading.ok = true;
    QVERIFY(PropertyList::readDictionaryFile(home.path("damaged"), &reading).isEmpty());
    QVERIFY(!reading.ok);
    reading.ok = true;
    QVERIFY(PropertyList::readDictionaryFile(home.path("nothing"), &reading).isEmpty());
    QVERIFY(!reading.ok);
    QVERIFY(PropertyList::readDictionaryFile(home.path("nothing")).isEmpty());
}

void PropertyListTest::writesAndReplaces()
{
    const TemporaryHome home;
    for (const QVariant &value : {QVariant(sampleFile()), QVariant("short"), QVariant(sampleFile())}) {
        QVERIFY(PropertyList::writeFile(value, home.path("file.plist")));
        QCOMPARE(home.read("file.plist"), PropertyList::toXml(value));
        QCOMPARE(QDir(home.path()).entryList(QDir::Files | QDir::Hidden), QStringList("file.plist"));
    }
}

void PropertyListTest::permissionsAreKept()
{
    const TemporaryHome home;
    home.write("file.plist", "old");
    QCOMPARE(::chmod(qPrintable(home.path("file.plist")), 0600), 0);
    QVERIFY(PropertyList::writeFile("new", home.path("file.plist")));
    struct stat status;
    QCOMPARE(::stat(qPrintable(home.path("file.plist")), &status), 0);
    QCOMPARE(status.st_mode & 0777, 0600U);
}

void PropertyListTest::linksStayLinks()
{
    const TemporaryHome home;
    home.write("elsewhere/target.plist", "old");
    QVERIFY(QFile::link("elsewhere/target.plist", home.path("second"))); // relative to where the link is
    QVERIFY(QFile::link(home.path("second"), home.path("first")));
    QVERIFY(PropertyList::writeFile("new", home.path("first")));
    QVERIFY(QFileInfo(home.path("first")).isSymLink());
    QVERIFY(QFileInfo(home.path("second")).isSymLink());
    QVERIFY(!QFileInfo(home.path("elsewhere/target.plist")).isSymLink());
    QCOMPARE(PropertyList::readFile(home.path("elsewhere/target.plist")), QVariant("new"));
    QCOMPARE(PropertyList::readFile(home.path("first")), QVariant("new"));
}

void PropertyListTest::linkToNothingGetsItsFile()
{
    const TemporaryHome home;
    QVERIFY(QFile::link(home.path("target.plist"), home.path("link")));
    QVERIFY(PropertyList::writeFile("new", home.path("link")));
    QVERIFY(QFileInfo(home.path("link")).isSymLink());
    QCOMPARE(PropertyList::readFile(home.path("target.plist")), QVariant("new"));
}

void PropertyListTest::writeFails_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no folder") << "no/such/folder/file.plist";
    QTest::newRow("file in the place of a folder") << "file/file.plist";
    QTest::newRow("folder in the place of the file") << "directory";
    QTest::newRow("link in a ring") << "ring";
}

void PropertyListTest::writeFails()
{
    QFETCH(QString, path);
    const TemporaryHome home;
    home.write("file", "");
    QVERIFY(QDir(home.path()).mkdir("directory"));
    QVERIFY(QFile::link(home.path("ring"), home.path("ring")));
    const LoggedMessages messages;
    QVERIFY(!PropertyList::writeFile("new", home.path(path)));
    QCOMPARE(messages.texts().size(), 1);
    QVERIFY(messages.contain("Could not write the property list " + home.path(path) + " - "));
    QCOMPARE(QDir(home.path()).entryList(QDir::Files | QDir::Hidden), QStringList("file"));
}

void PropertyListTest::valueThatCannotBeWrittenLeavesTheFile()
{
    const TemporaryHome home;
    home.write("file.plist", "old");
    const LoggedMessages messages;
    QVERIFY(!PropertyList::writeFile(QVariantMap{{"a", QVariant()}}, home.path("file.plist")));
    QVERIFY(messages.contain("cannot"));
    QCOMPARE(home.read("file.plist"), "old");
}

void PropertyListTest::withoutPermission()
{
    const TemporaryHome home;
    home.write("folder/file.plist", PropertyList::toXml("old"));
    QCOMPARE(::chmod(qPrintable(home.path()), 0755), 0);
    QCOMPARE(::chmod(qPrintable(home.path("folder/file.plist")), 0666), 0);
    QCOMPARE(::chmod(qPrintable(home.path("folder")), 0555), 0);
    QString log;
    QCOMPARE(runChild({"--write-without-permission", home.path("folder/file.plist")}, &log), int(AsExpected));
    QVERIFY2(log.contains("Could not write"), qPrintable(log));
    QCOMPARE(::chmod(qPrintable(home.path("folder")), 0755), 0);
    QCOMPARE(PropertyList::readFile(home.path("folder/file.plist")), QVariant("old"));
}

void PropertyListTest::beyondALimit()
{
    const TemporaryHome home;
    home.write("file.plist", PropertyList::toXml("old"));
    QString log;
    QCOMPARE(runChild({"--beyond-a-limit", home.path("file.plist")}, &log), int(AsExpected));
    QVERIFY2(log.contains("Could not write"), qPrintable(log));
    QCOMPARE(PropertyList::readFile(home.path("file.plist")), QVariant("old"));
    QCOMPARE(QDir(home.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

void PropertyListTest::fullDisk()
{
    const TemporaryHome home;
    QVERIFY(QDir(home.path()).mkdir("disk"));
    QString log;
    const int answer = runChild({"--full-disk", home.path("disk")}, &log);
    if (answer == NotPermitted)
        return; // only the superuser can mount a small disk; see beyondALimit for everybody else
    QCOMPARE(answer, int(AsExpected));
    QVERIFY2(log.contains("No space left on device"), qPrintable(log));
}

void PropertyListTest::killedWhileSaving()
{
    const TemporaryHome home;
    const QString path = home.path("file.plist");
    QRandomGenerator random(QRandomGenerator::securelySeeded());
    int saved = 0; // the last version that is known to be saved
    int kills = 0;
    while (saved < 200 || kills < 40) {
        QProcess child;
        child.start(programPath(), {"--save-forever", path, QString::number(saved + 1)});
        QVERIFY(child.waitForStarted());
        // Some saves are waited for, and then the kill comes anywhere in the next ones.
        const int savesToWaitFor = random.bounded(10);
        const int before = saved;
        while (saved < before + savesToWaitFor) {
            QVERIFY(child.canReadLine() || child.waitForReadyRead());
            while (child.canReadLine())
                saved = child.readLine().toInt();
        }
        ::usleep(random.bounded(3000));
        child.kill();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        kills++;
        while (child.canReadLine())
            saved = child.readLine().toInt();

        if (saved == 0 && !QFile::exists(path))
            continue;
        const QVariantMap contents = PropertyList::readFile(path).toMap();
        const int version = contents.value("version").toInt();
        QVERIFY2(version == saved || version == saved + 1,
                 qPrintable(QStringLiteral("%1 after %2").arg(version).arg(saved)));
        QCOMPARE(contents.value("payload").toString().size(), 20000 + version % 7 * 5000);
        saved = version;
    }
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc > 2 && QByteArray(argv[1]).startsWith("--"))
        return runAsChild(argv[1], QCoreApplication::arguments().mid(2));
    PropertyListTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "PropertyListTest.moc"
