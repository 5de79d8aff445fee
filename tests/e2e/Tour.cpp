#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "platform/files/PropertyList.h"
#include "tests/e2e/support/Camera.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"
#include "tests/e2e/support/PlayedRelease.h"
#include "tests/e2e/support/Tool.h"

#include <QAbstractButton>
#include <QBuffer>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenuBar>
#include <QPainter>
#include <QProcess>
#include <QTabBar>
#include <QTextEdit>
#include <QToolTip>
#include <QTreeView>
#include <cstdio>

// The guided tour: plays what Wayfold is for, as a user would, with real pointer and keys on real pages, and leaves a
// picture of each step and the home directory that comes of it.
//
//     run-in-display.sh wayfold-tour DIR    gives DIR/01-first-start.png ... and DIR/home
//
// The browser is quit and started again in between; each of its sessions is a process of its own, which this program
// starts from itself. The exit status is 0 only when every step has come about.

namespace
{
const QString news = QStringLiteral("http://news.fernhill.localhost/");
const QString kitchen = QStringLiteral("http://www.kettle.localhost/");
const QString trains = QStringLiteral("http://times.marshline.localhost/");
const QString story = QStringLiteral("The old observatory opens its dome again");
// Sessions that are played again as other desktops show them.
const QString preferences = QStringLiteral("preferences");
const QString panel = QStringLiteral("new-person");
const QString dark = QStringLiteral("-dark");
const QString german = QStringLiteral("-german");
const QString twice = QStringLiteral("-2x"); // two pixels to the point
const QString noteTitle = QStringLiteral("First Friday");
const QString noteText = QStringLiteral("Eight o'clock, north shoulder of the hill.\n"
                                        "Bring good shoes and a torch with a red cloth.");

QByteArray page(const QString &name)
{
    QFile file(QStringLiteral(":/pages/") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the page %s is missing", qPrintable(name));
    return file.readAll();
}

void furnish(PageServer &web)
{
    const auto furnishSite = [&](const QString &address, const QString &name) {
        const QString host = QUrl(address).host();
        web.setPage(host, QStringLiteral("/"), page(name + QStringLiteral(".html")));
        web.setFile(host, QStringLiteral("/icon.svg"), "image/svg+xml", page(name + QStringLiteral(".svg")));
    };
    furnishSite(news, QStringLiteral("fernhill"));
    furnishSite(kitchen, QStringLiteral("kettle"));
    furnishSite(trains, QStringLiteral("marshline"));
    const QString host = QUrl(news).host();
    web.setPage(host, QStringLiteral("/observatory"), page(QStringLiteral("observatory.html")));
    web.setFile(host, QStringLiteral("/fernhill.css"), "text/css", page(QStringLiteral("fernhill.css")));
}

// A picture of somebody, painted in these colours.
QByteArray portrait(const QColor &ground, const QColor &hair)
{
    QImage image(96, 96, QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(hair);
    painter.drawEllipse(QPoint(48, 38), 25, 26);
    painter.setBrush(QColor(236, 200, 170));
    painter.drawEllipse(QPoint(48, 44), 19, 22);
    painter.setBrush(QColor(74, 92, 112));
    painter.drawEllipse(QPoint(48, 100), 38, 32);
    painter.end();
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    return png;
}

QByteArray card(const QByteArray &id, const QByteArray &name, const QByteArrayList &lines, const QByteArray &png = {})
{
    QByteArray text =
        "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:" + id + "\r\nFN:" + name + "\r\n" + lines.join("\r\n") + "\r\n";
    if (!png.isEmpty())
        text += "PHOTO:data:image/png;base64," + png.toBase64() + "\r\n";
    return text + "END:VCARD\r\n";
}

// The contacts of who plays, as cards in the usual folder.
QByteArrayList contacts()
{
    return {
        card("ines", "Ines Okafor",
             {"N:Okafor;Ines;;;", "ORG:Fernhill Observatory",
              "EMAIL;TYPE=work;PREF=1:ines@observatory.fernhill.localhost", "EMAIL;TYPE=home:ines.okafor@post.example",
              "TEL;TYPE=work:+44 20 7946 0991", "TEL;TYPE=cell;PREF=1:+44 7700 900461"},
             portrait(QColor(146, 178, 160), QColor(48, 38, 34))),
        card("tomas", "Tomas Brandt", {"N:Brandt;Tomas;;;", "EMAIL;TYPE=work:tomas@fernhill.localhost"},
             portrait(QColor(214, 180, 120), QColor(150, 96, 40))),
        card("mirela", "Mirela Sand", {"N:Sand;Mirela;;;", "EMAIL;TYPE=home:mirela@post.example"}),
        card("yusuf", "Yusuf Demir, Jr.", {"N:Demir;Yusuf;;;Jr.", "TEL;TYPE=cell:+49 1515 5550123"}),
        card("kettle", "The Copper Kettle",
             {"KIND:org", "ORG:The Copper Kettle", "EMAIL;TYPE=work:hello@kettle.localhost",
              "URL:http://www.kettle.localhost/"}),
        card("walk", "First Friday Walk",
             {"KIND:group", "MEMBER:urn:uuid:ines", "MEMBER:urn:uuid:mirela", "MEMBER:urn:uuid:yusuf"}),
        card("me", "Alma Reyes", {"N:Reyes;Alma;;;", "EMAIL;TYPE=home:alma@post.example"}),
    };
}

bool writeContacts(const QDir &home)
{
    for (const QByteArray &text : contacts()) {
        const QString id = QString::fromUtf8(text.mid(text.indexOf("UID:") + 4)).section(u'\r', 0, 0);
        QFile file(home.filePath(QStringLiteral(".contacts/%1.vcf").arg(id)));
        if (!home.mkpath(QStringLiteral(".contacts")) || !file.open(QIODevice::WriteOnly) ||
            file.write(text) != text.size())
            return false;
    }
    return true;
}

QPalette darkPalette()
{
    QPalette palette(QColor(48, 50, 54));
    palette.setColor(QPalette::Base, QColor(34, 36, 39));
    palette.setColor(QPalette::AlternateBase, QColor(41, 43, 47));
    palette.setColor(QPalette::Highlight, QColor(62, 118, 178));
    palette.setColor(QPalette::Link, QColor(120, 176, 236));
    palette.setColor(QPalette::ToolTipBase, QColor(60, 62, 67));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(128, 131, 136));
    return palette;
}
} // namespace

// What the sessions have in common: a window beside which the drawer fits the screen, and pictures. A step that fails
// ends its session.
class TourSession : public QObject
{
    Q_OBJECT

public:
    explicit TourSession(Play &play) : _play(play), _camera(QDir::current().path(), takenSoFar()) {}

protected:
    bool arrange();
    static void paintDesktop();
    bool shoot(const QString &name);
    bool focus();
    bool savePage(const QString &title);
    bool expand(const QString &row);
    bool quit();

