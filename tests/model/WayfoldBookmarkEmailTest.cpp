#include "tests/model/ModelTestSupport.h"

#include "core/settings/WayfoldToolkit.h"

#include <QtTest>

class WayfoldBookmarkEmailTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void parse_data();
    void parse();
    void parseReplacesWhatWasThere();
    void parseIntoTexts();
    void mailURL();
    void urlForMailProgram_data();
    void urlForMailProgram();
    void tooltip_data();
    void tooltip();
    void image();
    void newViaDialog();
    void titleInTheUsersLanguage();
    void editViaDialog();
    void dictionary();
};

void WayfoldBookmarkEmailTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void WayfoldBookmarkEmailTest::cleanup()
{
    _home.reset();
}

static WayfoldBookmarkEmailPtr mail(const QString &address)
{
    return WayfoldBookmarkEmail::bookmarkWithTitleAndURL("Mail", Url::URLWithString(address));
}

void WayfoldBookmarkEmailTest::parse_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QStringList>("to");
    QTest::addColumn<QStringList>("cc");
    QTest::addColumn<QStringList>("bcc");
    QTest::addColumn<QString>("subject");
    const QStringList none;
    QTest::newRow("two recipients, copy, subject")
        << "mailto:ann,bob?cc=cy&subject=Hello%20there" << QStringList{"ann", "bob"} << QStringList{"cy"} << none
        << "Hello there";
    QTest::newRow("one recipient") << "mailto:ann@a.example" << QStringList{"ann@a.example"} << none << none << "";
    QTest::newRow("blind copies") << "mailto:ann?bcc=bea,ben" << QStringList{"ann"} << none << QStringList{"bea", "ben"}
                                  << "";
    QTest::newRow("copies add up") << "mailto:ann?cc=a&cc=b,c" << QStringList{"ann"} << QStringList{"a", "b", "c"}
                                   << none << "";
    QTest::newRow("last subject wins") << "mailto:ann?subject=a&subject=b" << QStringList{"ann"} << none << none << "b";
    // The question mark stays in front of the first name when nobody stands before it.
    QTest::newRow("nobody, subject lost") << "mailto:?subject=Hi" << QStringList{""} << none << none << "";
    QTest::newRow("nobody, later parts kept")
        << "mailto:?subject=Hi&cc=cy" << QStringList{""} << QStringList{"cy"} << none << "";
    QTest::newRow("nobody at all") << "mailto:" << QStringList{""} << none << none << "";
    QTest::newRow("equals sign in the subject") << "mailto:ann?subject=a=b" << QStringList{"ann"} << none << none << "";
    QTest::newRow("name without value") << "mailto:ann?subject" << QStringList{"ann"} << none << none << "";
    QTest::newRow("empty value") << "mailto:ann?cc=&subject=s" << QStringList{"ann"} << QStringList{""} << none << "s";
    QTest::newRow("names in capitals") << "mailto:ann?CC=cy&Subject=Hi&BCC=b" << QStringList{"ann"} << none << none
                                       << "";
    QTest::newRow("other names") << "mailto:ann?body=text&subject=Hi" << QStringList{"ann"} << none << none << "Hi";
    QTest::newRow("plus signs stay") << "mailto:ann?subject=a+b" << QStringList{"ann"} << none << none << "a+b";
    QTest::newRow("UTF-8") << "mailto:%C3%A4?subject=%E2%82%AC" << QStringList{QString::fromUtf8("ä")} << none << none
                           << QString::fromUtf8("€");
    QTest::newRow("escaped comma splits too") << "mailto:ann%2Cbob" << QStringList{"ann", "bob"} << none << none << "";
    QTest::newRow("escaped separators do not")
        << "mailto:ann?subject=a%26cc%3Db" << QStringList{"ann"} << none << none << "a&cc=b";
    QTest::newRow("line ends") << "mailto:ann%0Abob" << QStringList{"ann\nbob"} << none << none << "";
    QTest::newRow("no UTF-8") << "mailto:ann%E4?subject=s" << QStringList{"ann%E4"} << none << none << "s";
    QTest::newRow("empty parts") << "mailto:ann?&&cc=cy&&subject=s&" << QStringList{"ann"} << QStringList{"cy"} << none
                                 << "s";
    QTest::newRow("only separators") << "mailto:?&&&" << QStringList{""} << none << none << "";
    QTest::newRow("empty recipients") << "mailto:,ann," << QStringList{"", "ann", ""} << none << none << "";
    QTest::newRow("no address") << QString() << QStringList{""} << none << none << "";
}

