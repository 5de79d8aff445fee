#include "lists/ListSearch.h"

#include "lists/WayfoldBookmarkDataSource.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "tests/lists/ListStage.h"
#include "tests/support/BrowserFiles.h"

#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace
{
// A tab with a search field and the Bookmarks list, in a window with another control.
class SearchWindow : public QWidget
{
public:
    SearchWindow()
    {
        area = new QWidget(this);
        other = new QPushButton(area);
        field = new QLineEdit(area);
        list = new WayfoldBookmarkOutlineView(area);
        auto *layout = new QVBoxLayout(area);
        for (QWidget *widget : std::initializer_list<QWidget *>{other, field, list})
            layout->addWidget(widget);
        source = std::make_unique<WayfoldBookmarkDataSource>(list);
        list->setDelegate(source.get());
        list->awakeFromNib();
        list->setOutlineDataSource(source.get());
        source->awakeFromNib();
        source->ensureDataLoaded();
        QObject::connect(field, &QLineEdit::textChanged, field, [this] { source->processSearchFilter(field); });
        new ListSearch(field, list, area);
        area->resize(300, 400);
        resize(300, 400);
        show();
        activateWindow();
    }
    ~SearchWindow() override { delete area; } // the views go before what stands behind them

    QWidget *area;
    QPushButton *other;
    QLineEdit *field;
    WayfoldBookmarkOutlineView *list;
    std::unique_ptr<WayfoldBookmarkDataSource> source;

    QStringList rows() const { return ListStage::rows(*list); }
};
} // namespace

class ListSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        using Files = BrowserFiles;
        _stage.emplace();
        Files(_stage->home)
            .writeBookmarks({Files::folder("Marsh", "MARSH",
                                           {Files::link("Marsh Line", "http://line.org/", "LINE"),
                                            Files::link("Marsh birds", "http://birds.org/", "BIRDS")}),
                             Files::folder("Empty", "EMPTY", {}),
                             Files::link("Kettle works", "http://kettle.org/", "KETTLE")});
        ListStage::store();
        _window.emplace();
        QTRY_VERIFY(_window->isActiveWindow());
    }
    void cleanup()
    {
        _window.reset();
        _stage.reset();
    }

    void typingInTheListSearches();
    void typingGoesOnWhereTheSearchStands();
    void otherKeysOfTheListStayThere_data();
    void otherKeysOfTheListStayThere();
    void spaceOpensWhatIsSelected();
    void escapeInTheFieldEndsTheSearch();
    void escapeInTheListEndsTheSearch();
    void escapeWithoutSearchIsLeftToOthers();
    void downGoesToTheList();
    void downKeepsTheSelection();
    void downStaysWhereNothingIsFound();
    void returnOpensTheFirstPage_data();
    void returnOpensTheFirstPage();
    void returnOpensTheFolderWhenNothingElseIsFound();
    void returnWithoutSearchGoesToTheList();
    void returnStaysWhereNothingIsFound();
    void findBeginsASearch();
    void findIsLeftToOthersWhenTheFieldIsHidden();
    void keysGoBeforeShortcuts_data();
    void keysGoBeforeShortcuts();

private:
    void find(const QString &text)
    {
        _window->field->setFocus();
        QTest::keyClicks(_window->field, text);
    }
    QWidget *focus() { return QApplication::focusWidget(); }

    std::optional<ListStage> _stage;
    std::optional<SearchWindow> _window;
};

// --- From the list --------------------------------------------------------------------------------------------------

void ListSearchTest::typingInTheListSearches()
{
    _window->list->setFocus();
    QTest::keyClicks(_window->list, "K");
    QCOMPARE(focus(), _window->field);
    QCOMPARE(_window->field->text(), QString("K"));
    QTest::keyClicks(focus(), "ett");
    QCOMPARE(_window->field->text(), QString("Kett"));
    QCOMPARE(_window->rows(), QStringList{"Kettle works"});
}

void ListSearchTest::typingGoesOnWhereTheSearchStands()
{
    find("mars");
    _window->field->setCursorPosition(1);
    _window->list->setFocus();
    QTest::keyClick(_window->list, Qt::Key_H);
    QCOMPARE(_window->field->text(), QString("marsh"));
    QVERIFY(!_window->field->hasSelectedText());
}

void ListSearchTest::otherKeysOfTheListStayThere_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("down") << Qt::Key_Down << Qt::KeyboardModifiers();
    QTest::newRow("right") << Qt::Key_Right << Qt::KeyboardModifiers();
    QTest::newRow("space") << Qt::Key_Space << Qt::KeyboardModifiers();
    QTest::newRow("return") << Qt::Key_Return << Qt::KeyboardModifiers();
    QTest::newRow("delete") << Qt::Key_Delete << Qt::KeyboardModifiers();
    QTest::newRow("Ctrl+A") << Qt::Key_A << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("Alt+A") << Qt::Key_A << Qt::KeyboardModifiers(Qt::AltModifier);
}

void ListSearchTest::otherKeysOfTheListStayThere()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    _window->list->setFocus();
    QTest::keyClick(_window->list, key, modifiers);
    QCOMPARE(focus(), _window->list);
    QVERIFY(_window->field->text().isEmpty());
}

void ListSearchTest::spaceOpensWhatIsSelected()
{
    _window->list->setFocus();
    _window->list->selectIndividualRow(2);
    QTest::keyClick(_window->list, Qt::Key_Space);
    QCOMPARE(_stage->openedURLs, QStringList{"http://kettle.org/"});
}

// --- Ending ---------------------------------------------------------------------------------------------------------

