#include "drawer/MessageBar.h"

#include "core/ItemFileMessages.h"
#include "core/settings/WayfoldToolkit.h"
#include "platform/widgets/DrawerGrip.h"
#include "platform/widgets/Image.h"
#include "tests/drawer/DrawerStage.h"

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{
std::vector<std::pair<QAccessible::Event, QString>> told; // of the bar, with its name at that moment

void note(QAccessibleEvent *event)
{
    const auto *bar = qobject_cast<MessageBar *>(event->object());
    if (bar && (event->type() == QAccessible::Alert || event->type() == QAccessible::ObjectShow))
        told.emplace_back(event->type(), bar->accessibleName());
}

// Qt tells nobody where nobody listens.
bool hasScreenReader()
{
    return qEnvironmentVariableIsSet("WAYFOLD_SCREEN_READER");
}

int timesTold(QAccessible::Event type, const QString &name)
{
    return int(std::count(told.cbegin(), told.cend(), std::pair(type, name)));
}
} // namespace

// The bar in the drawers of real windows, with messages of the test's own.
class MessageBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        told.clear();
        _pressed.clear();
        _stage.emplace();
        _window = _stage->openWindow(QRectF(100, 100, 800, 600), true);
        drawer()->open();
        bar()->setSlideDuration(0);
    }
    void cleanup()
    {
        QAccessible::installUpdateHandler(nullptr);
        QLocale::setDefault(QLocale::c());
        _window.reset();
        _stage.reset();
    }

    // What is seen
    void nothingToTellShowsNothing();
    void drawerWithoutMessageIsAsItWouldBeWithoutBar();
    void messageStandsAboveTheLists();
    void everyKindHasItsPicture();
    void theMostImportantIsShownThenTheNext();
    void messageThatIsNoLongerSoGoes();
    void messageThatWasThereBeforeTheDrawerIsShown();
    void barSlidesInAndOut();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void rightToLeft();

    // Buttons
    void buttonsDoWhatTheySay();
    void buttonThatTakesItsMessageAway();
    void closingInOneWindowClosesInAll();
    void buttonOfALeavingMessageDoesNothing();

    // Keyboard
    void messageTakesNoKeyboard();
    void clickTakesNoKeyboard();
    void tabReachesEveryButton();
    void windowWithoutFocusGivesTheKeyboardToTheLists();
    void returnAndSpacePress_data();
    void returnAndSpacePress();
    void escapeClosesAndGivesTheKeyboardBack();
    void keyboardGoesBackWhenTheMessageGoes();
    void keyboardDoesNotFallIntoAnotherMessage();

    // Screen readers
    void messageIsReadOut();
    void otherMessageIsReadOut();
    void whatIsPressedInVainIsReadOutAgain();
    void sameMessageIsReadOutOnce();
    void barIsANotificationWithAName();

private:
    static Messages &messages() { return DrawerStage::store().messages(); }
    KDRDrawer *drawer() const { return DrawerStage::drawer(*_window); }
    KDRDrawerController *controller() const { return DrawerStage::controller(*_window); }
    MessageBar *bar() const { return controller()->messageBar(); }
    QList<QPushButton *> buttons() const
    {
        QList<QPushButton *> shown;
        for (auto *button : bar()->findChildren<QPushButton *>()) {
            if (button->isVisible())
                shown.append(button);
        }
        return shown;
    }
    static void layOut() { QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest); }
    QImage picture() const
    {
        layOut();
        return drawer()->grab().toImage();
    }
    QToolButton *closeButton() const { return bar()->findChild<QToolButton *>(); }
    QLabel *text() const { return bar()->findChild<QLabel *>(); }

    Messages::Message message(Messages::Subject subject = Messages::NotSaved, const QStringList &titles = {})
    {
        Messages::Message message = {subject, Messages::Error, QStringLiteral("Something is wrong."), {}, {}};
        for (const QString &title : titles)
            message.buttons.push_back({title, QStringLiteral("Tip"), [this, title] { _pressed.append(title); }});
        return message;
    }
    const QStringList _twoTitles = {QStringLiteral("Try Again"), QStringLiteral("Show File")};

    QStringList _pressed;
    std::optional<DrawerStage> _stage;
    std::shared_ptr<FakeHostWindow> _window;
};

// --- What is seen ---------------------------------------------------------------------------------------------------

void MessageBarTest::nothingToTellShowsNothing()
{
    QVERIFY(bar());
    QVERIFY(bar()->isHidden());
}

