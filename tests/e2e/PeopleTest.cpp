#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "platform/files/PropertyList.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/MessageBus.h"
#include "tests/e2e/support/OtherContactsProgram.h"
#include "tests/e2e/support/Play.h"
#include "tests/e2e/support/Process.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QTreeView>
#include <csignal>

// People and groups in the drawer, with real contacts: those of the desktop, on a message bus of the test's own, and a
// folder of cards. Each browser is a process of its own, which this program starts from itself.
class PeopleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void desktopsContacts();
    void desktopsContactsAfterARestart();
    void folderOfCards();
    void german();

private:
    // Its exit code. Plays these functions of PeopleSession.
    int session(const QStringList &functions, const QString &language = QStringLiteral("C.UTF-8")) const;

    std::optional<TemporaryHome> _home;
    std::optional<MessageBus> _bus;
};

// One session of the browser, on a site whose list has people in it.
class PeopleSession : public QObject
{
    Q_OBJECT

public:
    explicit PeopleSession(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { Hands::drop(); } // what a failure has left in the hand

    void showsNames();
    void followsAChangedCard();
    void findsANewCard();
    void followsAGroup();
    void takesACard();
    void takesACardFile();
    void leavesAStrangerAsALink();
    void writesToPeopleAndGroups();
    void handsOutACard();
    void newPersonByKeyboard();
    void newPersonIsStillThere();
    void relatedPeople();
    void serviceDiesAndComesBack();
    void newPersonInGerman();
    void cleanupTestCase();

private:
    QTreeView *list() const { return Play::scratchList(_window); }
    QStringList rows() const { return Play::scratchRows(_window); }
    bool hasRow(const QString &text) const { return rows().contains(text); }
    bool expand(const QString &row);
    bool dragIn(const QByteArray &format, const QByteArray &contents);
    static bool openMenuByKey(const QString &menu, const QString &entry);
    static QString title(const QWidget *window) { return window ? window->windowTitle() : QString(); }

    Play &_play;
    BrowserWindow *_window = nullptr;
    OtherContactsProgram _other;
};

namespace
{
const QString site = QStringLiteral("garden.localhost");

QByteArray card(const QByteArray &id, const QByteArray &first, const QByteArray &last, const QByteArray &more = {})
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + (id.isEmpty() ? QByteArray() : "UID:" + id + "\r\n") + "FN:" + first +
           ' ' + last + "\r\nN:" + last + ';' + first + ";;;\r\n" + more + "END:VCARD\r\n";
}

QByteArray email(const QByteArray &address)
{
    return "EMAIL;TYPE=WORK:" + address + "\r\n";
}

QByteArray group(const QByteArray &id, const QByteArray &name, const QByteArrayList &members)
{
    // As Evolution writes its lists, and as version 4 has groups.
    const bool isOfDesktop = OtherContactsProgram().isOfDesktop();
    QByteArray text = isOfDesktop ? "BEGIN:VCARD\r\nVERSION:3.0\r\nX-EVOLUTION-LIST:TRUE\r\n"
                                  : "BEGIN:VCARD\r\nVERSION:4.0\r\nKIND:group\r\n";
    text += "UID:" + id + "\r\nFN:" + name + "\r\n";
    for (const QByteArray &member : members) {
        const QByteArray address = member + "@garden.example";
        text += isOfDesktop ? "EMAIL;X-EVOLUTION-DEST-CONTACT-UID=" + member + ";X-EVOLUTION-DEST-EMAIL=" + address +
                                  ":" + address + "\r\n"
                            : "MEMBER:urn:uuid:" + member + "\r\n";
    }
    return text + "END:VCARD\r\n";
}

QVariantMap item(const char *kind, const QString &id)
{
    return {{QStringLiteral("WebBookmarkType"), QLatin1String(kind)},
            {QStringLiteral("AddressBookID"), id},
            {QStringLiteral("WebBookmarkUUID"), id}};
}

QVariantMap folder(const QString &title, const QVariantList &children)
{
    return {{QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeList")},
            {QStringLiteral("WebBookmarkUUID"), QUuid::createUuid().toString()},
            {QStringLiteral("Title"), title},
            {QStringLiteral("Children"), children}};
}

QString itemFile()
{
    return QDir::homePath() + QStringLiteral("/Library/Wayfold/Bookmarks.plist");
}

// The site's list, of people who are among the contacts, but for Katherine.
bool writeItems()
{
    const QVariantList people{item("ABPerson", QStringLiteral("ada")), item("ABPerson", QStringLiteral("charles")),
                              item("ABPerson", QStringLiteral("katherine")), item("ABGroup", QStringLiteral("team"))};
    return QDir().mkpath(QFileInfo(itemFile()).path()) &&
           PropertyList::writeFile(folder(QString(), {folder(site, people)}), itemFile());
}

bool writeCards()
{
    const OtherContactsProgram other;
    return other.add(card("ada", "Ada", "Lovelace", email("ada@analytical.example"))) &&
           other.add(card("charles", "Charles", "Babbage", email("charles@engine.example"))) &&
           other.add(card("dorothy", "Dorothy", "Vaughan", email("dorothy@garden.example"))) &&
           other.add(card("emmy", "Emmy", "Noether", email("emmy@garden.example"))) &&
           other.add(card("mary", "Mary", "Somerville", "URL:http://www." + site.toUtf8() + "/mary\r\n")) &&
           other.add(group("team", "Team", {"emmy", "dorothy"}));
}

// What the item file has of the site: the identifiers of people and groups, else titles.
QStringList saved()
{
    QStringList found;
    for (const QVariant &folder : PropertyList::readDictionaryFile(itemFile()).value("Children").toList()) {
        if (folder.toMap().value("Title") != site)
            continue;
        for (const QVariant &child : folder.toMap().value("Children").toList()) {
            const QVariantMap map = child.toMap();
            const QString title = map.value("URIDictionary").toMap().value("title", map.value("Title")).toString();
            found += map.value("AddressBookID", title).toString();
        }
    }
    return found;
}

// The program that opens what is no web page, as the desktop has it: it notes down what it was to open.
QString openedFile()
{
    return QDir::homePath() + QStringLiteral("/opened");
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(contents) == contents.size();
}

bool installOpener()
{
    const QString program = QDir::homePath() + QStringLiteral("/bin/xdg-open");
    return write(program, "#!/bin/sh\nprintf '%s\\n' \"$1\" >\"$HOME/opened.new\"\n"
                          "mv \"$HOME/opened.new\" \"$HOME/opened\"\n") &&
           QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
} // namespace

// --- The sessions ---------------------------------------------------------------------------------------------------

void PeopleTest::init()
{
    _home.emplace();
    QVERIFY(installOpener());
    QVERIFY(writeItems());
}

void PeopleTest::cleanup()
{
    _bus.reset();
    _home.reset();
}

int PeopleTest::session(const QStringList &functions, const QString &language) const
{
    QProcess browser;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"),
                       QDir::homePath() + QStringLiteral("/bin:") + qEnvironmentVariable("PATH"));
    environment.insert(QStringLiteral("LC_ALL"), language);
    browser.setProcessEnvironment(environment);
    browser.setProcessChannelMode(QProcess::ForwardedChannels);
    browser.setStandardInputFile(QProcess::nullDevice());
    browser.start(QCoreApplication::applicationFilePath(), QStringList{QStringLiteral("--session")} + functions);
    return browser.waitForFinished(-1) && browser.exitStatus() == QProcess::NormalExit ? browser.exitCode() : -1;
}

// Nothing is chosen: where the desktop has contacts, it is those.
void PeopleTest::desktopsContacts()
{
    _bus.emplace();
    QVERIFY(writeCards());
    const QStringList all{"showsNames",    "followsAChangedCard", "findsANewCard",          "followsAGroup",
                          "takesACard",    "takesACardFile",      "leavesAStrangerAsALink", "writesToPeopleAndGroups",
                          "handsOutACard", "relatedPeople",       "newPersonByKeyboard",    "serviceDiesAndComesBack"};
    QCOMPARE(session(all), 0);
}

void PeopleTest::desktopsContactsAfterARestart()
{
    _bus.emplace();
    QVERIFY(writeCards());
    QCOMPARE(session({"newPersonByKeyboard"}), 0);
    QVERIFY(saved().contains(QLatin1String("dorothy")));
    QCOMPARE(session({"showsNames", "newPersonIsStillThere"}), 0);
}

// Nothing is chosen, and there is no bus: it is the usual folder.
void PeopleTest::folderOfCards()
{
    QVERIFY(writeCards());
    const QStringList all{"showsNames",    "followsAChangedCard", "findsANewCard",           "followsAGroup",
                          "takesACard",    "takesACardFile",      "writesToPeopleAndGroups", "handsOutACard",
                          "relatedPeople", "newPersonByKeyboard"};
    QCOMPARE(session(all), 0);
    QCOMPARE(session({"newPersonIsStillThere"}), 0);
}

void PeopleTest::german()
{
    QVERIFY(writeCards());
    QCOMPARE(session({"newPersonInGerman"}, QStringLiteral("de_DE.UTF-8")), 0);
}

// --- What is played in them -----------------------------------------------------------------------------------------

void PeopleSession::initTestCase()
{
    EVENTUALLY(_play.window());
    _window = _play.window();
    QVERIFY(_play.visit(QStringLiteral("http://www.%1/").arg(site)));
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+o")));
    EVENTUALLY(Play::isDrawerOpen(_window));
    EVENTUALLY(Play::siteLabel(_window) == site);
    EVENTUALLY(hasRow(QStringLiteral("Team")));
}

void PeopleSession::init()
{
    QVERIFY(_play.bringToFront(_window));
}

bool PeopleSession::expand(const QString &row)
{
    const qsizetype before = rows().size();
    return _play.chooseRow(row) && Hands::press(QStringLiteral("Right")) &&
           Stage::eventually([&] { return rows().size() > before; });
}

void PeopleSession::showsNames()
{
    EVENTUALLY(rows().mid(0, 2) == QStringList({"Ada Lovelace", "Charles Babbage"}));
    EVENTUALLY(rows().mid(2, 2) == QStringList({"Invalid", "Team"}));
}

void PeopleSession::followsAChangedCard()
{
    QVERIFY(_other.change(card("ada", "Ada", "King", email("ada@analytical.example"))));
    EVENTUALLY(rows().value(0) == QLatin1String("Ada King"));
    EVENTUALLY(!hasRow(QStringLiteral("Ada Lovelace")));
}

void PeopleSession::findsANewCard()
{
    EVENTUALLY(rows().value(2) == QLatin1String("Invalid"));
    QVERIFY(_other.add(card("katherine", "Katherine", "Johnson")));
    EVENTUALLY(rows().value(2) == QLatin1String("Katherine Johnson"));
}

void PeopleSession::followsAGroup()
{
    QVERIFY(expand(QStringLiteral("Team")));
    EVENTUALLY(rows().mid(3, 3) == QStringList({"Team", "Dorothy Vaughan", "Emmy Noether"}));
    QVERIFY(_other.add(card("grace", "Grace", "Hopper", email("grace@garden.example"))));
    QVERIFY(_other.change(group("team", "Team", {"emmy", "dorothy", "grace"})));
    EVENTUALLY(rows().mid(3, 4) == QStringList({"Team", "Dorothy Vaughan", "Emmy Noether", "Grace Hopper"}));
    QVERIFY(_other.change(group("team", "Crew", {"dorothy"})));
    EVENTUALLY(rows().mid(3, 2) == QStringList({"Crew", "Dorothy Vaughan"}));
    EVENTUALLY(!hasRow(QStringLiteral("Grace Hopper")) && !hasRow(QStringLiteral("Emmy Noether")));
    QVERIFY(_other.change(group("team", "Team", {"emmy", "dorothy"})));
    EVENTUALLY(hasRow(QStringLiteral("Emmy Noether")));
    QVERIFY(Hands::press(QStringLiteral("Left"))); // a second click there could be taken for a double click
    EVENTUALLY(!hasRow(QStringLiteral("Emmy Noether")));
}

// From another program's window into the list.
bool PeopleSession::dragIn(const QByteArray &format, const QByteArray &contents)
{
    const QString file = QDir::homePath() + QStringLiteral("/dragged");
    if (!write(file, contents))
        return false;
    Process source(QStringLiteral(WAYFOLD_DRAG_SOURCE), {QString::fromUtf8(format) + u'=' + file});
    // Not over the page, which might welcome it, too.
    return source.writes("ready\n") && Hands::moveTo(QPoint(80, 60)) && Hands::lift() &&
           Hands::carryTo(QPoint(110, 90)) && Hands::moveTo(Eyes::middleOf(list()->viewport())) &&
           source.writes("\nwelcome\n") && Hands::drop() && source.writes("\nover\n");
}

// As a mail program drags one, of somebody who is among the contacts.
void PeopleSession::takesACard()
{
    QVERIFY(!saved().contains(QLatin1String("emmy")));
    QVERIFY(dragIn("text/x-vcard", card("another-identifier", "Emmy", "Noether", email("emmy@garden.example"))));
    EVENTUALLY(hasRow(QStringLiteral("Emmy Noether")));
    EVENTUALLY(saved().contains(QLatin1String("emmy")));
    QVERIFY(!Eyes::dialog());
}

// As a file manager drags one, of somebody who is to be added to the contacts.
void PeopleSession::takesACardFile()
{
    const QString file = QDir::homePath() + QStringLiteral("/Hedy Lamarr.vcf");
    QVERIFY(write(file, card("", "Hedy", "Lamarr", email("hedy@garden.example"))));
    QVERIFY(dragIn("text/uri-list", QUrl::fromLocalFile(file).toEncoded() + "\r\n"));
    EVENTUALLY(Eyes::dialog());
    QVERIFY2(Eyes::dialogText().contains(QLatin1String("\"Hedy Lamarr\" is not in your contacts.")),
             qPrintable(Eyes::dialogText()));
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("Add"))));
    EVENTUALLY(!Eyes::dialog());
    EVENTUALLY(hasRow(QStringLiteral("Hedy Lamarr")));
    // Nobody but the contacts knows the identifier that she got.
    QString identifier;
    const auto isKnown = [&] {
        for (const QString &id : saved()) {
            if (_other.show(id).contains("hedy@garden.example"))
                identifier = id;
        }
        return !identifier.isEmpty();
    };
    QVERIFY(Stage::eventually(isKnown));
    QVERIFY(_other.change(card(identifier.toUtf8(), "Hedy", "Kiesler", email("hedy@garden.example"))));
    EVENTUALLY(hasRow(QStringLiteral("Hedy Kiesler")));
}