    Play &_play;
    BrowserWindow *_window = nullptr;

private Q_SLOTS:
    void init();
    void cleanup() { _hasFailed = QTest::currentTestFailed(); }

private:
    static int takenSoFar() { return int(QDir::current().entryList({QStringLiteral("*.png")}).size()); }

    Camera _camera;
    bool _hasFailed = false;
};

void TourSession::init()
{
    if (_hasFailed)
        QFAIL("an earlier step has failed");
    if (!_window) {
        EVENTUALLY(_play.window());
        _hasFailed = !arrange();
        QVERIFY(!_hasFailed);
    }
}

bool TourSession::arrange()
{
    furnish(_play.web());
    _window = _play.window();
    const QSize size(972, 766);
    Stage::onMain([&] {
        _window->resize(size);
        _window->move(0, 0);
    });
    paintDesktop();
    return Stage::eventually([&] { return _window->size() == size && _window->frameGeometry().topLeft().isNull(); });
}

// Exits with 1 when it has painted, too.
void TourSession::paintDesktop()
{
    Tool::run(QStringLiteral("display"), {QStringLiteral("-window"), QStringLiteral("root"), QStringLiteral("-size"),
                                          QStringLiteral("64x64"), QStringLiteral("xc:#5b7384")});
}

bool TourSession::shoot(const QString &name)
{
    Stage::settle();
    return _camera.shoot(name);
}

bool TourSession::focus()
{
    const QString host = Stage::onMain([this] { return QUrl(Play::address(_window)).host(); });
    return _play.choose({QStringLiteral("Wayfold"), QStringLiteral("Focus on ") + host}) &&
           Stage::eventually([this] { return Play::isDrawerOpen(_window); }) &&
           Stage::eventually([&] { return host.endsWith(Play::siteLabel(_window)); });
}

bool TourSession::savePage(const QString &title)
{
    return _play.choose({QStringLiteral("Wayfold"), QStringLiteral("Save Current Page")}) &&
           Stage::eventually([&] { return Play::scratchRows(_window).contains(title); });
}

bool TourSession::expand(const QString &row)
{
    const qsizetype before = Play::scratchRows(_window).size();
    return _play.chooseRow(row) && Hands::press(QStringLiteral("Right")) &&
           Stage::eventually([&] { return Play::scratchRows(_window).size() > before; });
}

bool TourSession::quit()
{
    return _play.bringToFront(_window) && Hands::press(QStringLiteral("ctrl+q")) &&
           Stage::eventually([this] { return _play.windows().isEmpty(); });
}

// A new user finds his way.
class FirstSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

private Q_SLOTS:
    void start();
    void openTheDrawer();
    void visitASite();
    void saveAPage();
    void writeANote();
    void visitAnotherSite();
    void switchBack();
    void seeAllSites();
    void leave() { QVERIFY(quit()); }
};

