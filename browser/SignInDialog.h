#pragma once

#include <QDialog>
#include <QUrl>

class QLineEdit;

// Asks for the name and the password that a site or a proxy wants.
class SignInDialog : public QDialog
{
    Q_OBJECT

public:
    // `realm` is the server's own word for what it guards; may be empty.
    SignInDialog(const QUrl &url, const QString &host, const QString &realm, QWidget *parent);

    QString user() const;
    QString password() const;

private:
    QLineEdit *_user;
    QLineEdit *_password;
};
