#include "core/ReleaseCheck.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/files/Bundle.h"
#include "platform/files/PropertyList.h"
#include "platform/widgets/Workspace.h"
#include "tests/core/StoreInTemporaryHome.h"
#include "tests/support/BinaryPropertyList.h"
#include "tests/support/BundleWithInfo.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/web/LoopbackServer.h"

#include <QAbstractButton>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>

namespace
{
const QString versionPath = QStringLiteral("/version");
const QString webPage = QStringLiteral("https://wayfold.example/page");

const QVariant missing;

QString upToDate(const QString &version)
{
    return QStringLiteral("Up To Date|Your Wayfold version %1 is up to date.|OK").arg(version);
}

QString timeWarp(const QString &local, const QString &released)
{
    return QStringLiteral(
               "Time Warp|Your Wayfold version %1 is newer than the version available on the Internet (%2).|OK")
        .arg(local, released);
}

QString newVersion(const QString &released)
{
    return QStringLiteral("New Wayfold Version|Wayfold %1 is now available. Click OK to download the new version."
                          "|OK (default)|Cancel")
        .arg(released);
}

QString newVersionOnPage(const QString &released)
{
    return QStringLiteral("New Wayfold Version|Wayfold %1 is now available. Click OK to visit %2 and download the new "
                          "version.|OK (default)|Cancel")
        .arg(released, webPage);
}

// All that the alert says, and its buttons from the first to the last.
QString described(const QMessageBox &box)
{
    QStringList parts = {box.text(), box.informativeText()};
    for (QMessageBox::ButtonRole role : {QMessageBox::AcceptRole, QMessageBox::RejectRole}) {
        for (QAbstractButton *button : box.buttons()) {
            const bool isMarked = box.buttons().size() > 1 && button == box.defaultButton();
            if (box.buttonRole(button) == role)
                parts.append(button->text() + (isMarked ? QStringLiteral(" (default)") : QString()));
        }
    }
    return parts.join(u'|');
}
} // namespace

class ReleaseCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void decision_data();
    void decision();
    void downloadAddress_data();
    void downloadAddress();
    void otherForms_data();
    void otherForms();
    void badAnswer_data();
    void badAnswer();
    void noAddress_data();
    void noAddress();
    void page_data();
    void page();
    void okOpens();
    void cancelOpensNothing();
    void escapeOpensNothing();
    void returnTakesTheDefault();
    void alertsAreInformational();
    void alertBelongsToTheWindowInFront();
    void alertsAreInEnglish();
    void versionsAreShownAsTheyAre();
    void whatIsNoVersionIsCut_data();
    void whatIsNoVersionIsCut();
    void oneCheckAtATime();
    void nothingIsAskedUnlessTheUserDoes();
    void addressesOfTheBuild();

private:
    void install(const QVariant &version, const QVariant &address, const QVariant &page = webPage);
    // The local version and what the server answers.
    void prepare(const QVariant &localVersion, const QByteArray &answer);
    // Chooses the command, does something with the alert that comes, and gives back what it said.
    QString check(const std::function<void(QMessageBox &)> &user = [](QMessageBox &box) { box.reject(); });
    static void press(QMessageBox &box, const QString &text);

    std::optional<StoreInTemporaryHome> _fresh;
    std::optional<LoopbackServer> _server;
    std::optional<BundleWithInfo> _bundle;
    QByteArray _realBundle = qgetenv("WAYFOLD_BUNDLE");
    QStringList _opened;
};

void ReleaseCheckTest::init()
{
    _fresh.emplace();
    _server.emplace();
    _bundle.emplace(QFile::decodeName(_realBundle));
    _opened.clear();
    Workspace::setURLHandler([this](const Url &url) {
        _opened.append(url.absoluteString());
        return true;
    });
}

void ReleaseCheckTest::cleanup()
{
    Workspace::setURLHandler({});
    QLocale::setDefault(QLocale::c());
    _bundle.reset();
    _server.reset();
    _fresh.reset();
}

