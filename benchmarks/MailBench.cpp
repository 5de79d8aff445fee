#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "model/WayfoldBookmarkEmail.h"

#include <QUrl>
#include <QUrlQuery>

// Taking a mail address apart that is as long as some page may have made it.
bool measureMail(Figures &figures)
{
    constexpr int copies = 100'000;
    const QString address = QStringLiteral("mailto:ann?") + QStringLiteral("cc=b&").repeated(copies);
    const auto link =
        WayfoldBookmarkEmail::bookmarkWithTitleAndURL(QStringLiteral("Mail"), Url::URLWithString(address));
    QStringList to;
    QStringList cc;
    QStringList bcc;
    QString subject;
    const double ours =
        Figures::medianMilliseconds([&] { link->parseMailToLinkIntoToListCCListBCCListSubject(to, cc, bcc, subject); });
    QStringList peers;
    const double theirs = Figures::medianMilliseconds(
        [&] { peers = QUrlQuery(QUrl(address)).allQueryItemValues(QStringLiteral("cc"), QUrl::FullyDecoded); });
    const QString unit = QStringLiteral("ms");
    figures.add(QStringLiteral("mail_scan_ms"), ours, unit, QStringLiteral("qurlquery_mail_scan_ms"));
    figures.add(QStringLiteral("qurlquery_mail_scan_ms"), theirs, unit);
    return cc.size() == copies && peers.size() == copies;
}