void FirstSession::start()
{
    EVENTUALLY(Play::isDrawerClosed(_window));
    QVERIFY(shoot(QStringLiteral("first-start")));
}

void FirstSession::openTheDrawer()
{
    QVERIFY(_play.openDrawer());
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("Sites"));
    QVERIFY(shoot(QStringLiteral("drawer-opened")));
}

void FirstSession::visitASite()
{
    QVERIFY(_play.visit(news));
    QVERIFY(focus());
    QVERIFY(shoot(QStringLiteral("empty-list-of-a-site")));
}

void FirstSession::saveAPage()
{
    QVERIFY(_play.clickLink(story));
    EVENTUALLY(Play::isShown(_window, news + QStringLiteral("observatory")));
    QVERIFY(savePage(story));
    QVERIFY(shoot(QStringLiteral("page-saved")));
}

void FirstSession::writeANote()
{
    QVERIFY(Hands::clickOn(Play::drawerButton(_window, QStringLiteral("New Note"))));
    EVENTUALLY(Eyes::dialog());
    QVERIFY(Hands::clickInto(Eyes::firstOf<QLineEdit>(Eyes::dialog())));
    QVERIFY(Hands::press(QStringLiteral("ctrl+a")));
    QVERIFY(Hands::type(noteTitle));
    QVERIFY(Hands::clickInto(Eyes::firstOf<QTextEdit>(Eyes::dialog())));
    QVERIFY(Hands::type(noteText));
    EVENTUALLY(Eyes::firstOf<QTextEdit>(Eyes::dialog())->toPlainText() == noteText);
    QVERIFY(shoot(QStringLiteral("note-being-written")));
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("OK"))));
    EVENTUALLY(Play::scratchRows(_window).contains(noteTitle));
    QVERIFY(shoot(QStringLiteral("note-kept")));
}

void FirstSession::visitAnotherSite()
{
    QVERIFY(_play.visit(kitchen));
    QVERIFY(focus());
    QVERIFY(savePage(QStringLiteral("Plum cake from the tin")));
    QVERIFY(shoot(QStringLiteral("second-site")));
}

void FirstSession::switchBack()
{
    QVERIFY(Hands::clickOn(Play::drawerButton(_window, QStringLiteral("Show Previous Site List"))));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("fernhill.localhost"));
    EVENTUALLY(Play::scratchRows(_window).contains(story));
    QVERIFY(shoot(QStringLiteral("switched-back")));
}

void FirstSession::seeAllSites()
{
    QVERIFY(_play.chooseSite(QStringLiteral("Sites")));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("fernhill.localhost")));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("kettle.localhost")));
    QVERIFY(expand(QStringLiteral("kettle.localhost")));
    QVERIFY(expand(QStringLiteral("fernhill.localhost")));
    QVERIFY(shoot(QStringLiteral("all-sites")));
}

// The next day everything is where it was.
class SecondSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

private Q_SLOTS:
    void findAgain();
    void readTheNote();
    void openTheLink();
    void leave() { QVERIFY(quit()); }
};

void SecondSession::findAgain()
{
    QVERIFY(_play.visit(news));
    QVERIFY(focus());
    EVENTUALLY(Play::scratchRows(_window).contains(story));
    EVENTUALLY(Play::scratchRows(_window).contains(noteTitle));
    QVERIFY(shoot(QStringLiteral("found-again-after-restart")));
}

void SecondSession::readTheNote()
{
    QVERIFY(Hands::doubleClickOnRow(Play::scratchList(_window), noteTitle));
    const auto isShown = [] {
        for (const QWidget *window : QApplication::topLevelWidgets()) {
            const auto *text = window->findChild<QTextEdit *>();
            if (window->isVisible() && window->isActiveWindow() && text && text->toPlainText() == noteText)
                return true;
        }
        return false;
    };
    EVENTUALLY(isShown());
    QVERIFY(shoot(QStringLiteral("note-read-again")));
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(_window->isActiveWindow() || Play::drawer(_window)->isActiveWindow());
}

