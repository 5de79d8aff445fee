#pragma once

#include "browser/SubFrameReports.h"

#include <QWebEnginePage>

class QAuthenticator;
class QWebEngineCertificateError;

// A page as the browser shows it: asks for names and passwords, refuses bad certificates and whatever else a page may
// wish for, and tells when the frames inside it have finished loading.
class WebPage : public QWebEnginePage
{
    Q_OBJECT

public:
    explicit WebPage(QWebEngineProfile *profile, QObject *parent = nullptr);

Q_SIGNALS:
    void subFrameFinished(const QUrl &url, const QList<int> &path);

protected:
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString &message, int lineNumber,
                                  const QString &sourceId) override;

private:
    void signIn(const QUrl &url, const QString &name, QAuthenticator *authenticator);
    void refuseCertificate(QWebEngineCertificateError error);

    SubFrameReports _subFrameReports;
};
