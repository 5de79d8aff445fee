#pragma once

#include <QFileDialog>

class QLineEdit;

// A file chooser in which folders can be chosen just like files.
class FileOrFolderPanel : public QFileDialog
{
    Q_OBJECT

public:
    // Opens in the path's folder, with its last component proposed.
    FileOrFolderPanel(QWidget *parent, const QString &path);

    void accept() override;

private:
    void highlight(const QString &path);
    QLineEdit *nameField() const;
};