void MessageBarTest::drawerWithoutMessageIsAsItWouldBeWithoutBar()
{
    const QImage before = picture();
    messages().say(message(Messages::NotSaved, _twoTitles));
    QVERIFY(picture() != before);
    messages().clear(Messages::NotSaved);
    QVERIFY(picture() == before);
    delete bar();
    QVERIFY(picture() == before);
}

void MessageBarTest::messageStandsAboveTheLists()
{
    const int height = controller()->tabView()->height();
    const int bottom = controller()->tabView()->geometry().bottom();
    messages().say(message());
    layOut();
    QVERIFY(bar()->isVisible());
    QCOMPARE(text()->text(), QStringLiteral("Something is wrong."));
    QCOMPARE(bar()->y(), 0);
    QCOMPARE(bar()->width(), drawer()->contentView()->width());
    QCOMPARE(bar()->height(), bar()->heightForWidth(bar()->width()));
    QCOMPARE(controller()->tabView()->y(), bar()->height());
    QCOMPARE(controller()->tabView()->geometry().bottom(), bottom);
    QVERIFY(controller()->tabView()->height() < height);
}

// Told apart without their colours.
void MessageBarTest::everyKindHasItsPicture()
{
    std::vector<QImage> pictures;
    for (const Messages::Kind kind : {Messages::Information, Messages::Warning, Messages::Error}) {
        Messages::Message said = message();
        said.kind = kind;
        messages().say(said);
        bar()->setPalette(QPalette(Qt::white));
        layOut();
        QImage picture = bar()->grab(QRect(0, 0, 32, 32)).toImage().convertToFormat(QImage::Format_Grayscale8);
        // Only the strokes count.
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixelColor(x, y, picture.pixelColor(x, y).value() < 140 ? Qt::black : Qt::white);
        }
        for (const QImage &other : pictures)
            QVERIFY(picture != other);
        QVERIFY(picture.pixelColor(0, 0) == Qt::white);
        pictures.push_back(picture);
    }
    QVERIFY(!WayfoldToolkit::loadImageNamed(QStringLiteral("WayfoldMessageClose"))->icon().isNull());
}

void MessageBarTest::theMostImportantIsShownThenTheNext()
{
    Messages::Message less = message(Messages::Merged);
    less.text = QStringLiteral("Three notes came.");
    messages().say(less);
    messages().say(message(Messages::NotSaved, _twoTitles));
    QCOMPARE(text()->text(), QStringLiteral("Something is wrong."));
    QCOMPARE(buttons().size(), 2);
    closeButton()->click();
    QCOMPARE(text()->text(), QStringLiteral("Three notes came."));
    QCOMPARE(buttons().size(), 0);
    QVERIFY(bar()->isVisible());
    closeButton()->click();
    QVERIFY(bar()->isHidden());
}

void MessageBarTest::messageThatIsNoLongerSoGoes()
{
    messages().say(message());
    messages().clear(Messages::NotSaved);
    QVERIFY(bar()->isHidden());
}

void MessageBarTest::messageThatWasThereBeforeTheDrawerIsShown()
{
    messages().say(message(Messages::NotSaved, _twoTitles));
    const auto other = _stage->openWindow(QRectF(0, 0, 700, 500), true);
    DrawerStage::drawer(*other)->open();
    const MessageBar *bar = DrawerStage::controller(*other)->messageBar();
    QVERIFY(bar->isVisible());
    QCOMPARE(bar->findChildren<QPushButton *>().size(), 2);
}

void MessageBarTest::barSlidesInAndOut()
{
    bar()->setSlideDuration(10000);
    messages().say(message(Messages::NotSaved, _twoTitles));
    const int whole = bar()->findChild<QLabel *>()->height();
    QTRY_VERIFY(bar()->height() > 0);
    QVERIFY(bar()->height() < whole);
    QCOMPARE(controller()->tabView()->y(), bar()->height());
    // What is to be seen last stands above the bar's edge.
    QVERIFY(text()->y() < 0);
    bar()->setSlideDuration(0);
    messages().say(message(Messages::NotSaved, _twoTitles));
    layOut();
    QVERIFY(text()->y() > 0);
    bar()->setSlideDuration(1);
    messages().clear(Messages::NotSaved);
    QTRY_VERIFY(bar()->isHidden());
}

void MessageBarTest::nothingIsCutOff_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("points"); // of the font
    for (const QString &language : {QStringLiteral("C"), QStringLiteral("de_DE")}) {
        for (const int width : {280, 400, 700}) {
            for (const int points : {9, 13, 18})
                QTest::addRow("%s %d %d", qPrintable(language), width, points) << language << width << points;
        }
    }
}