void PeopleSession::leavesAStrangerAsALink()
{
    QVERIFY(dragIn("text/vcard", card("", "Lise", "Meitner", email("lise@garden.example"))));
    EVENTUALLY(Eyes::dialog());
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("Email Link"))));
    EVENTUALLY(!Eyes::dialog());
    EVENTUALLY(hasRow(QStringLiteral("Lise Meitner")));
    EVENTUALLY(saved().contains(QLatin1String("Lise Meitner")));
}

void PeopleSession::writesToPeopleAndGroups()
{
    QFile::remove(openedFile());
    EVENTUALLY(rows().value(1) == QLatin1String("Charles Babbage"));
    QVERIFY(_play.chooseRow(rows().value(0)));
    QVERIFY(Hands::clickOnAnotherRow(list(), QStringLiteral("Charles Babbage")));
    QVERIFY(Hands::clickOnAnotherRow(list(), QStringLiteral("Team")));
    EVENTUALLY(list()->selectionModel()->selectedRows().size() == 3);
    QVERIFY(Play::chooseFromContextMenu(list(), QStringLiteral("Charles Babbage"), QStringLiteral("Send Email...")));
    EVENTUALLY(!contents(openedFile()).isEmpty());
    QCOMPARE(contents(openedFile()), "mailto:ada@analytical.example,charles@engine.example,"
                                     "dorothy@garden.example,emmy@garden.example\n");
}

