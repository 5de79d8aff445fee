#include "drawer/KDRNewPersonController.h"

#include "core/PreferencesWindow.h"
#include "drawer/PeopleModel.h"
#include "drawer/PersonCell.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "tests/drawer/DialogStage.h"
#include "tests/support/MemoryContacts.h"

#include <QAccessible>
#include <QListView>
#include <QStackedWidget>

namespace
{
constexpr int many = 20'000;

// Where the keyboard is, as far as the panel's user can tell.
void press(const QDialog *panel, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
{
    QWidget *focused = panel->focusWidget();
    QTest::keyClick(focused, key, modifiers);
}

ContactRecord withOrganization(ContactRecord record, const QString &organization)
{
    record.organization = organization;
    return record;
}
} // namespace

// The panel as its user has it: opened, typed into, and left by Return or Escape.
class KDRNewPersonControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    // What is listed
    void rowsAreInTheOrderOfTheNames();
    void peopleOfOneNameStayInTheirOrder();
    void notesTellMore();
    void rowsOfUnknownKindAreLeftOut();
    void picturesOfWhoIsSeen();
    void pictureOfACardThatChanges();
    void pictureIsMadeOnce();
    void rowsAreDrawnWithTheirNotes();
    void toolTipsTellAll();

    // Search
    void searchFinds_data();
    void searchFinds();
    void namesThatBeginSoComeFirst();
    void firstMatchIsSelected();
    void choiceStaysWhileItIsFound();
    void choiceThatIsFoundNoMoreGivesWay();
    void emptiedSearchSelectsNobody();

    // Keyboard and mouse
    void returnAddsTheFirstMatch();
    void arrowsMoveInTheList();
    void pagesMoveInTheList();
    void shiftSelectsSeveral();
    void controlASelectsAll();
    void controlAAndTypingSearchesAnew();
    void escapeCancels();
    void returnWithoutSelectionAddsNobody();
    void typingInTheListSearches();
    void doubleClickAdds();
    void addIsEnabledWithASelection();

    // What is made
    void kindsOfItems();
    void severalAreInTheOrderOfTheList();
    void itemsReachTheDrawer();
    void cancelledPanelAddsNothing();

    // The contacts change
    void newCardComes();
    void changedCardChanges();
    void goneCardGoes();
    void selectionStaysWithThePeople();
    void cardThatComesDoesNotTakeTheSelection();
    void goneSelectionIsNotReplaced();
    void manyChangesBetweenLooks();
    void otherStore();

    // Nobody there
    void textWhenEmpty_data();
    void textWhenEmpty();
    void loadingEnds();
    void searchedWhileLoading();
    void contactsGoAway();
    void buttonOpensThePreferences();
    void nobodyFound();

    // Many
    void manyAreMadeInSlices();
    void manyAreSearched();
    void manyAreSelectedAndSearched();
    void fewAreThereAtOnce();
    void rowsThatAreNotSeenAreNotRemembered();

    // For everybody
    void controlsAreNamed();
    void workedByTab();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void missingInterfaceFile();

private:
    using User = std::function<void(QDialog *)>;

    static QLineEdit *field(const QDialog *panel) { return panel->findChild<QLineEdit *>("searchField"); }
    static QListView *list(const QDialog *panel) { return panel->findChild<QListView *>("peopleView"); }
    static QPushButton *button(const QDialog *panel, QDialogButtonBox::StandardButton which)
    {
        return panel->findChild<QDialogButtonBox *>()->button(which);
    }
    static QStringList rows(const QDialog *panel, int role = Qt::DisplayRole);
    static QStringList selected(const QDialog *panel);
    static QString shownText(const QDialog *panel);
    static QStringList titles(const std::vector<WayfoldABEntryPtr> &entries);
    // Runs the panel; what the user chose.
    QStringList choose(const User &user);
    void addAnnBobAndZoe();
    void addMany();

    std::optional<DrawerStage> _stage;
    std::optional<MemoryContacts> _contacts;
    std::vector<WayfoldABEntryPtr> _chosen;
};

void KDRNewPersonControllerTest::init()
{
    _stage.emplace();
    _contacts.emplace();
}

void KDRNewPersonControllerTest::cleanup()
{
    _chosen.clear();
    _contacts.reset();
    _stage.reset();
    QLocale::setDefault(QLocale::c());
}

QStringList KDRNewPersonControllerTest::rows(const QDialog *panel, int role)
{
    QStringList rows;
    const QAbstractItemModel *model = list(panel)->model();
    for (int row = 0; row < model->rowCount(); ++row)
        rows.append(model->index(row, 0).data(role).toString());
    return rows;
}

QStringList KDRNewPersonControllerTest::selected(const QDialog *panel)
{
    QModelIndexList indexes = list(panel)->selectionModel()->selectedRows();
    std::sort(indexes.begin(), indexes.end());
    QStringList names;
    for (const QModelIndex &index : indexes)
        names.append(index.data().toString());
    return names;
}

// Null while the list is shown.
QString KDRNewPersonControllerTest::shownText(const QDialog *panel)
{
    const auto *text = panel->findChild<QLabel *>("emptyField");
    return text->isVisible() ? text->text() : QString();
}