void MessageBarTest::nothingIsCutOff()
{
    QFETCH(QString, language);
    QFETCH(int, width);
    QFETCH(int, points);
    QLocale::setDefault(QLocale(language));
    drawer()->setContentSize(QSizeF(width, 400));
    QFont font = bar()->font();
    font.setPointSize(points);
    bar()->setFont(font);
    for (QWidget *part : bar()->findChildren<QWidget *>())
        part->setFont(font);

    Messages real;
    ItemFileMessages file(real, {});
    int seen = 0;
    const auto verify = [&] {
        Messages::Message said = *real.current();
        said.subject = Messages::NotSaved;
        messages().say(said);
        layOut();
        QCOMPARE(text()->text(), said.text);
        QVERIFY(text()->height() >= text()->heightForWidth(text()->width()));
        // The longest word has room.
        const QStringList words = said.text.split(QLatin1Char(' '));
        for (const QString &word : words)
            QVERIFY2(text()->fontMetrics().horizontalAdvance(word) <= text()->width(), qPrintable(word));
        QCOMPARE(buttons().size(), qsizetype(said.buttons.size()));
        QList<QWidget *> parts = {text(), closeButton()};
        for (QPushButton *button : buttons()) {
            QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->text()));
            QVERIFY(button->height() >= button->sizeHint().height());
            parts.append(button);
        }
        for (const QWidget *part : std::as_const(parts)) {
            QVERIFY(bar()->rect().contains(part->geometry()));
            for (const QWidget *other : std::as_const(parts))
                QVERIFY(part == other || !part->geometry().intersects(other->geometry()));
        }
        QVERIFY(bar()->height() <= bar()->heightForWidth(bar()->width()));
        ++seen;
    };
    file.saveFailed(QString());
    verify();
    file.saved();
    verify();
    real.clear(Messages::SavedAgain);
    file.merged(QString(), {12345, 678, 90, 12, 3});
    verify();
    real.clear(Messages::Merged);
    file.keptAside(QString());
    verify();
    real.clear(Messages::KeptAside);
    file.backupFailed(QString());
    verify();
    QCOMPARE(seen, 5);
}

void MessageBarTest::rightToLeft()
{
    messages().say(message(Messages::NotSaved, _twoTitles));
    layOut();
    const QRect left = text()->geometry();
    bar()->setLayoutDirection(Qt::RightToLeft);
    bar()->resize(bar()->width() - 1, bar()->height());
    bar()->resize(bar()->width() + 1, bar()->height());
    QCOMPARE(text()->geometry().right(), bar()->rect().right() - left.left());
    QVERIFY(closeButton()->x() < text()->x());
}

// --- Buttons --------------------------------------------------------------------------------------------------------

void MessageBarTest::buttonsDoWhatTheySay()
{
    messages().say(message(Messages::NotSaved, _twoTitles));
    QCOMPARE(buttons().at(0)->text(), _twoTitles.at(0));
    QCOMPARE(buttons().at(1)->text(), _twoTitles.at(1));
    layOut();
    QTest::mouseClick(buttons().at(1), Qt::LeftButton);
    QTest::mouseClick(buttons().at(0), Qt::LeftButton);
    QCOMPARE(_pressed, QStringList({_twoTitles.at(1), _twoTitles.at(0)}));
    QVERIFY(bar()->isVisible());
}

void MessageBarTest::buttonThatTakesItsMessageAway()
{
    Messages::Message said = message();
    said.buttons.push_back({QStringLiteral("Go"), QString(), [] { messages().clear(Messages::NotSaved); }});
    messages().say(said);
    buttons().at(0)->click();
    QVERIFY(bar()->isHidden());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // And one whose window closes by it.
    said.buttons[0].act = [this] { _window->close(); };
    messages().say(said);
    const QPointer<MessageBar> gone = bar();
    buttons().at(0)->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTRY_VERIFY(!gone);
}

void MessageBarTest::closingInOneWindowClosesInAll()
{
    const auto other = _stage->openWindow(QRectF(0, 0, 700, 500), true);
    DrawerStage::drawer(*other)->open();
    MessageBar *otherBar = DrawerStage::controller(*other)->messageBar();
    otherBar->setSlideDuration(0);
    messages().say(message());
    QVERIFY(bar()->isVisible());
    QVERIFY(otherBar->isVisible());
    QTest::mouseClick(otherBar->findChild<QToolButton *>(), Qt::LeftButton);
    QVERIFY(bar()->isHidden());
    QVERIFY(otherBar->isHidden());
}

