#include "drawer/KDREditFolderController.h"

#include "tests/drawer/DialogStage.h"

class KDREditFolderControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        _folder = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("Folder"));
    }
    void cleanup() { _stage.reset(); }

    void titlesOfTheWindow();
    void title_data();
    void title();
    void cancel();
    void newFolder();

private:
    std::optional<DrawerStage> _stage;
    WayfoldBookmarkFolderPtr _folder;
};

void KDREditFolderControllerTest::titlesOfTheWindow()
{
    KDREditFolderController controller;
    controller.initForEditing(_folder);
    QCOMPARE(controller.editWindow()->windowTitle(), QStringLiteral("Edit Bookmark Folder"));
    controller.initForNew(_folder);
    QCOMPARE(controller.editWindow()->windowTitle(), QStringLiteral("New Bookmark Folder"));
}

void KDREditFolderControllerTest::title_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("title");
    QTest::newRow("another") << QStringLiteral("Other") << QStringLiteral("Other");
    QTest::newRow("empty") << QString() << QStringLiteral("Untitled Folder");
    QTest::newRow("blanks") << QStringLiteral("   ") << QStringLiteral("   ");
}

void KDREditFolderControllerTest::title()
{
    QFETCH(QString, typed);
    QFETCH(QString, title);
    KDREditFolderController controller;
    controller.initForEditing(_folder);
    QVERIFY(DialogStage::run(controller, [typed](const DialogStage &dialog) {
        QCOMPARE(dialog.line("titleField")->text(), QStringLiteral("Folder"));
        dialog.type(dialog.line("titleField"), typed);
        dialog.pressOK();
    }));
    QCOMPARE(_folder->title(), title);
}

void KDREditFolderControllerTest::cancel()
{
    KDREditFolderController controller;
    controller.initForEditing(_folder);
    QVERIFY(!DialogStage::run(controller, [](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.pressCancel();
    }));
    QCOMPARE(_folder->title(), QStringLiteral("Folder"));
}

void KDREditFolderControllerTest::newFolder()
{
    DrawerStage::whenDialogOpens<QDialog>(this, [](QDialog *dialog) { DialogStage(dialog).pressOK(); });
    const WayfoldBookmarkFolderPtr made = WayfoldBookmarkFolder::newViaDialog();
    QVERIFY(made);
    QCOMPARE(made->title(), QStringLiteral("Untitled Folder"));
}

QTEST_MAIN(KDREditFolderControllerTest)
#include "KDREditFolderControllerTest.moc"