QStringList KDRNewPersonControllerTest::titles(const std::vector<WayfoldABEntryPtr> &entries)
{
    QStringList titles;
    for (const WayfoldABEntryPtr &entry : entries)
        titles.append(entry->shortDescription());
    return titles;
}

QStringList KDRNewPersonControllerTest::choose(const User &user)
{
    KDRNewPersonController controller;
    _chosen.clear();
    const bool chose = DialogStage::run(controller, [&user](const DialogStage &stage) { user(stage.dialog()); });
    if (chose)
        _chosen = controller.chosenEntries();
    return titles(_chosen);
}

void KDRNewPersonControllerTest::addAnnBobAndZoe()
{
    _contacts->set(MemoryContacts::person("z", "Zoe", "Adler", {"zoe@example.org"}));
    _contacts->set(MemoryContacts::person("a", "Ann", "Lovelace", {"ann@engines.example"}));
    _contacts->set(MemoryContacts::person("b", "bob", "Zander"));
}

void KDRNewPersonControllerTest::addMany()
{
    for (int i = 0; i < many; ++i)
        _contacts->set(MemoryContacts::person(QString::number(i), QStringLiteral("First%1").arg(i % 100),
                                              QStringLiteral("Last%1").arg(i, 5, 10, QLatin1Char('0')),
                                              {QStringLiteral("mail%1@example.org").arg(i)}));
}

// ---- What is listed

void KDRNewPersonControllerTest::rowsAreInTheOrderOfTheNames()
{
    addAnnBobAndZoe();
    _contacts->set(MemoryContacts::group("g", "Friends", {"a"}));
    _contacts->set(MemoryContacts::company("c", "Engines"));
    choose([](QDialog *panel) {
        QCOMPARE(panel->windowTitle(), QStringLiteral("New Person Link"));
        QCOMPARE(rows(panel), QStringList({"Ann Lovelace", "bob Zander", "Engines", "Friends", "Zoe Adler"}));
        QVERIFY(selected(panel).isEmpty());
        panel->reject();
    });
}

void KDRNewPersonControllerTest::peopleOfOneNameStayInTheirOrder()
{
    _contacts->set(MemoryContacts::person("2", "Ann", "Twin", {"two@a.org"}));
    _contacts->set(MemoryContacts::person("3", "ann", "twin", {"three@a.org"}));
    _contacts->set(MemoryContacts::person("1", "Ann", "Twin", {"one@a.org"}));
    choose([](QDialog *panel) {
        QCOMPARE(rows(panel, PeopleModel::NoteRole), QStringList({"one@a.org", "two@a.org", "three@a.org"}));
        panel->reject();
    });
}

void KDRNewPersonControllerTest::notesTellMore()
{
    ContactRecord second = MemoryContacts::person("1", "A", "A", {"first@a.org", "second@a.org"});
    second.primaryEmail = 1;
    _contacts->set(second);
    _contacts->set(withOrganization(MemoryContacts::person("2", "B", "B"), "Engines"));
    _contacts->set(MemoryContacts::company("3", "C", {"info@c.org"}));
    _contacts->set(MemoryContacts::company("4", "D"));
    _contacts->set(MemoryContacts::group("5", "E", {"1"}));
    _contacts->set(MemoryContacts::person("6", "F", "F"));
    ContactRecord damaged = MemoryContacts::person("7", "G", "G", {"only@g.org"});
    damaged.primaryEmail = 7;
    _contacts->set(damaged);
    _contacts->set(MemoryContacts::person("8", "H", "H", {"one@h.org", "two@h.org"}));
    choose([](QDialog *panel) {
        const QStringList notes = {"second@a.org", "Engines", "info@c.org", "", "Group", "", "only@g.org", "one@h.org"};
        QCOMPARE(rows(panel, PeopleModel::NoteRole), notes);
        QCOMPARE(rows(panel, Qt::AccessibleDescriptionRole), notes);
        panel->reject();
    });
}

void KDRNewPersonControllerTest::rowsOfUnknownKindAreLeftOut()
{
    ContactRecord strange = MemoryContacts::person("s", "Strange", "Card");
    strange.flags = 5;
    _contacts->set(strange);
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        QCOMPARE(rows(panel), QStringList({"Ann Lovelace", "bob Zander", "Zoe Adler"}));
        panel->reject();
    });
}