void MessageBarTest::buttonOfALeavingMessageDoesNothing()
{
    messages().say(message(Messages::NotSaved, _twoTitles));
    bar()->setSlideDuration(10000);
    messages().clear(Messages::NotSaved);
    QVERIFY(bar()->isVisible());
    buttons().at(0)->click();
    closeButton()->click();
    QVERIFY(_pressed.isEmpty());
    // It comes back as what is new.
    messages().say(message(Messages::NotSaved, _twoTitles));
    buttons().at(0)->click();
    QCOMPARE(_pressed.size(), 1);
}

// --- Keyboard -------------------------------------------------------------------------------------------------------

void MessageBarTest::messageTakesNoKeyboard()
{
    controller()->selectInitialFirstResponder();
    QTRY_VERIFY(drawer()->isActiveWindow());
    QWidget *focused = drawer()->focusWidget();
    QCOMPARE(focused, controller()->scratchOutlineView());
    messages().say(message(Messages::NotSaved, _twoTitles));
    layOut();
    QCOMPARE(drawer()->focusWidget(), focused);
    messages().clear(Messages::NotSaved);
    QCOMPARE(drawer()->focusWidget(), focused);
}

void MessageBarTest::clickTakesNoKeyboard()
{
    controller()->selectInitialFirstResponder();
    QTRY_VERIFY(drawer()->isActiveWindow());
    messages().say(message(Messages::NotSaved, _twoTitles));
    layOut();
    QTest::mouseClick(buttons().at(0), Qt::LeftButton);
    QCOMPARE(drawer()->focusWidget(), controller()->scratchOutlineView());
    QTest::mouseClick(closeButton(), Qt::LeftButton);
    QCOMPARE(drawer()->focusWidget(), controller()->scratchOutlineView());
}

void MessageBarTest::tabReachesEveryButton()
{
    messages().say(message(Messages::NotSaved, _twoTitles));
    controller()->selectInitialFirstResponder();
    QTRY_VERIFY(drawer()->isActiveWindow());
    QList<QWidget *> reached;
    for (int i = 0; i < 40; ++i) {
        QWidget *focused = drawer()->focusWidget();
        if (bar()->isAncestorOf(focused) && !reached.contains(focused))
            reached.append(focused);
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    QCOMPARE(reached, (QList<QWidget *>{buttons().at(0), buttons().at(1), closeButton()}));
    for (const QWidget *control : std::as_const(reached)) {
        QVERIFY(!control->toolTip().isEmpty());
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(control));
        QVERIFY(!accessible->text(QAccessible::Name).isEmpty());
    }
}

// The window is in front, and nothing in it has the keyboard yet.
void MessageBarTest::windowWithoutFocusGivesTheKeyboardToTheLists()
{
    messages().say(message(Messages::NotSaved, _twoTitles));
    const auto other = _stage->openWindow(QRectF(0, 0, 700, 500), true);
    KDRDrawer *opened = DrawerStage::drawer(*other);
    opened->open();
    opened->activateWindow();
    QTRY_VERIFY(opened->isActiveWindow());
    QVERIFY(!DrawerStage::controller(*other)->messageBar()->isAncestorOf(opened->focusWidget()));
}

void MessageBarTest::returnAndSpacePress_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Enter") << int(Qt::Key_Enter);
    QTest::newRow("Space") << int(Qt::Key_Space);
}

void MessageBarTest::returnAndSpacePress()
{
    QFETCH(int, key);
    drawer()->activateWindow();
    QTRY_VERIFY(drawer()->isActiveWindow());
    messages().say(message(Messages::NotSaved, _twoTitles));
    buttons().at(1)->setFocus(Qt::TabFocusReason);
    QTest::keyClick(buttons().at(1), Qt::Key(key));
    QCOMPARE(_pressed, QStringList{_twoTitles.at(1)});
    closeButton()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(closeButton(), Qt::Key(key));
    QVERIFY(bar()->isHidden());
}

void MessageBarTest::escapeClosesAndGivesTheKeyboardBack()
{
    controller()->showBookmarkTabView();
    controller()->selectInitialFirstResponder();
    QTRY_VERIFY(drawer()->isActiveWindow());
    messages().say(message(Messages::NotSaved, _twoTitles));
    for (int i = 0; i < 40 && !bar()->isAncestorOf(drawer()->focusWidget()); ++i)
        QTest::keyClick(drawer()->focusWidget(), Qt::Key_Backtab);
    QVERIFY(bar()->isAncestorOf(drawer()->focusWidget()));
    QTest::keyClick(drawer()->focusWidget(), Qt::Key_Escape);
    QVERIFY(!messages().current());
    QVERIFY(bar()->isHidden());
    QVERIFY(qobject_cast<DrawerGrip *>(drawer()->focusWidget())); // where Shift and Tab came from
}