void PeopleSession::handsOutACard()
{
    Process target(QStringLiteral(WAYFOLD_DROP_TARGET), {});
    QVERIFY(target.writes("ready\n"));
    QVERIFY(_play.chooseRow(QStringLiteral("Team"))); // and nothing else
    const std::optional<QPoint> row = Eyes::rowWithText(list(), QStringLiteral("Charles Babbage"));
    QVERIFY(row);
    QVERIFY(Hands::moveTo(*row) && Hands::lift() && Hands::carryTo(QPoint(80, 60)));
    QVERIFY(target.writes("entered\n"));
    Stage::settle(); // this side has heard that it is welcome there
    QVERIFY(Hands::drop());
    QVERIFY(target.writes("dropped\n"));
    const QByteArray told = target.output();
    QVERIFY2(told.contains("text: Charles Babbage\n"), told);
    for (const char *origin : {"text/vcard", "text/x-vcard", "file"}) {
        QVERIFY2(told.contains(QByteArray(origin) + ": BEGIN:VCARD\n"), told);
        QVERIFY2(told.contains(QByteArray(origin) + ": N:Babbage;Charles;;;\n"), told);
        QVERIFY2(told.contains(QByteArray(origin) + ": END:VCARD\n"), told);
    }
    QVERIFY2(told.contains("/Charles%20Babbage.vcf\n"), told);
}

