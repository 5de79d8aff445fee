#include "browser/AddressField.h"

#include <QSignalSpy>
#include <QTest>

class AddressFieldTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsThePage();
    void typingStays();
    void otherPageTakesTypingAway();
    void returnAsksForTheAddress();
    void returnWithNonsense();
    void escapeGivesUp();
    void clickSelectsEverything();
    void progress();
    void accessible();

private:
    std::unique_ptr<AddressField> _field;
};

namespace
{
const QUrl a("http://a.example/");
const QUrl b("http://b.example/");
} // namespace

void AddressFieldTest::init()
{
    _field = std::make_unique<AddressField>();
    _field->show();
    _field->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(_field.get()));
    _field->clearFocus();
    _field->showOtherPage(a, "A", QIcon());
}

void AddressFieldTest::cleanup()
{
    _field.reset();
}

void AddressFieldTest::showsThePage()
{
    QCOMPARE(_field->text(), a.toString());
    _field->showPage(b, "B", QIcon());
    QCOMPARE(_field->text(), b.toString());
    _field->showPage(QUrl("wayfold:start"), "Start", QIcon());
    QCOMPARE(_field->text(), QString());
}

void AddressFieldTest::typingStays()
{
    _field->setFocus(Qt::ShortcutFocusReason);
    QCOMPARE(_field->selectedText(), a.toString());
    // Not typed in yet: follows the page, all of it still selected.
    _field->showPage(b, "B", QIcon());
    QCOMPARE(_field->selectedText(), b.toString());
    QTest::keyClicks(_field.get(), "c.exam");
    _field->showPage(a, "A", QIcon());
    QCOMPARE(_field->text(), QString("c.exam"));
}

void AddressFieldTest::otherPageTakesTypingAway()
{
    _field->setFocus();
    QTest::keyClicks(_field.get(), "c.exam");
    _field->showOtherPage(b, "B", QIcon());
    QCOMPARE(_field->text(), b.toString());
}

void AddressFieldTest::returnAsksForTheAddress()
{
    const QSignalSpy entered(_field.get(), &AddressField::addressEntered);
    _field->setFocus(Qt::ShortcutFocusReason);
    QTest::keyClicks(_field.get(), "c.example");
    QTest::keyClick(_field.get(), Qt::Key_Return);
    QCOMPARE(entered.count(), 1);
    QCOMPARE(entered.first().first().toUrl(), QUrl("https://c.example/"));
}

void AddressFieldTest::returnWithNonsense()
{
    const QSignalSpy entered(_field.get(), &AddressField::addressEntered);
    const QSignalSpy nonsense(_field.get(), &AddressField::nonsenseEntered);
    _field->setText("  ");
    QTest::keyClick(_field.get(), Qt::Key_Return);
    QCOMPARE(nonsense.count(), 0);
    _field->setText("two words");
    QTest::keyClick(_field.get(), Qt::Key_Return);
    QCOMPARE(nonsense.count(), 1);
    QCOMPARE(nonsense.first().first().toString(), QString("two words"));
    QCOMPARE(entered.count(), 0);
}

void AddressFieldTest::escapeGivesUp()
{
    const QSignalSpy givenUp(_field.get(), &AddressField::editingGivenUp);
    _field->setFocus();
    QTest::keyClicks(_field.get(), "c.exam");
    QTest::keyClick(_field.get(), Qt::Key_Escape);
    QCOMPARE(_field->text(), a.toString());
    QCOMPARE(givenUp.count(), 1);
}

void AddressFieldTest::clickSelectsEverything()
{
    QTest::mouseClick(_field.get(), Qt::LeftButton, {}, QPoint(60, _field->height() / 2));
    QCOMPARE(_field->selectedText(), a.toString());
    // The next click puts the cursor.
    QTest::mouseClick(_field.get(), Qt::LeftButton, {}, QPoint(60, _field->height() / 2));
    QCOMPARE(_field->selectedText(), QString());
}

void AddressFieldTest::progress()
{
    const QImage before = _field->grab().toImage();
    _field->setProgress(50);
    QVERIFY(_field->grab().toImage() != before);
    QVERIFY(_field->accessibleDescription().contains("50"));
    _field->setProgress(100);
    QCOMPARE(_field->grab().toImage(), before);
    QVERIFY(_field->accessibleDescription().isEmpty());
}

void AddressFieldTest::accessible()
{
    QVERIFY(!_field->accessibleName().isEmpty());
    QVERIFY(!_field->toolTip().isEmpty());
    const auto *icon = _field->findChild<QWidget *>("pageIcon");
    QVERIFY(icon);
    QVERIFY(!icon->accessibleName().isEmpty());
}

QTEST_MAIN(AddressFieldTest)
#include "AddressFieldTest.moc"