void MessageBarTest::keyboardGoesBackWhenTheMessageGoes()
{
    controller()->selectInitialFirstResponder();
    QTRY_VERIFY(drawer()->isActiveWindow());
    messages().say(message(Messages::NotSaved, _twoTitles));
    buttons().at(0)->setFocus(Qt::TabFocusReason);
    QVERIFY(bar()->isAncestorOf(drawer()->focusWidget()));
    messages().clear(Messages::NotSaved);
    QCOMPARE(drawer()->focusWidget(), controller()->scratchOutlineView());
}

// Or what was meant for one button would press another.
void MessageBarTest::keyboardDoesNotFallIntoAnotherMessage()
{
    controller()->selectInitialFirstResponder();
    QTRY_VERIFY(drawer()->isActiveWindow());
    messages().say(message(Messages::KeptAside, {QStringLiteral("Restore...")}));
    buttons().at(0)->setFocus(Qt::TabFocusReason);
    messages().say(message(Messages::NotSaved, _twoTitles));
    QCOMPARE(drawer()->focusWidget(), controller()->scratchOutlineView());
    // The same said again leaves it where it is.
    buttons().at(1)->setFocus(Qt::TabFocusReason);
    messages().say(message(Messages::NotSaved, _twoTitles));
    QCOMPARE(drawer()->focusWidget(), buttons().at(1));
}

// --- Screen readers -------------------------------------------------------------------------------------------------

void MessageBarTest::messageIsReadOut()
{
    if (!hasScreenReader())
        QSKIP("nobody reads aloud here; see MessageBarTest.screenReader");
    QAccessible::installUpdateHandler(note);
    QTRY_VERIFY(QAccessible::isActive());
    messages().say(message());
    const QString name = QStringLiteral("Error: Something is wrong.");
    QCOMPARE(timesTold(QAccessible::Alert, name), 1);
    QVERIFY(timesTold(QAccessible::ObjectShow, name) >= 1);
}

void MessageBarTest::otherMessageIsReadOut()
{
    if (!hasScreenReader())
        QSKIP("nobody reads aloud here; see MessageBarTest.screenReader");
    messages().say(message(Messages::Merged));
    QAccessible::installUpdateHandler(note);
    QTRY_VERIFY(QAccessible::isActive());
    Messages::Message other = message(Messages::NotSaved);
    other.kind = Messages::Warning;
    other.text = QStringLiteral("Something else.");
    messages().say(other);
    const QString name = QStringLiteral("Warning: Something else.");
    QCOMPARE(timesTold(QAccessible::Alert, name), 1);
    QCOMPARE(timesTold(QAccessible::ObjectShow, name), 1);
}

void MessageBarTest::whatIsPressedInVainIsReadOutAgain()
{
    if (!hasScreenReader())
        QSKIP("nobody reads aloud here; see MessageBarTest.screenReader");
    Messages::Message said = message();
    said.buttons.push_back({QStringLiteral("Try Again"), QString(), [this] { messages().say(message()); }});
    messages().say(said);
    QAccessible::installUpdateHandler(note);
    QTRY_VERIFY(QAccessible::isActive());
    buttons().at(0)->click();
    QCOMPARE(timesTold(QAccessible::Alert, QStringLiteral("Error: Something is wrong.")), 1);
}

void MessageBarTest::sameMessageIsReadOutOnce()
{
    if (!hasScreenReader())
        QSKIP("nobody reads aloud here; see MessageBarTest.screenReader");
    messages().say(message(Messages::NotSaved, _twoTitles));
    QAccessible::installUpdateHandler(note);
    QTRY_VERIFY(QAccessible::isActive());
    messages().say(message(Messages::NotSaved, _twoTitles));
    messages().say(message(Messages::Merged));
    messages().clear(Messages::Merged);
    QVERIFY(told.empty());
}

void MessageBarTest::barIsANotificationWithAName()
{
    messages().say(message());
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(bar());
    QCOMPARE(accessible->role(), QAccessible::Notification);
    QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Error: Something is wrong."));
}

QTEST_MAIN(MessageBarTest)
#include "MessageBarTest.moc"
