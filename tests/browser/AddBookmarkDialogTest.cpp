#include "browser/AddBookmarkDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

class AddBookmarkDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void offersTheMenu();
    void otherFolder();
    void needsATitle();
    void returnAdds();

private:
    QPushButton *addButton() const;
    std::unique_ptr<AddBookmarkDialog> _dialog;
};

void AddBookmarkDialogTest::init()
{
    const QList<BookmarkFile::Folder> folders{
        {"BookmarksBar", 0, {0}}, {"News", 1, {0, 1}}, {"BookmarksMenu", 0, {1}}, {"BookmarksMenu", 1, {1, 0}}};
    _dialog = std::make_unique<AddBookmarkDialog>("The page", folders, nullptr);
    _dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(_dialog.get()));
}

void AddBookmarkDialogTest::cleanup()
{
    _dialog.reset();
}

QPushButton *AddBookmarkDialogTest::addButton() const
{
    for (QAbstractButton *button : _dialog->findChild<QDialogButtonBox *>()->buttons()) {
        if (_dialog->findChild<QDialogButtonBox *>()->buttonRole(button) == QDialogButtonBox::AcceptRole)
            return qobject_cast<QPushButton *>(button);
    }
    return nullptr;
}

void AddBookmarkDialogTest::offersTheMenu()
{
    QCOMPARE(_dialog->title(), QString("The page"));
    QCOMPARE(_dialog->folder().path, QList<int>({1}));
    const auto *box = _dialog->findChild<QComboBox *>("bookmarkFolderBox");
    QCOMPARE(box->count(), 4);
    QCOMPARE(box->itemText(0), QString("Bookmarks Bar"));
    QCOMPARE(box->itemText(1), QString("    News"));
    QCOMPARE(box->itemText(2), QString("Bookmarks Menu"));
    QCOMPARE(box->itemText(3), QString("    BookmarksMenu")); // a folder of the user's own
}

void AddBookmarkDialogTest::otherFolder()
{
    _dialog->findChild<QComboBox *>("bookmarkFolderBox")->setCurrentIndex(1);
    QCOMPARE(_dialog->folder().title, QString("News"));
    QCOMPARE(_dialog->folder().path, QList<int>({0, 1}));
}

void AddBookmarkDialogTest::needsATitle()
{
    auto *title = _dialog->findChild<QLineEdit *>("bookmarkTitleField");
    QVERIFY(addButton()->isEnabled());
    title->setText("  ");
    QVERIFY(!addButton()->isEnabled());
    title->setText("  Mine ");
    QVERIFY(addButton()->isEnabled());
    QCOMPARE(_dialog->title(), QString("Mine"));
}

void AddBookmarkDialogTest::returnAdds()
{
    auto *title = _dialog->findChild<QLineEdit *>("bookmarkTitleField");
    QCOMPARE(title->selectedText(), QString("The page"));
    QTest::keyClick(title, Qt::Key_Return);
    QCOMPARE(_dialog->result(), int(QDialog::Accepted));
}

QTEST_MAIN(AddBookmarkDialogTest)
#include "AddBookmarkDialogTest.moc"
