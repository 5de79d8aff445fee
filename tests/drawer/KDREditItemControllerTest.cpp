#include "drawer/KDREditItemController.h"

#include "tests/drawer/DialogStage.h"

class KDREditItemControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        _link = DrawerStage::link(QStringLiteral("A page"), QStringLiteral("http://a.org/b%20c"));
    }
    void cleanup() { _stage.reset(); }

    void showsTitleAndAddress();
    void okWritesBoth();
    void emptyTitle();
    void blankTitleIsKept();
    void emptyAddressLeavesTheOldOne();
    void unreadableAddressGivesNone();
    void longTextsStayWhole();
    void cancelLeavesAll_data();
    void cancelLeavesAll();
    void returnAccepts();
    void dialogLeavesWithTheController();
    void missingInterfaceFile();
    void editedLinkIsSaved();

private:
    bool edit(const std::function<void(const DialogStage &)> &user)
    {
        KDREditItemController controller;
        controller.initEditingBookmark(_link);
        return DialogStage::run(controller, user);
    }

    std::optional<DrawerStage> _stage;
    WayfoldBookmarkURLPtr _link;
};

void KDREditItemControllerTest::showsTitleAndAddress()
{
    edit([](const DialogStage &dialog) {
        QCOMPARE(dialog.line("titleField")->text(), QStringLiteral("A page"));
        QCOMPARE(dialog.line("valueField")->text(), QStringLiteral("http://a.org/b%20c"));
        QCOMPARE(dialog.dialog()->windowTitle(), QStringLiteral("Edit Bookmark"));
        QCOMPARE(dialog.dialog()->windowModality(), Qt::ApplicationModal);
        QTRY_VERIFY(dialog.line("titleField")->hasFocus());
        dialog.pressCancel();
    });
}

void KDREditItemControllerTest::okWritesBoth()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.type(dialog.line("valueField"), QStringLiteral("http://x/y"));
        dialog.pressOK();
    }));
    QCOMPARE(_link->title(), QStringLiteral("Other"));
    QCOMPARE(_link->valueAsString(), QStringLiteral("http://x/y"));
}

void KDREditItemControllerTest::emptyTitle()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QString());
        dialog.pressOK();
    }));
    QCOMPARE(_link->title(), QStringLiteral("Untitled URL"));
}

void KDREditItemControllerTest::blankTitleIsKept()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("  "));
        dialog.pressOK();
    }));
    QCOMPARE(_link->title(), QStringLiteral("  "));
}

void KDREditItemControllerTest::emptyAddressLeavesTheOldOne()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.type(dialog.line("valueField"), QString());
        dialog.pressOK();
    }));
    QCOMPARE(_link->title(), QStringLiteral("Other"));
    QCOMPARE(_link->valueAsString(), QStringLiteral("http://a.org/b%20c"));
}

void KDREditItemControllerTest::unreadableAddressGivesNone()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("valueField"), QStringLiteral("http://a b/"));
        dialog.pressOK();
    }));
    QVERIFY(_link->url().isNull());
}

// Addresses that hold whole programs or pictures are long.
void KDREditItemControllerTest::longTextsStayWhole()
{
    const QString title(40000, u't');
    const QString address = QStringLiteral("javascript:") + QString(40000, u'x');
    _link = DrawerStage::link(title, address);
    QVERIFY(edit([](const DialogStage &dialog) { dialog.pressOK(); }));
    QCOMPARE(_link->title(), title);
    QCOMPARE(_link->valueAsString(), address);
}

void KDREditItemControllerTest::cancelLeavesAll_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"button", "Escape", "window"})
        QTest::newRow(how) << QString::fromLatin1(how);
}

void KDREditItemControllerTest::cancelLeavesAll()
{
    QFETCH(QString, how);
    QVERIFY(!edit([how](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.type(dialog.line("valueField"), QStringLiteral("http://x/y"));
        if (how == u"button")
            dialog.pressCancel();
        else if (how == u"Escape")
            QTest::keyClick(dialog.line("titleField"), Qt::Key_Escape);
        else
            dialog.dialog()->close();
    }));
    QCOMPARE(_link->title(), QStringLiteral("A page"));
    QCOMPARE(_link->valueAsString(), QStringLiteral("http://a.org/b%20c"));
}

void KDREditItemControllerTest::returnAccepts()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        QTest::keyClick(dialog.line("titleField"), Qt::Key_Return);
    }));
    QCOMPARE(_link->title(), QStringLiteral("Other"));
}

void KDREditItemControllerTest::dialogLeavesWithTheController()
{
    QPointer<QDialog> dialog;
    {
        KDREditItemController controller;
        controller.initEditingBookmark(_link);
        dialog = controller.editWindow();
        QVERIFY(dialog);
        controller.initEditingBookmark(_link); // again, on a fresh dialog
        QVERIFY(!dialog);
        dialog = controller.editWindow();
    }
    QVERIFY(!dialog);
}

void KDREditItemControllerTest::missingInterfaceFile()
{
    const QByteArray bundle = qgetenv("WAYFOLD_BUNDLE");
    qputenv("WAYFOLD_BUNDLE", "/nowhere");
    KDREditItemController controller;
    controller.initEditingBookmark(_link);
    QVERIFY(!controller.editWindow());
    QVERIFY(!controller.doEdit());
    qputenv("WAYFOLD_BUNDLE", bundle);
}

void KDREditItemControllerTest::editedLinkIsSaved()
{
    DrawerStage::store().bookmarkRoot()->addChild(_link);
    DrawerStage::whenDialogOpens<QDialog>(this, [](QDialog *dialog) {
        const DialogStage stage(dialog);
        stage.type(stage.line("titleField"), QStringLiteral("Saved at once"));
        stage.pressOK();
    });
    QVERIFY(_link->editViaDialog());
    QVERIFY(_stage->savedFile().contains("Saved at once"));
}

QTEST_MAIN(KDREditItemControllerTest)
#include "KDREditItemControllerTest.moc"