bool PeopleSession::openMenuByKey(const QString &menu, const QString &entry)
{
    QMenu *open = nullptr;
    const auto isOpen = [&] {
        open = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        return open && open->isVisible();
    };
    if (!Hands::press(menu) || !Stage::eventually(isOpen))
        return false;
    const auto chosen = [&] {
        const QAction *action = Stage::onMain([&] { return open->activeAction(); });
        return action ? action->text().remove(u'&') : QString();
    };
    const qsizetype entries = Stage::onMain([&] { return open->actions().size(); });
    for (qsizetype turn = 0; turn < entries && chosen() != entry; ++turn) {
        const QString before = chosen();
        if (!Hands::press(QStringLiteral("Down")) || !Stage::eventually([&] { return chosen() != before; }))
            return false;
    }
    return chosen() == entry && Hands::press(QStringLiteral("Return"));
}

// From the menu to the end without the pointer.
void PeopleSession::newPersonByKeyboard()
{
    QVERIFY(!saved().contains(QLatin1String("dorothy")));
    QVERIFY(openMenuByKey(QStringLiteral("alt+y"), QStringLiteral("New Person Link...")));
    EVENTUALLY(title(Eyes::dialog()) == QLatin1String("New Person Link"));
    auto *search = Eyes::firstOf<QLineEdit>(Eyes::dialog());
    auto *people = Eyes::firstOf<QListView>(Eyes::dialog());
    EVENTUALLY(search && search->hasFocus());
    EVENTUALLY(people->isVisible() && people->model()->rowCount() >= 6);
    const auto selected = [&] { return people->selectionModel()->selectedRows().value(0).data().toString(); };
    QVERIFY(Hands::type(QStringLiteral("garden.example")));
    EVENTUALLY(selected() == QLatin1String("Dorothy Vaughan"));
    QVERIFY(Hands::press(QStringLiteral("Down")));
    EVENTUALLY(selected() == QLatin1String("Emmy Noether"));
    QVERIFY(Hands::press(QStringLiteral("Up")));
    EVENTUALLY(selected() == QLatin1String("Dorothy Vaughan"));
    QVERIFY(Hands::press(QStringLiteral("Return")));
    EVENTUALLY(!Eyes::dialog());
    EVENTUALLY(hasRow(QStringLiteral("Dorothy Vaughan")));
    EVENTUALLY(saved().contains(QLatin1String("dorothy")));
}

