#include "platform/widgets/Workspace.h"

#include "platform/files/Paths.h"
#include "platform/widgets/Image.h"

#include <QDesktopServices>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QProcess>
#include <QUrl>

namespace
{
constexpr QSizeF fileIconSize(32, 32);

std::function<bool(const Url &)> &urlHandler()
{
    static std::function<bool(const Url &)> handler;
    return handler;
}

std::function<bool(const QStringList &)> &programHandler()
{
    static std::function<bool(const QStringList &)> handler;
    return handler;
}

// What a file of that name would look like.
QIcon iconForName(const QString &path)
{
    const QFileIconProvider provider;
    if (path.endsWith(QLatin1Char('/')))
        return provider.icon(QFileIconProvider::Folder);
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchExtension);
    const QIcon anyFile = provider.icon(QFileIconProvider::File);
    return QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName(), anyFile));
}
} // namespace

bool Workspace::openURL(const Url &url)
{
    if (url.isNull())
        return false;
    if (urlHandler())
        return urlHandler()(url);
    return QDesktopServices::openUrl(QUrl::fromEncoded(url.absoluteString().toLatin1()));
}

bool Workspace::showFile(const QString &path)
{
    QFileInfo folder(QFileInfo(path).absolutePath());
    while (!folder.isDir() && !folder.isRoot())
        folder.setFile(folder.absolutePath());
    return openURL(Url::fileURLWithPath(folder.filePath()));
}

bool Workspace::startProgram(const QStringList &command)
{
    if (command.isEmpty())
        return false;
    if (programHandler())
        return programHandler()(command);
    QProcess program;
    program.setProgram(command.first());
    program.setArguments(command.mid(1));
    program.setWorkingDirectory(Paths::homeDirectory());
    program.setStandardOutputFile(QProcess::nullDevice());
    program.setStandardErrorFile(QProcess::nullDevice());
    return program.startDetached();
}

std::shared_ptr<Image> Workspace::iconForFile(const QString &path)
{
    if (path.isEmpty())
        return nullptr;
    const QFileInfo file(path);
    QIcon icon = file.exists() ? QFileIconProvider().icon(file) : QIcon();
    if (icon.isNull())
        icon = iconForName(path);
    return Image::imageWithIcon(icon, fileIconSize);
}

void Workspace::setURLHandler(std::function<bool(const Url &)> handler)
{
    urlHandler() = std::move(handler);
}

void Workspace::setProgramHandler(std::function<bool(const QStringList &)> handler)
{
    programHandler() = std::move(handler);
}
