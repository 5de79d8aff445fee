#include "browser/WebPage.h"

#include "browser/SignInDialog.h"
#include "platform/base/Log.h"

#include <QAuthenticator>
#include <QWebEngineCertificateError>
#include <QWebEngineScriptCollection>
#include <QWebEngineView>

WebPage::WebPage(QWebEngineProfile *profile, QObject *parent) : QWebEnginePage(profile, parent)
{
    scripts().insert(_subFrameReports.script());
    connect(this, &QWebEnginePage::authenticationRequired, this,
            [this](const QUrl &url, QAuthenticator *authenticator) { signIn(url, url.host(), authenticator); });
    connect(this, &QWebEnginePage::proxyAuthenticationRequired, this,
            [this](const QUrl &url, QAuthenticator *authenticator, const QString &proxy) {
                signIn(url, proxy, authenticator);
            });
    connect(this, &QWebEnginePage::certificateError, this, &WebPage::refuseCertificate);
    connect(this, &QWebEnginePage::featurePermissionRequested, this, [this](const QUrl &origin, Feature feature) {
        qCInfo(logWayfold) << origin.toString() << "was not granted" << feature;
        setFeaturePermission(origin, feature, PermissionDeniedByUser);
    });
}

void WebPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString &message, int, const QString &)
{
    // What pages write for their makers is of no use here.
    if (const auto report = _subFrameReports.reportFrom(message))
        Q_EMIT subFrameFinished(report->url, report->path);
}

void WebPage::signIn(const QUrl &url, const QString &name, QAuthenticator *authenticator)
{
    SignInDialog dialog(url, name, authenticator->realm(), QWebEngineView::forPage(this));
    if (dialog.exec() == QDialog::Accepted) {
        authenticator->setUser(dialog.user());
        authenticator->setPassword(dialog.password());
    } else {
        *authenticator = QAuthenticator(); // gives up, and shows the page that the server sends along
    }
}

void WebPage::refuseCertificate(QWebEngineCertificateError error)
{
    qCInfo(logWayfold) << "The certificate of" << error.url().host() << "was refused:" << error.description();
    error.rejectCertificate();
}