void PeopleSession::newPersonIsStillThere()
{
    EVENTUALLY(hasRow(QStringLiteral("Dorothy Vaughan")));
    QVERIFY(saved().contains(QLatin1String("dorothy")));
}

// Her home page is on the site.
void PeopleSession::relatedPeople()
{
    QVERIFY(!hasRow(QStringLiteral("Mary Somerville")));
    QVERIFY(expand(QStringLiteral("Related Bookmarks")));
    EVENTUALLY(hasRow(QStringLiteral("Mary Somerville")));
    QVERIFY(Hands::press(QStringLiteral("Left"))); // a second click there could be taken for a double click
    EVENTUALLY(!hasRow(QStringLiteral("Mary Somerville")));
}

void PeopleSession::serviceDiesAndComesBack()
{
    const QStringList before = rows();
    QVERIFY(before.contains(QLatin1String("Charles Babbage")));
    QVERIFY(_other.killService());
    Stage::settle();
    QCOMPARE(rows(), before);
    // Asks for the service, which starts again. Nobody is lost for a moment.
    QVERIFY(_other.change(card("charles", "Charles", "Wheatstone", email("charles@engine.example"))));
    QStringList lost; // the rows of such a moment
    const auto hasCome = [&] {
        if (hasRow(QStringLiteral("Invalid")) || rows().size() != before.size())
            lost = rows();
        return hasRow(QStringLiteral("Charles Wheatstone"));
    };
    EVENTUALLY(hasCome());
    QVERIFY2(lost.isEmpty(), qPrintable(lost.join(u'|')));
    QVERIFY(_other.change(card("charles", "Charles", "Babbage", email("charles@engine.example"))));
    EVENTUALLY(hasRow(QStringLiteral("Charles Babbage")));
    QCOMPARE(rows(), before);
}

