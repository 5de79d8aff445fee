#include "browser/AddBookmarkDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace
{
QString shownTitle(const BookmarkFile::Folder &folder)
{
    if (folder.depth == 0 && folder.title == BookmarkFile::barTitle())
        return AddBookmarkDialog::tr("Bookmarks Bar");
    if (folder.depth == 0 && folder.title == BookmarkFile::menuTitle())
        return AddBookmarkDialog::tr("Bookmarks Menu");
    const QString indent(qsizetype(folder.depth) * 4, ' ');
    return indent + (folder.title.isEmpty() ? AddBookmarkDialog::tr("Untitled") : folder.title);
}
} // namespace

AddBookmarkDialog::AddBookmarkDialog(const QString &title, const QList<BookmarkFile::Folder> &folders, QWidget *parent)
    : QDialog(parent)
    , _folders(folders)
    , _title(new QLineEdit(title))
    , _folder(new QComboBox)
{
    setObjectName(QStringLiteral("addBookmarkDialog"));
    setWindowTitle(tr("Add Bookmark"));
    setWindowModality(Qt::WindowModal);
    _title->setObjectName(QStringLiteral("bookmarkTitleField"));
    _title->setAccessibleName(tr("Title"));
    _title->setToolTip(tr("What the bookmark is called"));
    _title->setMinimumWidth(300);
    _title->selectAll();
    _folder->setObjectName(QStringLiteral("bookmarkFolderBox"));
    _folder->setAccessibleName(tr("Folder"));
    _folder->setToolTip(tr("Where the bookmark is kept"));
    for (const BookmarkFile::Folder &folder : folders) {
        _folder->addItem(shownTitle(folder));
        if (folder.depth == 0 && folder.title == BookmarkFile::menuTitle())
            _folder->setCurrentIndex(_folder->count() - 1);
    }

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    auto *add = buttons->addButton(tr("Add"), QDialogButtonBox::AcceptRole);
    // A bookmark without a title would be shown nowhere.
    const auto enableAdd = [this, add] { add->setEnabled(!_title->text().trimmed().isEmpty()); };
    connect(_title, &QLineEdit::textChanged, this, enableAdd);
    enableAdd();
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QFormLayout(this);
    layout->addRow(tr("&Title:"), _title);
    layout->addRow(tr("&Folder:"), _folder);
    layout->addRow(buttons);
    add->setDefault(true); // counts only once the button lies in its dialog
}

QString AddBookmarkDialog::title() const
{
    return _title->text().trimmed();
}

BookmarkFile::Folder AddBookmarkDialog::folder() const
{
    return _folders.value(_folder->currentIndex());
}