namespace
{
QByteArray png(Qt::GlobalColor color)
{
    QImage image(16, 16, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QColor pictureOf(const QListView *list, int row)
{
    const auto icon = list->model()->index(row, 0).data(Qt::DecorationRole).value<QIcon>();
    return icon.pixmap(QSize(16, 16)).toImage().pixelColor(8, 8);
}
} // namespace

void KDRNewPersonControllerTest::picturesOfWhoIsSeen()
{
    addAnnBobAndZoe();
    _contacts->pictures.insert("a", png(Qt::red));
    _contacts->pictures.insert("z", png(Qt::green));
    choose([](QDialog *panel) {
        QTRY_COMPARE(pictureOf(list(panel), 0), QColor(Qt::red));
        QTRY_COMPARE(pictureOf(list(panel), 2), QColor(Qt::green));
        QVERIFY(pictureOf(list(panel), 1) != QColor(Qt::red));
        QVERIFY(!list(panel)->model()->index(1, 0).data(Qt::DecorationRole).value<QIcon>().isNull());
        panel->reject();
    });
}

// One that was still to be fetched comes with a change, and another card has another picture.
void KDRNewPersonControllerTest::pictureOfACardThatChanges()
{
    addAnnBobAndZoe();
    choose([this](QDialog *panel) {
        QTRY_VERIFY(_contacts->picturesAsked.contains("a"));
        _contacts->pictures.insert("a", png(Qt::red));
        _contacts->set(MemoryContacts::person("n", "New", "Card"));
        QTRY_COMPARE(pictureOf(list(panel), 0), QColor(Qt::red));
        _contacts->pictures.insert("a", png(Qt::blue));
        _contacts->set(MemoryContacts::person("a", "Ann", "Lovelace"));
        QTRY_COMPARE(pictureOf(list(panel), 0), QColor(Qt::blue));
        panel->reject();
    });
}

void KDRNewPersonControllerTest::pictureIsMadeOnce()
{
    addAnnBobAndZoe();
    _contacts->pictures.insert("a", png(Qt::red));
    choose([this](QDialog *panel) {
        QTRY_COMPARE(pictureOf(list(panel), 0), QColor(Qt::red));
        const qsizetype asked = _contacts->picturesAsked.count("a");
        _contacts->set(MemoryContacts::person("n", "New", "Card"));
        QTRY_COMPARE(rows(panel).size(), 4);
        QTRY_VERIFY(_contacts->picturesAsked.contains("n"));
        QCOMPARE(pictureOf(list(panel), 0), QColor(Qt::red));
        QCOMPARE(_contacts->picturesAsked.count("a"), asked);
        panel->reject();
    });
}

void KDRNewPersonControllerTest::rowsAreDrawnWithTheirNotes()
{
    addAnnBobAndZoe();
    const KDRNewPersonController controller;
    QVERIFY(dynamic_cast<PersonCell *>(list(controller.editWindow())->itemDelegate()));
}

void KDRNewPersonControllerTest::toolTipsTellAll()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        QVERIFY(rows(panel, Qt::ToolTipRole).at(0).contains("ann@engines.example"));
        panel->reject();
    });
}

// ---- Search

void KDRNewPersonControllerTest::searchFinds_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("found");
    const QStringList ada = {"Ada Lovelace"};
    const QStringList nobody;
    QTest::newRow("first name") << "ada" << ada;
    QTest::newRow("last name") << "LOVEL" << ada;
    QTest::newRow("both") << "Ada Lovelace" << ada;
    QTest::newRow("in the other order") << "lovelace ada" << ada;
    QTest::newRow("parts of words") << "lace da" << ada;
    QTest::newRow("name and organization") << "engin ada" << ada;
    QTest::newRow("address") << "@mail.example" << ada;
    QTest::newRow("another address") << "second@ love" << ada;
    QTest::newRow("blanks around") << "  ada  love " << ada;
    QTest::newRow("one word is missing") << "ada hopper" << nobody;
    QTest::newRow("end of one field and start of the next") << "adalove" << nobody;
    QTest::newRow("group") << "analy" << QStringList{"Analysts"};
    QTest::newRow("company") << "machine" << QStringList{"Machines Ltd"};
    QTest::newRow("blanks alone") << "   " << QStringList({"Ada Lovelace", "Analysts", "Machines Ltd"});
}

void KDRNewPersonControllerTest::searchFinds()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, found);
    _contacts->set(withOrganization(
        MemoryContacts::person("1", "Ada", "Lovelace", {"one@mail.example", "second@mail.example"}), "Engines"));
    _contacts->set(MemoryContacts::group("2", "Analysts", {"1"}));
    _contacts->set(MemoryContacts::company("3", "Machines Ltd"));
    choose([&](QDialog *panel) {
        QTest::keyClicks(panel->focusWidget(), typed);
        QCOMPARE(rows(panel), found);
        panel->reject();
    });
}

void KDRNewPersonControllerTest::namesThatBeginSoComeFirst()
{
    _contacts->set(MemoryContacts::person("1", "Alan", "Ander"));
    _contacts->set(MemoryContacts::person("2", "Bo", "Susan"));
    _contacts->set(MemoryContacts::person("3", "Carl", "Xu", {"andy@example.org"}));
    _contacts->set(MemoryContacts::person("4", "Dirk", "Smith-Andrews"));
    _contacts->set(MemoryContacts::person("5", "Holland", "Ott"));
    _contacts->set(MemoryContacts::person("6", "Zoe", "And"));
    _contacts->set(MemoryContacts::person("7", "Yoland", "Andrews")); // begins so only where it occurs again
    choose([](QDialog *panel) {
        QTest::keyClicks(panel->focusWidget(), "and");
        QCOMPARE(rows(panel), QStringList({"Alan Ander", "Dirk Smith-Andrews", "Yoland Andrews", "Zoe And", "Carl Xu",
                                           "Holland Ott"}));
        QTest::keyClicks(panel->focusWidget(), " o");
        QCOMPARE(rows(panel), QStringList({"Carl Xu", "Holland Ott", "Yoland Andrews", "Zoe And"}));
        panel->reject();
    });
}