void ListSearchTest::escapeInTheFieldEndsTheSearch()
{
    find("kettle");
    QCOMPARE(_window->rows().size(), 1);
    QTest::keyClick(_window->field, Qt::Key_Escape);
    QVERIFY(_window->field->text().isEmpty());
    QCOMPARE(focus(), _window->list);
    QCOMPARE(_window->rows(), QStringList({"Marsh", "Empty", "Kettle works"}));
}

void ListSearchTest::escapeInTheListEndsTheSearch()
{
    find("kettle");
    _window->list->setFocus();
    QTest::keyClick(_window->list, Qt::Key_Escape);
    QVERIFY(_window->field->text().isEmpty());
    QCOMPARE(focus(), _window->list);
    QCOMPARE(_window->rows().size(), 3);
}

void ListSearchTest::escapeWithoutSearchIsLeftToOthers()
{
    int heard = 0;
    const QShortcut shortcut(Qt::Key_Escape, &*_window, [&heard] { ++heard; });
    _window->list->setFocus();
    QTest::keyClick(_window->list, Qt::Key_Escape);
    QCOMPARE(heard, 1);
}

// --- From the field -------------------------------------------------------------------------------------------------

void ListSearchTest::downGoesToTheList()
{
    find("marsh");
    QTest::keyClick(_window->field, Qt::Key_Down);
    QCOMPARE(focus(), _window->list);
    QCOMPARE(_window->list->selectedRow(), 0);
    QCOMPARE(_window->field->text(), QString("marsh"));
}

void ListSearchTest::downKeepsTheSelection()
{
    _window->list->selectIndividualRow(2);
    _window->field->setFocus();
    QTest::keyClick(_window->field, Qt::Key_Down);
    QCOMPARE(_window->list->selectedRows(), std::vector<int>{2});
}

void ListSearchTest::downStaysWhereNothingIsFound()
{
    find("zeppelin");
    QTest::keyClick(_window->field, Qt::Key_Down);
    QCOMPARE(focus(), _window->field);
}

void ListSearchTest::returnOpensTheFirstPage_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void ListSearchTest::returnOpensTheFirstPage()
{
    QFETCH(Qt::Key, key);
    find("marsh");
    QCOMPARE(_window->rows(), QStringList({"Marsh", "Marsh Line", "Marsh birds"}));
    QTest::keyClick(_window->field, key);
    QCOMPARE(_stage->openedURLs, QStringList{"http://line.org/"});
    QCOMPARE(_window->list->selectedRows(), std::vector<int>{1});
    QCOMPARE(focus(), _window->list);
}

void ListSearchTest::returnOpensTheFolderWhenNothingElseIsFound()
{
    find("empty");
    QTest::keyClick(_window->field, Qt::Key_Return);
    QVERIFY(_stage->openedURLs.isEmpty());
    QVERIFY(_window->list->isItemExpanded(_window->list->itemAtRow(0)));
}

void ListSearchTest::returnWithoutSearchGoesToTheList()
{
    _window->field->setFocus();
    QTest::keyClick(_window->field, Qt::Key_Return);
    QCOMPARE(focus(), _window->list);
    QCOMPARE(_window->list->selectedRow(), 0);
    QCOMPARE(_window->rows().size(), 3);
}

void ListSearchTest::returnStaysWhereNothingIsFound()
{
    find("zeppelin");
    QTest::keyClick(_window->field, Qt::Key_Return);
    QCOMPARE(focus(), _window->field);
    QVERIFY(_stage->openedURLs.isEmpty());
}

// --- Ctrl+F ---------------------------------------------------------------------------------------------------------

void ListSearchTest::findBeginsASearch()
{
    _window->field->setText("old");
    for (QWidget *from : std::initializer_list<QWidget *>{_window->other, _window->list, _window->field}) {
        from->setFocus();
        _window->field->deselect();
        QTest::keyClick(from, Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(focus(), _window->field);
        QCOMPARE(_window->field->selectedText(), QString("old"));
    }
}

void ListSearchTest::findIsLeftToOthersWhenTheFieldIsHidden()
{
    int heard = 0;
    const QShortcut shortcut(QKeySequence::Find, &*_window, [&heard] { ++heard; });
    _window->field->hide();
    _window->list->setFocus();
    QTest::keyClick(_window->list, Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(heard, 1);
    QCOMPARE(focus(), _window->list);
}

void ListSearchTest::keysGoBeforeShortcuts_data()
{
    QTest::addColumn<bool>("inList");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("text"); // of the field, afterwards
    const Qt::KeyboardModifiers none;
    const Qt::KeyboardModifiers control = Qt::ControlModifier;
    QTest::newRow("find, in the field") << false << Qt::Key_F << control << "mars";
    QTest::newRow("find, in the list") << true << Qt::Key_F << control << "mars";
    QTest::newRow("escape, in the field") << false << Qt::Key_Escape << none << "";
    QTest::newRow("escape, in the list") << true << Qt::Key_Escape << none << "";
    QTest::newRow("a letter, in the list") << true << Qt::Key_H << none << "marsh";
}

void ListSearchTest::keysGoBeforeShortcuts()
{
    QFETCH(bool, inList);
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QString, text);
    find("mars");
    if (inList)
        _window->list->setFocus();
    bool heard = false;
    const QShortcut shortcut(QKeySequence(QKeyCombination(modifiers, key)), &*_window, [&heard] { heard = true; });
    QTest::keyClick(focus(), key, modifiers);
    QVERIFY(!heard);
    QCOMPARE(_window->field->text(), text);
}

QTEST_MAIN(ListSearchTest)
#include "ListSearchTest.moc"
