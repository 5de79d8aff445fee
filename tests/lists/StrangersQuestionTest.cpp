#include "lists/StrangersQuestion.h"

#include "lists/PasteboardTypes.h"
#include "platform/base/NotificationQueue.h"
#include "tests/lists/ListStage.h"

#include <QMessageBox>
#include <QThread>

namespace
{
const QString siteA = QStringLiteral("a.org");

QByteArray card(const QString &first, const QString &email)
{
    return ListStage::card(QString(), first, QStringLiteral("Brown"), email);
}

const QByteArray bob = card("Bob", "bob@a.org");
const QByteArray cy = card("Cy", "cy@a.org");
const QByteArray dee = card("Dee", QString());

// Contacts to which cards can be added: at once, or when a test says so.
class AddingContacts : public MemoryContacts
{
public:
    bool isOpen = true;
    bool isSlow = false;
    QStringList refused; // addresses
    std::function<void()> onAdd;
    std::vector<std::function<void()>> answers;

    bool canAdd() const override { return isOpen; }
    void add(const QByteArray &vCard, const std::function<void(const QString &uniqueId)> &done) override
    {
        added.push_back(vCard);
        if (onAdd)
            onAdd();
        const auto answer = [this, vCard, done] {
            ContactRecord record = ContactCards::read(vCard).at(0).record;
            const QString address = record.emails.empty() ? QString() : record.emails[0].value;
            if (refused.contains(address)) {
                done(QString());
                return;
            }
            record.uniqueId = QStringLiteral("added ") + record.firstName;
            put({std::make_shared<ContactRecord>(record)}, true);
            done(record.uniqueId);
        };
        if (isSlow)
            answers.emplace_back(answer);
        else
            answer();
    }
};

// The user, who presses that button of each question, or Escape. What is asked is noted.
class User : public QObject
{
public:
    explicit User(const QString &button) : _button(button) { startTimer(1); }

    struct Question
    {
        QString message;
        QString information;
        QStringList buttons;
    };
    std::vector<Question> asked;
    std::function<void()> meanwhile;
    void press(const QString &button) { _button = button; }

protected:
    void timerEvent(QTimerEvent * /*event*/) override
    {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        Question question{box->text(), box->informativeText(), {}};
        QAbstractButton *toPress = nullptr;
        for (QAbstractButton *button : box->buttons()) {
            question.buttons.append(button->text());
            if (button->text() == _button)
                toPress = button;
        }
        asked.push_back(question);
        if (const auto act = std::exchange(meanwhile, {}))
            act();
        if (toPress)
            toPress->click();
        else
            QTest::keyClick(box, Qt::Key_Escape);
    }

private:
    QString _button;
};
} // namespace

// Cards of people who are not among the contacts are dropped; the user is asked, and the list changes.
class StrangersQuestionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        _contacts = std::make_unique<AddingContacts>();
        _pad.emplace(*_stage);
        _a = ListStage::note(QStringLiteral("a"));
        _b = ListStage::note(QStringLiteral("b"));
        _folder = ListStage::folder(QStringLiteral("folder"));
        _pad->showItems({_a, _b, _folder});
        settle();
    }
    void cleanup()
    {
        _folder.reset();
        _pad.reset();
        _contacts.reset();
        _stage.reset();
        QLocale::setDefault(QLocale::c());
    }

    void added();
    void linkIsKept();
    void escapeKeepsTheLink();
    void severalAreAskedAboutOnce();
    void dropsInOneGoAreAskedAboutOnce();
    void wordsOfTheQuestion_data();
    void wordsOfTheQuestion();
    void inGerman();
    void notWhileDragging();
    void notWhereNothingCanBeAdded();
    void notAboutContacts();
    void notAboutGroups();
    void whileContactsAreComing();
    void deletedBeforeTheQuestion();
    void folderThatGoesMeanwhile_data();
    void folderThatGoesMeanwhile();
    void movedMeanwhile();
    void knownMeanwhile();
    void addedLater();
    void manyAreAddedInSlices();
    void refused();
    void refusedInPart();
    void selectionIsLeftAlone();
    void siteThatIsNotShownAnyMore();
    void windowThatCloses();
    void windowThatClosesWhileAdding();
    void manyAreSavedOnce();

