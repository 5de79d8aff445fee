#include "browser/NoAnswerBox.h"

#include "browser/SymbolIcon.h"

#include <QGuiApplication>
#include <QPushButton>

namespace
{
constexpr qsizetype mostShown = 5;
constexpr qsizetype longestShown = 80; // characters of an address

QString list(const QStringList &addresses)
{
    QString text;
    for (const QString &address : addresses.mid(0, mostShown)) {
        const bool fits = address.size() <= longestShown;
        text += QLatin1Char('\n') + (fits ? address : address.left(longestShown) + QStringLiteral("…"));
    }
    return addresses.size() > mostShown ? text + QStringLiteral("\n…") : text;
}
} // namespace

NoAnswerBox::NoAnswerBox(const QStringList &addresses)
    : QMessageBox(QMessageBox::Warning, QGuiApplication::applicationDisplayName(),
                  tr("The browser is already open, but it does not answer."))
{
    setObjectName(QStringLiteral("noAnswerBox"));
    setWindowIcon(SymbolIcon::named(QStringLiteral("browser")));
    setTextFormat(Qt::PlainText);
    QString explanation = tr("Perhaps it is only busy: try again in a moment. If that does not help, end it and try "
                             "again. Nothing has been changed; two browsers at once would write over each other’s "
                             "files.");
    if (!addresses.isEmpty())
        explanation += QStringLiteral("\n\n") + tr("Not opened yet:") + list(addresses);
    setInformativeText(explanation);
    QPushButton *tryAgain = addButton(tr("Try Again"), QMessageBox::AcceptRole);
    _tryAgain = tryAgain;
    setDefaultButton(tryAgain);
    setEscapeButton(addButton(tr("Close"), QMessageBox::RejectRole));
}