void WayfoldBookmarkEmailTest::parse()
{
    QFETCH(QString, address);
    QStringList to;
    QStringList cc;
    QStringList bcc;
    QString subject;
    mail(address)->parseMailToLinkIntoToListCCListBCCListSubject(to, cc, bcc, subject);
    QTEST(to, "to");
    QTEST(cc, "cc");
    QTEST(bcc, "bcc");
    QTEST(subject, "subject");
    QVERIFY(!subject.isNull());
}

void WayfoldBookmarkEmailTest::parseReplacesWhatWasThere()
{
    QStringList to{"x"};
    QStringList cc{"x"};
    QStringList bcc{"x"};
    QString subject = "x";
    mail("mailto:ann")->parseMailToLinkIntoToListCCListBCCListSubject(to, cc, bcc, subject);
    QCOMPARE(to, QStringList{"ann"});
    QVERIFY(cc.isEmpty() && bcc.isEmpty() && subject.isEmpty());
}

void WayfoldBookmarkEmailTest::parseIntoTexts()
{
    QString to = "x";
    QString cc = "x";
    QString bcc = "x";
    QString subject = "x";
    mail("mailto:ann,bob?cc=a,b&bcc=c&subject=s")->parseMailToLinkIntoToCCBCCSubject(to, cc, bcc, subject);
    QCOMPARE(to, "ann\nbob");
    QCOMPARE(cc, "a\nb");
    QCOMPARE(bcc, "c");
    QCOMPARE(subject, "s");
}

void WayfoldBookmarkEmailTest::mailURL()
{
    const auto text = [](const QStringList &to, const QStringList &cc, const QStringList &bcc, const QString &subject) {
        return WayfoldBookmarkEmail::mailURL(to, cc, bcc, subject).absoluteString();
    };
    QCOMPARE(text({"ann"}, {}, {}, {}), "mailto:ann");
    QCOMPARE(text({"ann", "bob"}, {"c", "d"}, {"e"}, "Hi there"), "mailto:ann,bob?cc=c,d&bcc=e&subject=Hi%20there");
    QCOMPARE(text({}, {}, {"e"}, "s"), "mailto:?bcc=e&subject=s");
    QCOMPARE(text({"Tom & Jerry <t@x.example>"}, {}, {}, " 1+1=2? "),
             "mailto:Tom%20%26%20Jerry%20%3Ct@x.example%3E?subject=1%2B1%3D2%3F");
    QCOMPARE(text({" ann "}, {}, {}, ""), "mailto:ann");
}

void WayfoldBookmarkEmailTest::urlForMailProgram_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char *name, const QString &address, const QString &answer) {
        QTest::newRow(name) << address << answer;
    };
    row("one", "mailto:ann", "mailto:ann");
    row("lines", "mailto:ann%0Abob", "mailto:ann,bob");
    row("lines of other systems", "mailto:ann%0D%0Abob%0dcy", "mailto:ann,bob,cy");
    row("empty lines", "mailto:%0Aann,%0A%0A%20bob%20%0A", "mailto:ann,bob");
    row("copies", "mailto:a%0Ab?cc=c%0Ad&bcc=e%0Af&CC=g%0Ah&subject=i", "mailto:a,b?cc=c,d&bcc=e,f&CC=g,h&subject=i");
    row("lines of a text", "mailto:ann?subject=a%0Ab&body=c%0Ad", "mailto:ann?subject=a%0Ab&body=c%0Ad");
    row("odd parts", "mailto:a%0Ab?&&cc&cc=x=y?z%0A&", "mailto:a,b?&&cc&cc=x=y?z&");
    row("nobody", "mailto:?subject=Hi", "mailto:?subject=Hi");
    row("nothing", "mailto:", "mailto:");
    row("blanks and commas alone", "mailto:ann,%20bob", "mailto:ann,%20bob");
}