private:
    bool drop(const QByteArray &cards, const OutlineDropTarget &target = {nullptr, 1})
    {
        QMimeData data;
        data.setData(QStringLiteral("text/vcard"), cards);
        return _pad->source->outlineViewAcceptDrop(_pad->view, data, target);
    }
    // Until all is done that was put off.
    static void settle()
    {
        bool isDone = false;
        const QString name = QStringLiteral("StrangersQuestionTestNotification");
        NotificationCenter::defaultCenter().addObserver(
            &isDone, [&isDone](const Notification &) { isDone = true; }, name);
        NotificationQueue::defaultQueue().enqueueNotification({name, &isDone}, NotificationQueue::NSPostWhenIdle);
        QTRY_VERIFY(isDone);
        NotificationCenter::defaultCenter().removeObserver(&isDone);
    }
    QStringList rows() const { return ListStage::rows(_pad->view); }
    WayfoldBookmarkFolderPtr root() const { return ListStage::store().bookmarkRoot(); }
    QByteArray saved() const { return _stage->savedFile(); }

    std::optional<ListStage> _stage;
    std::unique_ptr<AddingContacts> _contacts;
    std::optional<Scratchpad> _pad;
    KDRBookmarkPtr _a;
    KDRBookmarkPtr _b;
    WayfoldBookmarkFolderPtr _folder;
};

