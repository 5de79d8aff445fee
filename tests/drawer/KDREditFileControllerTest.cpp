#include "drawer/KDREditFileController.h"

#include "drawer/FileOrFolderPanel.h"
#include "tests/drawer/DialogStage.h"

#include <QDir>
#include <QListView>
#include <QTreeView>

class KDREditFileControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        _stage->home.write(QStringLiteral("Documents/report.pdf"), "x");
        _stage->home.write(QStringLiteral("Documents/inner/deep.txt"), "x");
        _link = std::static_pointer_cast<WayfoldBookmarkFile>(
            WayfoldBookmarkFile::bookmarkWithTitleAndURL(QStringLiteral("File"), Url::fileURLWithPath("/tmp/a b.txt")));
    }
    void cleanup() { _stage.reset(); }

    void showsTitleAndPath();
    void okWritesBoth();
    void tildeIsTheHomeFolder_data();
    void tildeIsTheHomeFolder();
    void emptyFields();
    void cancelLeavesAll();
    void chooserOpensWhereThePathPoints();
    void chosenFile();
    void chosenFolder();
    void tildeTypedIntoTheChooser();
    void cancelledChooser();

private:
    bool edit(const std::function<void(const DialogStage &)> &user)
    {
        KDREditFileController controller;
        controller.initEditingBookmark(_link);
        return DialogStage::run(controller, user);
    }
    // Types a path, presses the button, and hands the panel to the user.
    static void choose(const DialogStage &dialog, const QString &path,
                       const std::function<void(FileOrFolderPanel &)> &user)
    {
        dialog.type(dialog.line("valueField"), path);
        QTest::mouseClick(dialog.dialog()->findChild<QPushButton *>(QStringLiteral("chooseButton")), Qt::LeftButton);
        auto *panel = dialog.dialog()->findChild<FileOrFolderPanel *>();
        QVERIFY(panel);
        QTRY_VERIFY(panel->isVisible());
        QCOMPARE(panel->windowModality(), Qt::WindowModal); // a sheet
        user(*panel);
        QTRY_VERIFY(!dialog.dialog()->findChild<FileOrFolderPanel *>());
    }
    static QPushButton *openButton(const FileOrFolderPanel &panel)
    {
        return panel.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open);
    }
    // Clicks the entry of that name in the panel's list.
    static void click(FileOrFolderPanel &panel, const QString &name)
    {
        auto *list = panel.findChild<QTreeView *>(QStringLiteral("treeView"));
        QModelIndex found;
        const auto find = [&] {
            for (int i = 0; i < list->model()->rowCount(list->rootIndex()); ++i) {
                const QModelIndex index = list->model()->index(i, 0, list->rootIndex());
                if (index.data().toString() == name)
                    found = index;
            }
            return found.isValid();
        };
        QTRY_VERIFY(find());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(found).center());
    }

    std::optional<DrawerStage> _stage;
    WayfoldBookmarkFilePtr _link;
};

void KDREditFileControllerTest::showsTitleAndPath()
{
    edit([](const DialogStage &dialog) {
        QCOMPARE(dialog.line("titleField")->text(), QStringLiteral("File"));
        QCOMPARE(dialog.line("valueField")->text(), QStringLiteral("/tmp/a b.txt"));
        QCOMPARE(dialog.dialog()->windowTitle(), QStringLiteral("Edit File Link"));
        dialog.pressCancel();
    });
}

void KDREditFileControllerTest::okWritesBoth()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.type(dialog.line("valueField"), QStringLiteral("/no/such file"));
        dialog.pressOK();
    }));
    QCOMPARE(_link->title(), QStringLiteral("Other"));
    QCOMPARE(_link->valueAsString(), QStringLiteral("file:///no/such%20file"));
}

void KDREditFileControllerTest::tildeIsTheHomeFolder_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("path"); // in the home folder, unless it is absolute
    QTest::newRow("home") << "~"
                          << ".";
    QTest::newRow("in it") << "~/Documents/report.pdf"
                           << "Documents/report.pdf";
    QTest::newRow("elsewhere") << "/tmp/~x"
                               << "/tmp/~x";
}

