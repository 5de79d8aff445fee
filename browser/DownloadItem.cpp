#include "browser/DownloadItem.h"

#include "browser/SymbolIcon.h"

#include <QDesktopServices>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QTextDocument>
#include <QToolButton>
#include <QUrl>
#include <QWebEngineDownloadRequest>

namespace
{
constexpr int widestName = 180;
} // namespace

DownloadItem::DownloadItem(QWebEngineDownloadRequest *download, QWidget *parent)
    : QFrame(parent)
    , _download(download)
    , _path(QDir(download->downloadDirectory()).filePath(download->downloadFileName()))
    , _fileName(download->downloadFileName())
    , _name(new QToolButton)
    , _state(new QLabel)
    , _progress(new QProgressBar)
    , _button(new QToolButton)
{
    setObjectName(QStringLiteral("downloadItem"));
    setAccessibleName(_fileName);
    _name->setObjectName(QStringLiteral("downloadName"));
    _name->setText(fontMetrics().elidedText(_fileName, Qt::ElideMiddle, widestName).replace('&', QLatin1String("&&")));
    _name->setAccessibleName(_fileName);
    _name->setToolTip(Qt::convertFromPlainText(tr("Open %1").arg(_path)));
    _name->setAutoRaise(true);
    _progress->setObjectName(QStringLiteral("downloadProgress"));
    _progress->setAccessibleName(tr("Progress of %1").arg(_fileName));
    _progress->setTextVisible(false);
    _progress->setFixedWidth(80);
    _progress->setMaximumHeight(fontMetrics().height());
    _state->setObjectName(QStringLiteral("downloadState"));
    _button->setObjectName(QStringLiteral("downloadButton"));
    _button->setIcon(SymbolIcon::named(QStringLiteral("close")));
    _button->setAutoRaise(true);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(_name);
    layout->addWidget(_progress);
    layout->addWidget(_state);
    layout->addWidget(_button);

    connect(_name, &QToolButton::clicked, this, &DownloadItem::openFile);
    connect(_button, &QToolButton::clicked, this, &DownloadItem::cancelOrDismiss);
    connect(download, &QWebEngineDownloadRequest::receivedBytesChanged, this, &DownloadItem::update);
    connect(download, &QWebEngineDownloadRequest::stateChanged, this, &DownloadItem::update);
    connect(download, &QWebEngineDownloadRequest::isFinishedChanged, this, &DownloadItem::update);
    update();
}

void DownloadItem::update()
{
    if (!_download)
        return;
    const qint64 received = _download->receivedBytes();
    const qint64 total = _download->totalBytes();
    _progress->setMaximum(total > 0 ? 1000 : 0);
    _progress->setValue(total > 0 ? static_cast<int>(received * 1000 / total) : 0);
    const QString size = QLocale().formattedDataSize(received);
    switch (_download->state()) {
    case QWebEngineDownloadRequest::DownloadCompleted:
        _state->setText(tr("Finished, %1").arg(size));
        break;
    case QWebEngineDownloadRequest::DownloadCancelled:
        _state->setText(tr("Cancelled"));
        break;
    case QWebEngineDownloadRequest::DownloadInterrupted:
        _state->setText(tr("Failed"));
        _state->setToolTip(_download->interruptReasonString());
        break;
    default:
        _state->setText(size);
    }
    const bool hasEnded = _download->isFinished();
    _progress->setVisible(!hasEnded);
    _name->setEnabled(_download->state() == QWebEngineDownloadRequest::DownloadCompleted);
    const QString command = (hasEnded ? tr("Remove %1 from this list") : tr("Cancel %1")).arg(_fileName);
    _button->setToolTip(Qt::convertFromPlainText(command));
    _button->setAccessibleName(command);
}

void DownloadItem::openFile()
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(_path));
}

void DownloadItem::cancelOrDismiss()
{
    if (_download && !_download->isFinished())
        _download->cancel();
    else
        Q_EMIT dismissed();
}
