#include "browser/SubFrameReports.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

namespace
{
// A frame may compare its parent's frames with itself even when the parent belongs to another site.
const QString source = QStringLiteral(R"js(
(function () {
    if (window === window.top)
        return;
    function path() {
        const indices = [];
        for (let frame = window; frame !== frame.parent; frame = frame.parent) {
            let index = 0;
            while (index < frame.parent.frames.length && frame.parent.frames[index] !== frame)
                ++index;
            indices.unshift(index);
        }
        return indices;
    }
    const write = console.info.bind(console);
    window.addEventListener('load', function () {
        write('%1' + JSON.stringify({ url: location.href, path: path() }));
    });
})();
)js");
} // namespace

SubFrameReports::SubFrameReports()
    : _secret(QUuid::createUuid().toString(QUuid::Id128) + QUuid::createUuid().toString(QUuid::Id128))
{}

QWebEngineScript SubFrameReports::script() const
{
    QWebEngineScript script;
    script.setName(QStringLiteral("wayfold-sub-frames"));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(world);
    script.setRunsOnSubFrames(true);
    script.setSourceCode(source.arg(_secret));
    return script;
}

std::optional<SubFrameReports::Report> SubFrameReports::reportFrom(const QString &consoleLine) const
{
    if (!consoleLine.startsWith(_secret))
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(consoleLine.mid(_secret.size()).toUtf8()).object();
    Report report{QUrl(object.value(QLatin1String("url")).toString()), {}};
    for (const QJsonValue index : object.value(QLatin1String("path")).toArray())
        report.path.append(index.toInt());
    return report;
}

QString SubFrameReports::loadingScript(const QList<int> &path, const QUrl &url)
{
    QString frame = QStringLiteral("window");
    for (const int index : path)
        frame += QStringLiteral(".frames[%1]").arg(index);
    // An array, because a lone string is no JSON document.
    const QJsonArray address{QString::fromLatin1(url.toEncoded())};
    const QString json = QString::fromUtf8(QJsonDocument(address).toJson(QJsonDocument::Compact));
    return QStringLiteral("%1.location.href = %2[0];").arg(frame, json);
}
