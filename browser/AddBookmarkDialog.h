#pragma once

#include "browser/BookmarkFile.h"

#include <QDialog>

class QComboBox;
class QLineEdit;

// Asks for the title of a new bookmark and for the folder that it goes into.
class AddBookmarkDialog : public QDialog
{
    Q_OBJECT

public:
    AddBookmarkDialog(const QString &title, const QList<BookmarkFile::Folder> &folders, QWidget *parent);

    QString title() const;
    BookmarkFile::Folder folder() const;

private:
    QList<BookmarkFile::Folder> _folders;
    QLineEdit *_title;
    QComboBox *_folder;
};
