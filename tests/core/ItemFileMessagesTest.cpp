#include "core/ItemFileMessages.h"

#include "platform/widgets/Workspace.h"
#include "tests/support/TemporaryHome.h"

#include <QLocale>
#include <QtTest>
#include <optional>

// What the user is told of the item file, and when it goes.
class ItemFileMessagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _messages.emplace();
        _saves = _restores = 0;
        _file.emplace(*_messages, ItemFileMessages::Commands{[this] { ++_saves; }, [this] { ++_restores; }});
    }
    void cleanup()
    {
        Workspace::setURLHandler({});
        QLocale::setDefault(QLocale::c());
        _file.reset();
        _messages.reset();
    }

    void failedSaveIsAnError();
    void failedSaveCanBeTriedAgain();
    void lockedFileIsAnError();
    void fileCanBeShown();
    void laterSuccessIsSaidAndGoesByItself();
    void successIsNotSaidOtherwise();
    void successIsSaidThoughTheErrorWasClosed();
    void anotherFailureTakesSuccessBack();
    void keptCopyIsAWarning();
    void mergeTellsWhatCame_data();
    void mergeTellsWhatCame();
    void mergesAddUpWhileTheyAreShown();
    void twoVersionsAreAWarningThatStays();
    void mergeOfNothingIsNotSaid();
    void failedBackupIsAWarningUntilOneIsMade();
    void everyTextIsGerman();

private:
    const Messages::Message &current() const
    {
        static const Messages::Message none;
        return _messages->current() ? *_messages->current() : none;
    }
    QStringList titles() const
    {
        QStringList titles;
        for (const Messages::Button &button : current().buttons)
            titles.append(button.title);
        return titles;
    }

    std::optional<Messages> _messages;
    std::optional<ItemFileMessages> _file;
    int _saves = 0;
    int _restores = 0;
};

void ItemFileMessagesTest::failedSaveIsAnError()
{
    _file->saveFailed(QStringLiteral("/home/a/Bookmarks.plist"));
    QCOMPARE(current().subject, Messages::NotSaved);
    QCOMPARE(current().kind, Messages::Error);
    QCOMPARE(current().text,
             QStringLiteral("Your last changes could not be saved; Wayfold keeps them and goes on trying."));
    QCOMPARE(titles(), QStringList({QStringLiteral("Try Again"), QStringLiteral("Show File")}));
    QCOMPARE(current().time.count(), 0);
}

void ItemFileMessagesTest::failedSaveCanBeTriedAgain()
{
    _file->saveFailed(QStringLiteral("/home/a/Bookmarks.plist"));
    current().buttons.at(0).act();
    QCOMPARE(_saves, 1);
}

void ItemFileMessagesTest::lockedFileIsAnError()
{
    _file->fileIsLocked(QStringLiteral("/home/a/Bookmarks.plist"));
    QCOMPARE(current().subject, Messages::NotSaved);
    QCOMPARE(current().kind, Messages::Error);
    QCOMPARE(current().text, QStringLiteral("Another program does not let go of your file; Wayfold keeps your last "
                                            "changes and goes on trying."));
    QCOMPARE(titles(), QStringList({QStringLiteral("Try Again"), QStringLiteral("Show File")}));
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    _file->fileIsLocked(QStringLiteral("/home/a/Bookmarks.plist"));
    QVERIFY(current().text.startsWith(QStringLiteral("Ein anderes Programm gibt Ihre Datei nicht frei;")));
    _file->saved();
    QCOMPARE(current().subject, Messages::SavedAgain);
    QVERIFY(!_messages->about(Messages::NotSaved));
}

void ItemFileMessagesTest::fileCanBeShown()
{
    const TemporaryHome home;
    home.write(QStringLiteral("Wayfold/Bookmarks.plist"), "x");
    QString shown;
    Workspace::setURLHandler([&shown](const Url &url) {
        shown = url.absoluteString();
        return true;
    });
    _file->saveFailed(home.path(QStringLiteral("Wayfold/Bookmarks.plist")));
    current().buttons.at(1).act();
    QCOMPARE(shown, Url::fileURLWithPath(home.path(QStringLiteral("Wayfold"))).absoluteString());
}