void ReleaseCheckTest::install(const QVariant &version, const QVariant &address, const QVariant &page)
{
    _bundle->setInfo(
        {{"CFBundleVersion", version}, {"WayfoldVersionCheckAddress", address}, {"WayfoldWebPageAddress", page}});
}

void ReleaseCheckTest::prepare(const QVariant &localVersion, const QByteArray &answer)
{
    install(localVersion, _server->address(versionPath).absoluteString());
    _server->setAnswer(versionPath, LoopbackServer::response(answer));
}

QString ReleaseCheckTest::check(const std::function<void(QMessageBox &)> &user)
{
    QString text;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &timer, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        timer.stop();
        text = described(*box);
        user(*box);
    });
    timer.start();
    KDRDrawerBundle::sharedInstance().handleCheckForNewReleaseRequest(nullptr);
    return text;
}

void ReleaseCheckTest::press(QMessageBox &box, const QString &text)
{
    for (QAbstractButton *button : box.buttons()) {
        if (button->text() == text) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    QFAIL("there is no such button");
}

void ReleaseCheckTest::decision_data()
{
    QTest::addColumn<QVariant>("local");
    QTest::addColumn<QVariant>("version");
    QTest::addColumn<QVariant>("number");
    QTest::addColumn<QString>("alert");
    const auto row = [](const char *name, const QVariant &ours, const QVariant &version, const QVariant &number,
                        const QString &alert) { QTest::newRow(name) << ours << version << number << alert; };
    const QVariant local = QStringLiteral("1.2.3");

    // By number
    row("less than the released", local, "1.3.0", 10300, newVersionOnPage("1.3.0"));
    row("one less than the released", local, "1.2.4", 10204, newVersionOnPage("1.2.4"));
    row("equal", local, "1.2.3", 10203, upToDate("1.2.3"));
    row("equal, whatever the text is", local, "1.9.9", 10203, upToDate("1.2.3"));
    row("more than the released", local, "1.1.0", 10100, timeWarp("1.2.3", "1.1.0"));
    row("one more than the released", local, "1.2.2", 10202, timeWarp("1.2.3", "1.2.2"));
    row("number as a text", local, "1.3.0", "10300", newVersionOnPage("1.3.0"));
    row("number as a text, with more behind it", local, "1.3.0", " 10300 beta", newVersionOnPage("1.3.0"));
    row("number as a real", local, "1.3.0", 10300.5, newVersionOnPage("1.3.0"));
    row("real that is written with an exponent", local, "100.0.0", 1e6, newVersionOnPage("100.0.0"));
    row("number that is not 0 and no text", local, missing, 10203, upToDate("1.2.3"));
    row("number and no text", local, missing, 10300, newVersionOnPage("(null)"));
    row("number and an empty text", local, "", 10300, newVersionOnPage(""));
    // With our own text, which would be up to date.
    row("number that no version has", local, "1.2.3", qulonglong(-1), newVersionOnPage("1.2.3"));
    row("as unsigned numbers", local, "1.2.3", -1, newVersionOnPage("1.2.3"));
    row("local of two parts", "1.2", "1.3.0", 10300, upToDate("1.2"));
    row("local of four parts", "1.2.3.4", "1.3.0", 10300, upToDate("1.2.3.4"));
    row("local without digits", "a.b.c", "1.3.0", 10300, upToDate("a.b.c"));
    row("local unreadable, by number", missing, "1.3.0", 10300, upToDate("(null)"));
    row("local empty, by number", "", "1.3.0", 10300, upToDate(""));
    row("weights that overflow", "1.100.0", "2.0.0", 20000, upToDate("1.100.0"));

    // By text
    row("equal texts", local, "1.2.3", missing, upToDate("1.2.3"));
    row("newer text", local, "1.2.4", missing, newVersionOnPage("1.2.4"));
    row("older text", "1.2.4", "1.2.3", missing, newVersionOnPage("1.2.3"));
    row("text that differs in a blank", local, "1.2.3 ", missing, newVersionOnPage("1.2.3 "));
    row("texts that differ in case", "1.2.3B", "1.2.3b", missing, newVersionOnPage("1.2.3b"));
    row("local of two parts, by text", "1.2", "1.3", missing, newVersionOnPage("1.3"));
    row("number is 0", local, "1.2.4", 0, newVersionOnPage("1.2.4"));
    row("number is the text 0", local, "1.2.4", "0", newVersionOnPage("1.2.4"));
    row("number is no number", local, "1.2.4", "latest", newVersionOnPage("1.2.4"));
    row("number is empty", local, "1.2.4", "", newVersionOnPage("1.2.4"));
    row("number is a fraction", local, "1.2.4", 0.9, newVersionOnPage("1.2.4"));
    row("number is not finite", local, "1.2.4", qInf(), newVersionOnPage("1.2.4"));
    row("number is a date", local, "1.2.4", QDateTime(QDate(2001, 2, 3), QTime(4, 5), Qt::UTC),
        newVersionOnPage("1.2.4"));
    row("number is a list", local, "1.2.4", QVariantList{10300}, newVersionOnPage("1.2.4"));
    row("neither", local, missing, missing, upToDate("1.2.3"));
    row("empty text", local, "", missing, upToDate("1.2.3"));
    row("text of another type", local, QVariantList{"1.2.4"}, missing, upToDate("1.2.3"));
    row("local unreadable", missing, "1.2.3", missing, upToDate("(null)"));
    row("local empty", "", "1.2.3", missing, upToDate(""));
}

void ReleaseCheckTest::decision()
{
    QFETCH(QVariant, local);
    QFETCH(QVariant, version);
    QFETCH(QVariant, number);
    QFETCH(QString, alert);
    QVariantMap answer;
    if (version.isValid())
        answer.insert(QStringLiteral("CurrentVersion"), version);
    if (number.isValid())
        answer.insert(QStringLiteral("CurrentVersionNumber"), number);
    prepare(local, PropertyList::toXml(answer));
    QCOMPARE(check(), alert);
}

void ReleaseCheckTest::downloadAddress_data()
{
    QTest::addColumn<QVariant>("download");
    QTest::addColumn<QString>("opened");
    const auto row = [](const QVariant &download, const QString &opened) {
        QTest::addRow("%s", qPrintable(download.toString())) << download << opened;
    };
    for (const char *good : {"https://wayfold.example/Wayfold-1.3.0.tar.gz", "http://wayfold.example/a?b=%20#c",
                             "HTTPS://Wayfold.Example/", "https://127.0.0.1:8443/x"})
        row(good, QString::fromLatin1(good));
    // Nothing that could do anything but open in a web browser.
    for (const char *bad :
         {"", " ", "file:///etc/passwd", "FILE:///etc/passwd", "/etc/passwd", "wayfold.example", "//wayfold.example/",
          "ftp://wayfold.example/", "javascript:alert(1)", "data:text/html,hello", "mailto:ann@example.com",
          "smb://server/share", "https:", "https:///path", "https:path", "https://a b/", "https://wayfold.example/<>",
          "https://wayfold.example/\r\n"})
        row(bad, webPage);
    row(QVariantList{"https://wayfold.example/"}, webPage);
    row(7, webPage);
}

void ReleaseCheckTest::downloadAddress()
{
    QFETCH(QVariant, download);
    QFETCH(QString, opened);
    prepare(QStringLiteral("1.2.3"),
            PropertyList::toXml(QVariantMap{
                {"CurrentVersion", "1.3.0"}, {"CurrentVersionNumber", 10300}, {"DownloadURLString", download}}));
    const QString alert = check([](QMessageBox &box) { press(box, QStringLiteral("OK")); });
    QCOMPARE(alert, opened == webPage ? newVersionOnPage("1.3.0") : newVersion("1.3.0"));
    QCOMPARE(_opened, QStringList{opened});
}

void ReleaseCheckTest::otherForms_data()
{
    QTest::addColumn<QByteArray>("answer");
    const QVariantMap release = {{"CurrentVersion", "1.3.0"}, {"CurrentVersionNumber", 10300}};
    QTest::newRow("binary") << binaryPropertyList(release);
    QTest::newRow("by another program") << QByteArray(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
  <!-- the current one -->
  <key>Another</key><array><true/></array>
  <key>CurrentVersionNumber</key><integer>10300</integer>
  <key>CurrentVersion</key><string>1.3.0</string>
</dict></plist>)");
}

void ReleaseCheckTest::otherForms()
{
    QFETCH(QByteArray, answer);
    prepare(QStringLiteral("1.2.3"), answer);
    QCOMPARE(check(), newVersionOnPage("1.3.0"));
}

void ReleaseCheckTest::badAnswer_data()
{
    QTest::addColumn<QByteArray>("response");
    const QByteArray good =
        PropertyList::toXml(QVariantMap{{"CurrentVersion", "1.3.0"}, {"CurrentVersionNumber", 10300}});
    QTest::newRow("not found") << LoopbackServer::response(good, "404 Not Found");
    QTest::newRow("server error") << LoopbackServer::response(good, "500 Internal Server Error");
    QTest::newRow("closed at once") << QByteArray();
    QTest::newRow("empty") << LoopbackServer::response("");
    QTest::newRow("page") << LoopbackServer::response("<!doctype html><html><body>1.3.0</body></html>");
    QTest::newRow("rubbish") << LoopbackServer::response(QByteArray("\x00\xff\x00\xff\x00\xff", 6));
    QTest::newRow("cut") << LoopbackServer::response(good.left(good.size() / 2));
    QTest::newRow("list") << LoopbackServer::response(PropertyList::toXml(QVariantList{"1.3.0"}));
    QTest::newRow("text") << LoopbackServer::response(PropertyList::toXml(QStringLiteral("1.3.0")));
    QTest::newRow("binary, cut") << LoopbackServer::response(
        binaryPropertyList(QVariantMap{{"CurrentVersion", "1.3.0"}}).chopped(9));
    QTest::newRow("too much") << LoopbackServer::response(good + QByteArray(1024 * 1024, ' '));
    QTest::newRow("to a file") << LoopbackServer::redirection("file:///etc/hostname");
    QTest::newRow("in circles") << LoopbackServer::redirection("/version");
}

void ReleaseCheckTest::badAnswer()
{
    QFETCH(QByteArray, response);
    prepare(QStringLiteral("1.2.3"), {});
    _server->setAnswer(versionPath, response);
    const LoggedMessages messages; // what could not be read is told there
    QCOMPARE(check(), upToDate("1.2.3"));
    QVERIFY(!_server->requests().isEmpty());
    QVERIFY(_opened.isEmpty());
}

void ReleaseCheckTest::noAddress_data()
{
    QTest::addColumn<QVariant>("address");
    QTest::newRow("none") << QVariant();
    QTest::newRow("empty") << QVariant("");
    QTest::newRow("file") << QVariant("file://%1");
    QTest::newRow("path") << QVariant("%1");
    QTest::newRow("another type") << QVariant(7);
}

void ReleaseCheckTest::noAddress()
{
    QFETCH(QVariant, address);
    const QString file = QStringLiteral("answer.plist");
    _fresh->home.write(file, PropertyList::toXml(QVariantMap{{"CurrentVersion", "1.3.0"}}));
    if (address.typeId() == QMetaType::QString)
        address = address.toString().replace(QStringLiteral("%1"), _fresh->home.path(file));
    install(QStringLiteral("1.2.3"), address);
    QCOMPARE(check(), upToDate("1.2.3"));
}

void ReleaseCheckTest::page_data()
{
    QTest::addColumn<QString>("webPage");
    QTest::newRow("plain") << "http://wayfold.example/";
    QTest::newRow("with escapes that look like places to fill in") << "https://wayfold.example/%2%1%25@";
}

void ReleaseCheckTest::page()
{
    QFETCH(QString, webPage);
    prepare(QStringLiteral("1.2.3"), PropertyList::toXml(QVariantMap{{"CurrentVersion", "%2%1%@"}}));
    install(QStringLiteral("1.2.3"), _server->address(versionPath).absoluteString(), webPage);
    QCOMPARE(check().section(u'|', 1, 1),
             "Wayfold %2%1%@ is now available. Click OK to visit " + webPage + " and download the new version.");
}

void ReleaseCheckTest::okOpens()
{
    prepare(QStringLiteral("1.2.3"), PropertyList::toXml(QVariantMap{{"CurrentVersion", "1.3.0"}}));
    check([](QMessageBox &box) { press(box, QStringLiteral("OK")); });
    QCOMPARE(_opened, QStringList{webPage});
}

void ReleaseCheckTest::cancelOpensNothing()
{
    prepare(QStringLiteral("1.2.3"), PropertyList::toXml(QVariantMap{{"CurrentVersion", "1.3.0"}}));
    QVERIFY(!check([](QMessageBox &box) { press(box, QStringLiteral("Cancel")); }).isNull());
    QVERIFY(_opened.isEmpty());
}

void ReleaseCheckTest::escapeOpensNothing()
{
    prepare(QStringLiteral("1.2.3"), PropertyList::toXml(QVariantMap{{"CurrentVersion", "1.3.0"}}));
    QVERIFY(!check([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Escape); }).isNull());
    QVERIFY(_opened.isEmpty());
}