void WayfoldBookmarkEmailTest::urlForMailProgram()
{
    QFETCH(QString, address);
    QFETCH(QString, answer);
    QCOMPARE(mail(address)->urlForMailProgram().absoluteString(), answer);
    QVERIFY(WayfoldBookmarkEmail::bookmarkWithTitle("none")->urlForMailProgram().isNull());
}

void WayfoldBookmarkEmailTest::tooltip_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("text");
    QTest::newRow("copy") << "mailto:ann,bob?cc=cy&subject=Hello%20there"
                          << "Subject: Hello there\n\nTo:ann\nbob\n\nCC: cy";
    QTest::newRow("both") << "mailto:ann?cc=c1,c2&bcc=b&subject=s"
                          << "Subject: s\n\nTo:ann\n\nCC: c1\nc2\n\nBCC: b";
    QTest::newRow("blind copy") << "mailto:ann?bcc=b"
                                << "Subject: \n\nTo:ann\n\nBCC: b";
    QTest::newRow("empty copy") << "mailto:ann?cc="
                                << "Subject: \n\nTo:ann";
    QTest::newRow("nobody") << "mailto:?subject=Hi"
                            << "Subject: \n\nTo:";
    QTest::newRow("placeholders in the text") << "mailto:%251%252?subject=%252"
                                              << "Subject: %2\n\nTo:%1%2";
}

void WayfoldBookmarkEmailTest::tooltip()
{
    QFETCH(QString, address);
    QTEST(mail(address)->tooltipText(), "text");
}

void WayfoldBookmarkEmailTest::image()
{
    const auto made = mail("mailto:ann");
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!made->imageForCellSize(QSizeF(16, 16)));
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(true);
    const auto image = made->imageForCellSize(QSizeF(16, 16));
    QVERIFY(image);
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    QCOMPARE(pictureOf(image), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldBookmarkImageMail")));
    QCOMPARE(mail("mailto:bob")->imageForCellSize(QSizeF(64, 64)), image);
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QCOMPARE(made->imageForCellSize(QSizeF(16, 16)), image); // once loaded, whatever the setting
}

void WayfoldBookmarkEmailTest::newViaDialog()
{
    QVERIFY(!WayfoldBookmarkEmail::newViaDialog());
    RecordingDialogs dialogs;
    const auto made = WayfoldBookmarkEmail::newViaDialog();
    QVERIFY(made);
    QCOMPARE(made->title(), "New Email Link");
    QVERIFY(made->url().isNull());
    QCOMPARE(dialogs.opened, QStringList{"newEmail"});
    QCOMPARE(dialogs.item, made);
    dialogs.accepts = false;
    QVERIFY(!WayfoldBookmarkEmail::newViaDialog());
}

void WayfoldBookmarkEmailTest::titleInTheUsersLanguage()
{
    const UserLanguage german("de_DE");
    RecordingDialogs dialogs;
    QCOMPARE(WayfoldBookmarkEmail::newViaDialog()->title(), "Neuer E-Mail-Link");
}

void WayfoldBookmarkEmailTest::editViaDialog()
{
    const auto made = mail("mailto:ann");
    QVERIFY(!made->editViaDialog());
    RecordingDialogs dialogs;
    QVERIFY(made->editViaDialog());
    QCOMPARE(dialogs.opened, QStringList{"editEmail"});
    QCOMPARE(dialogs.item, made);

    const KDRBookmarkPtr before = made->copy();
    dialogs.accepts = false;
    QVERIFY(!made->editViaDialog());
    QVERIFY(made->isEqual(before));
}

void WayfoldBookmarkEmailTest::dictionary()
{
    const auto made = mail("mailto:ann?subject=s");
    const QVariantMap dictionary = made->createDictionary(true);
    QCOMPARE(dictionary["WebBookmarkType"], QVariant("WebBookmarkTypeLeaf"));
    QCOMPARE(dictionary["URLString"], QVariant("mailto:ann?subject=s"));
    QVERIFY(made->isEqual(WayfoldBookmarkURL::bookmarkFromDictionary(dictionary)));
    QCOMPARE(WayfoldBookmarkEmail::bookmarkWithTitle("T")->title(), "T");
}

QTEST_MAIN(WayfoldBookmarkEmailTest)
#include "WayfoldBookmarkEmailTest.moc"
