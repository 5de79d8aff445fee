#include "drawer/KDREditFileController.h"
#include "drawer/KDREditFolderController.h"
#include "drawer/KDREditItemController.h"
#include "drawer/KDREditMailController.h"
#include "drawer/KDREditNoteController.h"
#include "drawer/KDRShowNoteView.h"
#include "lists/NoteViewer.h"
#include "lists/WayfoldHistoryDataSource.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "platform/widgets/DrawerGrip.h"
#include "tests/drawer/DrawerStage.h"
#include "tests/support/BrowserFiles.h"
#include "tests/support/ModelChecks.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QComboBox>
#include <QLineEdit>
#include <QTabBar>
#include <QTextEdit>
#include <QTreeView>

namespace
{
bool isControl(const QWidget *widget)
{
    return qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QLineEdit *>(widget) ||
           qobject_cast<const QTextEdit *>(widget) || qobject_cast<const QComboBox *>(widget) ||
           qobject_cast<const QTreeView *>(widget) || qobject_cast<const QTabWidget *>(widget) ||
           qobject_cast<const DrawerGrip *>(widget);
}

// The controls of a window that its form, or the drawer, has put there; what these are made of is the toolkit's.
QList<QWidget *> controls(QWidget *window)
{
    QList<QWidget *> found;
    for (QWidget *widget : window->findChildren<QWidget *>()) {
        const bool isPart = widget->objectName().startsWith(QLatin1String("qt_")) ||
                            qobject_cast<QTabBar *>(widget->parentWidget()) ||
                            qobject_cast<QLineEdit *>(widget->parentWidget()) ||
                            qobject_cast<QComboBox *>(widget->parentWidget()->window());
        if (isControl(widget) && !isPart)
            found.append(widget);
    }
    return found;
}
} // namespace

// Walks through the drawer and the dialogs as a screen reader and a keyboard do.
class DrawerAccessibilityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _stage.emplace(); }
    void cleanup()
    {
        if (_noteWindow)
            _noteWindow->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        _stage.reset();
    }

    void everyControlIsNamed_data();
    void everyControlIsNamed();
    void everyControlIsReachedByTab_data();
    void everyControlIsReachedByTab();
    void rowsAreRead();
    void rowsTellWhatTheyAre();
    void onlyRowsThatAreReadAreMade();
    void tabsAreRead();

private:
    void windows()
    {
        QTest::addColumn<QString>("window");
        for (const char *name : {"drawer", "web link", "file", "folder", "note", "mail", "note to read"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    // The window of that name, open; it lives as long as this stage.
    QWidget *open(const QString &name);

    std::optional<DrawerStage> _stage;
    std::vector<std::unique_ptr<KDREditController>> _controllers;
    QPointer<QWidget> _noteWindow;
};

QWidget *DrawerAccessibilityTest::open(const QString &name)
{
    QWidget *window = nullptr;
    if (name == u"drawer") {
        const auto browser = _stage->openWindow(QRectF(100, 100, 800, 600), true);
        DrawerStage::drawer(*browser)->open();
        window = DrawerStage::drawer(*browser);
        // A disabled control is skipped by the keyboard; here every one has its place.
        for (QWidget *control : controls(window))
            control->setEnabled(true);
    } else if (name == u"note to read") {
        NoteViewer::showNote(DrawerStage::note(QStringLiteral("Note")));
        for (QWidget *shown : QApplication::topLevelWidgets()) {
            if (shown->findChild<KDRShowNoteView *>())
                window = shown;
        }
        _noteWindow = window;
    } else {
        if (name == u"web link") {
            auto controller = std::make_unique<KDREditItemController>();
            controller->initEditingBookmark(DrawerStage::link(QStringLiteral("Link")));
            _controllers.push_back(std::move(controller));
        } else if (name == u"file") {
            auto controller = std::make_unique<KDREditFileController>();
            controller->initEditingBookmark(WayfoldBookmarkFile::bookmarkWithTitle(QStringLiteral("File")));
            _controllers.push_back(std::move(controller));
        } else if (name == u"folder") {
            auto controller = std::make_unique<KDREditFolderController>();
            controller->initForEditing(WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("Folder")));
            _controllers.push_back(std::move(controller));
        } else if (name == u"note") {
            auto controller = std::make_unique<KDREditNoteController>();
            controller->initEditingNote(DrawerStage::note(QStringLiteral("Note")));
            _controllers.push_back(std::move(controller));
        } else {
            auto controller = std::make_unique<KDREditMailController>();
            controller->initForEditing(WayfoldBookmarkEmail::bookmarkWithTitle(QStringLiteral("Mail")));
            _controllers.push_back(std::move(controller));
        }
        window = _controllers.back()->editWindow();
        window->show();
    }
    window->activateWindow();
    return window;
}

void DrawerAccessibilityTest::everyControlIsNamed_data()
{
    windows();
}

void DrawerAccessibilityTest::everyControlIsNamed()
{
    QFETCH(QString, window);
    QWidget *opened = open(window);
    const QList<QWidget *> found = controls(opened);
    QVERIFY(found.size() >= (window == u"note to read" ? 1 : 3));
    for (const QWidget *control : found) {
        const QByteArray what = control->metaObject()->className() + (" " + control->objectName()).toUtf8();
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(control));
        QVERIFY2(accessible, what);
        QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(), what + " has no name");
        QVERIFY2(!control->toolTip().isEmpty(), what + " has no tool tip");
    }
    _controllers.clear();
}

