#pragma once

#include <QFrame>
#include <QPointer>

class QLabel;
class QProgressBar;
class QToolButton;
class QWebEngineDownloadRequest;

// One download: its name, how far it has come, and a button that cancels it or, when it has ended, dismisses it. A
// click on the name of a finished one opens the file.
class DownloadItem : public QFrame
{
    Q_OBJECT

public:
    explicit DownloadItem(QWebEngineDownloadRequest *download, QWidget *parent = nullptr);

Q_SIGNALS:
    void dismissed();

private:
    void update();
    void openFile();
    void cancelOrDismiss();

    QPointer<QWebEngineDownloadRequest> _download;
    QString _path;
    QString _fileName;
    QToolButton *_name;
    QLabel *_state;
    QProgressBar *_progress;
    QToolButton *_button;
};
