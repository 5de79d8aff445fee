#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <functional>

class QWebEngineDownloadRequest;

// Takes every download into the user's download folder, under a name that is not taken.
class Downloads : public QObject
{
    Q_OBJECT

public:
    explicit Downloads(QObject *parent = nullptr);

    // Accepts the download and gives it its place.
    void take(QWebEngineDownloadRequest *download);
    bool anyUnderWay() const;
    static QString folder();
    // A plain file name made of the one that a server suggests.
    static QString safeName(const QString &suggested);
    // `name` when `isTaken` says that it is free, else "name (2).ending", "name (3).ending" and so on. The whole of
    // ".tar.gz" counts as an ending.
    static QString freeName(const QString &name, const std::function<bool(const QString &)> &isTaken);

Q_SIGNALS:
    void started(QWebEngineDownloadRequest *download);

private:
    bool isTaken(const QString &name) const;

    QList<QWebEngineDownloadRequest *> _underWay;
};