void SecondSession::openTheLink()
{
    QVERIFY(Hands::doubleClickOnRow(Play::scratchList(_window), story));
    EVENTUALLY(Play::isShown(_window, news + QStringLiteral("observatory")));
    QVERIFY(shoot(QStringLiteral("link-opened")));
}

// The browser's own bookmarks and its history stand beside the Scratchpad.
class ListsSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

private Q_SLOTS:
    void bookmarkPages();
    void seeBookmarks();
    void searchBookmarks();
    void seeHistory();
    void searchHistory();
    void findNothing();
    void seeWhatIsRelated();
    void leave() { QVERIFY(quit()); }

private:
    QTreeView *list(const QString &name) const { return Eyes::widgetNamed<QTreeView>(Play::drawer(_window), name); }
    bool expandRow(QTreeView *list, const QString &row);
    bool search(const QString &field, const QString &text);

    const QString _bookmarks = QStringLiteral("bookmarkOutlineView");
    const QString _history = QStringLiteral("historyOutlineView");
};

bool ListsSession::expandRow(QTreeView *list, const QString &row)
{
    const qsizetype before = Eyes::rowTexts(list).size();
    return Hands::clickOnRow(list, row) && Stage::eventually([list] { return list->hasFocus(); }) &&
           Hands::press(QStringLiteral("Right")) &&
           Stage::eventually([&] { return Eyes::rowTexts(list).size() > before; });
}

bool ListsSession::search(const QString &field, const QString &text)
{
    auto *searchField = Eyes::widgetNamed<QLineEdit>(Play::drawer(_window), field);
    return Hands::clickOn(searchField) && Hands::press(QStringLiteral("ctrl+a")) && Hands::type(text) &&
           Stage::eventually([&] { return searchField->text() == text; });
}

void ListsSession::bookmarkPages()
{
    for (const QString &address : {news, kitchen, trains}) {
        QVERIFY(_play.visit(address));
        QVERIFY(Hands::press(QStringLiteral("ctrl+d")));
        EVENTUALLY(Eyes::dialog());
        QVERIFY(Hands::press(QStringLiteral("Return")));
        EVENTUALLY(!Eyes::dialog());
    }
    QVERIFY(_play.openDrawer());
}

void ListsSession::seeBookmarks()
{
    QVERIFY(_play.showDrawerTab(QStringLiteral("Bookmarks")));
    QVERIFY(expandRow(list(_bookmarks), QStringLiteral("BookmarksMenu")));
    EVENTUALLY(Eyes::rowTexts(list(_bookmarks)).size() == 5);
    QVERIFY(shoot(QStringLiteral("bookmarks")));
}

void ListsSession::searchBookmarks()
{
    QVERIFY(search(QStringLiteral("bookmarkSearchField"), QStringLiteral("kettle")));
    EVENTUALLY(Eyes::rowTexts(list(_bookmarks)).size() == 1);
    QVERIFY(shoot(QStringLiteral("bookmarks-searched")));
}

void ListsSession::seeHistory()
{
    QVERIFY(_play.showDrawerTab(QStringLiteral("History")));
    EVENTUALLY(Eyes::rowTexts(list(_history)).size() >= 3);
    QVERIFY(expandRow(list(_history), QStringLiteral("fernhill.localhost")));
    QVERIFY(expandRow(list(_history), Eyes::rowTexts(list(_history)).value(1)));
    EVENTUALLY(Eyes::rowTexts(list(_history)).contains(story));
    QVERIFY(shoot(QStringLiteral("history")));
}

void ListsSession::searchHistory()
{
    QVERIFY(search(QStringLiteral("historySearchField"), QStringLiteral("observ")));
    EVENTUALLY(Eyes::rowTexts(list(_history)) == QStringList{story});
    QVERIFY(shoot(QStringLiteral("history-searched")));
}

void ListsSession::findNothing()
{
    QVERIFY(search(QStringLiteral("historySearchField"), QStringLiteral("zeppelin")));
    EVENTUALLY(Eyes::rowTexts(list(_history)).isEmpty());
    QVERIFY(shoot(QStringLiteral("nothing-found")));
}

