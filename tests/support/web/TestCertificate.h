#pragma once

#include <QByteArray>

// A certificate of the test's own for 127.0.0.1, made by openssl, signed by itself.
class TestCertificate
{
public:
    TestCertificate();
    // This process no longer trusts it.
    ~TestCertificate();
    TestCertificate(const TestCertificate &) = delete;
    TestCertificate &operator=(const TestCertificate &) = delete;

    // Both in PEM.
    QByteArray certificate() const { return _certificate; }
    QByteArray key() const { return _key; }
    // From now on this process trusts it as if an authority had signed it.
    void trust() const;

private:
    QByteArray _certificate;
    QByteArray _key;
};