void PeopleSession::newPersonInGerman()
{
    QVERIFY(openMenuByKey(QStringLiteral("alt+y"), QStringLiteral("Neuer Personen-Link...")));
    EVENTUALLY(title(Eyes::dialog()) == QLatin1String("Neuer Personen-Link"));
    EVENTUALLY(Eyes::dialogButton(QString::fromUtf8("Hinzuf\u00fcgen")));
    QVERIFY(Eyes::dialogButton(QStringLiteral("Abbrechen")));
    QVERIFY(Hands::type(QStringLiteral("dorothy")));
    auto *people = Eyes::firstOf<QListView>(Eyes::dialog());
    EVENTUALLY(people->model()->rowCount() == 1 && people->selectionModel()->hasSelection());
    QVERIFY(Hands::press(QStringLiteral("Return")));
    EVENTUALLY(!Eyes::dialog());
    EVENTUALLY(hasRow(QStringLiteral("Dorothy Vaughan")));
}

void PeopleSession::cleanupTestCase()
{
    QVERIFY(_play.bringToFront(_window));
    QVERIFY(Hands::press(QStringLiteral("ctrl+q")));
    EVENTUALLY(_play.windows().isEmpty());
}

int main(int argc, char **argv)
{
    if (argc >= 3 && qstrcmp(argv[1], "--session") == 0)
        return Play::performAtHome<PeopleSession>(argc - 1, argv + 1); // the functions to play
    const QCoreApplication application(argc, argv);
    PeopleTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "PeopleTest.moc"
