#include "browser/StartPage.h"

#include "browser/BookmarkFile.h"
#include "browser/Language.h"
#include "browser/SiteIcons.h"
#include "browser/SymbolIcon.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QBuffer>
#include <QLocale>
#include <QPalette>
#include <QTest>
#include <QXmlStreamReader>

class StartPageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void withoutDrawer();
    void newcomer();
    void shortcutThatIsNotSet();
    void german();
    void sites();
    void siteIcons();
    void sitesComeFirst();
    void foldersThatAreNoSites();
    void bookmarks();
    void namesAreNoMarkUp();
    void asksEachTime();
    void nothingFromTheNetwork();
    void lightAndDark();

private:
    QString html() const { return QString::fromUtf8(_page->html()); }
    void addToBar(const QString &title, const QString &address)
    {
        QVERIFY(_bookmarks->addBookmark(title, address, _bookmarks->folders().constFirst()));
    }
    static QString image(const QImage &image);
    void showDrawer(const QStringList &sites = {})
    {
        _page->setDrawerSource([sites] { return StartPage::Drawer{"Ctrl+0", "Ctrl+Shift+O", "Ctrl+Shift+K", sites}; });
    }

    std::unique_ptr<TemporaryHome> _home;
    std::unique_ptr<BookmarkFile> _bookmarks;
    std::unique_ptr<SiteIcons> _icons;
    std::unique_ptr<StartPage> _page;
};

void StartPageTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    _bookmarks = std::make_unique<BookmarkFile>(_home->path("Bookmarks.plist"));
    _icons = std::make_unique<SiteIcons>(_home->path("icons"));
    _page = std::make_unique<StartPage>(_bookmarks.get(), _icons.get());
}

void StartPageTest::cleanup()
{
    QLocale::setDefault(QLocale::c());
    _page.reset();
    _icons.reset();
    _bookmarks.reset();
    _home.reset();
}

QString StartPageTest::image(const QImage &image)
{
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    image.save(&png, "PNG");
    return "data:image/png;base64," + png.data().toBase64();
}

void StartPageTest::withoutDrawer()
{
    QVERIFY(html().contains("<h1>Start Page</h1>"));
    QVERIFY(html().contains("Enter an address above"));
    QVERIFY(!html().contains("drawer"));
    _page->setDrawerSource([] { return std::nullopt; });
    QVERIFY(!html().contains("drawer"));
}

void StartPageTest::newcomer()
{
    showDrawer();
    QVERIFY(html().contains("<html lang=\"en\">"));
    QVERIFY(html().contains("<h1>Welcome to Wayfold</h1>"));
    QVERIFY(html().contains("Every window has a drawer on its side"));
    const QStringList steps = html().split("<li>").mid(1);
    QCOMPARE(steps.size(), 3);
    QVERIFY(steps.at(0).startsWith("<h3>Open the drawer</h3>") && steps.at(0).contains("<kbd>Ctrl+0</kbd>"));
    QVERIFY(steps.at(1).contains("<kbd>Ctrl+Shift+O</kbd>"));
    QVERIFY(steps.at(2).contains("<kbd>Ctrl+Shift+K</kbd>"));
    QVERIFY(!html().contains("Your Sites"));
    QVERIFY(!html().contains('@'));
}

void StartPageTest::shortcutThatIsNotSet()
{
    _page->setDrawerSource([] { return StartPage::Drawer{"", "Ctrl+O", QString(), {}}; });
    QCOMPARE(html().count(QString::fromUtf8("<kbd>In the menu “Wayfold”</kbd>")), 2);
    QCOMPARE(html().count("<kbd>Ctrl+O</kbd>"), 1);
}

void StartPageTest::german()
{
    QLocale::setDefault(QLocale("de_DE"));
    const Language language;
    showDrawer({"a.example"});
    QVERIFY(html().contains("<html lang=\"de\">"));
    QVERIFY(html().contains("<h1>Willkommen bei Wayfold</h1>"));
    QVERIFY(html().contains("<h2>Ihre Websites</h2>"));
    QVERIFY(html().contains(QString::fromUtf8("<h3>Schublade öffnen</h3>")));
}

void StartPageTest::sites()
{
    showDrawer({"b.example", "news.a.example", "localhost", "A.Example"});
    const QStringList items = html().section("Your Sites", 1).section("</ul>", 0, 0).split("<li>").mid(1);
    QCOMPARE(items.size(), 4);
    QVERIFY(items.at(0).startsWith("<a href=\"https://b.example/\">") && items.at(0).contains(">b.example</a>"));
    QVERIFY(items.at(1).startsWith("<a href=\"https://news.a.example/\">"));
    QVERIFY(items.at(2).startsWith("<a href=\"http://localhost/\">"));
    QVERIFY(items.at(3).startsWith("<a href=\"https://a.example/\">") && items.at(3).contains(">A.Example</a>"));
}

