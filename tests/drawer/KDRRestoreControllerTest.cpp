#include "drawer/KDRRestoreController.h"

#include "core/RestorePanel.h"
#include "platform/widgets/OutlineView.h"
#include "tests/drawer/DialogStage.h"

#include <QAccessible>
#include <QLabel>
#include <QTreeWidget>

// The panel as its user has it, with backups of made-up days.
class KDRRestoreControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        DrawerStage::store();
    }
    void cleanup()
    {
        QLocale::setDefault(QLocale::c());
        _stage.reset();
    }

    void withoutBackupsThereIsNothingToRestore();
    void filesAreListedNewestFirstWithWhatTheyHold();
    void newestIsShownFirst();
    void selectedFileIsShown();
    void onlyTheFileWhereAKeyComesToRestIsShown();
    void previewIsOnlyLookedAt();
    void unreadableFileIsSaid();
    void emptyBackupCanReplaceOnly();
    void replaceMakesAllAsItWas();
    void addBringsBackWhatIsMissing_data();
    void addBringsBackWhatIsMissing();
    void leavingChangesNothing_data();
    void leavingChangesNothing();
    void fileIsShown();
    void onePanelAtATime();
    void everyControlIsNamedAndReachedByTab();
    void panelIsGerman();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void missingInterfaceFileIsNoError();

private:
    void makeBackup(const char *day, const QStringList &notes) const
    {
        const WayfoldBookmarkFolderPtr root = WayfoldBookmarkFolder::bookmarkWithTitle(QString());
        const WayfoldBookmarkFolderPtr site = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("a.org"));
        root->addChild(site);
        for (const QString &title : notes)
            site->addChild(DrawerStage::note(title));
        const QString path = pathOfBackup(day);
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QVERIFY(root->writeDictionaryFile(path));
    }
    QString pathOfBackup(const char *day) const
    {
        return _stage->home.path(
            QStringLiteral("Library/Wayfold/Backups/Bookmarks-%1.plist").arg(QString::fromLatin1(day)));
    }
    void makeTwoBackups() const
    {
        makeBackup("2026-03-01", {QStringLiteral("Milk"), QStringLiteral("Eggs")});
        makeBackup("2026-03-02", {QStringLiteral("Bread")});
    }
    // Runs the panel, in which `user` acts.
    static void run(const std::function<void(QDialog *)> &user)
    {
        QObject context;
        bool ran = false;
        DrawerStage::whenDialogOpens<QDialog>(&context, [&](QDialog *dialog) {
            ran = true;
            DialogStage::act(dialog, [&](const DialogStage &) {
                user(dialog);
                if (QTest::currentTestFailed())
                    dialog->reject();
            });
        });
        RestorePanel::show();
        QVERIFY(ran);
    }
    static QTreeWidget *files(const QDialog *dialog) { return dialog->findChild<QTreeWidget *>(); }
    static OutlineView *preview(const QDialog *dialog) { return dialog->findChild<OutlineView *>(); }
    static QAbstractButton *button(const QDialog *dialog, const char *name)
    {
        return dialog->findChild<QAbstractButton *>(QString::fromLatin1(name));
    }
    static QString emptyText(const QDialog *dialog)
    {
        const auto *field = dialog->findChild<QLabel *>(QStringLiteral("emptyField"));
        return field->isVisible() ? field->text() : QString();
    }
    // All that the preview shows, in open folders.
    static QStringList previewed(const QDialog *dialog)
    {
        preview(dialog)->expandAll();
        return DrawerStage::rows(*preview(dialog));
    }
    static QStringList tree()
    {
        QStringList titles;
        for (const KDRBookmarkPtr &site : DrawerStage::store().bookmarkRoot()->children()) {
            titles.append(site->title());
            for (const KDRBookmarkPtr &child : WayfoldBookmarkFolder::fromItem(site)->children()) {
                if (child->canBePersistent())
                    titles.append(child->title());
            }
        }
        return titles;
    }
    // One that no backup knows.
    static void makeTree()
    {
        const WayfoldBookmarkFolderPtr site = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("a.org"));
        DrawerStage::store().bookmarkRoot()->addChild(site);
        site->addChild(DrawerStage::note(QStringLiteral("Beer")));
    }

    std::optional<DrawerStage> _stage;
};

