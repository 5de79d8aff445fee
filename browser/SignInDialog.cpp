#include "browser/SignInDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace
{
QString question(const QUrl &url, const QString &host, const QString &realm)
{
    QString text = realm.isEmpty() ? SignInDialog::tr("%1 asks for a name and a password.").arg(host)
                                   : SignInDialog::tr("%1 asks for a name and a password for “%2”.").arg(host, realm);
    if (url.scheme() != QLatin1String("https"))
        text += QLatin1Char('\n') + SignInDialog::tr("They will travel without encryption.");
    return text;
}
} // namespace

SignInDialog::SignInDialog(const QUrl &url, const QString &host, const QString &realm, QWidget *parent)
    : QDialog(parent)
    , _user(new QLineEdit)
    , _password(new QLineEdit)
{
    setObjectName(QStringLiteral("signInDialog"));
    setWindowTitle(tr("Sign In"));
    setWindowModality(Qt::WindowModal);

    auto *label = new QLabel(question(url, host, realm));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(320);
    _user->setObjectName(QStringLiteral("userField"));
    _user->setAccessibleName(tr("Name"));
    _user->setToolTip(tr("Your name at this site"));
    _password->setObjectName(QStringLiteral("passwordField"));
    _password->setAccessibleName(tr("Password"));
    _password->setToolTip(tr("Your password at this site"));
    _password->setEchoMode(QLineEdit::Password);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    auto *signIn = buttons->addButton(tr("Sign In"), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QFormLayout(this);
    layout->addRow(label);
    layout->addRow(tr("&Name:"), _user);
    layout->addRow(tr("&Password:"), _password);
    layout->addRow(buttons);
    signIn->setDefault(true); // counts only once the button lies in its dialog
}

QString SignInDialog::user() const
{
    return _user->text();
}

QString SignInDialog::password() const
{
    return _password->text();
}
