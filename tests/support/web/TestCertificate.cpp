#include "tests/support/web/TestCertificate.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QTemporaryDir>

namespace
{
QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

TestCertificate::TestCertificate()
{
    const QTemporaryDir folder;
    const QString certificate = folder.filePath(QStringLiteral("certificate.pem"));
    const QString key = folder.filePath(QStringLiteral("key.pem"));
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1", "-addext",
                   "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", certificate});
    openssl.waitForFinished(-1);
    _certificate = contentsOf(certificate);
    _key = contentsOf(key);
    if (_certificate.isEmpty() || _key.isEmpty())
        qFatal("openssl made no certificate: %s", openssl.readAllStandardError().constData());
}

TestCertificate::~TestCertificate()
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    QList<QSslCertificate> authorities = configuration.caCertificates();
    if (authorities.removeAll(QSslCertificate(_certificate)) == 0)
        return;
    configuration.setCaCertificates(authorities);
    QSslConfiguration::setDefaultConfiguration(configuration);
}

void TestCertificate::trust() const
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.addCaCertificate(QSslCertificate(_certificate));
    QSslConfiguration::setDefaultConfiguration(configuration);
}
