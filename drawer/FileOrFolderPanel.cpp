#include "drawer/FileOrFolderPanel.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/files/Paths.h"

FileOrFolderPanel::FileOrFolderPanel(QWidget *parent, const QString &path) : QFileDialog(parent)
{
    // The desktops' own panels choose either files or folders.
    setOption(DontUseNativeDialog);
    setFileMode(ExistingFile);
    setAcceptMode(AcceptOpen);
    setWindowTitle(WayfoldToolkit::localizedString(QStringLiteral("Choose File or Folder")));
    const QString standardized = Paths::standardized(path);
    const qsizetype slash = standardized.lastIndexOf(QLatin1Char('/'));
    setDirectory(slash < 0 ? Paths::homeDirectory() : standardized.left(std::max(slash, qsizetype(1))));
    selectFile(standardized.mid(slash + 1));
    connect(this, &QFileDialog::currentChanged, this, [this](const QString &current) { _highlighted = current; });
    connect(this, &QFileDialog::directoryEntered, this, [this] { _highlighted = QString(); });
}

void FileOrFolderPanel::accept()
{
    QFileDialog::accept();
}
