#include "browser/SignInDialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QTest>

class SignInDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void question_data();
    void question();
    void answers();
};

void SignInDialogTest::question_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("realm");
    QTest::addColumn<bool>("warns");

    QTest::newRow("plain") << "http://a.example/"
                           << "Den" << true;
    QTest::newRow("encrypted") << "https://a.example/"
                               << "<b>Den</b>" << false;
    QTest::newRow("no realm") << "https://a.example/"
                              << "" << false;
}

void SignInDialogTest::question()
{
    QFETCH(QString, address);
    QFETCH(QString, realm);
    QFETCH(bool, warns);
    const SignInDialog dialog(QUrl(address), "a.example", realm, nullptr);
    const auto labels = dialog.findChildren<QLabel *>();
    const QLabel *question = nullptr;
    for (const QLabel *label : labels) {
        if (label->text().contains("a.example"))
            question = label;
    }
    if (!question)
        QFAIL("nothing is asked");
    QCOMPARE(question->textFormat(), Qt::PlainText); // the realm is the server's text
    QVERIFY(question->text().contains(realm));
    QCOMPARE(question->text().contains("without encryption"), warns);
}

void SignInDialogTest::answers()
{
    SignInDialog dialog(QUrl("http://a.example/"), "a.example", "Den", nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto *user = dialog.findChild<QLineEdit *>("userField");
    auto *password = dialog.findChild<QLineEdit *>("passwordField");
    QVERIFY(user->hasFocus());
    QCOMPARE(password->echoMode(), QLineEdit::Password);
    QTest::keyClicks(user, "ann");
    QTest::keyClicks(password, "secret");
    QTest::keyClick(password, Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.user(), QString("ann"));
    QCOMPARE(dialog.password(), QString("secret"));
}

QTEST_MAIN(SignInDialogTest)
#include "SignInDialogTest.moc"