void StartPageTest::siteIcons()
{
    QPixmap own(32, 32);
    own.fill(Qt::red);
    _icons->add(QUrl("https://b.example/"), QIcon(own));
    showDrawer({"a.example", "b.example"});
    QCOMPARE(html().count(image(SymbolIcon::image("site", QSize(32, 32)))), 1);
    QCOMPARE(html().count(image(own.toImage())), 1);
    QVERIFY(html().indexOf(image(own.toImage())) > html().indexOf("a.example"));
}

// Who has lists needs the explanation less than the way to them.
void StartPageTest::sitesComeFirst()
{
    showDrawer();
    addToBar("Mark", "http://mark.example/");
    QVERIFY(html().indexOf("<ol>") > 0 && html().indexOf("<ol>") < html().indexOf("Bookmarks</h2>"));
    showDrawer({"a.example"});
    QVERIFY(html().indexOf("Your Sites") < html().indexOf("Bookmarks</h2>"));
    QVERIFY(html().indexOf("Bookmarks</h2>") < html().indexOf("<ol>"));
}

void StartPageTest::foldersThatAreNoSites()
{
    showDrawer({"Recipes", "To read", "a/b.example", "user@a.example", "", "v1.0 notes", "javascript:alert(1.5)",
                "//a.example", "a.example:80"});
    QVERIFY(!html().contains("Your Sites"));
}

void StartPageTest::bookmarks()
{
    addToBar("First", "http://first.example/?a=1&b=2");
    addToBar("Script", "javascript:alert(1)");
    addToBar("Hidden script", " java\tscript:alert(1)");
    _bookmarks->addBookmark("Elsewhere", "http://elsewhere.example/", _bookmarks->folders().at(1));
    QVERIFY(html().contains("<li><a href=\"http://first.example/?a=1&amp;b=2\">First</a></li>"));
    QVERIFY(!html().contains("script:"));
    QVERIFY(!html().contains("elsewhere.example"));
}

void StartPageTest::namesAreNoMarkUp()
{
    const QString evil = "\"><script>alert('1')</script>&@title@";
    addToBar(evil, "http://a.example/\"><script>");
    showDrawer({evil, "<b>.example", "\"onclick=\".example"});
    _page->setDrawerSource([evil] { return StartPage::Drawer{evil, evil, evil, {evil, "<b>.example"}}; });
    QVERIFY(!html().contains("<script"));
    QVERIFY(!html().contains("<b>"));
    QVERIFY(html().contains("<kbd>&quot;&gt;&lt;script&gt;alert('1')&lt;/script&gt;&amp;@title@</kbd>"));
    QVERIFY(html().contains(">&quot;&gt;&lt;script&gt;alert('1')&lt;/script&gt;&amp;@title@</a>"));
}

void StartPageTest::asksEachTime()
{
    QString shortcut = "Ctrl+0";
    _page->setDrawerSource([&] { return StartPage::Drawer{shortcut, "", "", {}}; });
    QVERIFY(html().contains("<kbd>Ctrl+0</kbd>"));
    shortcut = "Ctrl+9";
    QVERIFY(html().contains("<kbd>Ctrl+9</kbd>"));
}

// Neither scripts nor anything that is fetched.
void StartPageTest::nothingFromTheNetwork()
{
    showDrawer({"a.example"});
    QVERIFY(html().contains("http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
                            "style-src 'unsafe-inline'\""));
    QCOMPARE(html().count("src=\""), html().count("src=\"data:"));
    for (const char *forbidden : {"<script", "<link", "url(", "@import", "<iframe"})
        QVERIFY2(!html().contains(forbidden), forbidden);
}

void StartPageTest::lightAndDark()
{
    const QPalette before = QApplication::palette();
    QPalette palette = before;
    palette.setColor(QPalette::Base, QColor("#fffffe"));
    palette.setColor(QPalette::Text, QColor("#010203"));
    QApplication::setPalette(palette);
    QVERIFY(html().contains("color-scheme: light; background: #fffffe; color: #010203;"));
    palette.setColor(QPalette::Base, QColor("#010203"));
    palette.setColor(QPalette::Text, QColor("#fffffe"));
    palette.setColor(QPalette::Link, QColor("#88aaff"));
    QApplication::setPalette(palette);
    QVERIFY(html().contains("color-scheme: dark; background: #010203; color: #fffffe;"));
    QVERIFY(html().contains("a { color: #88aaff;"));
    QVERIFY(html().contains("rgba(255, 255, 254, 0.2)"));
    QApplication::setPalette(before);
}

QTEST_MAIN(StartPageTest)
#include "StartPageTest.moc"