void KDRRestoreControllerTest::withoutBackupsThereIsNothingToRestore()
{
    run([](QDialog *dialog) {
        QCOMPARE(files(dialog)->topLevelItemCount(), 0);
        QVERIFY(emptyText(dialog).startsWith(QStringLiteral("There is no backup yet.")));
        QVERIFY(!preview(dialog)->isVisible());
        for (const char *name : {"addButton", "replaceButton", "showFileButton"})
            QVERIFY(!button(dialog, name)->isEnabled());
        QTest::keyClick(dialog, Qt::Key_Return);
        QVERIFY(dialog->isVisible());
        button(dialog, "cancelButton")->click();
    });
}

void KDRRestoreControllerTest::filesAreListedNewestFirstWithWhatTheyHold()
{
    makeTwoBackups();
    _stage->home.write(QStringLiteral("Library/Wayfold/Bookmarks.plist.kept-20260301-143005"), "nothing");
    run([](QDialog *dialog) {
        const auto text = [dialog](int row, int column) { return files(dialog)->topLevelItem(row)->text(column); };
        QCOMPARE(files(dialog)->topLevelItemCount(), 3);
        QCOMPARE(text(0, 0), QLocale().toString(QDate(2026, 3, 2), QLocale::ShortFormat));
        QCOMPARE(text(1, 0), QLocale().toString(QDateTime(QDate(2026, 3, 1), QTime(14, 30, 5)), QLocale::ShortFormat) +
                                 QStringLiteral(" (kept copy)"));
        QCOMPARE(text(2, 0), QLocale().toString(QDate(2026, 3, 1), QLocale::ShortFormat));
        QTRY_COMPARE(text(2, 2), QStringLiteral("3"));
        QCOMPARE(text(2, 1), QStringLiteral("1"));
        QCOMPARE(text(0, 1), QStringLiteral("1"));
        QCOMPARE(text(0, 2), QStringLiteral("2"));
        QCOMPARE(text(1, 1), QStringLiteral("?"));
        QCOMPARE(text(1, 2), QStringLiteral("?"));
        dialog->reject();
    });
}

void KDRRestoreControllerTest::newestIsShownFirst()
{
    makeTwoBackups();
    run([](QDialog *dialog) {
        QCOMPARE(files(dialog)->currentItem(), files(dialog)->topLevelItem(0));
        QVERIFY(files(dialog)->hasFocus());
        QTRY_VERIFY(preview(dialog)->isVisible());
        QCOMPARE(previewed(dialog), QStringList({QStringLiteral("a.org"), QStringLiteral("Bread")}));
        dialog->reject();
    });
}

void KDRRestoreControllerTest::selectedFileIsShown()
{
    makeTwoBackups();
    run([](QDialog *dialog) {
        QTest::keyClick(files(dialog), Qt::Key_Down);
        QVERIFY(!button(dialog, "addButton")->isEnabled()); // what is shown is not read yet
        QVERIFY(!button(dialog, "replaceButton")->isEnabled());
        QTRY_VERIFY(button(dialog, "addButton")->isEnabled());
        QCOMPARE(previewed(dialog),
                 QStringList({QStringLiteral("a.org"), QStringLiteral("Milk"), QStringLiteral("Eggs")}));
        QTest::keyClick(files(dialog), Qt::Key_Up);
        QTRY_COMPARE(previewed(dialog), QStringList({QStringLiteral("a.org"), QStringLiteral("Bread")}));
        dialog->reject();
    });
}

void KDRRestoreControllerTest::onlyTheFileWhereAKeyComesToRestIsShown()
{
    makeTwoBackups();
    makeBackup("2026-03-03", {QStringLiteral("Salt")});
    run([](QDialog *dialog) {
        QTRY_VERIFY(preview(dialog)->isVisible());
        QTest::keyClick(files(dialog), Qt::Key_Down);
        QVERIFY(DrawerStage::rows(*preview(dialog)).isEmpty());
        QTest::keyClick(files(dialog), Qt::Key_Down);
        QVERIFY(DrawerStage::rows(*preview(dialog)).isEmpty());
        QTRY_VERIFY(preview(dialog)->isVisible());
        QVERIFY(previewed(dialog).contains(QStringLiteral("Milk")));
        dialog->reject();
    });
}

void KDRRestoreControllerTest::previewIsOnlyLookedAt()
{
    makeTwoBackups();
    run([](QDialog *dialog) {
        QTRY_VERIFY(preview(dialog)->isVisible());
        OutlineView *view = preview(dialog);
        QVERIFY(!view->outlineDataSource()->outlineViewWriteItems(*view, {view->itemAtRow(0)}));
        QVERIFY(!view->outlineDataSource()->outlineViewShouldEdit(*view, view->itemAtRow(0)));
        QVERIFY(!view->doubleAction);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
        QVERIFY(!view->menuForEvent(&event));
        dialog->reject();
    });
}