void ListsSession::seeWhatIsRelated()
{
    QVERIFY(_play.visit(news));
    QVERIFY(focus());
    QVERIFY(expand(QStringLiteral("Related History")));
    QVERIFY(expand(Play::scratchRows(_window).constLast()));
    QVERIFY(expand(QStringLiteral("Related Bookmarks")));
    EVENTUALLY(Play::scratchRows(_window).count(story) == 2); // kept, and visited
    QVERIFY(shoot(QStringLiteral("related-to-the-site")));
}

// The people who belong to a site, from the user's contacts.
class PeopleSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

private Q_SLOTS:
    void choosePeople();
    void seePeople();
    void readATip();
    void writeToThem();
    void seeRelatedPeople();
    void leave() { QVERIFY(quit()); }
};

static bool openPanel(const BrowserWindow *window, const QString &button)
{
    return Hands::clickOn(Play::drawerButton(window, button)) && Stage::eventually([] { return bool(Eyes::dialog()); });
}

void PeopleSession::choosePeople()
{
    QVERIFY(_play.visit(news));
    QVERIFY(focus());
    EVENTUALLY(Play::scratchRows(_window).contains(story));
    for (const QString &who : {QStringLiteral("fernhill observ"), QStringLiteral("walk"), QStringLiteral("yusuf")}) {
        QVERIFY(openPanel(_window, QStringLiteral("New Person Link")));
        auto *people = Eyes::firstOf<QListView>(Eyes::dialog());
        EVENTUALLY(people && people->model()->rowCount() == contacts().size());
        if (who == QLatin1String("yusuf"))
            QVERIFY(shoot(QStringLiteral("contacts")));
        QVERIFY(Hands::type(who));
        EVENTUALLY(people->model()->rowCount() == 1 && people->selectionModel()->hasSelection());
        if (who == QLatin1String("yusuf"))
            QVERIFY(shoot(QStringLiteral("person-found")));
        QVERIFY(Hands::press(QStringLiteral("Return")));
        EVENTUALLY(!Eyes::dialog());
    }
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Yusuf Demir, Jr.")));
}

void PeopleSession::seePeople()
{
    QVERIFY(expand(QStringLiteral("First Friday Walk")));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Mirela Sand")));
    QVERIFY(shoot(QStringLiteral("people-and-a-group")));
}

void PeopleSession::readATip()
{
    const std::optional<QPoint> row = Eyes::rowWithText(Play::scratchList(_window), QStringLiteral("Ines Okafor"));
    QVERIFY(row && Hands::moveTo(*row));
    EVENTUALLY(QToolTip::isVisible() && QToolTip::text().contains(QLatin1String("7700 900461")));
    QVERIFY(shoot(QStringLiteral("person-read-about")));
}

void PeopleSession::writeToThem()
{
    constexpr int rightButton = 3;
    QTreeView *list = Play::scratchList(_window);
    QVERIFY(_play.chooseRow(QStringLiteral("Ines Okafor")));
    QVERIFY(Hands::clickOnAnotherRow(list, QStringLiteral("First Friday Walk")));
    EVENTUALLY(list->selectionModel()->selectedRows().size() == 2);
    QVERIFY(Hands::click(rightButton));
    EVENTUALLY(QApplication::activePopupWidget());
    QVERIFY(shoot(QStringLiteral("mail-to-people")));
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(!QApplication::activePopupWidget());
}

void PeopleSession::seeRelatedPeople()
{
    QVERIFY(_play.chooseRow(QStringLiteral("First Friday Walk")));
    QVERIFY(Hands::press(QStringLiteral("Left")));
    QVERIFY(expand(QStringLiteral("Related Bookmarks")));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Tomas Brandt")));
    QVERIFY(shoot(QStringLiteral("people-related-to-the-site")));
}

// The panel in which people are chosen, as every desktop shows it.
class PanelSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

    // Of the session; the picture is called so.
    static inline QString name;

private Q_SLOTS:
    void openIt();
    void leave();
};

void PanelSession::openIt()
{
    const bool isGerman = name.endsWith(german);
    QVERIFY(_play.visit(news));
    EVENTUALLY(Play::isDrawerOpen(_window)); // the site is known
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Ines Okafor")));
    Stage::settle();
    QVERIFY(openPanel(_window, isGerman ? QStringLiteral("Neuer Personen-Link") : QStringLiteral("New Person Link")));
    auto *people = Eyes::firstOf<QListView>(Eyes::dialog());
    EVENTUALLY(people && people->model()->rowCount() == contacts().size());
    QVERIFY(Hands::press(QStringLiteral("Down")));
    EVENTUALLY(people->selectionModel()->hasSelection());
    QVERIFY(shoot(name));
}