void ReleaseCheckTest::returnTakesTheDefault()
{
    prepare(QStringLiteral("1.2.3"), PropertyList::toXml(QVariantMap{{"CurrentVersion", "1.3.0"}}));
    check([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Return); });
    QCOMPARE(_opened, QStringList{webPage});
}

void ReleaseCheckTest::alertsAreInformational()
{
    for (const char *version : {"1.1.0", "1.2.3", "1.3.0"}) {
        const unsigned number = WayfoldToolkit::versionAsNumber(QString::fromLatin1(version));
        prepare(QStringLiteral("1.2.3"),
                PropertyList::toXml(QVariantMap{{"CurrentVersion", version}, {"CurrentVersionNumber", number}}));
        std::optional<QMessageBox::Icon> icon;
        check([&icon](QMessageBox &box) {
            icon = box.icon();
            box.reject();
        });
        QCOMPARE(icon, std::optional(QMessageBox::Information));
    }
}

void ReleaseCheckTest::alertBelongsToTheWindowInFront()
{
    prepare(QStringLiteral("1.2.3"), {});
    QWidget window;
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const QWidget *parent = nullptr;
    check([&parent](QMessageBox &box) {
        parent = box.parentWidget();
        box.reject();
    });
    QCOMPARE(parent, &window);
}