void DrawerAccessibilityTest::everyControlIsReachedByTab_data()
{
    windows();
}

void DrawerAccessibilityTest::everyControlIsReachedByTab()
{
    QFETCH(QString, window);
    QWidget *opened = open(window);
    QTRY_VERIFY(opened->isActiveWindow());
    QList<QWidget *> expected;
    for (QWidget *control : controls(opened)) {
        if (control->isVisible() && !qobject_cast<QTabWidget *>(control))
            expected.append(control);
    }
    QSet<QWidget *> reached;
    QWidget *first = opened->focusWidget() ? opened->focusWidget() : expected.constFirst();
    first->setFocus();
    for (int i = 0; i < 40; ++i) {
        QWidget *focused = opened->focusWidget();
        reached.insert(focused);
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    for (QWidget *control : expected)
        QVERIFY2(reached.contains(control), qPrintable(control->objectName()));
    _controllers.clear();
}

void DrawerAccessibilityTest::rowsAreRead()
{
    QWidget *drawer = open(QStringLiteral("drawer"));
    DrawerStage::store().bookmarkRoot()->addChild(DrawerStage::note(QStringLiteral("Opening hours")));
    DrawerStage::store().updateAllDrawerContentsExceptFor(nullptr);
    auto *list = drawer->findChild<WayfoldScratchOutlineView *>();
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(list);
    QVERIFY(accessible && accessible->tableInterface());
    QCOMPARE(accessible->tableInterface()->rowCount(), 1);
    QCOMPARE(accessible->tableInterface()->cellAt(0, 0)->text(QAccessible::Name), QStringLiteral("Opening hours"));
}

void DrawerAccessibilityTest::rowsTellWhatTheyAre()
{
    QWidget *drawer = open(QStringLiteral("drawer"));
    const WayfoldBookmarkFolderPtr tree = DrawerStage::store().bookmarkRoot();
    tree->addChild(DrawerStage::note(QStringLiteral("Opening hours")));
    tree->addChild(DrawerStage::link(QStringLiteral("Timetable"), QStringLiteral("http://a.org/times")));
    tree->addChild(WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("a.org")));
    DrawerStage::store().updateAllDrawerContentsExceptFor(nullptr);
    QAccessibleTableInterface *rows =
        QAccessible::queryAccessibleInterface(drawer->findChild<WayfoldScratchOutlineView *>())->tableInterface();
    const QStringList descriptions = {QStringLiteral("Note"), QStringLiteral("Link: http://a.org/times"),
                                      QStringLiteral("Folder")};
    for (int row = 0; row < 3; ++row)
        QCOMPARE(rows->cellAt(row, 0)->text(QAccessible::Description), descriptions[row]);
}

void DrawerAccessibilityTest::onlyRowsThatAreReadAreMade()
{
    QVariantList visits;
    for (int i = 0; i < 1000; ++i)
        visits.append(BrowserFiles::visit(QString::number(i), QStringLiteral("http://a.org/%1").arg(i), QString()));
    BrowserFiles(_stage->home).writeHistory(visits);
    DrawerStage::settings().setHistoryGroupingStyle(QStringLiteral("0"));
    const auto browser = _stage->openWindow(QRectF(100, 100, 800, 600), true);
    KDRDrawerController *controller = DrawerStage::controller(*browser);
    controller->showHistoryTabView();
    DrawerStage::drawer(*browser)->open();
    const WayfoldBookmarkFolderPtr root = controller->historyDataSource()->localRootFolder();
    QCOMPARE(root->childCount(), 1000U);
    QAccessibleInterface *row =
        QAccessible::queryAccessibleInterface(controller->historyOutlineView())->tableInterface()->cellAt(700, 0);
    controller->historyOutlineView()->grab();
    const std::size_t seen = root->madeChildren().size();
    QVERIFY(seen < 100);
    QCOMPARE(row->text(QAccessible::Description), QStringLiteral("Visited Page: http://a.org/700"));
    QCOMPARE(root->madeChildren().size(), seen + 1);
}

void DrawerAccessibilityTest::tabsAreRead()
{
    QWidget *drawer = open(QStringLiteral("drawer"));
    QAccessibleInterface *bar = QAccessible::queryAccessibleInterface(drawer->findChild<QTabBar *>());
    QStringList names;
    for (int i = 0; i < bar->childCount(); ++i) {
        if (bar->child(i)->role() == QAccessible::PageTab)
            names.append(bar->child(i)->text(QAccessible::Name));
    }
    QCOMPARE(names,
             QStringList({QStringLiteral("Scratchpad"), QStringLiteral("Bookmarks"), QStringLiteral("History")}));
}

QTEST_MAIN(DrawerAccessibilityTest)
#include "DrawerAccessibilityTest.moc"
