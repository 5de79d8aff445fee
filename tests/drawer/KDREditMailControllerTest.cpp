#include "drawer/KDREditMailController.h"

#include "tests/drawer/DialogStage.h"

class KDREditMailControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        _link = WayfoldBookmarkEmail::bookmarkWithTitleAndURL(
            QStringLiteral("Mail"),
            Url::URLWithString(QStringLiteral("mailto:ann,bob?cc=cy&bcc=dan&subject=Hello%20there")));
    }
    void cleanup() { _stage.reset(); }

    void titlesOfTheWindow();
    void showsTheParts();
    void address_data();
    void address();
    void emptyTitle();
    void cancel();
    void controlAndReturnAccept();
    void newLink();

private:
    std::optional<DrawerStage> _stage;
    WayfoldBookmarkEmailPtr _link;
};

void KDREditMailControllerTest::titlesOfTheWindow()
{
    KDREditMailController controller;
    controller.initForEditing(_link);
    QCOMPARE(controller.editWindow()->windowTitle(), QStringLiteral("Edit Email Link"));
    controller.initForNew(_link);
    QCOMPARE(controller.editWindow()->windowTitle(), QStringLiteral("New Email Link"));
}

void KDREditMailControllerTest::showsTheParts()
{
    KDREditMailController controller;
    controller.initForEditing(_link);
    DialogStage::run(controller, [](const DialogStage &dialog) {
        QCOMPARE(dialog.line("titleField")->text(), QStringLiteral("Mail"));
        QCOMPARE(dialog.line("subjectField")->text(), QStringLiteral("Hello there"));
        QCOMPARE(dialog.text("toField")->toPlainText(), QStringLiteral("ann\nbob"));
        QCOMPARE(dialog.text("ccField")->toPlainText(), QStringLiteral("cy"));
        QCOMPARE(dialog.text("bccField")->toPlainText(), QStringLiteral("dan"));
        dialog.pressCancel();
    });
}

void KDREditMailControllerTest::address_data()
{
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("cc");
    QTest::addColumn<QString>("bcc");
    QTest::addColumn<QString>("subject");
    QTest::addColumn<QString>("address");
    const QString no;
    const auto row = [](const char *name, const QString &to, const QString &cc, const QString &bcc,
                        const QString &subject, const char *address) {
        QTest::newRow(name) << to << cc << bcc << subject << QString::fromLatin1(address);
    };
    row("nothing", no, no, no, no, "mailto:");
    row("only a recipient", QStringLiteral("ann"), no, no, no, "mailto:ann");
    row("recipient, blind copy and subject", QStringLiteral("alpha"), no, QStringLiteral("beta"),
        QStringLiteral("Hi there"), "mailto:alpha?bcc=beta&subject=Hi%20there");
    row("all", QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d"),
        "mailto:a?cc=b&bcc=c&subject=d");
    row("only a subject", no, no, no, QStringLiteral("Hi"), "mailto:?subject=Hi");
    row("two lines", QStringLiteral("ann\nbob"), no, no, no, "mailto:ann%0Abob");
    row("blanks around", QStringLiteral("  ann \n"), QStringLiteral(" \n "), no, no, "mailto:ann");
    row("subject of blanks", QStringLiteral("ann"), no, no, QStringLiteral("  "), "mailto:ann?subject=");
    row("reserved characters", QStringLiteral("a@b,c@d"), no, no, QStringLiteral("1&2=3?"),
        "mailto:a@b,c@d?subject=1&2=3?");
    row("other letters", QString::fromUtf8("m\xc3\xbcller"), no, no, no, "mailto:m%C3%BCller");
}

void KDREditMailControllerTest::address()
{
    QFETCH(QString, to);
    QFETCH(QString, cc);
    QFETCH(QString, bcc);
    QFETCH(QString, subject);
    QFETCH(QString, address);
    KDREditMailController controller;
    controller.initForEditing(_link);
    QVERIFY(DialogStage::run(controller, [&](const DialogStage &dialog) {
        dialog.text("toField")->setPlainText(to);
        dialog.text("ccField")->setPlainText(cc);
        dialog.text("bccField")->setPlainText(bcc);
        dialog.line("subjectField")->setText(subject);
        dialog.pressOK();
    }));
    QCOMPARE(_link->valueAsString(), address);
    QCOMPARE(_link->title(), QStringLiteral("Mail"));
}

void KDREditMailControllerTest::emptyTitle()
{
    KDREditMailController controller;
    controller.initForEditing(_link);
    QVERIFY(DialogStage::run(controller, [](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QString());
        dialog.pressOK();
    }));
    QCOMPARE(_link->title(), QStringLiteral("Untitled Email Link"));
    // The list is kept as it was typed, one address a line.
    QCOMPARE(_link->valueAsString(), QStringLiteral("mailto:ann%0Abob?cc=cy&bcc=dan&subject=Hello%20there"));
}

void KDREditMailControllerTest::cancel()
{
    KDREditMailController controller;
    controller.initForEditing(_link);
    QVERIFY(!DialogStage::run(controller, [](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.type(dialog.line("subjectField"), QStringLiteral("Other"));
        for (const char *field : {"toField", "ccField", "bccField"})
            dialog.type(dialog.text(field), QStringLiteral("eve"));
        dialog.pressCancel();
    }));
    QCOMPARE(_link->title(), QStringLiteral("Mail"));
    QCOMPARE(_link->valueAsString(), QStringLiteral("mailto:ann,bob?cc=cy&bcc=dan&subject=Hello%20there"));
}

void KDREditMailControllerTest::controlAndReturnAccept()
{
    for (const char *field : {"toField", "ccField", "bccField"}) {
        KDREditMailController controller;
        controller.initForEditing(_link);
        QVERIFY(DialogStage::run(controller, [field](const DialogStage &dialog) {
            dialog.text(field)->setFocus();
            QTest::keyClick(dialog.text(field), Qt::Key_Return, Qt::ControlModifier);
        }));
    }
}

void KDREditMailControllerTest::newLink()
{
    DrawerStage::whenDialogOpens<QDialog>(this, [](QDialog *opened) {
        const DialogStage dialog(opened);
        QCOMPARE(dialog.line("titleField")->text(), QStringLiteral("New Email Link"));
        dialog.type(dialog.text("toField"), QStringLiteral("ann"));
        dialog.pressOK();
    });
    const WayfoldBookmarkEmailPtr made = WayfoldBookmarkEmail::newViaDialog();
    QVERIFY(made);
    QCOMPARE(made->valueAsString(), QStringLiteral("mailto:ann"));
}

QTEST_MAIN(KDREditMailControllerTest)
#include "KDREditMailControllerTest.moc"