void KDRNewPersonControllerTest::firstMatchIsSelected()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        press(panel, Qt::Key_A);
        QCOMPARE(selected(panel), QStringList{"Ann Lovelace"});
        press(panel, Qt::Key_D);
        QCOMPARE(rows(panel), QStringList({"Zoe Adler"}));
        QCOMPARE(selected(panel), QStringList{"Zoe Adler"});
        press(panel, Qt::Key_Backspace);
        QCOMPARE(selected(panel), QStringList{"Ann Lovelace"});
        panel->reject();
    });
}

void KDRNewPersonControllerTest::choiceStaysWhileItIsFound()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        press(panel, Qt::Key_A);
        press(panel, Qt::Key_Down);
        QCOMPARE(selected(panel), QStringList{"Zoe Adler"});
        press(panel, Qt::Key_Backspace);
        QCOMPARE(selected(panel), QStringList{"Zoe Adler"});
        press(panel, Qt::Key_E);
        QCOMPARE(rows(panel), QStringList({"Ann Lovelace", "bob Zander", "Zoe Adler"}));
        QCOMPARE(selected(panel), QStringList{"Zoe Adler"});
        press(panel, Qt::Key_Up);
        QCOMPARE(selected(panel), QStringList{"bob Zander"});
        panel->reject();
    });
}

void KDRNewPersonControllerTest::choiceThatIsFoundNoMoreGivesWay()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        press(panel, Qt::Key_Down);
        press(panel, Qt::Key_Down);
        QCOMPARE(selected(panel), QStringList{"bob Zander"});
        QTest::keyClicks(panel->focusWidget(), "ad");
        QCOMPARE(selected(panel), QStringList{"Zoe Adler"});
        press(panel, Qt::Key_Backspace);
        QCOMPARE(selected(panel), QStringList{"Ann Lovelace"}); // the first match again
        panel->reject();
    });
}

void KDRNewPersonControllerTest::emptiedSearchSelectsNobody()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        press(panel, Qt::Key_Z);
        QVERIFY(!selected(panel).isEmpty());
        press(panel, Qt::Key_Backspace);
        QVERIFY(selected(panel).isEmpty());
        panel->reject();
    });
}

// ---- Keyboard and mouse

void KDRNewPersonControllerTest::returnAddsTheFirstMatch()
{
    addAnnBobAndZoe();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        QCOMPARE(choose([key](QDialog *panel) {
                     QCOMPARE(panel->focusWidget(), field(panel));
                     QTest::keyClicks(panel->focusWidget(), "zan");
                     press(panel, key);
                 }),
                 QStringList{"bob Zander"});
    }
}

void KDRNewPersonControllerTest::arrowsMoveInTheList()
{
    addAnnBobAndZoe();
    QCOMPARE(choose([](QDialog *panel) {
                 press(panel, Qt::Key_Down);
                 QCOMPARE(selected(panel), QStringList{"Ann Lovelace"});
                 press(panel, Qt::Key_Down);
                 press(panel, Qt::Key_Down);
                 QCOMPARE(selected(panel), QStringList{"Zoe Adler"});
                 press(panel, Qt::Key_Up);
                 QCOMPARE(panel->focusWidget(), field(panel));
                 press(panel, Qt::Key_Return);
             }),
             QStringList{"bob Zander"});
}

void KDRNewPersonControllerTest::pagesMoveInTheList()
{
    for (int i = 0; i < 100; ++i)
        _contacts->set(MemoryContacts::person(QString::number(i), QStringLiteral("%1").arg(i, 3, 10, QLatin1Char('0')),
                                              QString()));
    choose([](QDialog *panel) {
        press(panel, Qt::Key_Down);
        press(panel, Qt::Key_PageDown);
        QVERIFY(list(panel)->currentIndex().row() > 2);
        press(panel, Qt::Key_PageUp);
        QCOMPARE(list(panel)->currentIndex().row(), 0);
        panel->reject();
    });
}

void KDRNewPersonControllerTest::shiftSelectsSeveral()
{
    addAnnBobAndZoe();
    QCOMPARE(choose([](QDialog *panel) {
                 press(panel, Qt::Key_Down);
                 press(panel, Qt::Key_Down, Qt::ShiftModifier);
                 press(panel, Qt::Key_Return);
             }),
             QStringList({"Ann Lovelace", "bob Zander"}));
}

void KDRNewPersonControllerTest::controlASelectsAll()
{
    addAnnBobAndZoe();
    QCOMPARE(choose([](QDialog *panel) {
                 press(panel, Qt::Key_A);
                 press(panel, Qt::Key_N);
                 QCOMPARE(rows(panel), QStringList({"Ann Lovelace", "bob Zander"}));
                 press(panel, Qt::Key_A, Qt::ControlModifier);
                 QCOMPARE(field(panel)->selectedText(), QStringLiteral("an"));
                 QCOMPARE(selected(panel), QStringList{"Ann Lovelace"});
                 press(panel, Qt::Key_A, Qt::ControlModifier);
                 press(panel, Qt::Key_Return);
             }),
             QStringList({"Ann Lovelace", "bob Zander"}));
}

void KDRNewPersonControllerTest::controlAAndTypingSearchesAnew()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        QTest::keyClicks(panel->focusWidget(), "ann");
        press(panel, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(panel->focusWidget(), "zoe");
        QCOMPARE(field(panel)->text(), QStringLiteral("zoe"));
        QCOMPARE(rows(panel), QStringList{"Zoe Adler"});
        panel->reject();
    });
}

