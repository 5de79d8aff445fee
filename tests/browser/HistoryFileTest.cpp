#include "browser/HistoryFile.h"

#include "platform/files/PropertyList.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QTest>

class HistoryFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void placeOfTheFile();
    void whatAKilledSaveLeftIsRemoved();
    void writesAnEntry();
    void newestFirst();
    void revisitMovesToTheFront();
    void titleOfAnEntry();
    void titleThatComesLater();
    void countsOnFromTheFile();
    void keepsWhatIsNotOurs();
    void addsToAFileThatOthersHaveChanged();
    void clearForgetsEverything();
    void clearForgetsWhatOthersHaveAdded();
    void keepsAnUnreadableFileAside();
    void keepsAFileThatIsNotReadWholeAside();
    void keepsAFileOfAnotherShapeAside();
    void writesByItself();
    void writesWhenItGoes();
    void writesNothingWithoutVisits();
    void failedWriteIsRepeated();
    void takesManyEntries();
    void visitsDuringAWriteAreWrittenNext();
    void clearsWhatIsBeingWritten();

private:
    QVariantList entries() const;
    QVariantMap entry(int index) const { return entries().value(index).toMap(); }
    void writeEntries(const QVariantList &entries, const QVariantMap &otherKeys = {}) const;

    std::unique_ptr<TemporaryHome> _home;
    QString _path;
};

namespace
{
constexpr int patience = 60000; // milliseconds; flushing to a busy disk can take long
const QString a = QStringLiteral("http://a.example/");
const QString b = QStringLiteral("http://b.example/");
const QString c = QStringLiteral("http://c.example/");

QDateTime secondsAfterReference(qint64 seconds)
{
    return QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC).addSecs(seconds);
}

QVariantMap storedEntry(const QString &address, const QString &title, int visits)
{
    return {{QString(""), address}, {"title", title}, {"lastVisitedDate", "10.0"}, {"visitCount", qlonglong(visits)}};
}

QStringList addresses(HistoryFile &file)
{
    QStringList result;
    for (const HistoryFile::Entry &entry : file.latest(100))
        result.append(entry.address);
    return result;
}
} // namespace

void HistoryFileTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    _path = HistoryFile::defaultPath();
}

void HistoryFileTest::cleanup()
{
    _home.reset();
}

QVariantList HistoryFileTest::entries() const
{
    return PropertyList::readDictionaryFile(_path).value("WebHistoryDates").toList();
}

void HistoryFileTest::writeEntries(const QVariantList &entries, const QVariantMap &otherKeys) const
{
    QVariantMap root = otherKeys;
    root.insert("WebHistoryDates", entries);
    QDir().mkpath(QFileInfo(_path).path());
    QVERIFY(PropertyList::writeFile(root, _path));
}

void HistoryFileTest::placeOfTheFile()
{
    QCOMPARE(_path, _home->path("Library/Safari/History.plist"));
}

void HistoryFileTest::whatAKilledSaveLeftIsRemoved()
{
    const QString left = _path + ".saving-abcdef";
    _home->write(QDir(_home->path()).relativeFilePath(left), "half");
    HistoryFile file(_path);
    QCOMPARE(file.count(), 0);
    QVERIFY(!QFileInfo::exists(left));
}

void HistoryFileTest::writesAnEntry()
{
    HistoryFile file(_path);
    file.addVisit(a, "A", secondsAfterReference(86400));
    QVERIFY(file.flush());

    const QVariantMap root = PropertyList::readDictionaryFile(_path);
    QCOMPARE(root.keys(), QStringList({"WebHistoryDates", "WebHistoryFileVersion"}));
    QCOMPARE(root.value("WebHistoryFileVersion"), QVariant(qlonglong(1)));
    QCOMPARE(entries().size(), 1);
    const QVariantMap expected{
        {QString(""), a}, {"title", "A"}, {"lastVisitedDate", "86400.0"}, {"visitCount", qlonglong(1)}};
    QCOMPARE(entry(0), expected);
}

void HistoryFileTest::newestFirst()
{
    HistoryFile file(_path);
    file.addVisit(a, "A");
    file.addVisit(b, "B");
    QCOMPARE(addresses(file), QStringList({b, a}));
    QVERIFY(file.flush());
    QCOMPARE(entry(0).value(""), QVariant(b));
    QCOMPARE(entry(1).value(""), QVariant(a));
}

