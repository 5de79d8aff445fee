#include "drawer/FileOrFolderPanel.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/files/Paths.h"

#include <QFileInfo>
#include <QLineEdit>
#include <algorithm>

FileOrFolderPanel::FileOrFolderPanel(QWidget *parent, const QString &path) : QFileDialog(parent)
{
    // The desktops' own panels choose either files or folders.
    setOption(DontUseNativeDialog);
    setFileMode(ExistingFile);
    setAcceptMode(AcceptOpen);
    setWindowTitle(WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Choose File or Folder"))));
    const QString standardized = Paths::standardized(path);
    const qsizetype slash = standardized.lastIndexOf(QLatin1Char('/'));
    setDirectory(slash < 0 ? Paths::homeDirectory() : standardized.left(std::max(slash, qsizetype(1))));
    selectFile(standardized.mid(slash + 1));
    connect(this, &QFileDialog::currentChanged, this, &FileOrFolderPanel::highlight);
    connect(this, &QFileDialog::directoryEntered, this, [this] {
        if (nameField())
            nameField()->clear();
    });
}

QLineEdit *FileOrFolderPanel::nameField() const
{
    return findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
}

// The base proposes only files by itself.
void FileOrFolderPanel::highlight(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir() && nameField())
        nameField()->setText(info.fileName());
}

// The base would look into a folder instead of taking it; a double click still does.
void FileOrFolderPanel::accept()
{
    const QStringList chosen = selectedFiles();
    if (chosen.size() == 1 && QFileInfo(chosen.constFirst()).isDir())
        done(QDialog::Accepted);
    else
        QFileDialog::accept();
}