void KDRNewPersonControllerTest::escapeCancels()
{
    addAnnBobAndZoe();
    QVERIFY(choose([](QDialog *panel) {
                QTest::keyClicks(panel->focusWidget(), "zoe");
                press(panel, Qt::Key_Escape);
            }).isEmpty());
}

void KDRNewPersonControllerTest::returnWithoutSelectionAddsNobody()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        press(panel, Qt::Key_Return);
        QVERIFY(panel->isVisible());
        panel->reject();
    });
}

void KDRNewPersonControllerTest::typingInTheListSearches()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        press(panel, Qt::Key_Tab);
        QCOMPARE(panel->focusWidget(), list(panel));
        press(panel, Qt::Key_Z);
        QCOMPARE(panel->focusWidget(), field(panel));
        QTest::keyClicks(panel->focusWidget(), "oe");
        QCOMPARE(field(panel)->text(), QStringLiteral("zoe"));
        press(panel, Qt::Key_Tab);
        press(panel, Qt::Key_Backspace);
        QCOMPARE(field(panel)->text(), QStringLiteral("zo"));
        press(panel, Qt::Key_Tab);
        press(panel, Qt::Key_Space); // selects there
        press(panel, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(field(panel)->text(), QStringLiteral("zo"));
        QCOMPARE(panel->focusWidget(), list(panel));
        panel->reject();
    });
}

void KDRNewPersonControllerTest::doubleClickAdds()
{
    addAnnBobAndZoe();
    QCOMPARE(choose([](QDialog *panel) {
                 const QPoint place = list(panel)->visualRect(list(panel)->model()->index(1, 0)).center();
                 QTest::mouseClick(list(panel)->viewport(), Qt::LeftButton, {}, place);
                 QTest::mouseDClick(list(panel)->viewport(), Qt::LeftButton, {}, place);
             }),
             QStringList{"bob Zander"});
}

void KDRNewPersonControllerTest::addIsEnabledWithASelection()
{
    addAnnBobAndZoe();
    QCOMPARE(choose([](QDialog *panel) {
                 QPushButton *add = button(panel, QDialogButtonBox::Ok);
                 QCOMPARE(add->text(), QStringLiteral("Add"));
                 QVERIFY(!add->isEnabled());
                 press(panel, Qt::Key_Z);
                 QVERIFY(add->isEnabled());
                 press(panel, Qt::Key_X);
                 QVERIFY(!add->isEnabled());
                 press(panel, Qt::Key_Backspace);
                 press(panel, Qt::Key_Backspace);
                 QVERIFY(!add->isEnabled());
                 press(panel, Qt::Key_Down);
                 QTest::mouseClick(add, Qt::LeftButton);
             }),
             QStringList{"Ann Lovelace"});
}

// ---- What is made

void KDRNewPersonControllerTest::kindsOfItems()
{
    _contacts->set(MemoryContacts::person("a", "A", "A"));
    _contacts->set(MemoryContacts::company("b", "B"));
    _contacts->set(MemoryContacts::group("c", "C", {"a"}));
    KDRNewPersonController controller;
    QVERIFY(DialogStage::run(controller, [](const DialogStage &stage) {
        press(stage.dialog(), Qt::Key_A, Qt::ControlModifier);
        press(stage.dialog(), Qt::Key_Return);
    }));
    const std::vector<KDRBookmarkPtr> items = controller.newItems();
    QCOMPARE(items.size(), std::size_t(3));
    QCOMPARE(items[0]->type(), KDRBookmark::PersonType);
    QCOMPARE(items[0]->typeDescription(), QStringLiteral("Person"));
    QCOMPARE(items[0]->uuid(), QStringLiteral("a"));
    QCOMPARE(items[1]->type(), KDRBookmark::PersonType);
    QCOMPARE(items[1]->typeDescription(), QStringLiteral("Organization"));
    QCOMPARE(items[2]->type(), KDRBookmark::GroupType);
    QCOMPARE(items[2]->title(), QStringLiteral("C"));
    QCOMPARE(items[2]->uuid(), QStringLiteral("c"));
}

void KDRNewPersonControllerTest::severalAreInTheOrderOfTheList()
{
    addAnnBobAndZoe();
    QCOMPARE(choose([](QDialog *panel) {
                 const auto click = [panel](int row, Qt::KeyboardModifiers modifiers) {
                     const QPoint place = list(panel)->visualRect(list(panel)->model()->index(row, 0)).center();
                     QTest::mouseClick(list(panel)->viewport(), Qt::LeftButton, modifiers, place);
                 };
                 click(2, {});
                 click(0, Qt::ControlModifier);
                 press(panel, Qt::Key_Return);
             }),
             QStringList({"Ann Lovelace", "Zoe Adler"}));
}