void ItemFileMessagesTest::laterSuccessIsSaidAndGoesByItself()
{
    _file->saveFailed(QStringLiteral("/home/a/Bookmarks.plist"));
    _file->saved();
    QVERIFY(!_messages->about(Messages::NotSaved));
    QCOMPARE(current().subject, Messages::SavedAgain);
    QCOMPARE(current().kind, Messages::Information);
    QCOMPARE(current().text, QStringLiteral("Your changes are saved now."));
    QVERIFY(current().buttons.empty());
    QVERIFY(current().time.count() > 0);
}

void ItemFileMessagesTest::successIsNotSaidOtherwise()
{
    _file->saved();
    QVERIFY(!_messages->current());
    _file->saveFailed(QStringLiteral("/home/a/Bookmarks.plist"));
    _file->saved();
    _messages->clear(Messages::SavedAgain);
    _file->saved();
    QVERIFY(!_messages->current());
}

void ItemFileMessagesTest::successIsSaidThoughTheErrorWasClosed()
{
    _file->saveFailed(QStringLiteral("/home/a/Bookmarks.plist"));
    _messages->clear(Messages::NotSaved);
    _file->saved();
    QCOMPARE(current().subject, Messages::SavedAgain);
}

void ItemFileMessagesTest::anotherFailureTakesSuccessBack()
{
    _file->saveFailed(QStringLiteral("/home/a/Bookmarks.plist"));
    _file->saved();
    _file->saveFailed(QStringLiteral("/home/a/Bookmarks.plist"));
    _messages->clear(Messages::NotSaved);
    QVERIFY(!_messages->current());
}

void ItemFileMessagesTest::keptCopyIsAWarning()
{
    const TemporaryHome home;
    home.write(QStringLiteral("Wayfold/copy"), "x");
    QString shown;
    Workspace::setURLHandler([&shown](const Url &url) {
        shown = url.absoluteString();
        return true;
    });
    _file->keptAside(home.path(QStringLiteral("Wayfold/copy")));
    QCOMPARE(current().subject, Messages::KeptAside);
    QCOMPARE(current().kind, Messages::Warning);
    QCOMPARE(current().text,
             QStringLiteral("Your file held something that the lists do not have, so a copy of it was kept."));
    QCOMPARE(titles(), QStringList({QStringLiteral("Show File"), QStringLiteral("Restore...")}));
    current().buttons.at(0).act();
    QCOMPARE(shown, Url::fileURLWithPath(home.path(QStringLiteral("Wayfold"))).absoluteString());
    current().buttons.at(1).act();
    QCOMPARE(_restores, 1);
}

void ItemFileMessagesTest::mergeTellsWhatCame_data()
{
    QTest::addColumn<int>("added");
    QTest::addColumn<int>("changed");
    QTest::addColumn<int>("deleted");
    QTest::addColumn<QString>("list");
    QTest::newRow("all") << 3 << 1 << 2 << QStringLiteral("3 added, 1 changed, 2 deleted");
    QTest::newRow("added") << 1 << 0 << 0 << QStringLiteral("1 added");
    QTest::newRow("changed") << 0 << 12 << 0 << QStringLiteral("12 changed");
    QTest::newRow("deleted") << 0 << 0 << 5 << QStringLiteral("5 deleted");
    QTest::newRow("two") << 4 << 0 << 5 << QStringLiteral("4 added, 5 deleted");
}