void KDRRestoreControllerTest::unreadableFileIsSaid()
{
    makeTree();
    _stage->home.write(QStringLiteral("Library/Wayfold/Backups/Bookmarks-2026-03-01.plist"), "no property list");
    run([](QDialog *dialog) {
        QTRY_COMPARE(emptyText(dialog), QStringLiteral("This file cannot be read."));
        QVERIFY(!button(dialog, "addButton")->isEnabled());
        QVERIFY(!button(dialog, "replaceButton")->isEnabled());
        QVERIFY(button(dialog, "showFileButton")->isEnabled());
        dialog->reject();
    });
    QCOMPARE(tree(), QStringList({QStringLiteral("a.org"), QStringLiteral("Beer")}));
}

void KDRRestoreControllerTest::emptyBackupCanReplaceOnly()
{
    makeTree();
    QVERIFY(QDir().mkpath(QFileInfo(pathOfBackup("2026-03-01")).path()));
    QVERIFY(WayfoldBookmarkFolder::bookmarkWithTitle(QString())->writeDictionaryFile(pathOfBackup("2026-03-01")));
    run([](QDialog *dialog) {
        QTRY_COMPARE(emptyText(dialog), QStringLiteral("This backup holds nothing."));
        QVERIFY(!button(dialog, "addButton")->isEnabled());
        button(dialog, "replaceButton")->click();
    });
    QVERIFY(tree().isEmpty());
}

void KDRRestoreControllerTest::replaceMakesAllAsItWas()
{
    makeTwoBackups();
    makeTree();
    run([](QDialog *dialog) {
        QTest::keyClick(files(dialog), Qt::Key_Down);
        QTRY_VERIFY(button(dialog, "replaceButton")->isEnabled());
        QTest::mouseClick(button(dialog, "replaceButton"), Qt::LeftButton);
    });
    QCOMPARE(tree(), QStringList({QStringLiteral("a.org"), QStringLiteral("Milk"), QStringLiteral("Eggs")}));
    QVERIFY(_stage->savedFile().contains("Milk"));
}

void KDRRestoreControllerTest::addBringsBackWhatIsMissing_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("button") << false;
    QTest::newRow("Return") << true;
}

void KDRRestoreControllerTest::addBringsBackWhatIsMissing()
{
    QFETCH(bool, byKey);
    makeTwoBackups();
    makeTree();
    run([byKey](QDialog *dialog) {
        QTRY_VERIFY(button(dialog, "addButton")->isEnabled());
        if (byKey)
            QTest::keyClick(files(dialog), Qt::Key_Return);
        else
            QTest::mouseClick(button(dialog, "addButton"), Qt::LeftButton);
    });
    QCOMPARE(tree(), QStringList({QStringLiteral("a.org"), QStringLiteral("Beer"), QStringLiteral("Bread")}));
    QVERIFY(_stage->savedFile().contains("Bread"));
}

void KDRRestoreControllerTest::leavingChangesNothing_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"Cancel", "Escape", "close"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void KDRRestoreControllerTest::leavingChangesNothing()
{
    QFETCH(QString, way);
    makeTwoBackups();
    makeTree();
    QVERIFY(DrawerStage::store().saveBookmarkFile());
    const QByteArray before = _stage->savedFile();
    run([way](QDialog *dialog) {
        QTRY_VERIFY(preview(dialog)->isVisible());
        if (way == u"Cancel")
            QTest::mouseClick(button(dialog, "cancelButton"), Qt::LeftButton);
        else if (way == u"Escape")
            QTest::keyClick(preview(dialog), Qt::Key_Escape);
        else
            dialog->close();
    });
    QCOMPARE(tree(), QStringList({QStringLiteral("a.org"), QStringLiteral("Beer")}));
    QCOMPARE(_stage->savedFile(), before);
}

void KDRRestoreControllerTest::fileIsShown()
{
    makeTwoBackups();
    QString shown;
    Workspace::setURLHandler([&shown](const Url &url) {
        shown = url.absoluteString();
        return true;
    });
    run([](QDialog *dialog) {
        button(dialog, "showFileButton")->click();
        QVERIFY(dialog->isVisible());
        dialog->reject();
    });
    QCOMPARE(shown, Url::fileURLWithPath(QFileInfo(pathOfBackup("2026-03-02")).path()).absoluteString());
}