// From the button to the file.
void KDRNewPersonControllerTest::itemsReachTheDrawer()
{
    addAnnBobAndZoe();
    _contacts->set(MemoryContacts::group("g", "Friends", {"z", "a"}));
    const auto window = _stage->openWindow();
    KDRDrawer *drawer = DrawerStage::drawer(*window);
    drawer->open();
    const auto *add = drawer->findChild<QAbstractButton *>("newPersonButton");
    QVERIFY(add && add->isEnabled());
    QCOMPARE(add->toolTip(), QStringLiteral("New Person Link"));
    DrawerStage::whenDialogOpens<QDialog>(this, [](QDialog *panel) {
        DialogStage::act(panel, [](const DialogStage &stage) {
            press(stage.dialog(), Qt::Key_A, Qt::ControlModifier);
            press(stage.dialog(), Qt::Key_Return);
        });
    });
    QTest::mouseClick(const_cast<QAbstractButton *>(add), Qt::LeftButton);
    const WayfoldScratchOutlineView *view = DrawerStage::controller(*window)->scratchOutlineView();
    QCOMPARE(DrawerStage::rows(*view), QStringList({"Ann Lovelace", "bob Zander", "Friends", "Zoe Adler"}));
    QCOMPARE(view->selectedItemCount(), 4);
    for (const char *written : {"ABPerson", "ABGroup", "AddressBookID"})
        QVERIFY(_stage->savedFile().contains(written));
    // The group is no folder that smart folders are put into; it holds its members.
    const auto group = WayfoldBookmarkFolder::fromItem(DrawerStage::store().bookmarkRoot()->childWithTitle("Friends"));
    QVERIFY(group);
    group->ensureUpToDate();
    QCOMPARE(group->childCount(), 2U);
}

void KDRNewPersonControllerTest::cancelledPanelAddsNothing()
{
    addAnnBobAndZoe();
    const auto window = _stage->openWindow();
    DrawerStage::drawer(*window)->open();
    _stage->removeSavedFile();
    DrawerStage::whenDialogOpens<QDialog>(this, [](QDialog *panel) {
        DialogStage::act(panel, [](const DialogStage &stage) {
            press(stage.dialog(), Qt::Key_Down);
            press(stage.dialog(), Qt::Key_Escape);
        });
    });
    DrawerStage::controller(*window)->handleNewPersonRequest(nullptr);
    QCOMPARE(DrawerStage::store().bookmarkRoot()->childCount(), 0U);
    QVERIFY(_stage->savedFile().isEmpty());
}

// ---- The contacts change

void KDRNewPersonControllerTest::newCardComes()
{
    addAnnBobAndZoe();
    choose([this](QDialog *panel) {
        press(panel, Qt::Key_A);
        _contacts->set(MemoryContacts::person("n", "Ada", "New"));
        _contacts->set(MemoryContacts::person("m", "Not", "Me"));
        QTRY_COMPARE(rows(panel), QStringList({"Ada New", "Ann Lovelace", "Zoe Adler", "bob Zander"}));
        panel->reject();
    });
}

void KDRNewPersonControllerTest::changedCardChanges()
{
    addAnnBobAndZoe();
    choose([this](QDialog *panel) {
        _contacts->set(MemoryContacts::person("a", "Mary", "Lovelace"));
        QTRY_COMPARE(rows(panel), QStringList({"bob Zander", "Mary Lovelace", "Zoe Adler"}));
        QTest::keyClicks(panel->focusWidget(), "ann@");
        QVERIFY(rows(panel).isEmpty());
        panel->reject();
    });
}

void KDRNewPersonControllerTest::goneCardGoes()
{
    addAnnBobAndZoe();
    choose([this](QDialog *panel) {
        _contacts->take("b");
        QTRY_COMPARE(rows(panel), QStringList({"Ann Lovelace", "Zoe Adler"}));
        panel->reject();
    });
}

void KDRNewPersonControllerTest::selectionStaysWithThePeople()
{
    addAnnBobAndZoe();
    QCOMPARE(choose([this](QDialog *panel) {
                 press(panel, Qt::Key_Down);
                 press(panel, Qt::Key_Down, Qt::ShiftModifier);
                 _contacts->set(MemoryContacts::person("n", "Aaron", "New"));
                 QTRY_COMPARE(rows(panel).size(), 4);
                 QCOMPARE(selected(panel), QStringList({"Ann Lovelace", "bob Zander"}));
                 _contacts->take("a");
                 QTRY_COMPARE(rows(panel).size(), 3);
                 QCOMPARE(selected(panel), QStringList({"bob Zander"}));
                 press(panel, Qt::Key_Down, Qt::ShiftModifier); // from where it was
                 press(panel, Qt::Key_Return);
             }),
             QStringList({"bob Zander", "Zoe Adler"}));
}

// Or Return would add somebody whom the user has never seen.
void KDRNewPersonControllerTest::cardThatComesDoesNotTakeTheSelection()
{
    addAnnBobAndZoe();
    QCOMPARE(choose([this](QDialog *panel) {
                 press(panel, Qt::Key_A);
                 QCOMPARE(selected(panel), QStringList({"Ann Lovelace"}));
                 _contacts->set(MemoryContacts::person("n", "Aaron", "New"));
                 QTRY_COMPARE(rows(panel).at(0), QStringLiteral("Aaron New"));
                 press(panel, Qt::Key_Return);
             }),
             QStringList({"Ann Lovelace"}));
}

void KDRNewPersonControllerTest::goneSelectionIsNotReplaced()
{
    addAnnBobAndZoe();
    choose([this](QDialog *panel) {
        press(panel, Qt::Key_A);
        _contacts->take("a");
        QTRY_COMPARE(rows(panel), QStringList({"Zoe Adler", "bob Zander"}));
        QVERIFY(selected(panel).isEmpty());
        QVERIFY(!button(panel, QDialogButtonBox::Ok)->isEnabled());
        panel->reject();
    });
}