void ItemFileMessagesTest::mergeTellsWhatCame()
{
    QFETCH(int, added);
    QFETCH(int, changed);
    QFETCH(int, deleted);
    QFETCH(QString, list);
    _file->merged(QStringLiteral("/home/a/Bookmarks.plist"), {added, changed, deleted, 0, 0});
    QCOMPARE(current().subject, Messages::Merged);
    QCOMPARE(current().kind, Messages::Information);
    QCOMPARE(current().text, QStringLiteral("Another program has changed your items: ") + list + QLatin1Char('.'));
    QCOMPARE(titles(), QStringList{QStringLiteral("Show File")});
    QVERIFY(current().time.count() > 0);
}

void ItemFileMessagesTest::mergesAddUpWhileTheyAreShown()
{
    _file->merged(QStringLiteral("/home/a/Bookmarks.plist"), {1, 0, 0, 0, 0});
    _file->merged(QStringLiteral("/home/a/Bookmarks.plist"), {2, 3, 0, 0, 0});
    QVERIFY(current().text.endsWith(QStringLiteral(": 3 added, 3 changed.")));
    _messages->clear(Messages::Merged);
    _file->merged(QStringLiteral("/home/a/Bookmarks.plist"), {0, 0, 1, 0, 0});
    QVERIFY(current().text.endsWith(QStringLiteral(": 1 deleted.")));
}

void ItemFileMessagesTest::twoVersionsAreAWarningThatStays()
{
    _file->merged(QStringLiteral("/home/a/Bookmarks.plist"), {0, 1, 0, 2, 1});
    QVERIFY(current().text.endsWith(QStringLiteral(": 1 changed, 2 moved, 1 kept in both versions.")));
    QCOMPARE(current().kind, Messages::Warning);
    QCOMPARE(current().time.count(), 0);
    _file->merged(QStringLiteral("/home/a/Bookmarks.plist"), {1, 0, 0, 1, 0});
    QVERIFY(current().text.endsWith(QStringLiteral(": 1 added, 1 changed, 3 moved, 1 kept in both versions.")));
    QCOMPARE(current().kind, Messages::Warning);
}

void ItemFileMessagesTest::mergeOfNothingIsNotSaid()
{
    _file->merged(QStringLiteral("/home/a/Bookmarks.plist"), {});
    QVERIFY(!_messages->current());
}

void ItemFileMessagesTest::failedBackupIsAWarningUntilOneIsMade()
{
    _file->backupMade();
    QVERIFY(!_messages->current());
    _file->backupFailed(QStringLiteral("/home/a/Backups"));
    QCOMPARE(current().subject, Messages::NoBackup);
    QCOMPARE(current().kind, Messages::Warning);
    QCOMPARE(current().text,
             QStringLiteral("Today's backup could not be made; your items themselves are not concerned."));
    QCOMPARE(titles(), QStringList{QStringLiteral("Show File")});
    _file->backupMade();
    QVERIFY(!_messages->current());
}

void ItemFileMessagesTest::everyTextIsGerman()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    _file->saveFailed(QStringLiteral("/home/a/Bookmarks.plist"));
    QCOMPARE(current().text, QStringLiteral("Ihre letzten \u00c4nderungen konnten nicht gespeichert werden; Wayfold "
                                            "beh\u00e4lt sie und versucht es weiter."));
    QCOMPARE(titles(), QStringList({QStringLiteral("Erneut versuchen"), QStringLiteral("Datei zeigen")}));
    _file->saved();
    QCOMPARE(current().text, QStringLiteral("Ihre \u00c4nderungen sind jetzt gespeichert."));
    _messages->clear(Messages::SavedAgain);
    _file->merged(QStringLiteral("/home/a/Bookmarks.plist"), {1, 2, 3, 0, 0});
    QCOMPARE(current().text, QStringLiteral("Ein anderes Programm hat Ihre Eintr\u00e4ge ge\u00e4ndert: 1 "
                                            "hinzugef\u00fcgt, 2 ge\u00e4ndert, 3 gel\u00f6scht."));
}

QTEST_MAIN(ItemFileMessagesTest)
#include "ItemFileMessagesTest.moc"