void KDREditFileControllerTest::tildeIsTheHomeFolder()
{
    QFETCH(QString, typed);
    QFETCH(QString, path);
    edit([&](const DialogStage &dialog) {
        dialog.type(dialog.line("valueField"), typed);
        dialog.pressOK();
    });
    QCOMPARE(_link->url().path(), QDir::cleanPath(QDir(_stage->home.path(".")).filePath(path)));
}

void KDREditFileControllerTest::emptyFields()
{
    QVERIFY(edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QString());
        dialog.type(dialog.line("valueField"), QString());
        dialog.pressOK();
    }));
    QCOMPARE(_link->title(), QStringLiteral("Untitled File"));
    QCOMPARE(_link->url().path(), QStringLiteral("/tmp/a b.txt"));
}

void KDREditFileControllerTest::cancelLeavesAll()
{
    QVERIFY(!edit([](const DialogStage &dialog) {
        dialog.type(dialog.line("titleField"), QStringLiteral("Other"));
        dialog.type(dialog.line("valueField"), QStringLiteral("/no/such file"));
        dialog.pressCancel();
    }));
    QCOMPARE(_link->title(), QStringLiteral("File"));
    QCOMPARE(_link->url().path(), QStringLiteral("/tmp/a b.txt"));
}

void KDREditFileControllerTest::chooserOpensWhereThePathPoints()
{
    edit([this](const DialogStage &dialog) {
        choose(dialog, QStringLiteral("~/Documents/./report.pdf"), [this](FileOrFolderPanel &panel) {
            QCOMPARE(panel.directory().absolutePath(), _stage->home.path(QStringLiteral("Documents")));
            QCOMPARE(panel.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->text(),
                     QStringLiteral("report.pdf"));
            panel.reject();
        });
        dialog.pressCancel();
    });
}

void KDREditFileControllerTest::chosenFile()
{
    edit([this](const DialogStage &dialog) {
        choose(dialog, QStringLiteral("~/Documents/nothing"), [](FileOrFolderPanel &panel) {
            click(panel, QStringLiteral("report.pdf"));
            QTest::mouseClick(openButton(panel), Qt::LeftButton);
        });
        QCOMPARE(dialog.line("valueField")->text(), _stage->home.path(QStringLiteral("Documents/report.pdf")));
        QCOMPARE(dialog.line("titleField")->text(), QStringLiteral("File"));
        dialog.pressCancel();
    });
}

void KDREditFileControllerTest::chosenFolder()
{
    edit([this](const DialogStage &dialog) {
        choose(dialog, QStringLiteral("~/Documents/report.pdf"), [](FileOrFolderPanel &panel) {
            click(panel, QStringLiteral("inner"));
            QVERIFY(openButton(panel)->isEnabled());
            QTest::mouseClick(openButton(panel), Qt::LeftButton);
        });
        QCOMPARE(dialog.line("valueField")->text(), _stage->home.path(QStringLiteral("Documents/inner")));
        dialog.pressCancel();
    });
}

void KDREditFileControllerTest::tildeTypedIntoTheChooser()
{
    edit([this](const DialogStage &dialog) {
        choose(dialog, QStringLiteral("~/nothing"), [&dialog](FileOrFolderPanel &panel) {
            auto *name = panel.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
            panel.activateWindow(); // as a window manager does
            name->setFocus();
            QTRY_VERIFY(name->hasFocus());
            dialog.type(name, QStringLiteral("~/Documents/report.pdf"));
            QCOMPARE(name->text(), QStringLiteral("~/Documents/report.pdf"));
            QTRY_VERIFY(openButton(panel)->isEnabled());
            QTest::mouseClick(openButton(panel), Qt::LeftButton);
        });
        QCOMPARE(dialog.line("valueField")->text(), _stage->home.path(QStringLiteral("Documents/report.pdf")));
        dialog.pressCancel();
    });
}

void KDREditFileControllerTest::cancelledChooser()
{
    edit([](const DialogStage &dialog) {
        choose(dialog, QStringLiteral("~/Documents/report.pdf"),
               [](FileOrFolderPanel &panel) { QTest::keyClick(&panel, Qt::Key_Escape); });
        QCOMPARE(dialog.line("valueField")->text(), QStringLiteral("~/Documents/report.pdf"));
        dialog.pressCancel();
    });
}

QTEST_MAIN(KDREditFileControllerTest)
#include "KDREditFileControllerTest.moc"