void StrangersQuestionTest::added()
{
    User user("Add");
    QVERIFY(drop(bob));
    // Not before the drop is over; what is known of him is saved by then.
    QVERIFY(user.asked.empty());
    QCOMPARE(root()->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
    QVERIFY(saved().contains("mailto:bob@a.org"));
    settle();
    QCOMPARE(user.asked.size(), 1U);
    QCOMPARE(_contacts->added, std::vector<QByteArray>{bob});
    QCOMPARE(rows(), QStringList({"a", "Bob Brown", "b", "folder"}));
    const KDRBookmarkPtr person = root()->childAtIndex(1);
    QCOMPARE(person->type(), KDRBookmark::PersonType);
    QCOMPARE(person->uuid(), QStringLiteral("added Bob"));
    QVERIFY(_pad->view.selectedItem() == person);
    QVERIFY(saved().contains("added Bob"));
    QVERIFY(!saved().contains("mailto:bob@a.org"));
}

void StrangersQuestionTest::linkIsKept()
{
    User user("Email Link");
    QVERIFY(drop(bob));
    settle();
    QCOMPARE(user.asked.size(), 1U);
    QVERIFY(_contacts->added.empty());
    QCOMPARE(rows(), QStringList({"a", "Bob Brown", "b", "folder"}));
    QCOMPARE(root()->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
    settle();
    QCOMPARE(user.asked.size(), 1U); // and not again
}

void StrangersQuestionTest::escapeKeepsTheLink()
{
    User user{QString()};
    QVERIFY(drop(bob));
    settle();
    QCOMPARE(user.asked.size(), 1U);
    QVERIFY(_contacts->added.empty());
    QCOMPARE(root()->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
}

void StrangersQuestionTest::severalAreAskedAboutOnce()
{
    User user("Add");
    QVERIFY(drop(bob + cy + dee, {_folder, 0}));
    settle();
    QCOMPARE(user.asked.size(), 1U);
    QCOMPARE(_contacts->added, std::vector<QByteArray>({bob, cy, dee}));
    QCOMPARE(ListStage::titles(_folder), QStringList({"Bob Brown", "Cy Brown", "Dee Brown"}));
    for (const KDRBookmarkPtr &item : _folder->children())
        QCOMPARE(item->type(), KDRBookmark::PersonType);
}

void StrangersQuestionTest::dropsInOneGoAreAskedAboutOnce()
{
    User user("Add");
    QVERIFY(drop(bob));
    QVERIFY(drop(cy));
    settle();
    QCOMPARE(user.asked.size(), 1U);
    QCOMPARE(_contacts->added, std::vector<QByteArray>({bob, cy}));
}

void StrangersQuestionTest::wordsOfTheQuestion_data()
{
    QTest::addColumn<QByteArray>("cards");
    QTest::addColumn<QString>("information");
    QTest::addColumn<QString>("otherWay");
    const QString one = "\"%1\" is not in your contacts. Do you want to add the card?";
    const QString two = "2 people are not in your contacts. Do you want to add their cards?";
    QTest::newRow("one") << bob << one.arg("Bob Brown") << "Email Link";
    QTest::newRow("two") << bob + cy << two << "Email Links";
    QTest::newRow("a note") << dee << one.arg("Dee Brown") << "Don't Add";
    QTest::newRow("a link and a note") << bob + dee << two << "Don't Add";
    QTest::newRow("a name of its own kind") << card("<b>%u", "b@a.org") << one.arg("<b>%u Brown") << "Email Link";
}

void StrangersQuestionTest::wordsOfTheQuestion()
{
    QFETCH(QByteArray, cards);
    QFETCH(QString, information);
    QFETCH(QString, otherWay);
    User user(otherWay);
    QVERIFY(drop(cards));
    settle();
    QCOMPARE(user.asked.size(), 1U);
    QCOMPARE(user.asked[0].message, QStringLiteral("Add to Contacts?"));
    QCOMPARE(user.asked[0].information, information);
    QStringList buttons = user.asked[0].buttons;
    buttons.sort();
    QStringList expected = {"Add", otherWay};
    expected.sort();
    QCOMPARE(buttons, expected);
}

void StrangersQuestionTest::inGerman()
{
    QLocale::setDefault(QLocale("de_DE"));
    User user(QString::fromUtf8("Hinzufügen"));
    QVERIFY(drop(bob));
    settle();
    QCOMPARE(user.asked.size(), 1U);
    QCOMPARE(user.asked[0].information,
             QString::fromUtf8("„Bob Brown“ ist nicht in Ihren Kontakten. Möchten Sie die Karte hinzufügen?"));
    QCOMPARE(_contacts->added.size(), 1U);
}

void StrangersQuestionTest::notWhileDragging()
{
    User user("Add");
    {
        const NotificationQueue::Pause drag;
        QVERIFY(drop(bob));
        for (int pass = 0; pass < 20; ++pass)
            QCoreApplication::processEvents();
        QVERIFY(user.asked.empty());
    }
    settle();
    QCOMPARE(user.asked.size(), 1U);
}

void StrangersQuestionTest::notWhereNothingCanBeAdded()
{
    _contacts->isOpen = false;
    User user("Add");
    QVERIFY(drop(bob));
    settle();
    QVERIFY(user.asked.empty());
    QCOMPARE(root()->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
}

void StrangersQuestionTest::notAboutContacts()
{
    _contacts->set(MemoryContacts::person("bob", "Bob", "Brown", {"bob@a.org"}));
    User user("Add");
    QVERIFY(drop(bob));
    settle();
    QVERIFY(user.asked.empty());
    QCOMPARE(root()->childAtIndex(1)->uuid(), QStringLiteral("bob"));
}

void StrangersQuestionTest::notAboutGroups()
{
    User user("Add");
    QVERIFY(drop("BEGIN:VCARD\r\nVERSION:4.0\r\nKIND:group\r\nFN:Choir\r\nMEMBER:mailto:bob@a.org\r\nEND:VCARD\r\n"));
    settle();
    QVERIFY(user.asked.empty());
    QCOMPARE(root()->childAtIndex(1)->valueAsString(), QStringLiteral("mailto:bob@a.org"));
}

// Who is not there yet may be there soon.
void StrangersQuestionTest::whileContactsAreComing()
{
    _contacts->presentState = ContactStore::Loading;
    User user("Add");
    QVERIFY(drop(bob + cy));
    settle();
    QVERIFY(user.asked.empty());
    _contacts->set(MemoryContacts::person("dee", "Dee", "Brown"));
    settle();
    QVERIFY(user.asked.empty()); // not all of them have come
    _contacts->presentState = ContactStore::Ready;
    _contacts->set(MemoryContacts::person("bob", "Bob", "Brown", {"bob@a.org"}));
    settle();
    QCOMPARE(user.asked.size(), 1U);
    QCOMPARE(user.asked[0].information,
             QStringLiteral("\"Cy Brown\" is not in your contacts. Do you want to add the card?"));
    QCOMPARE(rows(), QStringList({"a", "Bob Brown", "Cy Brown", "b", "folder"}));
    QCOMPARE(root()->childAtIndex(1)->uuid(), QStringLiteral("bob"));
    QCOMPARE(root()->childAtIndex(2)->uuid(), QStringLiteral("added Cy"));
}

void StrangersQuestionTest::deletedBeforeTheQuestion()
{
    User user("Add");
    QVERIFY(drop(bob, {_folder, 0}));
    ListStage::store().deleteBookmark(_folder->childAtIndex(0));
    settle();
    QVERIFY(user.asked.empty());
    QVERIFY(_folder->isEmpty());
}

void StrangersQuestionTest::folderThatGoesMeanwhile_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QStringList>("made");
    QTest::newRow("added") << "Add" << QStringList({"7 Bob Brown", "7 Cy Brown"});
    QTest::newRow("kept") << "Email Links" << QStringList({"5 Bob Brown", "5 Cy Brown"});
}

void StrangersQuestionTest::folderThatGoesMeanwhile()
{
    QFETCH(QString, button);
    QFETCH(QStringList, made);
    const auto inner = ListStage::folder(QStringLiteral("inner"));
    _folder->addChild(inner);
    User user(button);
    // With a folder around it, since one at the top stays as the provisional one of its site.
    const auto around = ListStage::folder(QStringLiteral("around"), {_folder});
    root()->removeChild(_folder);
    root()->addChild(around);
    QVERIFY(drop(bob + cy, {inner, 0}));
    user.meanwhile = [this] { ListStage::store().deleteBookmark(_folder); };
    settle();
    QCOMPARE(user.asked.size(), 1U);
    QStringList found;
    for (const KDRBookmarkPtr &item : root()->children())
        found.append(QStringLiteral("%1 %2").arg(int(item->type())).arg(item->title()));
    QCOMPARE(found, QStringList({"4 a", "4 b", "1 around"}) + made);
    QVERIFY(saved().contains("Bob Brown") || saved().contains("added Bob"));
}

void StrangersQuestionTest::movedMeanwhile()
{
    User user("Add");
    QVERIFY(drop(bob));
    user.meanwhile = [this] {
        const KDRBookmarkPtr link = root()->childAtIndex(1);
        root()->removeChild(link);
        _folder->addChild(link);
    };
    settle();
    QCOMPARE(ListStage::titles(_folder), QStringList{"Bob Brown"});
    QCOMPARE(_folder->childAtIndex(0)->type(), KDRBookmark::PersonType);
    QCOMPARE(root()->childCount(), 3U);
}

// The contacts go on while the question is there: who has come into them is not added once more.
void StrangersQuestionTest::knownMeanwhile()
{
    User user("Add");
    QVERIFY(drop(bob + cy));
    user.meanwhile = [this] { _contacts->set(MemoryContacts::person("bob", "Bob", "Brown", {"bob@a.org"})); };
    settle();
    QCOMPARE(_contacts->added, std::vector<QByteArray>{cy});
    QCOMPARE(rows(), QStringList({"a", "Bob Brown", "Cy Brown", "b", "folder"}));
    QCOMPARE(root()->childAtIndex(1)->uuid(), QStringLiteral("bob"));
    QCOMPARE(root()->childAtIndex(2)->uuid(), QStringLiteral("added Cy"));
}

void StrangersQuestionTest::addedLater()
{
    _contacts->isSlow = true;
    User user("Add");
    QVERIFY(drop(bob + cy));
    settle();
    QCOMPARE(_contacts->answers.size(), 2U);
    QCOMPARE(root()->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
    _contacts->answers[1]();
    _contacts->answers[0]();
    settle();
    QCOMPARE(rows(), QStringList({"a", "Bob Brown", "Cy Brown", "b", "folder"}));
    QCOMPARE(root()->childAtIndex(1)->uuid(), QStringLiteral("added Bob"));
    QCOMPARE(root()->childAtIndex(2)->uuid(), QStringLiteral("added Cy"));
    QCOMPARE(user.asked.size(), 1U);
}

// Cards may take their time to be written: the event loop runs between them, and the list goes on, or away.
void StrangersQuestionTest::manyAreAddedInSlices()
{
    int passes = 0;
    QTimer everyPass;
    connect(&everyPass, &QTimer::timeout, this, [&passes] { ++passes; });
    everyPass.start(0);
    QSet<int> passesOfCards;
    _contacts->onAdd = [&] {
        passesOfCards.insert(passes);
        QThread::msleep(20); // longer than a frame
        if (_contacts->added.size() == 2)
            QTimer::singleShot(0, this, [this] { _pad.reset(); });
    };
    QByteArray cards;
    for (int i = 0; i < 5; ++i)
        cards += card("Bob", "bob" + QString::number(i) + "@a.org");
    User user("Add");
    QVERIFY(drop(cards));
    QTRY_COMPARE(_contacts->added.size(), 5U);
    QVERIFY(passesOfCards.size() > 1);
    QTRY_VERIFY(!_pad);
    for (unsigned i = 1; i <= 5; ++i)
        QTRY_COMPARE(root()->childAtIndex(i)->type(), KDRBookmark::PersonType);
}

void StrangersQuestionTest::refused()
{
    _contacts->refused = QStringList{"bob@a.org"};
    User user("Add");
    user.meanwhile = [&user] { QTimer::singleShot(0, &user, [&user] { user.press("OK"); }); };
    QVERIFY(drop(bob));
    settle();
    QTRY_COMPARE(user.asked.size(), 2U);
    QCOMPARE(user.asked[1].message, QStringLiteral("Not Added"));
    QCOMPARE(user.asked[1].information,
             QStringLiteral(
                 "The card of \"Bob Brown\" could not be added to your contacts. It stays in the list as it is."));
    QCOMPARE(root()->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
    settle();
    QCOMPARE(user.asked.size(), 2U);
}

void StrangersQuestionTest::refusedInPart()
{
    _contacts->refused = QStringList{"bob@a.org", "dee@a.org"};
    User user("Add");
    QVERIFY(drop(bob + cy + card("Dee", "dee@a.org")));
    settle();
    QTRY_COMPARE(user.asked.size(), 2U);
    QCOMPARE(user.asked[1].information,
             QStringLiteral("2 cards could not be added to your contacts. They stay in the list as they are."));
    QCOMPARE(root()->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
    QCOMPARE(root()->childAtIndex(2)->type(), KDRBookmark::PersonType);
    QCOMPARE(root()->childAtIndex(3)->type(), KDRBookmark::EmailLinkType);
}

// The user may have gone on by the time that the card has been added.
void StrangersQuestionTest::selectionIsLeftAlone()
{
    _contacts->isSlow = true;
    User user("Add");
    QVERIFY(drop(bob));
    settle();
    _pad->select({_b});
    _contacts->answers[0]();
    settle();
    QCOMPARE(rows(), QStringList({"a", "Bob Brown", "b", "folder"}));
    QCOMPARE(_pad->view.selectedItemList(), std::vector<KDRBookmarkPtr>{_b});
}

void StrangersQuestionTest::siteThatIsNotShownAnyMore()
{
    _pad->show(siteA);
    User user("Add");
    QVERIFY(drop(bob, {nullptr, 0}));
    _pad->show(QStringLiteral("Sites"));
    settle();
    QCOMPARE(user.asked.size(), 1U);
    const auto site = WayfoldBookmarkFolder::fromItem(root()->childWithTitle(siteA));
    QVERIFY(site);
    QCOMPARE(site->childAtIndex(0)->uuid(), QStringLiteral("added Bob"));
    QVERIFY(saved().contains("added Bob"));
}

void StrangersQuestionTest::windowThatCloses()
{
    User user("Add");
    QVERIFY(drop(bob));
    _pad.reset();
    settle();
    QVERIFY(user.asked.empty());
    QCOMPARE(root()->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
}

void StrangersQuestionTest::windowThatClosesWhileAdding()
{
    _contacts->isSlow = true;
    User user("Add");
    QVERIFY(drop(bob));
    settle();
    QCOMPARE(_contacts->answers.size(), 1U);
    _pad.reset();
    _contacts->answers[0]();
    QCOMPARE(root()->childAtIndex(1)->uuid(), QStringLiteral("added Bob"));
    QVERIFY(saved().contains("added Bob"));
}

// Each with its own writing of the file would take long, and so would loading the lists anew.
void StrangersQuestionTest::manyAreSavedOnce()
{
    QByteArray cards;
    for (int i = 0; i < 200; ++i)
        cards += card(QString::number(i), QStringLiteral("%1@a.org").arg(i));
    User user("Add");
    QVERIFY(drop(cards));
    _pad->drawer.reloadCount = 0;
    settle();
    QCOMPARE(_contacts->added.size(), 200U);
    QCOMPARE(root()->childCount(), 203U);
    QCOMPARE(root()->childAtIndex(200)->type(), KDRBookmark::PersonType);
    QCOMPARE(_pad->drawer.reloadCount, 0);
    QCOMPARE(_pad->view.numberOfRows(), 203);
}

QTEST_MAIN(StrangersQuestionTest)
#include "StrangersQuestionTest.moc"