void PanelSession::leave()
{
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(!Eyes::dialog());
    QVERIFY(quit());
}

// With the settings of a user who wants the drawer to follow him.
class FollowingSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

private Q_SLOTS:
    void opensByItself();
    void followsToAnotherSite();
    void leave() { QVERIFY(quit()); }
};

void FollowingSession::opensByItself()
{
    EVENTUALLY(Play::isDrawerClosed(_window));
    QVERIFY(_play.visit(kitchen));
    EVENTUALLY(Play::isDrawerOpen(_window));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Plum cake from the tin")));
    QVERIFY(shoot(QStringLiteral("known-site-opens-the-drawer")));
}

void FollowingSession::followsToAnotherSite()
{
    QVERIFY(_play.openTab());
    QVERIFY(_play.visit(trains));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("marshline.localhost"));
    QVERIFY(_play.openTab());
    QVERIFY(_play.visit(news));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("fernhill.localhost"));
    QVERIFY(shoot(QStringLiteral("following-to-another-site")));
}

// With the settings of a user who wants no icons in the lists.
class IconlessSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

private Q_SLOTS:
    void seeTitlesAlone();
    void leave() { QVERIFY(quit()); }
};

void IconlessSession::seeTitlesAlone()
{
    QVERIFY(_play.visit(news));
    EVENTUALLY(Play::isDrawerOpen(_window));
    EVENTUALLY(Play::scratchRows(_window).contains(story));
    QVERIFY(shoot(QStringLiteral("icons-switched-off")));
}

// The drawer beside a page in a dark palette.
class DarkSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

private Q_SLOTS:
    void visitInTheDark();
    void leave() { QVERIFY(quit()); }
};

void DarkSession::visitInTheDark()
{
    QVERIFY(_play.visit(kitchen));
    EVENTUALLY(Play::isDrawerOpen(_window));
    QVERIFY(shoot(QStringLiteral("dark-palette")));
    QVERIFY(_play.showDrawerTab(QStringLiteral("History")));
    QVERIFY(shoot(QStringLiteral("dark-palette-history")));
    QVERIFY(_play.showDrawerTab(QStringLiteral("Scratchpad")));
    QVERIFY(_play.visit(news));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Ines Okafor")));
    QVERIFY(expand(QStringLiteral("First Friday Walk")));
    QVERIFY(shoot(QStringLiteral("dark-palette-people")));
}

// Whether there is a newer release is asked of a server that stands in for the maker's.
class ReleaseSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

private Q_SLOTS:
    void upToDate();
    void newerThanAvailable();
    void newVersion();
    void leave() { QVERIFY(quit()); }

private:
    bool check(const QString &released, int number, const QString &alert);

    const PlayedRelease _release{_play.web(), QStringLiteral("1.2.3")};
};

bool ReleaseSession::check(const QString &released, int number, const QString &alert)
{
    _release.publish(released, number);
    return _play.choose({QStringLiteral("Wayfold"), QStringLiteral("Check for New Release...")}) &&
           Stage::eventually([] { return Eyes::dialog() != nullptr; }) && Eyes::dialogText().contains(alert);
}

void ReleaseSession::upToDate()
{
    QVERIFY(check(QStringLiteral("1.2.3"), 10203, QStringLiteral("Your Wayfold version 1.2.3 is up to date.")));
    QVERIFY(shoot(QStringLiteral("release-up-to-date")));
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("OK"))));
    EVENTUALLY(!Eyes::dialog());
}

void ReleaseSession::newerThanAvailable()
{
    QVERIFY(check(QStringLiteral("1.1.0"), 10100, QStringLiteral("is newer than the version available")));
    QVERIFY(shoot(QStringLiteral("release-newer-than-available")));
    QVERIFY(Hands::press(QStringLiteral("Return")));
    EVENTUALLY(!Eyes::dialog());
}

void ReleaseSession::newVersion()
{
    QVERIFY(check(QStringLiteral("1.3.0"), 10300, QStringLiteral("Wayfold 1.3.0 is now available.")));
    QVERIFY(shoot(QStringLiteral("release-new-version")));
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("Cancel"))));
    EVENTUALLY(!Eyes::dialog());
}

// The preferences, as every desktop shows them.
class PreferencesSession : public TourSession
{
    Q_OBJECT

public:
    using TourSession::TourSession;

    // Of the session; the pictures begin with it.
    static inline QString name;

private Q_SLOTS:
    void openThem();
    void seePages();
    void chooseContacts();
    void chooseAFont();
    void pressAShortcut();
    void leave();

private:
    static QWidget *windowNamed(const QString &name);
    bool shootPreferences(const QString &what) { return shoot(name + u'-' + what); }
    bool showPage(int page);