void ReleaseCheckTest::alertsAreInEnglish()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    QCOMPARE(Bundle::localizedString(QStringLiteral("Cancel")), QStringLiteral("Abbrechen")); // it speaks German
    prepare(QStringLiteral("1.2.3"), PropertyList::toXml(QVariantMap{{"CurrentVersion", "1.3.0"}}));
    QCOMPARE(check(), newVersionOnPage("1.3.0"));
    prepare(QStringLiteral("1.2.3"), PropertyList::toXml(QVariantMap{{"CurrentVersion", "1.2.3"}}));
    QCOMPARE(check(), upToDate("1.2.3"));
}

void ReleaseCheckTest::versionsAreShownAsTheyAre()
{
    prepare(QStringLiteral("1.2.3"),
            PropertyList::toXml(QVariantMap{{"CurrentVersion", "<b>1.3</b>"}, {"CurrentVersionNumber", 10300}}));
    Qt::TextFormat format = Qt::AutoText;
    check([&format](QMessageBox &box) {
        format = box.textFormat();
        box.reject();
    });
    QCOMPARE(format, Qt::PlainText);
}

// It would leave no room for the buttons.
void ReleaseCheckTest::whatIsNoVersionIsCut_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("shown");
    const QString dots = QChar(0x2026);
    const QString letter = QStringLiteral("\U0001F680"); // of two units
    const QString longest(40, u'1');
    const QString shorter(39, u'1');
    QTest::newRow("just short enough") << longest << longest;
    QTest::newRow("too long") << longest + u'1' << longest + dots;
    QTest::newRow("much too long") << QString(100000, u'1') << longest + dots;
    QTest::newRow("cut within a letter") << shorter + letter << shorter + dots;
    QTest::newRow("cut before a letter") << longest + letter << longest + dots;
    for (const char16_t lineEnd : {u'\n', u'\r', u'\u2028', u'\u2029'}) {
        const QString name = QStringLiteral("line end %1").arg(int(lineEnd), 0, 16);
        QTest::newRow(qPrintable(name)) << QStringLiteral("1.3.0") + QChar(lineEnd) + QStringLiteral("and more")
                                        << QStringLiteral("1.3.0") + dots;
    }
}