void KDRNewPersonControllerTest::manyChangesBetweenLooks()
{
    addMany();
    choose([this](QDialog *panel) {
        QTRY_COMPARE(rows(panel).size(), many);
        for (int i = 0; i < many; i += 2)
            _contacts->take(QString::number(i));
        QTRY_COMPARE(rows(panel).size(), many / 2);
        panel->reject();
    });
}

void KDRNewPersonControllerTest::otherStore()
{
    addAnnBobAndZoe();
    choose([this](QDialog *panel) {
        MemoryContacts other;
        other.set(MemoryContacts::person("o", "Other", "One"));
        QTRY_COMPARE(rows(panel), QStringList({"Other One"}));
        ContactStore::setSharedAddressBook(&*_contacts);
        QTRY_COMPARE(rows(panel).size(), 3);
        panel->reject();
    });
}

// ---- Nobody there

void KDRNewPersonControllerTest::textWhenEmpty_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("text"); // begins so
    QTest::addColumn<bool>("leadsToThePreferences");
    QTest::newRow("none on this machine")
        << int(ContactStore::Absent) << QString() << "No contacts were found on this machine." << true;
    QTest::newRow("switched off") << int(ContactStore::Absent) << "none"
                                  << "Contacts are switched off." << true;
    QTest::newRow("loading") << int(ContactStore::Loading) << QString() << "Your contacts are being read..." << false;
    QTest::newRow("empty") << int(ContactStore::Ready) << QString() << "There is nobody in your contacts yet." << true;
}

void KDRNewPersonControllerTest::textWhenEmpty()
{
    QFETCH(int, state);
    QFETCH(QString, text);
    QFETCH(QString, setting);
    QFETCH(bool, leadsToThePreferences);
    _contacts->presentState = ContactStore::State(state);
    DrawerStage::settings().setContactSource(setting);
    choose([&](QDialog *panel) {
        QVERIFY2(shownText(panel).startsWith(text), qPrintable(shownText(panel)));
        QVERIFY(!list(panel)->isVisible());
        QCOMPARE(panel->findChild<QLabel *>("emptyField")->foregroundRole(), QPalette::PlaceholderText);
        QCOMPARE(panel->findChild<QPushButton *>("preferencesButton")->isVisible(), leadsToThePreferences);
        panel->reject();
    });
}

void KDRNewPersonControllerTest::loadingEnds()
{
    _contacts->presentState = ContactStore::Loading;
    choose([&](QDialog *panel) {
        QVERIFY(!shownText(panel).isEmpty());
        _contacts->set(MemoryContacts::person("a", "Ann", "Lovelace"));
        QTRY_VERIFY(list(panel)->isVisible()); // what there is already
        _contacts->take("a");
        QTRY_VERIFY(!list(panel)->isVisible());
        QVERIFY(shownText(panel).startsWith("Your contacts are being read"));
        _contacts->presentState = ContactStore::Ready;
        QTRY_VERIFY(shownText(panel).startsWith("There is nobody"));
        panel->reject();
    });
}

// Who is searched for before he comes is selected when he does.
void KDRNewPersonControllerTest::searchedWhileLoading()
{
    _contacts->presentState = ContactStore::Loading;
    QCOMPARE(choose([this](QDialog *panel) {
                 press(panel, Qt::Key_A);
                 _contacts->presentState = ContactStore::Ready;
                 addAnnBobAndZoe();
                 QTRY_COMPARE(selected(panel), QStringList{"Ann Lovelace"});
                 press(panel, Qt::Key_Return);
             }),
             QStringList{"Ann Lovelace"});
}

void KDRNewPersonControllerTest::contactsGoAway()
{
    addAnnBobAndZoe();
    choose([&](QDialog *panel) {
        QVERIFY(list(panel)->isVisible());
        ContactStore::setSharedAddressBook(nullptr);
        QTRY_VERIFY(shownText(panel).startsWith("No contacts were found"));
        panel->reject();
    });
}

void KDRNewPersonControllerTest::buttonOpensThePreferences()
{
    _contacts->presentState = ContactStore::Absent;
    int opened = 0;
    PreferencesWindow::setOpener([&opened] {
        QVERIFY(!QApplication::activeModalWidget()); // they could not be worked
        ++opened;
    });
    QVERIFY(choose([](QDialog *panel) {
                QTest::mouseClick(panel->findChild<QPushButton *>("preferencesButton"), Qt::LeftButton);
            }).isEmpty());
    QCOMPARE(opened, 1);
    choose([](QDialog *panel) { panel->reject(); });
    QCOMPARE(opened, 1);
}

void KDRNewPersonControllerTest::nobodyFound()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        QTest::keyClicks(panel->focusWidget(), "nobody");
        QCOMPARE(shownText(panel), QStringLiteral("Nobody is found."));
        QVERIFY(!panel->findChild<QPushButton *>("preferencesButton")->isVisible());
        press(panel, Qt::Key_Return);
        QVERIFY(panel->isVisible());
        panel->reject();
    });
}

// ---- Many

