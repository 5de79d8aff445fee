#pragma once

#include "model/WayfoldBookmarkURL.h"

#include <QStringList>

class WayfoldBookmarkEmail;
using WayfoldBookmarkEmailPtr = std::shared_ptr<WayfoldBookmarkEmail>;

// A link that starts a mail. Recipients and subject are kept nowhere but in its "mailto" address; the makers do not
// check that it is one.
class WayfoldBookmarkEmail : public WayfoldBookmarkURL
{
public:
    using WayfoldBookmarkURL::WayfoldBookmarkURL;

    static WayfoldBookmarkEmailPtr bookmarkWithTitle(const QString &title);
    static WayfoldBookmarkEmailPtr bookmarkWithTitleAndURL(const QString &title, const Url &url);
    static WayfoldBookmarkEmailPtr bookmarkFromDictionary(const QVariantMap &dictionary);
    // The address of a mail to these people; recipients and subject may hold any letter. A null or empty subject is
    // none.
    static Url mailURL(const QStringList &to, const QStringList &cc, const QStringList &bcc, const QString &subject);
    // Asks the user for a new link; none when that was cancelled.
    static WayfoldBookmarkEmailPtr newViaDialog();

    // The address as a mail program takes it: recipients that stand on lines of their own have commas between them.
    Url urlForMailProgram() const;
    // Takes the address apart, percent escapes decoded. All four are replaced; a part that is not there is empty.
    void parseMailToLinkIntoToListCCListBCCListSubject(QStringList &toList, QStringList &ccList, QStringList &bccList,
                                                       QString &subject) const;
    // The same with the entries of each list on a line each.
    void parseMailToLinkIntoToCCBCCSubject(QString &to, QString &cc, QString &bcc, QString &subject) const;

    Type type() const override { return EmailLinkType; }
    QString typeDescription() const override { return QStringLiteral("Email Link"); }
    // Subject and recipients.
    QString tooltipText() const override;
    std::shared_ptr<Image> imageForCellSize(const QSizeF &size) override;
    bool editViaDialog() override;
    QString classNameForCoder() const override { return QStringLiteral("WayfoldBookmarkEmail"); }

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;
};