    QWidget *_preferences = nullptr;
};

// The plug-in's windows are known here by their names, or by their classes' names, only.
QWidget *PreferencesSession::windowNamed(const QString &name)
{
    return Stage::onMain([&]() -> QWidget * {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            const bool isMeant = window->objectName() == name || window->inherits(qPrintable(name));
            if (isMeant && window->isVisible() && window->isActiveWindow())
                return window;
        }
        return nullptr;
    });
}

bool PreferencesSession::showPage(int page)
{
    auto *bar = Eyes::firstOf<QTabBar>(_preferences);
    return Hands::pointAt(bar, [&] { return std::optional(bar->mapToGlobal(bar->tabRect(page).center())); }) &&
           Hands::click() && Stage::eventually([&] { return bar->currentIndex() == page; });
}

void PreferencesSession::openThem()
{
    const bool isGerman = QLocale().language() == QLocale::German;
    const auto *menuBar = Eyes::firstOf<QMenuBar>(_window);
    NOW(menuBar->actions().constFirst()->text() == (isGerman ? QLatin1String("&Datei") : QLatin1String("&File")));
    QVERIFY(_play.choose(
        {QStringLiteral("Wayfold"), isGerman ? QStringLiteral("Einstellungen...") : QStringLiteral("Preferences...")}));
    EVENTUALLY(_preferences = windowNamed(QStringLiteral("prefsWindow")));
}

void PreferencesSession::seePages()
{
    QVERIFY(shootPreferences(QStringLiteral("drawer")));
    QVERIFY(showPage(1));
    QVERIFY(shootPreferences(QStringLiteral("lists")));
    QVERIFY(showPage(2));
    QVERIFY(shootPreferences(QStringLiteral("shortcuts")));
}

void PreferencesSession::chooseContacts()
{
    QVERIFY(showPage(0));
    auto *source = Eyes::widgetNamed<QComboBox>(_preferences, QStringLiteral("contactSourceField"));
    QVERIFY(source);
    QVERIFY(Hands::clickOn(source));
    EVENTUALLY(source->view()->isVisible());
    QVERIFY(shootPreferences(QStringLiteral("contacts")));
    QVERIFY(Hands::press(QStringLiteral("Down Down Return")));
    EVENTUALLY(source->currentIndex() == 2 && !source->view()->isVisible());
    auto *inUse = Eyes::widgetNamed<QLabel>(_preferences, QStringLiteral("contactsInUseField"));
    EVENTUALLY(inUse->text().startsWith(QString::number(contacts().size() - 1))); // one of them is a group
    QVERIFY(shootPreferences(QStringLiteral("folder-of-cards")));
    QVERIFY(Hands::press(QStringLiteral("Up Up")));
    EVENTUALLY(source->currentIndex() == 0);
}

void PreferencesSession::chooseAFont()
{
    QVERIFY(showPage(1));
    QVERIFY(Hands::clickOn(Eyes::widgetNamed<QAbstractButton>(_preferences, QStringLiteral("setDrawerFontButton"))));
    EVENTUALLY(windowNamed(QStringLiteral("FontPanel")));
    EVENTUALLY(Play::isDrawerOpen(_window));
    QVERIFY(shootPreferences(QStringLiteral("font")));
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(_preferences->isActiveWindow());
}

void PreferencesSession::pressAShortcut()
{
    QVERIFY(showPage(2));
    QVERIFY(Hands::press(QStringLiteral("alt+m"))); // the letter of the table's label, in German too
    QVERIFY(Hands::press(QStringLiteral("Return")));
    EVENTUALLY(windowNamed(QStringLiteral("WayfoldShortcutPanel")));
    QVERIFY(Hands::press(QStringLiteral("F11"))); // full screen, in the browser
    QVERIFY(shootPreferences(QStringLiteral("shortcut-refused")));
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+y")));
    QVERIFY(shootPreferences(QStringLiteral("shortcut-pressed")));
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(_preferences->isActiveWindow());
}

void PreferencesSession::leave()
{
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(_window->isActiveWindow());
    QVERIFY(quit());
}