void KDRRestoreControllerTest::onePanelAtATime()
{
    run([](QDialog *dialog) {
        RestorePanel::show();
        QCOMPARE(QApplication::activeModalWidget(), dialog);
        dialog->reject();
    });
    run([](QDialog *dialog) { dialog->reject(); }); // and another one later
}

void KDRRestoreControllerTest::everyControlIsNamedAndReachedByTab()
{
    makeTwoBackups();
    run([](QDialog *dialog) {
        QTRY_VERIFY(preview(dialog)->isVisible());
        QList<QWidget *> expected = {files(dialog), preview(dialog)};
        for (const char *name : {"showFileButton", "cancelButton", "replaceButton", "addButton"})
            expected.append(button(dialog, name));
        for (QWidget *control : std::as_const(expected)) {
            QVERIFY2(!control->toolTip().isEmpty(), qPrintable(control->objectName()));
            QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(control);
            QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(), qPrintable(control->objectName()));
        }
        QList<QWidget *> reached;
        files(dialog)->setFocus();
        for (int i = 0; i < expected.size(); ++i) {
            reached.append(dialog->focusWidget());
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(reached, expected);
        dialog->reject();
    });
}

void KDRRestoreControllerTest::panelIsGerman()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    _stage->home.write(QStringLiteral("Library/Wayfold/Bookmarks.plist.kept-20260301-143005"), "nothing");
    run([](QDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Aus Sicherung wiederherstellen"));
        QCOMPARE(button(dialog, "addButton")->text(), QStringLiteral("Hinzuf\u00fcgen"));
        QCOMPARE(button(dialog, "replaceButton")->text(), QStringLiteral("Ersetzen"));
        QCOMPARE(button(dialog, "showFileButton")->text(), QStringLiteral("Datei zeigen"));
        QCOMPARE(files(dialog)->headerItem()->text(0), QStringLiteral("Datum"));
        QCOMPARE(files(dialog)->headerItem()->text(1), QStringLiteral("Websites"));
        QCOMPARE(files(dialog)->headerItem()->text(2), QStringLiteral("Eintr\u00e4ge"));
        QCOMPARE(files(dialog)->topLevelItem(0)->text(0), QStringLiteral("01.03.26 14:30 (behaltene Kopie)"));
        QTRY_COMPARE(emptyText(dialog), QStringLiteral("Diese Datei ist nicht lesbar."));
        dialog->reject();
    });
}

void KDRRestoreControllerTest::nothingIsCutOff_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << QStringLiteral("en_US");
    QTest::newRow("German") << QStringLiteral("de_DE");
}

// At the smallest size.
void KDRRestoreControllerTest::nothingIsCutOff()
{
    QFETCH(QString, language);
    QLocale::setDefault(QLocale(language));
    makeTwoBackups();
    _stage->home.write(QStringLiteral("Library/Wayfold/Bookmarks.plist.kept-20260301-143005"), "nothing");
    run([](QDialog *dialog) {
        dialog->resize(1, 1);
        QCoreApplication::processEvents();
        for (const char *name : {"showFileButton", "cancelButton", "replaceButton", "addButton"})
            QVERIFY2(button(dialog, name)->width() >= button(dialog, name)->sizeHint().width(), name);
        const auto *help = dialog->findChild<QLabel *>(QStringLiteral("helpField"));
        QVERIFY(help->height() >= help->heightForWidth(help->width()));
        for (int row = 0; row < 3; ++row) {
            const QModelIndex cell = files(dialog)->model()->index(row, 0);
            QVERIFY2(files(dialog)->visualRect(cell).width() >= files(dialog)->sizeHintForIndex(cell).width(),
                     qPrintable(cell.data().toString()));
        }
        for (int column = 0; column < 3; ++column)
            QVERIFY(files(dialog)->header()->sectionSize(column) >= files(dialog)->header()->sectionSizeHint(column));
        dialog->reject();
    });
}

void KDRRestoreControllerTest::missingInterfaceFileIsNoError()
{
    const QByteArray bundle = qgetenv("WAYFOLD_BUNDLE");
    qputenv("WAYFOLD_BUNDLE", _stage->home.path().toUtf8());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("KDRRestore")));
    RestorePanel::show();
    const KDRRestoreController controller;
    QVERIFY(!controller.restoreWindow());
    qputenv("WAYFOLD_BUNDLE", bundle);
}

QTEST_MAIN(KDRRestoreControllerTest)
#include "KDRRestoreControllerTest.moc"
