#include "drawer/ItemEditors.h"

#include "lists/CardFiles.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "tests/drawer/DrawerStage.h"
#include "tests/support/MemoryContacts.h"

#include <QMessageBox>

// What the items ask of the room with the windows. The dialogs are tested one by one.
class ItemEditorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cardThatCannotBeShown_data();
    void cardThatCannotBeShown();
    void startRemovesOldCards();
};

void ItemEditorsTest::cardThatCannotBeShown_data()
{
    QTest::addColumn<bool>("edits");
    QTest::newRow("shown") << false;
    QTest::newRow("edited") << true;
}

void ItemEditorsTest::cardThatCannotBeShown()
{
    QFETCH(bool, edits);
    const DrawerStage stage;
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("ann", "Ann", "Miller"));
    bool isOpened = true;
    Workspace::setURLHandler([&isOpened](const Url &) { return isOpened; });
    QStringList told;
    QTimer user;
    connect(&user, &QTimer::timeout, this, [&told] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            told += {box->text(), box->informativeText()};
            box->accept();
        }
    });
    user.start(1);
    const auto ann = WayfoldBookmarkABPerson::bookmarkWithID("ann");
    const auto open = [&] { return edits ? ann->editViaDialog() : ann->selectInAddressBook(); };
    QVERIFY(open());
    QVERIFY(told.isEmpty());
    isOpened = false;
    QVERIFY(open());
    QCOMPARE(told,
             QStringList({"Not Shown", "No program could be started to show \"Ann Miller\". The card may have been "
                                       "deleted, or there is no program for contacts."}));
    told.clear();
    contacts.take("ann");
    QVERIFY(open());
    QCOMPARE(told, QStringList({"Not Shown", "This card is not in your contacts. It may have been deleted, or lie in "
                                             "contacts that are not there at the moment."}));
}

void ItemEditorsTest::startRemovesOldCards()
{
    const DrawerStage stage;
    const QString path = CardFiles::write("Ann", "a card");
    installDrawerRoom();
    QVERIFY(QFile::exists(path));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.setFileTime(QDateTime::currentDateTime().addDays(-2), QFileDevice::FileModificationTime);
    file.close();
    installDrawerRoom();
    QVERIFY(!QFile::exists(path));
}

QTEST_MAIN(ItemEditorsTest)
#include "ItemEditorsTest.moc"