namespace
{
template <class Session>
int playAsDesktopShows(const QString &name, int argc, char **argv)
{
    Session::name = name;
    if (name.endsWith(twice))
        qputenv("QT_SCALE_FACTOR", "2");
    const QPalette palette = darkPalette();
    return Play::performAtHome<Session>(argc, argv, name.endsWith(dark) ? &palette : nullptr);
}

int playSession(const QString &name, int argc, char **argv)
{
    if (name == QLatin1String("first"))
        return Play::performAtHome<FirstSession>(argc, argv);
    if (name == QLatin1String("second"))
        return Play::performAtHome<SecondSession>(argc, argv);
    if (name == QLatin1String("lists"))
        return Play::performAtHome<ListsSession>(argc, argv);
    if (name == QLatin1String("people"))
        return Play::performAtHome<PeopleSession>(argc, argv);
    if (name == QLatin1String("release"))
        return Play::performAtHome<ReleaseSession>(argc, argv);
    if (name.startsWith(preferences))
        return playAsDesktopShows<PreferencesSession>(name, argc, argv);
    if (name.startsWith(panel))
        return playAsDesktopShows<PanelSession>(name, argc, argv);
    Play::storeSettings({{QStringLiteral("WayfoldAutoFocusOnSiteChange"), 1},
                         {QStringLiteral("WayfoldOpenDrawerForKnownSite"), 1},
                         {QStringLiteral("WayfoldShowBookmarkIcons"), name == QLatin1String("iconless") ? 0 : 1}});
    if (name == QLatin1String("following"))
        return Play::performAtHome<FollowingSession>(argc, argv);
    if (name == QLatin1String("iconless"))
        return Play::performAtHome<IconlessSession>(argc, argv);
    const QPalette palette = darkPalette();
    return Play::performAtHome<DarkSession>(argc, argv, &palette);
}

// Clears away what an earlier tour has left, and nothing else: a home without the tour's mark is left alone.
bool prepare(const QDir &directory)
{
    QDir home(directory.filePath(QStringLiteral("home")));
    const QString mark = QStringLiteral(".wayfold-tour");
    if (home.exists() && !home.isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot) && !home.exists(mark)) {
        std::fprintf(stderr, "%s is not a tour's; it stays as it is\n", qPrintable(home.path()));
        return false;
    }
    for (const QString &picture : directory.entryList({QStringLiteral("[0-9][0-9]-*.png")}, QDir::Files))
        QFile::remove(directory.filePath(picture));
    home.removeRecursively();
    QFile markFile(home.filePath(mark));
    return directory.mkpath(home.path()) && markFile.open(QIODevice::WriteOnly) && writeContacts(home);
}

bool runSession(const QString &name, const QDir &directory)
{
    QProcess browser;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), directory.filePath(QStringLiteral("home")));
    if (name.endsWith(german))
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    browser.setProcessEnvironment(environment);
    browser.setWorkingDirectory(directory.path());
    browser.setProcessChannelMode(QProcess::ForwardedChannels);
    browser.setStandardInputFile(QProcess::nullDevice());
    const QStringList command{QCoreApplication::applicationFilePath(), QStringLiteral("--session"), name};
    if (name.endsWith(twice)) // on a display of its own, which has as many points as the other
        browser.start(QStringLiteral(WAYFOLD_DISPLAY),
                      QStringList{QStringLiteral("-s"), QStringLiteral("2560x1600")} + command);
    else
        browser.start(command.constFirst(), command.mid(1));
    return browser.waitForFinished(-1) && browser.exitStatus() == QProcess::NormalExit && browser.exitCode() == 0;
}

bool hasKept(const QDir &directory)
{
    const QString file = directory.filePath(QStringLiteral("home/Library/Wayfold/Bookmarks.plist"));
    const QByteArray contents = PropertyList::toXml(PropertyList::readDictionaryFile(file));
    return contents.contains(story.toUtf8()) && contents.contains(noteTitle.toUtf8()) &&
           contents.contains("<string>ABPerson</string>") && contents.contains("<string>ABGroup</string>");
}
} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--session") == 0)
        return playSession(QString::fromUtf8(argv[2]), 1, argv);
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: wayfold-tour DIR\n");
        return 64;
    }
    const QDir directory(QDir(QString::fromUtf8(argv[1])).absolutePath());
    if (!directory.mkpath(QStringLiteral(".")) || !prepare(directory))
        return 73;
    for (const QString &name :
         {QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("lists"), QStringLiteral("people"),
          QStringLiteral("following"), QStringLiteral("iconless"), QStringLiteral("dark"), QStringLiteral("release"),
          preferences, preferences + dark, preferences + german, preferences + twice, panel + dark, panel + german,
          panel + twice}) {
        if (!runSession(name, directory))
            return 1;
    }
    return hasKept(directory) ? 0 : 1;
}

#include "Tour.moc"
