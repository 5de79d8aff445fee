#pragma once

#include <QUrl>
#include <QWebEngineUrlSchemeHandler>

class BookmarkFile;

// The built-in page that new tabs and windows show: calm, without a host, with the bookmarks of the bar on it.
class StartPage : public QWebEngineUrlSchemeHandler
{
    Q_OBJECT

public:
    // Makes the scheme known; before the QApplication is made.
    static void registerScheme();
    static QByteArray scheme();
    static QUrl address();

    explicit StartPage(BookmarkFile *bookmarks, QObject *parent = nullptr);

    void requestStarted(QWebEngineUrlRequestJob *job) override;

private:
    QByteArray html() const;

    BookmarkFile *_bookmarks;
};
