#include "drawer/KDREditMailController.h"

#include "drawer/TextViewText.h"
#include "platform/base/StringRules.h"

namespace
{
QString urlSafe(const QString &text)
{
    return StringRules::addingPercentEscapes(StringRules::trimmed(text));
}

// Line breaks between the addresses are kept, and come out percent-escaped like everything else.
QString addressList(const QPointer<QTextEdit> &field)
{
    return field ? urlSafe(TextViewText::text(*field)) : QString();
}

void setText(const QPointer<QTextEdit> &field, const QString &text)
{
    if (field)
        field->setPlainText(text);
}
} // namespace

KDREditMailController::KDREditMailController() : KDREditController(QT_TRID_NOOP("Untitled Email Link")) {}

void KDREditMailController::initForEditing(const WayfoldBookmarkEmailPtr &link)
{
    loadInterface(QStringLiteral("KDREditMail"), link);
    setWindowTitle("Edit Email Link");
    _link = link;
    _subjectField = outlet<QLineEdit>("subjectField");
    _toField = outlet<QTextEdit>("toField");
    _ccField = outlet<QTextEdit>("ccField");
    _bccField = outlet<QTextEdit>("bccField");
    fillFields();
}

void KDREditMailController::initForNew(const WayfoldBookmarkEmailPtr &link)
{
    initForEditing(link);
    setWindowTitle("New Email Link");
}

void KDREditMailController::fillFields()
{
    QString to;
    QString cc;
    QString bcc;
    QString subject;
    _link->parseMailToLinkIntoToCCBCCSubject(to, cc, bcc, subject);
    setText(_toField, to);
    setText(_ccField, cc);
    setText(_bccField, bcc);
    if (_subjectField)
        _subjectField->setText(subject);
}

void KDREditMailController::writeValue()
{
    QString address = QStringLiteral("mailto:") + addressList(_toField);
    QChar separator(u'?');
    const auto append = [&address, &separator](const char *name, const QString &value) {
        address += separator + QLatin1String(name) + QLatin1Char('=') + value;
        separator = QChar(u'&');
    };
    const QString cc = addressList(_ccField);
    if (!cc.isEmpty())
        append("cc", cc);
    const QString bcc = addressList(_bccField);
    if (!bcc.isEmpty())
        append("bcc", bcc);
    // A subject of blanks only leaves an empty one.
    if (_subjectField && !_subjectField->text().isEmpty())
        append("subject", urlSafe(_subjectField->text()));
    _link->setURL(Url::URLWithString(address));
}
