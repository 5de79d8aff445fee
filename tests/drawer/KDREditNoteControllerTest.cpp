#include "drawer/KDREditNoteController.h"

#include "tests/drawer/DialogStage.h"

class KDREditNoteControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        _note = DrawerStage::note(QStringLiteral("Hours"), QStringLiteral("Mon-Fri\n9 to 5"));
    }
    void cleanup() { _stage.reset(); }

    void titlesOfTheWindow();
    void showsTitleAndText();
    void okWritesBoth();
    void emptiedTextKeepsTheOldOne();
    void emptyTitle();
    void untouchedTextStaysAsItIs();
    void blanksThatDoNotBreakStay();
    void cancelLeavesAll_data();
    void cancelLeavesAll();
    void controlAndReturnAccept();
    void returnBeginsALine();
    void tabLeavesTheText();
    void newNote_data();
    void newNote();
    void longTextIsCut();

private:
    bool edit(const std::function<void(const DialogStage &)> &user)
    {
        KDREditNoteController controller;
        controller.initEditingNote(_note);
        return DialogStage::run(controller, user);
    }

    std::optional<DrawerStage> _stage;
    WayfoldBookmarkNotePtr _note;
};

void KDREditNoteControllerTest::titlesOfTheWindow()
{
    KDREditNoteController controller;
    controller.initEditingNote(_note);
    QCOMPARE(controller.editWindow()->windowTitle(), QStringLiteral("Edit Note"));
    controller.initNewNote(_note);
    QCOMPARE(controller.editWindow()->windowTitle(), QStringLiteral("New Note"));
}

void KDREditNoteControllerTest::showsTitleAndText()
{
    edit([](const DialogStage &dialog) {
        QCOMPARE(dialog.line("titleField")->text(), QStringLiteral("Hours"));
        QCOMPARE(dialog.text("valueField")->toPlainText(), QStringLiteral("Mon-Fri\n9 to 5"));
        QVERIFY(!dialog.text("valueField")->acceptRichText());
        dialog.pressCancel();
    });
}

void KDREditNoteControllerTest::okWritesBoth()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.type(dialog.text("valueField"), QStringLiteral("closed"));
        dialog.pressOK();
    }));
    QCOMPARE(_note->title(), QStringLiteral("Other"));
    QCOMPARE(_note->valueAsString(), QStringLiteral("closed"));
}

void KDREditNoteControllerTest::emptiedTextKeepsTheOldOne()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.type(dialog.text("valueField"), QString());
        QVERIFY(dialog.text("valueField")->toPlainText().isEmpty());
        dialog.pressOK();
    }));
    QCOMPARE(_note->title(), QStringLiteral("Other"));
    QCOMPARE(_note->valueAsString(), QStringLiteral("Mon-Fri\n9 to 5"));
}

void KDREditNoteControllerTest::emptyTitle()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QString());
        dialog.pressOK();
    }));
    QCOMPARE(_note->title(), QStringLiteral("Untitled Note"));
}

void KDREditNoteControllerTest::untouchedTextStaysAsItIs()
{
    _note->setValue(QStringLiteral("one\r\ntwo"));
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.pressOK();
    }));
    QCOMPARE(_note->valueAsString(), QStringLiteral("one\r\ntwo"));
}

void KDREditNoteControllerTest::blanksThatDoNotBreakStay()
{
    _note->setValue(QString::fromUtf8("10\xc2\xa0km"));
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.text("valueField")->setFocus();
        QTest::keyClick(dialog.text("valueField"), Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(dialog.text("valueField"), QStringLiteral("!"));
        dialog.pressOK();
    }));
    QCOMPARE(_note->valueAsString(), QString::fromUtf8("10\xc2\xa0km!"));
}

void KDREditNoteControllerTest::cancelLeavesAll_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("button") << false;
    QTest::newRow("Escape") << true;
}

void KDREditNoteControllerTest::cancelLeavesAll()
{
    QFETCH(bool, byKey);
    QVERIFY(!edit([byKey](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.type(dialog.text("valueField"), QStringLiteral("closed"));
        if (byKey)
            QTest::keyClick(dialog.text("valueField"), Qt::Key_Escape);
        else
            dialog.pressCancel();
    }));
    QCOMPARE(_note->title(), QStringLiteral("Hours"));
    QCOMPARE(_note->valueAsString(), QStringLiteral("Mon-Fri\n9 to 5"));
}

void KDREditNoteControllerTest::controlAndReturnAccept()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.text("valueField"), QStringLiteral("closed"));
        QTest::keyClick(dialog.text("valueField"), Qt::Key_Return, Qt::ControlModifier);
    }));
    QCOMPARE(_note->valueAsString(), QStringLiteral("closed"));
}

void KDREditNoteControllerTest::returnBeginsALine()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.text("valueField"), QStringLiteral("one"));
        QTest::keyClick(dialog.text("valueField"), Qt::Key_Return);
        QTest::keyClick(dialog.text("valueField"), Qt::Key_Return, Qt::ShiftModifier);
        QTest::keyClicks(dialog.text("valueField"), QStringLiteral("two"));
        dialog.pressOK();
    }));
    QCOMPARE(_note->valueAsString(), QStringLiteral("one\n\ntwo"));
}

void KDREditNoteControllerTest::tabLeavesTheText()
{
    edit([](const DialogStage &dialog) {
        QTRY_VERIFY(dialog.line("titleField")->hasFocus());
        QTest::keyClick(dialog.line("titleField"), Qt::Key_Tab);
        QVERIFY(dialog.text("valueField")->hasFocus());
        QTest::keyClick(dialog.text("valueField"), Qt::Key_Tab);
        QVERIFY(!dialog.text("valueField")->hasFocus());
        dialog.pressCancel();
    });
}

void KDREditNoteControllerTest::newNote_data()
{
    QTest::addColumn<bool>("accepts");
    QTest::newRow("OK") << true;
    QTest::newRow("Cancel") << false;
}

void KDREditNoteControllerTest::newNote()
{
    QFETCH(bool, accepts);
    DrawerStage::whenDialogOpens<QDialog>(this, [accepts](QDialog *opened) {
        const DialogStage dialog(opened);
        QCOMPARE(opened->windowTitle(), QStringLiteral("New Note"));
        QCOMPARE(dialog.line("titleField")->text(), QStringLiteral("Untitled Note"));
        dialog.type(dialog.text("valueField"), QStringLiteral("words"));
        if (accepts)
            dialog.pressOK();
        else
            dialog.pressCancel();
    });
    const WayfoldBookmarkNotePtr made = WayfoldBookmarkNote::newViaDialog();
    QCOMPARE(made != nullptr, accepts);
    if (made)
        QCOMPARE(made->valueAsString(), QStringLiteral("words"));
}

void KDREditNoteControllerTest::longTextIsCut()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.text("valueField")->selectAll();
        dialog.text("valueField")->insertPlainText(QString(40000, u'x'));
        dialog.pressOK();
    }));
    QCOMPARE(_note->valueAsString().size(), 32768);
}

QTEST_MAIN(KDREditNoteControllerTest)
#include "KDREditNoteControllerTest.moc"