void KDRNewPersonControllerTest::manyAreMadeInSlices()
{
    addMany();
    KDRNewPersonController controller;
    const QDialog *panel = controller.editWindow();
    QCOMPARE(rows(panel).size(), 0); // nobody has waited for them
    QTRY_COMPARE(rows(panel).size(), many);
    QCOMPARE(rows(panel).constFirst(), QStringLiteral("First0 Last00000"));
    QCOMPARE(rows(panel).constLast(), QStringLiteral("First99 Last19999"));
    QVERIFY(_contacts->picturesAsked.isEmpty());
    controller.editWindow()->show();
    QTRY_VERIFY(!_contacts->picturesAsked.isEmpty());
    QTest::qWait(0);
    QVERIFY(_contacts->picturesAsked.size() < 40); // of those who are seen
}

void KDRNewPersonControllerTest::manyAreSearched()
{
    addMany();
    QCOMPARE(choose([](QDialog *panel) {
                 QTRY_COMPARE(rows(panel).size(), many);
                 QTest::keyClicks(panel->focusWidget(), "last12345");
                 QCOMPARE(rows(panel), QStringList{"First45 Last12345"});
                 press(panel, Qt::Key_Return);
             }),
             QStringList{"First45 Last12345"});
}

void KDRNewPersonControllerTest::manyAreSelectedAndSearched()
{
    addMany();
    choose([](QDialog *panel) {
        QTRY_COMPARE(rows(panel).size(), many);
        press(panel, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(panel->focusWidget(), "first7 ");
        QCOMPARE(selected(panel).size(), rows(panel).size());
        QVERIFY(rows(panel).size() > 1000);
        panel->reject();
    });
}

void KDRNewPersonControllerTest::fewAreThereAtOnce()
{
    addAnnBobAndZoe();
    const KDRNewPersonController controller;
    QCOMPARE(rows(controller.editWindow()).size(), 3);
}

// What the lists show without their contacts is no copy of these.
void KDRNewPersonControllerTest::rowsThatAreNotSeenAreNotRemembered()
{
    const QString path = _stage->home.path("known.plist");
    _contacts->rememberIn(path);
    addAnnBobAndZoe();
    const KDRNewPersonController controller;
    QCOMPARE(rows(controller.editWindow()).size(), 3);
    _contacts->recordForUniqueId("b");
    _contacts.reset();
    QVERIFY(_stage->home.read("known.plist").contains("Zander"));
    QVERIFY(!_stage->home.read("known.plist").contains("Adler"));
}

// ---- For everybody

void KDRNewPersonControllerTest::controlsAreNamed()
{
    const KDRNewPersonController controller;
    for (QWidget *widget : controller.editWindow()->findChildren<QWidget *>()) {
        if (!(widget->focusPolicy() & Qt::TabFocus))
            continue;
        const QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(widget);
        QVERIFY2(!spoken->text(QAccessible::Name).isEmpty(), qPrintable(widget->objectName()));
        QVERIFY2(!widget->toolTip().isEmpty(), qPrintable(widget->objectName()));
    }
}

void KDRNewPersonControllerTest::workedByTab()
{
    addAnnBobAndZoe();
    choose([](QDialog *panel) {
        press(panel, Qt::Key_Down);
        QList<QWidget *> order = {field(panel), list(panel), button(panel, QDialogButtonBox::Ok),
                                  button(panel, QDialogButtonBox::Cancel), field(panel)};
        if (panel->style()->styleHint(QStyle::SH_DialogButtonLayout) != QDialogButtonBox::WinLayout)
            order.swapItemsAt(2, 3);
        for (const QWidget *next : order) {
            QCOMPARE(panel->focusWidget(), next);
            press(panel, Qt::Key_Tab);
        }
        panel->reject();
    });
}

void KDRNewPersonControllerTest::nothingIsCutOff_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << "en_GB";
    QTest::newRow("German") << "de_DE";
}

void KDRNewPersonControllerTest::nothingIsCutOff()
{
    QFETCH(QString, language);
    QLocale::setDefault(QLocale(language));
    _contacts->presentState = ContactStore::Absent;
    choose([&](QDialog *panel) {
        QCOMPARE(panel->windowTitle(),
                 language == u"de_DE" ? QStringLiteral("Neuer Personen-Link") : QStringLiteral("New Person Link"));
        const auto *text = panel->findChild<QLabel *>("emptyField");
        QVERIFY(text->height() >= text->heightForWidth(text->width()));
        for (const QPushButton *each : panel->findChildren<QPushButton *>())
            QVERIFY2(each->width() >= each->sizeHint().width(), qPrintable(each->text()));
        panel->reject();
    });
}

void KDRNewPersonControllerTest::missingInterfaceFile()
{
    const TemporaryHome elsewhere;
    const QByteArray bundle = qgetenv("WAYFOLD_BUNDLE");
    qputenv("WAYFOLD_BUNDLE", elsewhere.path().toUtf8());
    KDRNewPersonController controller;
    qputenv("WAYFOLD_BUNDLE", bundle);
    QVERIFY(!controller.editWindow());
    QVERIFY(!controller.doEdit());
    QVERIFY(controller.newItems().empty());
}

QTEST_MAIN(KDRNewPersonControllerTest)
#include "KDRNewPersonControllerTest.moc"