void HistoryFileTest::revisitMovesToTheFront()
{
    HistoryFile file(_path);
    file.addVisit(a, "A", secondsAfterReference(1));
    file.addVisit(b, "B", secondsAfterReference(2));
    file.addVisit(a, "A now", secondsAfterReference(3));
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 2);
    QCOMPARE(entry(0).value(""), QVariant(a));
    QCOMPARE(entry(0).value("title"), QVariant("A now"));
    QCOMPARE(entry(0).value("lastVisitedDate"), QVariant("3.0"));
    QCOMPARE(entry(0).value("visitCount"), QVariant(qlonglong(2)));
    QCOMPARE(entry(1).value("visitCount"), QVariant(qlonglong(1)));
}

// A reader leaves out entries without title, and a page without title has been visited all the same.
void HistoryFileTest::titleOfAnEntry()
{
    HistoryFile file(_path);
    file.addVisit(a, "");
    file.addVisit("", "No address");
    QCOMPARE(file.count(), 1);
    QCOMPARE(file.latest(1).first().title, a);
}

void HistoryFileTest::titleThatComesLater()
{
    HistoryFile file(_path);
    file.addVisit(a, "A", secondsAfterReference(1));
    file.addVisit(b, "B", secondsAfterReference(2));
    QVERIFY(file.flush());
    file.setTitle(a, "A at last");
    file.setTitle(c, "Never visited");
    file.setTitle(b, "");
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 2);
    QCOMPARE(entry(0).value("title"), QVariant("B"));
    QCOMPARE(entry(1).value("title"), QVariant("A at last"));
    QCOMPARE(entry(1).value("lastVisitedDate"), QVariant("1.0"));
    QCOMPARE(entry(1).value("visitCount"), QVariant(qlonglong(1)));
}

void HistoryFileTest::countsOnFromTheFile()
{
    writeEntries({storedEntry(a, "A", 7), storedEntry(b, "B", 1)});
    HistoryFile file(_path);
    file.addVisit(b, "B");
    file.addVisit(a, "A");
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 2);
    QCOMPARE(entry(0).value("visitCount"), QVariant(qlonglong(8)));
    QCOMPARE(entry(1).value("visitCount"), QVariant(qlonglong(2)));
}

void HistoryFileTest::keepsWhatIsNotOurs()
{
    QVariantMap withMore = storedEntry(a, "A", 1);
    withMore.insert("color", "green");
    writeEntries({"a lone text", withMore, QVariantMap{{"title", "No address"}}, storedEntry(b, "B", 1)},
                 {{"WebHistoryFileVersion", qlonglong(3)}, {"Owner", "Ann"}});
    HistoryFile file(_path);
    QCOMPARE(addresses(file), QStringList({a, b}));
    file.addVisit(a, "A");
    file.addVisit(c, "C");
    QVERIFY(file.flush());

    const QVariantMap root = PropertyList::readDictionaryFile(_path);
    QCOMPARE(root.value("WebHistoryFileVersion"), QVariant(qlonglong(3)));
    QCOMPARE(root.value("Owner"), QVariant("Ann"));
    QCOMPARE(entries().size(), 5);
    QCOMPARE(entry(0).value(""), QVariant(c));
    QCOMPARE(entry(1).value("color"), QVariant("green"));
    QCOMPARE(entries().at(2), QVariant("a lone text"));
    QCOMPARE(entry(3).value("title"), QVariant("No address"));
    QCOMPARE(entry(4).value(""), QVariant(b));
}

void HistoryFileTest::addsToAFileThatOthersHaveChanged()
{
    HistoryFile file(_path);
    file.addVisit(a, "A");
    QVERIFY(file.flush());
    file.addVisit(b, "B");
    writeEntries({storedEntry(c, "C", 4), storedEntry(b, "Old B", 2)});
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 2);
    QCOMPARE(entry(0).value(""), QVariant(b));
    QCOMPARE(entry(0).value("visitCount"), QVariant(qlonglong(3)));
    QCOMPARE(entry(1), storedEntry(c, "C", 4));
    QCOMPARE(addresses(file), QStringList({b, c}));
}

void HistoryFileTest::clearForgetsEverything()
{
    writeEntries({storedEntry(a, "A", 1)}, {{"Owner", "Ann"}});
    HistoryFile file(_path);
    file.addVisit(b, "B");
    file.clear();
    QCOMPARE(file.count(), 0);
    file.addVisit(c, "C");
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 1);
    QCOMPARE(entry(0).value(""), QVariant(c));
    QCOMPARE(PropertyList::readDictionaryFile(_path).value("Owner"), QVariant("Ann"));
}

void HistoryFileTest::clearForgetsWhatOthersHaveAdded()
{
    HistoryFile file(_path);
    file.addVisit(a, "A");
    QVERIFY(file.flush());
    file.clear();
    writeEntries({storedEntry(b, "B", 1)});
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 0);
}

