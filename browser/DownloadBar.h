#pragma once

#include <QWidget>

class QHBoxLayout;
class QWebEngineDownloadRequest;

// The downloads that were started in a window, in a row at its lower edge; gone when the last of them is dismissed.
class DownloadBar : public QWidget
{
    Q_OBJECT

public:
    explicit DownloadBar(QWidget *parent = nullptr);

    void add(QWebEngineDownloadRequest *download);

private:
    void openFolder();
    void hideWhenEmpty();

    QHBoxLayout *_items;
};
