#pragma once

#include <QList>
#include <QString>
#include <QUrl>
#include <QWebEngineScript>
#include <optional>

// Tells when the frames inside a page have finished loading, which the web engine does not. A script in a world of its
// own runs in every frame and writes a line to the console that starts with a secret, so that no page can write it.
class SubFrameReports
{
public:
    struct Report
    {
        QUrl url;
        QList<int> path; // the way down from the main frame, by index
    };

    SubFrameReports();

    // To be installed in the page whose console lines are read.
    QWebEngineScript script() const;
    // None for a line of the page's own.
    std::optional<Report> reportFrom(const QString &consoleLine) const;
    // A script for the main frame that loads the address into the frame at the end of the path.
    static QString loadingScript(const QList<int> &path, const QUrl &url);

    static constexpr quint32 world = QWebEngineScript::UserWorld;

private:
    QString _secret;
};