void HistoryFileTest::keepsAnUnreadableFileAside()
{
    _home->write("Library/Safari/History.plist", "not a property list");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(".*"));
    HistoryFile file(_path);
    file.addVisit(a, "A");
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 1);
    const QStringList kept = QDir(_home->path("Library/Safari")).entryList({"History.plist.kept-*"});
    QCOMPARE(kept.size(), 1);
    QCOMPARE(_home->read("Library/Safari/" + kept.first()), QByteArray("not a property list"));
    file.addVisit(b, "B");
    QVERIFY(file.flush());
    QCOMPARE(QDir(_home->path("Library/Safari")).entryList({"History.plist.kept-*"}).size(), 1);
}

void HistoryFileTest::keepsAFileThatIsNotReadWholeAside()
{
    const QByteArray twice = "<plist><dict><key>WebHistoryDates</key><array><dict/></array>"
                             "<key>WebHistoryDates</key><array/></dict></plist>";
    _home->write("Library/Safari/History.plist", twice);
    HistoryFile file(_path);
    file.addVisit(a, "A");
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 1);
    const QStringList kept = QDir(_home->path("Library/Safari")).entryList({"History.plist.kept-*"});
    QCOMPARE(kept.size(), 1);
    QCOMPARE(_home->read("Library/Safari/" + kept.first()), twice);
}

void HistoryFileTest::keepsAFileOfAnotherShapeAside()
{
    QDir().mkpath(QFileInfo(_path).path());
    QVERIFY(PropertyList::writeFile(QVariantMap{{"WebHistoryDates", "elsewhere"}}, _path));
    HistoryFile file(_path);
    file.addVisit(a, "A");
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 1);
    QCOMPARE(QDir(_home->path("Library/Safari")).entryList({"History.plist.kept-*"}).size(), 1);
}

void HistoryFileTest::writesByItself()
{
    HistoryFile file(_path);
    file.addVisit(a, "A");
    QVERIFY(!QFile::exists(_path)); // not for every single visit
    file.addVisit(b, "B");
    QTRY_COMPARE_WITH_TIMEOUT(entries().size(), 2, patience);
}

void HistoryFileTest::writesWhenItGoes()
{
    {
        HistoryFile file(_path);
        file.addVisit(a, "A");
    }
    QCOMPARE(entries().size(), 1);
}

void HistoryFileTest::writesNothingWithoutVisits()
{
    {
        HistoryFile file(_path);
        QCOMPARE(file.count(), 0);
        QVERIFY(file.flush());
    }
    QVERIFY(!QFile::exists(_path));
}

void HistoryFileTest::failedWriteIsRepeated()
{
    _home->write("Library/Safari", "in the way");
    HistoryFile file(_path);
    file.addVisit(a, "A");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(".*"));
    QVERIFY(!file.flush());
    QVERIFY(QFile::remove(_home->path("Library/Safari")));
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 1);
}

void HistoryFileTest::takesManyEntries()
{
    QVariantList many;
    for (int i = 0; i < 100000; ++i)
        many.append(storedEntry(QStringLiteral("http://site%1.example/page/%2.html").arg(i % 1000).arg(i),
                                QStringLiteral("The title of the page with number %1").arg(i), 1));
    writeEntries(many);
    HistoryFile file(_path);
    file.addVisit(a, "A");
    for (qsizetype i = 0; i < 1000; ++i)
        file.addVisit(many.at(99 * i).toMap().value("").toString(), "Again");
    QVERIFY(file.flush());
    QCOMPARE(file.count(), 100001);
    QCOMPARE(file.latest(1).first().address, many.at(98901).toMap().value("").toString());
    QCOMPARE(entries().size(), 100001);
}

// The first write is under way when the others come: the events that would tell of its end are not delivered before.
void HistoryFileTest::visitsDuringAWriteAreWrittenNext()
{
    HistoryFile file(_path);
    file.addVisit(a, "A");
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(_path), patience);
    file.addVisit(b, "B");
    file.setTitle(a, "A new");
    QTRY_COMPARE_WITH_TIMEOUT(entries().size(), 2, patience);
    QCOMPARE(entry(0).value("").toString(), b);
    QCOMPARE(entry(1).value("title").toString(), QStringLiteral("A new"));
    QCOMPARE(entry(1).value("visitCount"), QVariant(qlonglong(1)));
}

void HistoryFileTest::clearsWhatIsBeingWritten()
{
    HistoryFile file(_path);
    file.addVisit(a, "A");
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(_path), patience);
    file.clear();
    file.addVisit(b, "B");
    QVERIFY(file.flush());
    QCOMPARE(entries().size(), 1);
    QCOMPARE(entry(0).value("").toString(), b);
}

QTEST_GUILESS_MAIN(HistoryFileTest)
#include "HistoryFileTest.moc"