void ReleaseCheckTest::whatIsNoVersionIsCut()
{
    QFETCH(QString, version);
    QFETCH(QString, shown);
    prepare(QStringLiteral("1.2.3"),
            PropertyList::toXml(QVariantMap{{"CurrentVersion", version}, {"CurrentVersionNumber", 10300}}));
    QCOMPARE(check(), newVersionOnPage(shown));
}

// Another one may be asked for without pointer and keyboard, as by an aid for people who cannot use them.
void ReleaseCheckTest::oneCheckAtATime()
{
    install(QStringLiteral("1.2.3"), _server->address(versionPath).absoluteString());
    QTimer timer;
    int asked = 0;
    connect(&timer, &QTimer::timeout, &timer, [&] {
        if (_server->requests().isEmpty())
            return;
        KDRDrawerBundle::sharedInstance().handleCheckForNewReleaseRequest(nullptr);
        if (++asked == 3) {
            timer.stop();
            _server->answerLate(versionPath, LoopbackServer::response("<plist><dict/></plist>"));
        }
    });
    timer.start();
    QCOMPARE(check(), upToDate("1.2.3"));
    QCOMPARE(asked, 3);
    QCOMPARE(_server->requests().size(), 1);
    QVERIFY(!QApplication::activeModalWidget());
    _server->setAnswer(versionPath, LoopbackServer::response("<plist><dict/></plist>"));
    QCOMPARE(check(), upToDate("1.2.3")); // now one may again
    QCOMPARE(_server->requests().size(), 2);
}

void ReleaseCheckTest::nothingIsAskedUnlessTheUserDoes()
{
    install(QStringLiteral("1.2.3"), _server->address(versionPath).absoluteString());
    _fresh->openWindow();
    NotificationLog::deliverPending();
    QVERIFY(_server->requests().isEmpty());
}

void ReleaseCheckTest::addressesOfTheBuild()
{
    _bundle.reset();
    const QVariantMap info = Bundle::infoDictionary();
    for (const char *key : {"WayfoldVersionCheckAddress", "WayfoldWebPageAddress"}) {
        const Url address = Url::URLWithString(info.value(QString::fromLatin1(key)).toString());
        QCOMPARE(address.scheme(), QStringLiteral("https"));
        QVERIFY(!address.host().isNull());
    }
}

QTEST_MAIN(ReleaseCheckTest)
#include "ReleaseCheckTest.moc"
